// Dialog units in pixels: a quarter of the average character's width and an eighth of its height, in the font
// of the forms.
#pragma once

#include <windows.h>

#include <string_view>

#include "controls/View.h"
#include "util/windows/Handles.h"

namespace rowlark::windows {

class DialogScale {
 public:
  explicit DialogScale(const LOGFONTW& font);

  HFONT Font() const { return *font_; }
  RECT Pixels(const controls::Rect& units) const;
  // As many whole units as fit into so many pixels.
  controls::Size Units(SIZE pixels) const {
    return {static_cast<int32_t>(pixels.cx) * 4 / width_, static_cast<int32_t>(pixels.cy) * 8 / height_};
  }
  int PixelsHigh(int32_t units) const { return ::MulDiv(units, height_, 8); }
  // Of a line of text, in dialog units; what a unit is begun counts whole.
  int32_t TextWidth(std::u16string_view text) const;

 private:
  GdiObject<HFONT> font_;
  int width_ = 0;  // of the average character
  int height_ = 0;
};

}  // namespace rowlark::windows
