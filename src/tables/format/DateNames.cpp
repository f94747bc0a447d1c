#include "tables/format/DateNames.h"

#include <unicode/udat.h>
#include <unicode/uloc.h>

#include <charconv>
#include <cstdint>
#include <memory>
#include <system_error>

#include "util/Utf.h"

namespace rowlark {
namespace {

// The name of a locale in ICU; empty where it is unknown.
std::string IcuName(std::string_view locale) {
  std::array<char, ULOC_FULLNAME_CAPACITY> name{};
  const auto size = static_cast<int32_t>(name.size());
  UErrorCode status = U_ZERO_ERROR;
  uint32_t number = 0;
  const auto [end, failed] = std::from_chars(locale.data(), locale.data() + locale.size(), number, 16);
  if (failed == std::errc() && end == locale.data() + locale.size()) {
    constexpr uint32_t kLanguage = 0xFFFF;  // above it: calendar and digits
    uloc_getLocaleForLCID(number & kLanguage, name.data(), size, &status);
  } else {
    const std::string tag(locale.substr(0, locale.find(',')));
    uloc_forLanguageTag(tag.c_str(), name.data(), size, nullptr, &status);
  }
  return U_SUCCESS(status) && name.back() == '\0' ? name.data() : "";
}

struct Close {
  void operator()(UDateFormat* format) const { udat_close(format); }
};

// `first`: where the names begin in what ICU lists. A name that it lacks stays.
template <std::size_t size>
void Take(std::array<std::string, size>& names, const UDateFormat* format, UDateFormatSymbolType type,
          int32_t first) {
  for (std::size_t i = 0; i < size; ++i) {
    std::array<UChar, 64> name{};
    UErrorCode status = U_ZERO_ERROR;
    const auto length = udat_getSymbols(format, type, static_cast<int32_t>(i) + first, name.data(),
                                        static_cast<int32_t>(name.size()), &status);
    if (U_SUCCESS(status)) names[i] = ToUtf8({name.data(), static_cast<std::size_t>(length)});
  }
}

}  // namespace

DateNames DateNamesOf(std::string_view locale) {
  DateNames names;
  const auto name = IcuName(locale);
  if (name.empty() || name == "root" || name.starts_with("en")) return names;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UDateFormat, Close> format(
      udat_open(UDAT_NONE, UDAT_LONG, name.c_str(), nullptr, 0, nullptr, 0, &status));
  if (status != U_ZERO_ERROR && status != U_USING_FALLBACK_WARNING) return names;  // a language without names
  Take(names.months, format.get(), UDAT_STANDALONE_MONTHS, 0);
  Take(names.months_of_dates, format.get(), UDAT_MONTHS, 0);
  Take(names.short_months, format.get(), UDAT_STANDALONE_SHORT_MONTHS, 0);
  Take(names.weekdays, format.get(), UDAT_WEEKDAYS, 1);
  Take(names.short_weekdays, format.get(), UDAT_STANDALONE_SHORT_WEEKDAYS, 1);
  return names;
}

}  // namespace rowlark
