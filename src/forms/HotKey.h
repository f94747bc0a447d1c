// Hotkeys in the syntax of the host's OnKey: "^" (Ctrl), "+" (Shift), "%" (Alt), then the name of a key.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace rowlark {

// Name of a key by its virtual key code ("a", "{F5}", "~" for Enter); empty for a key without one.
std::u16string KeyName(int32_t key);

// The code without its modifiers; empty when there is no key in it.
std::u16string HotKeyName(std::u16string_view code);

// The code for the user to read ("Ctrl + Shift + f"); empty for an empty code.
std::u16string HotKeyText(std::u16string_view code);

struct HotKey {
  std::u16string code;
  std::u16string text;  // as the user reads it while holding the keys
};

// What the keys held stand for.
HotKey CaptureHotKey(int32_t key, int32_t shift);

}  // namespace rowlark
