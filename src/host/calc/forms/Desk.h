// What the windows of all forms have in common. It lives on the office's main thread and ends with the last
// of them, or with the window system, whichever comes later.
#pragma once

#include <com/sun/star/awt/XToolkit2.hpp>
#include <com/sun/star/awt/XWindow.hpp>
#include <com/sun/star/awt/XWindowPeer.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "controls/Timer.h"
#include "host/calc/forms/Timers.h"
#include "util/Trace.h"

namespace rowlark::calc {

class FormDialog;

inline constexpr double kTwipsPerMetre = controls::kTwipsPerInch / 0.0254;

class Desk : public std::enable_shared_from_this<Desk> {
  const std::shared_ptr<rowlark::Trace> trace_;  // what was posted may come when nothing else is left

 public:
  using Context = com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>;
  using Window = com::sun::star::uno::Reference<com::sun::star::awt::XWindow>;

  // `pictures` is the folder of the drawings, with those for lists and buttons in "small" below it. `idle` is
  // called when the forms' messages under way have all been handled; it throws nothing.
  Desk(const Context& context, std::u16string pictures, std::function<void()> idle,
       std::shared_ptr<rowlark::Trace> trace);
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  const Context Office;
  rowlark::Trace* const Trace = trace_.get();
  const com::sun::star::uno::Reference<com::sun::star::awt::XToolkit2> Toolkit;
  std::vector<FormDialog*> Windows;  // of forms that are loaded
  FormDialog* Active = nullptr;      // the one that is the active window, or has a message box that is
  int Boxes = 0;                     // message boxes that are open: keys are theirs
  calc::Timers Timers;

  bool OnMainThread() const { return std::this_thread::get_id() == thread_; }
  // Does something on the main thread when the messages before it have been handled. From any thread.
  void Post(std::function<void()> work) noexcept;

  // The URL of a picture, by its name in whatever letter case.
  rtl::OUString Picture(std::u16string_view name, bool small) const;

  // The windows of documents, the one in front first.
  std::vector<Window> DocumentWindows() const;
  // That with this address, or else the one in front; nothing when there is none.
  Window Owner(intptr_t address) const;

  // A message of a form is being handled, and whatever it calls.
  class [[nodiscard]] Visit {
   public:
    explicit Visit(std::shared_ptr<Desk> desk) : desk_(std::move(desk)) { ++desk_->messages_; }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;
    ~Visit() {
      if (--desk_->messages_ == 0) desk_->idle_();
    }

   private:
    std::shared_ptr<Desk> desk_;
  };
  bool Busy() const { return messages_ > 0; }

 private:
  const std::u16string pictures_;
  const std::function<void()> idle_;
  const std::thread::id thread_ = std::this_thread::get_id();
  int messages_ = 0;  // under way
};

// The toolkit's side of a window.
com::sun::star::uno::Reference<com::sun::star::awt::XWindowPeer> PeerOf(const Desk::Window& window);

// Does something on the office's main thread, when the messages before it have been handled. Throws what the
// office throws.
void PostToMainThread(const Desk::Context& office, std::function<void()> work);

}  // namespace rowlark::calc
