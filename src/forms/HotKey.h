// Hotkeys in the syntax of the host's OnKey: "^" (Ctrl), "+" (Shift), "%" (Alt), then the name of a key.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/spreadsheet.h"
#include "settings/clsVTRLKItems.h"
#include "util/Trace.h"

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

// The hotkeys of the add-in; an empty one is none.
struct HotKeys {
  HotKeys(std::u16string_view search_code, std::u16string_view show_all_code)
      : search(search_code), show_all(show_all_code) {}
  explicit HotKeys(const clsVTRLKItems& items) : HotKeys(items.HotKeySearch(), items.HotKeyUnhide()) {}

  std::u16string search;
  std::u16string show_all;
};

// Has the host run the macros at these keys. Returns those that it refuses, for the user to read, with commas
// between; they are no hotkeys.
std::u16string AssignHotKeys(host::Application& application, const HotKeys& keys, Trace* trace);
// Lets the keys mean again what they mean to the host.
void ReleaseHotKeys(host::Application& application, const HotKeys& keys, Trace* trace);

}  // namespace rowlark
