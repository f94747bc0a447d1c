// Forms, message boxes, screens and links of the office.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/MessagePump.h"
#include "host/WindowSystem.h"
#include "host/calc/forms/Desk.h"

namespace rowlark::calc {

class CalcWindowSystem final : public host::WindowSystem {
 public:
  // On the office's main thread, as everything else. `pictures` is the folder with the drawings. `idle` is
  // called when the forms' messages under way have all been handled; it throws nothing, and may end the
  // window system.
  CalcWindowSystem(const Desk::Context& office, std::u16string pictures, std::function<void()> idle,
                   std::shared_ptr<Trace> trace);
  CalcWindowSystem(const CalcWindowSystem&) = delete;
  CalcWindowSystem& operator=(const CalcWindowSystem&) = delete;
  // Windows of forms that are still loaded go, and their forms hear nothing of it.
  ~CalcWindowSystem() override;

  // Ends the thread of the timers; to be called before the office goes.
  void Stop(host::MessagePump& pump);
  // A message of a form, or work that was posted, is being handled: the logic may be on the stack.
  bool Busy() const { return desk_->Busy(); }
  Desk::Visit Working() { return Desk::Visit(desk_); }
  // See Desk::Post.
  void Post(std::function<void()> work) noexcept { desk_->Post(std::move(work)); }

  // Dialogs of the office, owned by the document's window; its end unloads the form.
  bool Realise(controls::Form& form) noexcept override;
  void MsgBox(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title) noexcept override;
  bool Ask(std::u16string_view text, std::u16string_view title) noexcept override;
  // Web addresses and "mailto:" only.
  void OpenLink(controls::Form& parent, std::u16string_view link) noexcept override;
  // The toolkit has no sound.
  void Beep() noexcept override {}
  std::vector<controls::TwipRect> Screens() const noexcept override;
  intptr_t WindowOfClass(std::u16string_view) const noexcept override { return 0; }

 private:
  const std::shared_ptr<Desk> desk_;
};

// Opens a web address, a file or "mailto:..." with the user's program for it. Throws what the office throws.
void OpenWithSystem(const Desk::Context& office, const rtl::OUString& uri);

}  // namespace rowlark::calc
