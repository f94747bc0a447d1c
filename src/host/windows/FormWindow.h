// The window of a form. It lives from `Realise` until the form is unloaded or the window is destroyed,
// whichever comes first; destroying it, as its owner's end does, unloads the form.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "controls/Form.h"
#include "controls/Timer.h"
#include "host/windows/ActivationContext.h"
#include "host/windows/Dpi.h"
#include "host/windows/KeyHook.h"
#include "host/windows/NativeControl.h"
#include "host/windows/Resources.h"
#include "host/windows/ToolTips.h"
#include "util/Ref.h"
#include "util/Trace.h"

namespace rowlark::windows {

class FormWindow;

// What the windows of all forms have in common. It ends with the last of them.
class FormDesk {
 public:
  // `idle` is called whenever the last message under way has been handled.
  FormDesk(std::function<void()> idle, rowlark::Trace* trace);
  FormDesk(const FormDesk&) = delete;
  FormDesk& operator=(const FormDesk&) = delete;
  ~FormDesk();

  // There is one hook for all windows, as long as there are windows.
  std::shared_ptr<KeyHook> Keys();

  rowlark::Trace* const Trace;
  const windows::Resources Resources;
  const ActivationContext Controls;
  const windows::Dpi Dpi;
  const Icon LargeIcon;
  const Icon SmallIcon;
  std::vector<FormWindow*> Windows;

  // A message of a form is being handled, and whatever it calls.
  class [[nodiscard]] Visit {
   public:
    explicit Visit(std::shared_ptr<FormDesk> desk) : desk_(std::move(desk)) { ++desk_->messages_; }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;
    ~Visit() {
      if (--desk_->messages_ == 0) desk_->idle_();
    }

   private:
    std::shared_ptr<FormDesk> desk_;
  };
  bool Busy() const { return messages_ > 0; }

 private:
  std::weak_ptr<KeyHook> keys_;
  const std::function<void()> idle_;  // throws nothing
  int messages_ = 0;                  // under way
};

class FormWindow final : public controls::View, public RefCounted {
 public:
  // Makes the windows, hidden, and attaches itself to the form. Throws std::system_error.
  static void Open(controls::Form& form, std::shared_ptr<FormDesk> desk);
  // Destroys the window without a word to the form.
  void Abandon() noexcept;

  void Changed(controls::Control& control, controls::Property property) noexcept override;
  void Released(controls::Form& form) noexcept override;
  int32_t TextWidth(std::u16string_view text) const noexcept override;
  controls::TwipSize WindowSize(controls::Size client) const noexcept override;

 private:
  FormWindow(controls::Form& form, std::shared_ptr<FormDesk> desk);

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM first, LPARAM second) noexcept;
  static void TakeKey(MSG& message) noexcept;
  static FormWindow* Of(HWND window);
  friend class FormDesk;

  static constexpr UINT kFillLists = WM_APP + 1;  // posted when lists have changed
  static constexpr DWORD kFormExtendedStyle = WS_EX_CONTROLPARENT | WS_EX_WINDOWEDGE;

  void Create();
  void MakeControls();

  // A message of the window, with its two parameters.
  struct Message {
    UINT id;
    WPARAM first;
    LPARAM second;

    HWND Sender() const { return reinterpret_cast<HWND>(second); }
  };
  LRESULT Handle(const Message& message);
  LRESULT Default(const Message& message) const;
  LRESULT Destroyed(const Message& message);
  // Nothing: the message is left to the next one, and in the end to the system.
  std::optional<LRESULT> HandleFrame(controls::Form& form, const Message& message);
  std::optional<LRESULT> HandleControls(controls::Form& form, const Message& message);
  std::optional<LRESULT> HandleLooks(controls::Form& form, const Message& message);
  static controls::Control* Find(const controls::Form& form, WPARAM name);
  // True where nothing is left to do with a message.
  bool UsesKey(MSG& message);
  NativeControl* ControlOf(HWND window) const;

  void Show(controls::Control& control, controls::Property property);
  void ChangedForm(controls::Property property);
  void Show();
  void Hide();
  void DisableOthers();
  static BOOL CALLBACK DisableOther(HWND window, LPARAM self) noexcept;
  DWORD Style() const;
  SIZE OuterSize(controls::Size client) const;
  void AlignLines();
  void Moved();
  void Resized(SIZE client);
  void Rescale(UINT dpi);
  void LayOut();
  void StartTimer(controls::Timer& timer) const;

  std::shared_ptr<FormDesk> desk_;
  std::shared_ptr<KeyHook> keys_;
  Ref<controls::Form> form_;  // null once it is unloaded
  Ref<FormWindow> self_;      // while there is a window
  FormSite site_;
  ToolTips tool_tips_;
  std::vector<HWND> disabled_;  // while the form is modal
  bool destroying_ = false;
  bool sizing_ = false;  // the user does; the window has its size already
  bool list_update_is_posted_ = false;
};

}  // namespace rowlark::windows
