// The names of months and days in the language of a number format.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace rowlark {

struct DateNames {
  std::array<std::string, 12> months = {"January",   "February", "March",    "April",
                                        "May",       "June",     "July",     "August",
                                        "September", "October",  "November", "December"};
  // Beside a day, where some languages inflect them.
  std::array<std::string, 12> months_of_dates = months;
  std::array<std::string, 12> short_months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  std::array<std::string, 7> weekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                         "Thursday", "Friday", "Saturday"};
  std::array<std::string, 7> short_weekdays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
};

// `locale` is what a format has behind "[$-": a number of Windows in hexadecimal ("407") or a language tag
// ("de-DE"). English where it is empty or unknown.
DateNames DateNamesOf(std::string_view locale);

}  // namespace rowlark
