#include "tables/format/Calendar.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <system_error>

namespace rowlark {
namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr int64_t kSecondsOfDay = 86'400;
constexpr int64_t kInventedDay = 60;  // 1900-02-29

sys_days Day(int year, unsigned month, unsigned day) {
  return sys_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day));
}

sys_days Beginning(Calendar calendar) {
  return calendar == Calendar::Since1904 ? Day(1904, 1, 1) : Day(1899, 12, 30);
}

}  // namespace

std::optional<DateTime> DateTime::Of(double number, Calendar calendar, std::size_t decimals) {
  constexpr double kEnd = 2'958'466;  // behind 9999-12-31
  if (!(number >= 0) || number >= kEnd) return std::nullopt;
  int64_t units = 1;
  for (std::size_t i = 0; i < std::min(decimals, kMaxDecimals); ++i) units *= 10;
  const auto total = static_cast<int64_t>(std::llround(number * static_cast<double>(kSecondsOfDay * units)));

  DateTime result;
  result.seconds = total / units;
  result.fraction = total % units;
  auto day = result.seconds / kSecondsOfDay;
  const bool is_1900 = calendar == Calendar::Since1900;
  // The days before the invented one have the names of the next ones.
  result.weekday = static_cast<unsigned>(
      (day + (is_1900 ? 6 : static_cast<int64_t>(std::chrono::weekday(Beginning(calendar)).c_encoding()))) %
      7);
  if (is_1900 && (day == 0 || day == kInventedDay)) {
    result.year = 1900;
    result.month = day == 0 ? 1 : 2;
    result.day = day == 0 ? 0 : 29;
    return result;
  }
  if (is_1900 && day < kInventedDay) ++day;
  const std::chrono::year_month_day date(Beginning(calendar) + days(day));
  result.year = int{date.year()};
  result.month = unsigned{date.month()};
  result.day = unsigned{date.day()};
  return result;
}

std::optional<double> DateNumber(std::string_view iso, Calendar calendar) {
  const auto take = [&iso](auto& number, std::string_view behind) {
    const auto [end, failed] = std::from_chars(iso.data(), iso.data() + iso.size(), number);
    if (failed != std::errc()) return false;
    iso.remove_prefix(static_cast<std::size_t>(end - iso.data()));
    if (!iso.starts_with(behind)) return false;
    iso.remove_prefix(behind.size());
    return true;
  };
  int year = 0;
  unsigned month = 0;
  unsigned day = 0;
  if (!take(year, "-") || !take(month, "-") || !take(day, "")) return std::nullopt;
  const auto date = std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day);
  if (!date.ok()) return std::nullopt;
  auto number = static_cast<double>((sys_days(date) - Beginning(calendar)).count());
  if (calendar == Calendar::Since1900 && number <= kInventedDay) --number;
  if (iso.starts_with('T') || iso.starts_with(' ')) {
    iso.remove_prefix(1);
    unsigned hour = 0;
    unsigned minute = 0;
    double second = 0;
    if (!take(hour, ":") || !take(minute, "")) return std::nullopt;
    if (iso.starts_with(':')) {
      iso.remove_prefix(1);
      if (!take(second, "")) return std::nullopt;
    }
    number += (hour * 3600.0 + minute * 60.0 + second) / static_cast<double>(kSecondsOfDay);
  }
  if (number < 0) return std::nullopt;
  return number;
}

}  // namespace rowlark
