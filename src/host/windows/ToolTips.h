// The tool tips of a form's controls, in one window.
#pragma once

#include <windows.h>

#include <string_view>

namespace rowlark::windows {

class ToolTips {
 public:
  // Of the windows in that one, with which they go.
  void Create(HWND form, HINSTANCE module);
  // An empty text: none.
  void Set(HWND control, std::u16string_view text) const;

 private:
  HWND form_ = nullptr;
  HWND window_ = nullptr;
};

}  // namespace rowlark::windows
