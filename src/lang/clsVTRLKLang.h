// The catalogue of every text that the user sees.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace rowlark {

class clsVTRLKLang {
 public:
  // The text of a dotted key ("Err.SearchTextNotFound"), or `default_text`, ready to be shown: "\n"
  // (backslash, n) becomes a line break (CR LF) and "\t" four spaces, then "%1", "%2" ... the elements of
  // `replace_array`, which are taken as they are. With `accelerator` it receives the character behind the
  // first "&" (empty when there is none) and the text loses every "&"; without it the marks stay.
  std::u16string GetText(std::u16string_view key, std::u16string_view default_text,
                         std::span<const std::u16string> replace_array = {},
                         std::u16string* accelerator = nullptr);
  std::u16string GetText(std::u16string_view key, std::u16string_view default_text,
                         std::initializer_list<std::u16string> replace_array,
                         std::u16string* accelerator = nullptr) {
    return GetText(key, default_text, std::span(replace_array.begin(), replace_array.size()), accelerator);
  }
  // A single value stands for every "%1".
  std::u16string GetText(std::u16string_view key, std::u16string_view default_text,
                         const std::u16string& value, std::u16string* accelerator = nullptr) {
    return GetText(key, default_text, std::span(&value, 1), accelerator);
  }
};

}  // namespace rowlark
