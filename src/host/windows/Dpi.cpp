#include "host/windows/Dpi.h"

#include <bit>

#include "util/windows/Handles.h"

namespace rowlark::windows {
namespace {

UINT SystemDpi() {
  const ScreenContext screen(::GetDC(nullptr));
  const int dpi = screen ? ::GetDeviceCaps(*screen, LOGPIXELSX) : 0;
  return dpi > 0 ? static_cast<UINT>(dpi) : USER_DEFAULT_SCREEN_DPI;
}

template <class Function>
void Find(Function*& function, const char* name) {
  function = std::bit_cast<Function*>(::GetProcAddress(::GetModuleHandleW(L"user32.dll"), name));
}

}  // namespace

Dpi::Dpi() : system_(SystemDpi()) {
  Find(get_dpi_for_window_, "GetDpiForWindow");
  Find(adjust_window_rect_, "AdjustWindowRectExForDpi");
  Find(system_parameters_info_, "SystemParametersInfoForDpi");
  Find(set_awareness_, "SetThreadDpiAwarenessContext");
}

UINT Dpi::Of(HWND window) const {
  const UINT dpi = get_dpi_for_window_ != nullptr ? get_dpi_for_window_(window) : 0;
  return dpi != 0 ? dpi : system_;
}

LOGFONTW Dpi::MessageFont(UINT dpi) const {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  if (system_parameters_info_ != nullptr &&
      system_parameters_info_(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi) != 0) {
    return metrics.lfMessageFont;
  }
  ::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  LOGFONTW& font = metrics.lfMessageFont;
  font.lfHeight = ::MulDiv(font.lfHeight, static_cast<int>(dpi), static_cast<int>(system_));
  return font;
}

SIZE Dpi::WindowSize(SIZE client, DWORD style, DWORD extended_style, UINT dpi) const {
  RECT area{0, 0, client.cx, client.cy};
  if (adjust_window_rect_ == nullptr || adjust_window_rect_(&area, style, FALSE, extended_style, dpi) == 0) {
    ::AdjustWindowRectEx(&area, style, FALSE, extended_style);
  }
  return {area.right - area.left, area.bottom - area.top};
}

Dpi::Scope::Scope(const Dpi& dpi) : dpi_(dpi) {
  const auto per_monitor_v2 = reinterpret_cast<HANDLE>(static_cast<intptr_t>(-4));
  if (dpi_.set_awareness_ != nullptr) before_ = dpi_.set_awareness_(per_monitor_v2);
}

Dpi::Scope::~Scope() {
  if (before_ != nullptr) dpi_.set_awareness_(before_);
}

}  // namespace rowlark::windows
