// What the window of a form shows of it.
#include <new>
#include <utility>

#include "host/windows/FormWindow.h"
#include "util/Scope.h"
#include "util/windows/WideText.h"

namespace rowlark::windows {

using controls::Property;

void FormWindow::Changed(controls::Control& control, Property property) noexcept {
  const Ref<FormWindow> keep(this);
  // Where memory runs out the window shows what it showed.
  Attempt(desk_->Trace, [&] { Show(control, property); });
}

void FormWindow::Show(controls::Control& control, Property property) {
  if (!form_ || site_.window == nullptr) return;
  const Dpi::Scope dpi(desk_->Dpi);
  if (&control == form_.get()) return ChangedForm(property);
  if (property == Property::Timer) return StartTimer(static_cast<controls::Timer&>(control));
  NativeControl* native = site_.Find(control);
  if (native == nullptr) return;
  if (property == Property::ToolTip) tool_tips_.Set(native->Window(), control.ToolTip());
  native->Update(property);
  if (native->ListIsDue() && !std::exchange(list_update_is_posted_, true)) {
    ::PostMessageW(site_.window, kFillLists, 0, 0);
  }
}

void FormWindow::ChangedForm(Property property) {
  switch (property) {
    case Property::Caption:
      ::SetWindowTextW(site_.window, ToWide(form_->Caption()).c_str());
      break;
    case Property::Visible:
      if (form_->Visible()) {
        Show();
      } else {
        Hide();
      }
      break;
    case Property::Layout:
      LayOut();
      break;
    case Property::Position: {
      const auto [x, y] = form_->Position();
      const ScopedCount updating(site_.updating);
      ::SetWindowPos(site_.window, nullptr, desk_->Dpi.Pixels(x), desk_->Dpi.Pixels(y), 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
      break;
    }
    case Property::Owner: {
      const auto owner = reinterpret_cast<HWND>(form_->Owner());
      if (destroying_ || (owner != nullptr && ::IsWindow(owner) == 0)) break;
      ::SetWindowLongPtrW(site_.window, GWLP_HWNDPARENT, form_->Owner());
      break;
    }
    case Property::Topmost:
      ::SetWindowPos(site_.window, form_->Topmost() ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
      break;
    default:
      break;
  }
}

void FormWindow::Show() {
  for (const auto& control : site_.controls) control->UpdateList();
  if (form_->Modal()) DisableOthers();
  if (::IsWindowVisible(site_.window) == 0) {
    ::ShowWindow(site_.window, SW_SHOW);
  } else if (::IsWindowEnabled(site_.window) != 0) {
    ::SetActiveWindow(site_.window);
  }
  if (!form_) return;
  if (controls::Control* active = form_->ActiveControl()) {
    if (NativeControl* native = site_.Find(*active)) native->Update(Property::Focus);
  }
}

// What was disabled comes back first: the system then activates the owner, and no other program's window.
void FormWindow::Hide() {
  for (const HWND window : std::exchange(disabled_, {})) ::EnableWindow(window, TRUE);
  ::ShowWindow(site_.window, SW_HIDE);
}

// All windows of the thread wait for a modal form: a host may have several main windows.
void FormWindow::DisableOthers() {
  ::EnumThreadWindows(::GetCurrentThreadId(), DisableOther, reinterpret_cast<LPARAM>(this));
}

BOOL CALLBACK FormWindow::DisableOther(HWND window, LPARAM self) noexcept {
  auto& form = *reinterpret_cast<FormWindow*>(self);
  const bool is_usable = ::IsWindowVisible(window) != 0 && ::IsWindowEnabled(window) != 0;
  if (window == form.site_.window || !is_usable) return TRUE;
  return Attempt(form.desk_->Trace, [&] {
    form.disabled_.push_back(window);
    ::EnableWindow(window, FALSE);
  });
}

// Frames do not clip what stands in them and controls lie on the bare form, so what moves is drawn anew
// together with everything around it.
void FormWindow::LayOut() {
  if (!sizing_) {
    const SIZE outer = OuterSize(form_->ClientSize());
    const ScopedCount updating(site_.updating);
    ::SetWindowPos(site_.window, nullptr, 0, 0, outer.cx, outer.cy,
                   SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  bool moved = false;
  for (const auto& control : site_.controls) {
    if (control->Place(site_.scale->Pixels(control->Model().Bounds))) moved = true;
  }
  if (!moved) return;
  AlignLines();
  ::RedrawWindow(site_.window, nullptr, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN);
}

// The texts of a line stand on the base line of its box, wherever in the box that is at this resolution.
void FormWindow::AlignLines() {
  for (const auto& leader : site_.controls) {
    if (!leader->LeadsLine()) continue;
    const auto top = leader->TopOfText();
    for (const auto& control : site_.controls) {
      if (control->Model().Line != leader->Model().Line || control->LeadsLine()) continue;
      if (const auto own = control->TopOfText(); own && top) control->Shift(*top - *own);
    }
  }
}

void FormWindow::Resized(SIZE client) {
  if (site_.updating > 0 || !form_->Resizable || ::IsWindowVisible(site_.window) == 0) return;
  const ScopedFlag sizing(sizing_);
  form_->UserResized(site_.scale->Units(client));
}

DWORD FormWindow::Style() const {
  return WS_POPUP | WS_CAPTION | WS_SYSMENU | (form_->Resizable ? WS_THICKFRAME : 0);
}

SIZE FormWindow::OuterSize(controls::Size client) const {
  const RECT inner = site_.scale->Pixels({0, 0, client.width, client.height});
  return desk_->Dpi.WindowSize({inner.right, inner.bottom}, Style(), kFormExtendedStyle, site_.dpi);
}

void FormWindow::Moved() {
  if (site_.updating > 0 || ::IsWindowVisible(site_.window) == 0 || ::IsIconic(site_.window) != 0) return;
  RECT area{};
  ::GetWindowRect(site_.window, &area);
  form_->UserMoved({desk_->Dpi.Twips(area.left), desk_->Dpi.Twips(area.top)});
}

void FormWindow::Rescale(UINT dpi) {
  site_.dpi = dpi;
  const auto before = std::exchange(site_.scale, std::make_unique<DialogScale>(desk_->Dpi.MessageFont(dpi)));
  for (const auto& control : site_.controls) control->Rescale();
  form_->Arrange();
}

void FormWindow::StartTimer(controls::Timer& timer) const {
  const auto id = reinterpret_cast<UINT_PTR>(static_cast<controls::Control*>(&timer));
  if (timer.Enabled()) {
    if (::SetTimer(site_.window, id, static_cast<UINT>(timer.Interval()), nullptr) == 0) {
      TraceNumber(desk_->Trace, static_cast<int32_t>(::GetLastError()));
    }
  } else {
    ::KillTimer(site_.window, id);
  }
}

int32_t FormWindow::TextWidth(std::u16string_view text) const noexcept {
  return AttemptOr(desk_->Trace, 0, [&] { return site_.scale->TextWidth(text); });
}

controls::TwipSize FormWindow::WindowSize(controls::Size client) const noexcept {
  const Dpi::Scope dpi(desk_->Dpi);
  const SIZE outer = OuterSize(client);
  return {desk_->Dpi.Twips(outer.cx), desk_->Dpi.Twips(outer.cy)};
}

}  // namespace rowlark::windows
