// The dates and times that numbers stand for: days since the beginning of a calendar, the time of day as a
// fraction.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace rowlark {

enum class Calendar {
  Since1900,  // 1 is 1900-01-01, and 60 the 29th of February that 1900 did not have
  Since1904,  // 0 is 1904-01-01
};

struct DateTime {
  int64_t year = 0;
  unsigned month = 1;
  unsigned day = 1;      // 0 on the day before 1900-01-01
  unsigned weekday = 0;  // 0 is Sunday
  int64_t seconds = 0;   // since the beginning of the calendar
  int64_t fraction = 0;  // of a second, in units of the last decimal

  static constexpr std::size_t kMaxDecimals = 6;
  // Rounded to so many decimals of a second, kMaxDecimals at most. Nothing before the calendar and behind
  // 9999-12-31.
  static std::optional<DateTime> Of(double number, Calendar calendar, std::size_t decimals);
};

// The number of a date and time in ISO 8601, like "2024-01-02" or "2024-01-02T10:20:30.5"; nothing where it
// is none or lies before the calendar.
std::optional<double> DateNumber(std::string_view iso, Calendar calendar);

}  // namespace rowlark
