#include "host/windows/DialogScale.h"

#include <algorithm>

#include "util/windows/WideText.h"

namespace rowlark::windows {

namespace {

// The screen, on which text is as wide as in a window; contexts in memory may smooth it in another way.
class ScreenText {
 public:
  explicit ScreenText(HFONT font) : context_(::GetDC(nullptr)), font_(*context_, font) {}

  SIZE Extent(std::wstring_view text) const {
    SIZE size{};
    ::GetTextExtentPoint32W(*context_, text.data(), static_cast<int>(text.size()), &size);
    return size;
  }
  int TextHeight() const {
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(*context_, &metrics);
    return static_cast<int>(metrics.tmHeight);
  }

 private:
  ScreenContext context_;
  SelectedObject font_;
};

}  // namespace

DialogScale::DialogScale(const LOGFONTW& font) : font_(::CreateFontIndirectW(&font)) {
  const ScreenText screen(*font_);
  const LONG alphabet = screen.Extent(L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz").cx;
  width_ = std::max(1, static_cast<int>((alphabet / 26 + 1) / 2));
  height_ = std::max(1, screen.TextHeight());
}

RECT DialogScale::Pixels(const controls::Rect& units) const {
  return {::MulDiv(units.left, width_, 4), ::MulDiv(units.top, height_, 8),
          ::MulDiv(units.left + units.width, width_, 4), ::MulDiv(units.top + units.height, height_, 8)};
}

int32_t DialogScale::TextWidth(std::u16string_view text) const {
  const auto pixels = static_cast<int32_t>(ScreenText(*font_).Extent(ToWide(text)).cx);
  return (pixels * 4 + width_ - 1) / width_;
}

}  // namespace rowlark::windows
