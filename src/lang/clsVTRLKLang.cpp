#include "lang/clsVTRLKLang.h"

#include <cstdint>

#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

// Escapes go before the replacements, so that a backslash in a replaced value (a path) stays what it is.
std::u16string Prepare(std::u16string_view text, std::span<const std::u16string> replace_array) {
  std::u16string prepared = mclsVTString::Replace(text, u"\\n", u"\r\n", CompareMode::Text);
  prepared = mclsVTString::Replace(prepared, u"\\t", u"    ", CompareMode::Text);
  int32_t number = 0;
  for (const std::u16string& value : replace_array) {
    prepared = mclsVTString::Replace(prepared, u"%" + ToText(++number), value);
  }
  return prepared;
}

std::u16string TakeAccelerator(std::u16string& text) {
  std::u16string accelerator;
  const std::size_t mark = text.find(u'&');
  if (mark != text.npos) accelerator = text.substr(mark + 1, 1);
  std::erase(text, u'&');
  return accelerator;
}

}  // namespace

std::u16string clsVTRLKLang::GetText(std::u16string_view /*key*/, std::u16string_view default_text,
                                     std::span<const std::u16string> replace_array,
                                     std::u16string* accelerator) {
  std::u16string text = Prepare(default_text, replace_array);
  if (accelerator != nullptr) *accelerator = TakeAccelerator(text);
  return text;
}

}  // namespace rowlark
