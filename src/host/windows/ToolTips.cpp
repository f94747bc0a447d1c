#include "host/windows/ToolTips.h"

#include <commctrl.h>

#include "util/windows/WideText.h"

namespace rowlark::windows {

void ToolTips::Create(HWND form, HINSTANCE module) {
  constexpr int kWidest = 400;  // pixels; a longer text is broken into lines
  form_ = form;
  window_ = ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                              WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT, CW_USEDEFAULT,
                              CW_USEDEFAULT, CW_USEDEFAULT, form, nullptr, module, nullptr);
  ::SendMessageW(window_, TTM_SETMAXTIPWIDTH, 0, kWidest);
}

void ToolTips::Set(HWND control, std::u16string_view text) const {
  auto wide = ToWide(text);
  TTTOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = form_;
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  tool.lpszText = wide.data();
  ::SendMessageW(window_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  if (!wide.empty()) ::SendMessageW(window_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace rowlark::windows
