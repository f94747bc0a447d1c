// Stateless text operations. Characters are UTF-16 units, positions count them from 1. A text longer than a
// 32-bit signed number can count raises AutomationError (overflow).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "util/Text.h"

namespace rowlark {

// What the length field of a packed list's record counts.
enum class PackedCount {
  Record,  // the whole record: the nine digits and the text
  Text,    // the text alone
};

class mclsVTString {
 public:
  mclsVTString() = delete;

  // Mode 0: first character upper case, the rest lower case; 1: lower case; 2: upper case; other modes leave
  // the text as it is. With delimiters every piece between two of them is changed by itself, so that mode 0
  // capitalises each word. A value that is no text stays as it is: that is the caller's affair.
  static std::u16string ChangeCase(std::u16string_view value, int32_t mode, std::u16string_view delimiters);

  // A list of texts as one text: for each element nine decimal digits with its length, then the element.
  static std::u16string ArrayJoin(std::span<const std::u16string> list,
                                  PackedCount count = PackedCount::Record);
  // The list back; empty for an empty text. A single character left at the end is passed over. Raises a type
  // mismatch where the text is no packed list.
  static std::vector<std::u16string> ArraySplit(std::u16string_view text,
                                                PackedCount count = PackedCount::Record);
  // The same for stored lists, which may have been written with either count: lengths are those of the text
  // alone unless only counting the whole record consumes `text` exactly. Never raises: of a damaged list it
  // gives the elements before the damage, with what is left of an element that was cut off when that is asked
  // for, and sets `damaged`.
  static std::vector<std::u16string> ArraySalvage(std::u16string_view text, bool keep_cut_element = false,
                                                  bool* damaged = nullptr);

  // Position of the last occurrence of `find` (overlapping ones count) within the first `start` characters,
  // or the whole text when `start` is negative; 0 when there is none. An empty `find` gives the length
  // searched.
  static int32_t InstrRight(std::u16string_view source, std::u16string_view find, int32_t start = -1,
                            CompareMode mode = CompareMode::Binary);

  // Replaces each occurrence and goes on searching at the place of the replacement, so replacing "::" by ":"
  // collapses any run of colons to one. Only past a replacement that contains `find` does it go on behind it.
  static std::u16string Replace(std::u16string_view source, std::u16string_view find,
                                std::u16string_view replacement, CompareMode mode = CompareMode::Binary);

  // Keeps (or drops) the characters that occur in `characters`. `caret` moves left by the characters dropped
  // up to it.
  static std::u16string Filter(std::u16string_view source, std::u16string_view characters, bool keep,
                               CompareMode mode, int32_t& caret);

  // What stands before the first (`from_right`: last) separator, compared exactly; with the separator itself
  // if asked for. An empty or missing separator gives the whole source or nothing.
  static std::u16string GetLeft(std::u16string_view source, std::u16string_view separator,
                                bool from_right = false, bool include_separator = false,
                                bool whole_if_not_found = false);
  // What stands after the last (`from_left`: first) separator.
  static std::u16string GetRight(std::u16string_view source, std::u16string_view separator,
                                 bool from_left = false, bool include_separator = false,
                                 bool whole_if_not_found = false);

  // Sides of `Trim`, to be combined.
  static constexpr int32_t kTrimLeft = 1;
  static constexpr int32_t kTrimRight = 2;

  // Drops the characters of a set from the ends. `caret` follows what it stands behind and never stays behind
  // an end that moved.
  static std::u16string Trim(std::u16string_view source, std::u16string_view characters, int32_t sides,
                             CompareMode mode, int32_t& caret);
};

}  // namespace rowlark
