#include "host/terminal/Glyph.h"

#include <cwchar>

#include "util/Utf.h"

namespace rowlark::terminal {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// What a terminal must not be sent as it is.
char32_t Harmless(char32_t c) {
  if (c == U'\n') return U'↵';
  if (c < 0x20) return 0x2400 + c;  // its control picture
  const bool control = c >= 0x7F && c < 0xA0;
  const bool direction = c == 0x200E || c == 0x200F || c == 0x061C || (c >= 0x2028 && c <= 0x202E) ||
                         (c >= 0x2066 && c <= 0x2069);
  const bool surrogate = c >= 0xD800 && c < 0xE000;
  return control || direction || surrogate ? kReplacement : c;
}

}  // namespace

Glyph MakeGlyph(char32_t base) {
  Glyph glyph;
  base = Harmless(base);
  const int width = wcwidth(static_cast<wchar_t>(base));
  glyph.text[0] = width < 0 ? kReplacement : base;
  glyph.count = 1;
  glyph.width = width == 2 ? 2 : 1;
  return glyph;
}

Glyph TakeGlyph(std::u16string_view& text) {
  char32_t c = TakeUtf16(text);
  Glyph glyph;
  if (wcwidth(static_cast<wchar_t>(Harmless(c))) == 0) {  // a mark without a base
    glyph = MakeGlyph(U' ');
    glyph.text[glyph.count++] = c;
  } else {
    glyph = MakeGlyph(c);
  }
  while (!text.empty()) {
    auto rest = text;
    c = TakeUtf16(rest);
    if (Harmless(c) != c || wcwidth(static_cast<wchar_t>(c)) != 0) break;
    text = rest;
    if (glyph.count < Glyph::kMost) glyph.text[glyph.count++] = c;
  }
  return glyph;
}

int32_t WidthOf(std::u16string_view text) {
  int32_t width = 0;
  while (!text.empty()) width += TakeGlyph(text).width;
  return width;
}

}  // namespace rowlark::terminal
