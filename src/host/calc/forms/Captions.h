// Captions as the office writes them: "~" stands before the accelerator.
#pragma once

#include <string>
#include <string_view>

#include "host/calc/Strings.h"

namespace rowlark::calc {

// Of one with "&" before its accelerator.
inline rtl::OUString ToCaption(std::u16string_view caption) {
  std::u16string office;
  for (std::size_t i = 0; i < caption.size(); ++i) {
    const char16_t c = caption[i];
    if (c == u'~') {
      office += u"~~";
    } else if (c != u'&' || i + 1 == caption.size()) {
      office += c;
    } else if (caption[i + 1] == u'&') {
      office += caption[++i];
    } else {
      office += u'~';
    }
  }
  return ToOffice(office);
}

// A text that is shown as it stands.
inline rtl::OUString ToLabel(std::u16string_view text) {
  std::u16string office;
  for (const char16_t c : text) office.append(c == u'~' ? 2 : 1, c);
  return ToOffice(office);
}

}  // namespace rowlark::calc
