// What may stand in a text field. The field rewrites its text whenever it changes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "controls/TextInput.h"

namespace rowlark {

struct TextRule {
  std::u16string_view separators;  // each of them becomes `separator`; afterwards a run of ":" becomes one
  std::u16string_view separator;
  std::u16string_view kept;    // all other characters are dropped
  bool upper_case = false;     // in the end
  bool caret_follows = false;  // the caret stays behind the character it stood behind; else at its offset
};

inline constexpr std::u16string_view kLatinLetters = u"qwertyuiopasdfghjklzxcvbnmQWERTYUIOPASDFGHJKLZXCVBNM";

inline constexpr TextRule kNumberRule{u"", u"", u"0123456789"};
inline constexpr TextRule kAddressRule{u"", u"",
                                       u"01234567890:;qwertyuiopasdfghjklzxcvbnmQWERTYUIOPASDFGHJKLZXCVBNM"};
inline constexpr TextRule kRangeRule{
    u"\\-,. ", u":", u"01234567890-\\:., qwertyuiopasdfghjklzxcvbnmQWERTYUIOPASDFGHJKLZXCVBNM", false, true};
inline constexpr TextRule kColumnsRule{u"\\-/. ", u",",
                                       u"qwertyuiopasdfghjklzxcvbnmQWERTYUIOPASDFGHJKLZXCVBNM,", true, true};
inline constexpr TextRule kColumnRule{u"\\-,. ", u":",
                                      u"qwertyuiopasdfghjklzxcvbnmQWERTYUIOPASDFGHJKLZXCVBNM,", false, true};

// The text as the rule wants it; `caret` is moved accordingly.
std::u16string Apply(const TextRule& rule, std::u16string_view text, int32_t& caret);

// Rewrites the text of a field. False when that has changed it: its Change has then been handled already.
bool ApplyRule(controls::TextInput& field, const TextRule& rule);

}  // namespace rowlark
