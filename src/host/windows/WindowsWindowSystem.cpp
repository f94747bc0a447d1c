#include "host/windows/WindowsWindowSystem.h"

#include <windows.h>

#include <shellapi.h>

#include <new>
#include <utility>

#include "host/windows/Wide.h"
#include "util/Text.h"

namespace rowlark::windows {
namespace {

class ScreenContext {
 public:
  ScreenContext() : handle_(::GetDC(nullptr)) {}
  ScreenContext(const ScreenContext&) = delete;
  ScreenContext& operator=(const ScreenContext&) = delete;
  ~ScreenContext() {
    if (handle_ != nullptr) ::ReleaseDC(nullptr, handle_);
  }

  // Pixels an inch; `index` is LOGPIXELSX or LOGPIXELSY.
  int Resolution(int index) const {
    const int pixels = handle_ == nullptr ? 0 : ::GetDeviceCaps(handle_, index);
    return pixels > 0 ? pixels : USER_DEFAULT_SCREEN_DPI;
  }

 private:
  HDC handle_;
};

struct ScreenList {
  int resolution_x;
  int resolution_y;
  std::vector<controls::Rect> screens;

  static int32_t Twips(LONG pixels, int resolution) {
    constexpr int kTwipsPerInch = 1440;
    return ::MulDiv(static_cast<int>(pixels), kTwipsPerInch, resolution);
  }

  static BOOL CALLBACK Add(HMONITOR monitor, HDC, RECT*, LPARAM list) noexcept try {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    if (::GetMonitorInfoW(monitor, &info) == 0) return TRUE;
    auto& self = *reinterpret_cast<ScreenList*>(list);
    const RECT& area = info.rcWork;
    const controls::Rect screen{Twips(area.left, self.resolution_x), Twips(area.top, self.resolution_y),
                                Twips(area.right - area.left, self.resolution_x),
                                Twips(area.bottom - area.top, self.resolution_y)};
    const bool is_primary = (info.dwFlags & MONITORINFOF_PRIMARY) != 0;
    self.screens.insert(is_primary ? self.screens.begin() : self.screens.end(), screen);
    return TRUE;
  } catch (const std::bad_alloc&) {
    return FALSE;
  }
};

int ShowBox(std::u16string_view text, std::u16string_view title, UINT style) {
  const HWND owner = ::GetActiveWindow();
  if (owner == nullptr) style |= MB_TASKMODAL;
  return ::MessageBoxW(owner, Wide(text).c_str(), Wide(title).c_str(), style);
}

}  // namespace

bool WindowsWindowSystem::MayOpen(std::u16string_view link) {
  for (const std::u16string_view scheme : {u"http://", u"https://", u"mailto:"}) {
    if (Compare(link.substr(0, scheme.size()), scheme, CompareMode::Text) == 0) return true;
  }
  return false;
}

bool WindowsWindowSystem::Realise(controls::Form&) noexcept { return false; }

void WindowsWindowSystem::MsgBox(std::u16string_view text, host::MsgBoxIcon icon,
                                 std::u16string_view title) noexcept try {
  ShowBox(text, title, MB_OK | static_cast<UINT>(icon));
} catch (const std::bad_alloc&) {
  Beep();
}

bool WindowsWindowSystem::Ask(std::u16string_view text, std::u16string_view title) noexcept try {
  return ShowBox(text, title, MB_OKCANCEL | MB_ICONQUESTION) == IDOK;
} catch (const std::bad_alloc&) {
  return false;
}

void WindowsWindowSystem::OpenLink(controls::Form&, std::u16string_view link) noexcept try {
  if (!MayOpen(link)) return;
  ::ShellExecuteW(::GetActiveWindow(), L"open", Wide(link).c_str(), nullptr, nullptr, SW_SHOWDEFAULT);
} catch (const std::bad_alloc&) {
}

void WindowsWindowSystem::Beep() noexcept { ::MessageBeep(MB_OK); }

std::vector<controls::Rect> WindowsWindowSystem::Screens() const noexcept {
  const ScreenContext context;
  ScreenList list{context.Resolution(LOGPIXELSX), context.Resolution(LOGPIXELSY), {}};
  ::EnumDisplayMonitors(nullptr, nullptr, ScreenList::Add, reinterpret_cast<LPARAM>(&list));
  return std::move(list.screens);
}

intptr_t WindowsWindowSystem::WindowOfClass(std::u16string_view class_name) const noexcept try {
  return reinterpret_cast<intptr_t>(::FindWindowW(Wide(class_name).c_str(), nullptr));
} catch (const std::bad_alloc&) {
  return 0;
}

}  // namespace rowlark::windows
