// Letter case and comparison of UTF-16 text. The same on every platform and independent of the C locale:
// simple (one character to one character) Unicode case mappings, applied to whole code points.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark {

// How two texts are compared; the values are those of the host's scripting library.
enum class CompareMode : int32_t {
  Binary = 0,  // exact, unit by unit
  Text = 1,    // letter case ignored
};

// Simple case folding (status C and S), lower and upper case of one code point; others map to themselves.
char32_t FoldCase(char32_t c) noexcept;
char32_t ToLower(char32_t c) noexcept;
char32_t ToUpper(char32_t c) noexcept;

std::u16string FoldCase(std::u16string_view text);
std::u16string ToLower(std::u16string_view text);
std::u16string ToUpper(std::u16string_view text);

// -1, 0 or 1. Binary orders by UTF-16 unit, Text by folded code point.
int32_t Compare(std::u16string_view a, std::u16string_view b, CompareMode mode);

// Offset (from 0) of the first occurrence of `find` at or after `from`; npos when there is none.
std::size_t Find(std::u16string_view source, std::u16string_view find, std::size_t from, CompareMode mode);

// The pieces of a text between separators: at least one, which may be empty. They are parts of the text.
std::vector<std::u16string_view> Pieces(std::u16string_view text, std::u16string_view separator);
std::vector<std::string_view> Pieces(std::string_view text, std::string_view separator);

// A number in decimal digits, with a leading "-" below 0.
std::u16string ToText(int32_t number);

// The number that `text` spells: decimal digits with an optional sign, blanks around them allowed. Nothing
// when it is anything else or leaves the 32-bit range.
std::optional<int32_t> ToInteger(std::u16string_view text);

}  // namespace rowlark
