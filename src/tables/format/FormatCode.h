// The code of a number format, taken apart: "#,##0.00;[Red]-#,##0.00" has two sections, and each consists of
// what stands there one after the other.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark {

struct FormatToken {
  enum class Kind {
    Text,     // as it stands
    General,  // the number without a format
    At,       // the text of the cell
    // Of numbers:
    Digit,  // the place of one digit; the text is "0", "#" or "?"
    Point,
    Percent,
    Exponent,  // the text is "+" or "-"
    Slash,     // of a fraction
    Fixed,     // its denominator, where that is given
    Era,       // which only some calendars have: shown in numbers as it stands, in dates not at all
    // Of dates; `width` is how often the letter stands there:
    Year,
    BuddhistYear,
    Month,
    Weekday,
    Day,
    Hour,
    Minute,
    Second,
    SecondDecimals,  // with the point before them, which does not count
    Halves,          // the text has both, like "AM/PM"
    ElapsedHours,
    ElapsedMinutes,
    ElapsedSeconds,
  };
  Kind kind;
  std::string text = {};
  std::size_t width = 1;
};

struct FormatCondition {
  enum class Compare { Less, LessEqual, Equal, NotEqual, GreaterEqual, Greater } compare;
  double limit = 0;

  bool Holds(double value) const;
  bool HoldsForNegativesOnly() const;
};

struct FormatSection {
  enum class Kind { Number, Fraction, Date, Text } kind = Kind::Number;
  std::vector<FormatToken> tokens;
  std::optional<FormatCondition> condition;
  std::string locale;   // of names, as in "[$-407]" or "[$-de-DE]": what stands behind the "-"
  bool groups = false;  // by thousands
  int scale = 0;        // powers of ten that the number is multiplied by: 2 for "%", -3 for "," at the end

  bool Has(FormatToken::Kind token) const;
};

// The sections of a code, four at most; nothing for a code that has no meaning.
std::optional<std::vector<FormatSection>> ParseFormatCode(std::string_view code);

}  // namespace rowlark
