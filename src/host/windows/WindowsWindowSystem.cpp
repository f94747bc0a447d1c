#include "host/windows/WindowsWindowSystem.h"

#include <windows.h>

#include <shellapi.h>

#include <utility>

#include "host/windows/FormWindow.h"
#include "host/windows/MessageBoxHelp.h"
#include "util/Text.h"
#include "util/windows/WideText.h"

namespace rowlark::windows {
namespace {

struct ScreenList {
  const Dpi& dpi;
  Trace* trace;
  std::vector<controls::TwipRect> screens;

  static BOOL CALLBACK Add(HMONITOR monitor, HDC, RECT*, LPARAM list) noexcept {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    if (::GetMonitorInfoW(monitor, &info) == 0) return TRUE;
    auto& self = *reinterpret_cast<ScreenList*>(list);
    const RECT& area = info.rcWork;
    const controls::TwipRect screen{self.dpi.Twips(area.left), self.dpi.Twips(area.top),
                                    self.dpi.Twips(area.right - area.left),
                                    self.dpi.Twips(area.bottom - area.top)};
    const bool is_primary = (info.dwFlags & MONITORINFOF_PRIMARY) != 0;
    return Attempt(self.trace, [&] {
      self.screens.insert(is_primary ? self.screens.begin() : self.screens.end(), screen);
    });
  }
};

int ShowBox(std::u16string_view text, std::u16string_view title, UINT style) {
  const HWND owner = ::GetActiveWindow();
  if (owner == nullptr) style |= MB_TASKMODAL;
  return ::MessageBoxW(owner, ToWide(text).c_str(), ToWide(title).c_str(), style);
}

}  // namespace

WindowsWindowSystem::WindowsWindowSystem(std::function<void()> idle, Trace* trace)
    : idle_(std::move(idle)), trace_(trace) {}

WindowsWindowSystem::~WindowsWindowSystem() {
  while (desk_ && !desk_->Windows.empty()) desk_->Windows.back()->Abandon();
}

bool WindowsWindowSystem::Busy() const { return desk_ && desk_->Busy(); }

bool WindowsWindowSystem::MayOpen(std::u16string_view link) {
  for (const std::u16string_view scheme : {u"http://", u"https://", u"mailto:"}) {
    if (Compare(link.substr(0, scheme.size()), scheme, CompareMode::Text) == 0) return true;
  }
  return false;
}

bool WindowsWindowSystem::Realise(controls::Form& form) noexcept {
  return Attempt(trace_, [&] {
    if (!desk_) desk_ = std::make_shared<FormDesk>(idle_, trace_);
    FormWindow::Open(form, desk_);
  });
}

void WindowsWindowSystem::MsgBox(std::u16string_view text, host::MsgBoxIcon icon,
                                 std::u16string_view title) noexcept {
  if (!Attempt(trace_, [&] { ShowBox(text, title, MB_OK | static_cast<UINT>(icon)); })) Beep();
}

void WindowsWindowSystem::MsgBoxWithHelp(std::u16string_view text, host::MsgBoxIcon icon,
                                         std::u16string_view title,
                                         const std::function<void()>& help) noexcept {
  const bool shown = Attempt(trace_, [&] {
    const MessageBoxHelp watch(help, trace_);
    ShowBox(text, title, MB_OK | MB_HELP | static_cast<UINT>(icon));
  });
  if (!shown) Beep();
}

bool WindowsWindowSystem::Ask(std::u16string_view text, std::u16string_view title) noexcept {
  return AttemptOr(trace_, false,
                   [&] { return ShowBox(text, title, MB_OKCANCEL | MB_ICONQUESTION) == IDOK; });
}

void WindowsWindowSystem::OpenLink(controls::Form&, std::u16string_view link) noexcept {
  constexpr intptr_t kLastFailure = 32;
  intptr_t result = kLastFailure + 1;
  Attempt(trace_, [&] {
    if (!MayOpen(link)) return;
    result = reinterpret_cast<intptr_t>(::ShellExecuteW(::GetActiveWindow(), L"open", ToWide(link).c_str(),
                                                        nullptr, nullptr, SW_SHOWDEFAULT));
  });
  if (result <= kLastFailure) TraceNumber(trace_, static_cast<int32_t>(result));
}

void WindowsWindowSystem::Beep() noexcept { ::MessageBeep(MB_OK); }

std::vector<controls::TwipRect> WindowsWindowSystem::Screens() const noexcept {
  const Dpi dpi;
  const Dpi::Scope scope(dpi);
  ScreenList list{dpi, trace_, {}};
  ::EnumDisplayMonitors(nullptr, nullptr, ScreenList::Add, reinterpret_cast<LPARAM>(&list));
  return std::move(list.screens);
}

intptr_t WindowsWindowSystem::WindowOfClass(std::u16string_view class_name) const noexcept {
  return AttemptOr(trace_, intptr_t{0}, [&] {
    return reinterpret_cast<intptr_t>(::FindWindowW(ToWide(class_name).c_str(), nullptr));
  });
}

}  // namespace rowlark::windows
