// Which language file speaks the language of a locale.
#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace rowlark {

// Codes of ISO 639-1 and base names of language files.
inline constexpr std::pair<std::string_view, std::u16string_view> kLanguages[] = {
    {"de", u"german"}, {"en", u"english"}, {"es", u"spanish"},
    {"fr", u"french"}, {"pl", u"polish"},  {"ru", u"russian"}};

// The base name for a locale ("de_AT.UTF-8", "de-AT"); empty where there is no such file.
constexpr std::u16string_view LanguageOfLocale(std::string_view locale) {
  const auto code = locale.substr(0, locale.find_first_of("_-.@"));
  const auto* const known = std::ranges::find(kLanguages, code, [](const auto& pair) { return pair.first; });
  return known == std::end(kLanguages) ? std::u16string_view() : known->second;
}

}  // namespace rowlark
