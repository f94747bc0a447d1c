#include "BaseWindow.h"

#include <exception>
#include <string>

#include "automation/Variant.h"
#include "host/Error.h"
#include "util/Utf.h"

namespace rowlark::workbench {

HWND BaseWindow::Create(WNDCLASSEXW window_class, const wchar_t* title, DWORD style, HWND parent) {
  window_class.cbSize = sizeof window_class;
  window_class.hInstance = GetModuleHandleW(nullptr);
  window_class.lpfnWndProc = Procedure;
  RegisterClassExW(&window_class);
  const int place = parent == nullptr ? CW_USEDEFAULT : 0;
  CreateWindowExW(0, window_class.lpszClassName, title, style, place, place, place, place, parent, nullptr,
                  window_class.hInstance, this);
  return hwnd_;
}

void BaseWindow::PlaceBeside(const BaseWindow& other) const {
  WINDOWPLACEMENT place{};
  place.length = sizeof place;
  if (!GetWindowPlacement(other.Hwnd(), &place)) return;
  RECT& area = place.rcNormalPosition;
  const int step = GetSystemMetrics(SM_CYCAPTION) + GetSystemMetrics(SM_CYSIZEFRAME);
  OffsetRect(&area, step, step);
  MONITORINFO screen{};
  screen.cbSize = sizeof screen;
  GetMonitorInfoW(MonitorFromWindow(other.Hwnd(), MONITOR_DEFAULTTONEAREST), &screen);
  const RECT& work = screen.rcWork;
  if (area.right > work.right || area.bottom > work.bottom) {
    OffsetRect(&area, static_cast<int>(work.left - area.left), static_cast<int>(work.top - area.top));
  }
  SetWindowPos(Hwnd(), nullptr, static_cast<int>(area.left), static_cast<int>(area.top),
               static_cast<int>(area.right - area.left), static_cast<int>(area.bottom - area.top),
               SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CALLBACK BaseWindow::Procedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
  if (message == WM_NCCREATE) {
    auto* window = static_cast<BaseWindow*>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams);
    window->hwnd_ = handle;
    SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window));
  }
  auto* window = reinterpret_cast<BaseWindow*>(GetWindowLongPtrW(handle, GWLP_USERDATA));
  if (window == nullptr) return DefWindowProcW(handle, message, wparam, lparam);
  LRESULT result = 0;
  bool handled = false;
  try {
    handled = window->OnMessage(message, wparam, lparam, result);
  } catch (...) {
    ReportFailure(handle);
    handled = true;
  }
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
    window->hwnd_ = nullptr;
  }
  return handled ? result : DefWindowProcW(handle, message, wparam, lparam);
}

void ReportFailure(HWND owner) noexcept try {
  const auto show = [owner](const std::u16string& text) {
    MessageBoxW(GetAncestor(owner, GA_ROOT), windows::AsWide(text.c_str()), L"Rowlark Workbench",
                MB_OK | MB_ICONEXCLAMATION);
  };
  try {
    throw;
  } catch (const host::Error& error) {
    show(error.Description());
  } catch (const std::exception& error) {
    show(ToUtf16(error.what()));
  }
} catch (...) {
  MessageBeep(MB_ICONEXCLAMATION);  // no memory for a text
}

}  // namespace rowlark::workbench
