#include "tables/format/NumberFormat.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <utility>

#include "tables/format/Decimal.h"

namespace rowlark {
namespace {

using std::string_view;
using Kind = FormatToken::Kind;
using Tokens = std::span<const FormatToken>;

// Where a number goes among the sections for numbers.
struct Choice {
  const FormatSection* section;  // null: none is for it
  bool shows_sign;
};

Choice Choose(std::span<const FormatSection> sections, double value) {
  const auto zero_or_more = [&] {
    const auto& condition = sections.front().condition;
    return !condition || (condition->limit == 0 && condition->Holds(1) && !condition->Holds(-1));
  };
  for (std::size_t i = 0; i < sections.size(); ++i) {
    const auto& section = sections[i];
    if (section.condition) {
      if (section.condition->Holds(value)) return {&section, !section.condition->HoldsForNegativesOnly()};
      continue;
    }
    const bool is_last = i + 1 == sections.size();
    if (i == 0 && (is_last || value > 0 || (value == 0 && sections.size() == 2))) return {&section, true};
    if (i == 1 && (is_last || value < 0)) return {&section, !zero_or_more()};
    if (i == 2) return {&section, true};
  }
  return {nullptr, true};
}

std::size_t Places(Tokens tokens) {
  return static_cast<std::size_t>(
      std::ranges::count_if(tokens, [](const auto& token) { return token.kind == Kind::Digit; }));
}

string_view Blank(string_view place) { return place == "0" ? "0" : place == "?" ? " " : ""; }

// Writes digits from the left to the places of their tokens, aligned at the last one; texts in between.
class WholeWriter {
 public:
  WholeWriter(std::string& text, std::string digits, std::size_t places, bool groups)
      : text_(text), digits_(std::move(digits)), places_(places), groups_(groups) {}

  void Place(string_view place) {
    --places_;
    if (!begun_) Surplus(digits_.size() - std::min(digits_.size(), places_ + 1));
    begun_ = true;
    if (digits_.size() - used_ > places_) {
      Digit(digits_.substr(used_++, 1), places_);
    } else {
      Digit(Blank(place), places_);
    }
  }
  // Where no place was, the digits come all the same.
  void End() {
    if (!begun_) Surplus(digits_.size());
    begun_ = true;
  }

 private:
  // `behind`: how many digits follow.
  void Digit(string_view digit, std::size_t behind) {
    constexpr std::size_t kGroup = 3;
    text_ += digit;
    if (groups_ && behind > 0 && behind % kGroup == 0 && !digit.empty()) text_ += digit == " " ? ' ' : ',';
  }
  void Surplus(std::size_t count) {
    for (; used_ < count; ++used_) Digit(digits_.substr(used_, 1), digits_.size() - used_ - 1);
  }

  std::string& text_;
  std::string digits_;
  std::size_t places_;
  bool groups_;
  std::size_t used_ = 0;
  bool begun_ = false;
};

// Digits to the places of their tokens, from the left; zeros at the end only where a place wants them.
class DecimalsWriter {
 public:
  DecimalsWriter(std::string& text, std::string digits)
      : text_(text), digits_(std::move(digits)), shown_(digits_.find_last_not_of('0') + 1) {}

  void Place(string_view place) {
    const auto at = used_++;
    text_ += at < shown_ ? string_view(digits_).substr(at, 1) : Blank(place);
  }

 private:
  std::string& text_;
  std::string digits_;
  std::size_t shown_;
  std::size_t used_ = 0;
};

std::string NumberText(double value, const FormatSection& section) {
  const Tokens tokens(section.tokens);
  const auto exponent_at = std::ranges::find(tokens, Kind::Exponent, &FormatToken::kind);
  const auto point_at =
      std::find_if(tokens.begin(), exponent_at, [](const auto& token) { return token.kind == Kind::Point; });
  const auto whole_places = Places({tokens.begin(), point_at});
  const auto decimals = Places({point_at, exponent_at});

  Decimal number(value);
  number.Scale(section.scale);
  int power = 0;
  if (exponent_at != tokens.end()) {
    // With several places before the point the exponent is a multiple of their number.
    const int step = std::max(static_cast<int>(whole_places), 1);
    const auto normalize = [&] {
      const int exponent = number.Exponent();
      const int shift = exponent - ((exponent % step) + step) % step;
      number.Scale(-shift);
      power += shift;
    };
    normalize();
    number.Round(decimals);
    normalize();  // 9.99 may have become 10.0
  } else {
    number.Round(decimals);
  }

  std::string text;
  WholeWriter whole(text, number.Whole(), whole_places, section.groups);
  DecimalsWriter behind_point(text, number.Decimals(decimals));
  WholeWriter behind_exponent(text, std::to_string(std::abs(power)), Places({exponent_at, tokens.end()}),
                              false);
  for (auto token = tokens.begin(); token != tokens.end(); ++token) {
    switch (token->kind) {
      case Kind::Digit:
        if (token < point_at && token < exponent_at)
          whole.Place(token->text);
        else if (token < exponent_at)
          behind_point.Place(token->text);
        else
          behind_exponent.Place(token->text);
        break;
      case Kind::Point:
        if (token == point_at) whole.End();
        text += '.';
        break;
      case Kind::Exponent:
        text += power < 0 ? "E-" : token->text == "+" ? "E+" : "E";
        break;
      case Kind::General:
        text += GeneralText(std::fabs(value));
        break;
      default:
        text += token->text;
    }
  }
  return text;
}

struct Fraction {
  int64_t numerator = 0;
  int64_t denominator = 1;
};

// The nearest fraction to a value between 0 and 1, by the convergents between which it lies.
Fraction Nearest(double value, int64_t max_denominator) {
  Fraction low{0, 1};
  Fraction high{1, 1};
  const auto distance = [&](const Fraction& fraction) {
    return std::fabs(value -
                     static_cast<double>(fraction.numerator) / static_cast<double>(fraction.denominator));
  };
  constexpr double kExact = 1e-12;
  while (low.denominator + high.denominator <= max_denominator && distance(low) > kExact &&
         distance(high) > kExact) {
    const Fraction middle{low.numerator + high.numerator, low.denominator + high.denominator};
    const bool is_above =
        static_cast<double>(middle.numerator) > value * static_cast<double>(middle.denominator);
    (is_above ? high : low) = middle;
  }
  return distance(low) <= distance(high) ? low : high;
}

std::string FractionText(double value, const FormatSection& section) {
  const Tokens tokens(section.tokens);
  const auto slash = std::ranges::find(tokens, Kind::Slash, &FormatToken::kind);
  // The numerator is the places before the slash; what stands before them is the whole number.
  auto numerator_at = slash;
  while (numerator_at != tokens.begin() && std::prev(numerator_at)->kind == Kind::Digit) --numerator_at;
  const auto whole_places = Places({tokens.begin(), numerator_at});
  auto denominator_end = std::next(slash);
  while (denominator_end != tokens.end() &&
         (denominator_end->kind == Kind::Digit || denominator_end->kind == Kind::Fixed)) {
    ++denominator_end;
  }
  const Tokens denominator(std::next(slash), denominator_end);
  if (denominator.empty()) return GeneralText(value);

  Decimal whole(value);
  double rest = std::fabs(value);
  double integer = 0;
  rest = std::modf(rest, &integer);
  Fraction fraction;
  if (denominator.front().kind == Kind::Fixed) {
    constexpr std::size_t kMaxDigits = 9;
    fraction.denominator = std::strtoll(denominator.front().text.substr(0, kMaxDigits).c_str(), nullptr, 10);
    fraction.numerator = std::llround(rest * static_cast<double>(fraction.denominator));
  } else {
    constexpr std::size_t kMaxPlaces = 5;
    int64_t limit = 1;
    for (std::size_t i = 0; i < std::min(denominator.size(), kMaxPlaces); ++i) limit *= 10;
    fraction = Nearest(rest, limit - 1);
  }
  if (fraction.numerator == fraction.denominator) {
    fraction.numerator = 0;
    integer += 1;
  }
  // Whole numbers need no fraction where they have a place of their own.
  const bool is_whole = whole_places > 0 && fraction.numerator == 0;
  if (whole_places == 0) {
    constexpr double kMax = 1e9;
    if (integer > kMax) return GeneralText(value);
    fraction.numerator += static_cast<int64_t>(integer) * fraction.denominator;
  }

  std::string text;
  const auto blanks = [&](std::string_view shown) { text.append(shown.size(), ' '); };
  WholeWriter whole_writer(text, Decimal(integer).Whole(), whole_places, section.groups);
  auto numerator = std::to_string(fraction.numerator);
  if (numerator == "0") numerator.clear();
  WholeWriter numerator_writer(text, numerator, Places({numerator_at, slash}), false);
  const auto denominator_text = std::to_string(fraction.denominator);
  for (auto token = tokens.begin(); token != tokens.end(); ++token) {
    if (token == std::next(slash)) {
      // Aligned at the left: blanks follow.
      const auto width =
          denominator.front().kind == Kind::Fixed ? denominator_text.size() : denominator.size();
      auto shown = denominator_text;
      if (shown.size() < width && denominator.front().text == "?") shown.resize(width, ' ');
      is_whole ? blanks(shown) : static_cast<void>(text += shown);
      token = std::prev(denominator_end);
    } else if (token->kind == Kind::Digit && token < numerator_at) {
      whole_writer.Place(token->text);
    } else if (token->kind == Kind::Digit) {
      is_whole ? blanks(token->text) : numerator_writer.Place(token->text);
    } else if (token == slash) {
      is_whole ? blanks("/") : static_cast<void>(text += '/');
    } else {
      text += token->text;
    }
  }
  return text;
}

std::string Padded(int64_t number, std::size_t width) {
  auto text = std::to_string(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

std::optional<std::string> DateText(double value, const FormatSection& section, const DateNames& names,
                                    Calendar calendar) {
  constexpr int64_t kMinute = 60;
  constexpr int64_t kHour = 3600;
  std::size_t decimals = 0;
  for (const auto& token : section.tokens) {
    if (token.kind == Kind::SecondDecimals) decimals = std::max(decimals, token.width);
  }
  decimals = std::min(decimals, DateTime::kMaxDecimals);
  const auto date = DateTime::Of(value, calendar, decimals);
  if (!date) return std::nullopt;
  const auto hour = date->seconds / kHour % 24;
  const bool has_halves = section.Has(Kind::Halves);
  const bool has_day = section.Has(Kind::Day);
  const auto number = [](int64_t n, std::size_t width) { return Padded(n, std::min(width, std::size_t{2})); };
  const auto year = [&](int64_t n, std::size_t width) {
    return width > 2 ? Padded(n, width) : Padded(n % 100, 2);
  };
  const auto month = [&](std::size_t width) {
    constexpr std::size_t kInitial = 5;
    const auto at = date->month - 1;
    if (width <= 2) return number(date->month, width);
    if (width == 3) return names.short_months[at];
    const auto& name = (has_day ? names.months_of_dates : names.months)[at];
    if (width != kInitial) return name;
    std::size_t size = 1;
    while (size < name.size() && (name[size] & 0xC0) == 0x80) ++size;
    return name.substr(0, size);
  };

  std::string text;
  for (const auto& [kind, token, width] : section.tokens) {
    switch (kind) {
      case Kind::Year:
        text += year(date->year, width);
        break;
      case Kind::BuddhistYear:
        text += year(date->year + 543, width);
        break;
      case Kind::Month:
        text += month(width);
        break;
      case Kind::Weekday:
        text += (width == 3 ? names.short_weekdays : names.weekdays)[date->weekday];
        break;
      case Kind::Day:
        text += number(date->day, width);
        break;
      case Kind::Hour:
        text += number(has_halves ? (hour + 11) % 12 + 1 : hour, width);
        break;
      case Kind::Minute:
        text += number(date->seconds / kMinute % kMinute, width);
        break;
      case Kind::Second:
        text += number(date->seconds % kMinute, width);
        break;
      case Kind::SecondDecimals: {
        auto digits = Padded(date->fraction, decimals);
        digits.resize(width, '0');
        text += '.' + digits;
        break;
      }
      case Kind::Halves: {
        const auto between = token.find('/');
        text += hour < 12 ? token.substr(0, between) : token.substr(between + 1);
        break;
      }
      case Kind::ElapsedHours:
        text += Padded(date->seconds / kHour, width);
        break;
      case Kind::ElapsedMinutes:
        text += Padded(date->seconds / kMinute, width);
        break;
      case Kind::ElapsedSeconds:
        text += Padded(date->seconds, width);
        break;
      case Kind::Slash:
        text += '/';
        break;
      case Kind::Era:
        break;
      default:
        text += token;
    }
  }
  return text;
}

// A number that rounds to zero has no sign; a format without digits keeps it.
bool ShowsSign(const FormatSection& section, string_view shown) {
  const bool has_digits = section.Has(Kind::Digit) || section.Has(Kind::General);
  return !has_digits || shown.find_first_of("123456789") != string_view::npos;
}

}  // namespace

NumberFormat::NumberFormat(std::string_view code) {
  text_.tokens.push_back({Kind::At});
  if (code.empty()) return;
  auto sections = ParseFormatCode(code);
  if (!sections) return;
  constexpr std::size_t kOfNumbers = 3;
  if (sections->size() > kOfNumbers || sections->back().kind == FormatSection::Kind::Text) {
    text_ = std::move(sections->back());
    sections->pop_back();
  }
  sections_ = std::move(*sections);
  const auto dated = std::ranges::find_if(sections_, [](const FormatSection& section) {
    return section.kind == FormatSection::Kind::Date && !section.locale.empty();
  });
  if (dated != sections_.end()) names_ = DateNamesOf(dated->locale);
}

std::string NumberFormat::Number(double value, Calendar calendar) const {
  const auto [section, shows_sign] = Choose(sections_, value);
  if (section == nullptr || !std::isfinite(value)) return GeneralText(value);
  std::string text;
  switch (section->kind) {
    case FormatSection::Kind::Text:
      return GeneralText(value);
    case FormatSection::Kind::Date: {
      // A time that has passed may be below zero, a date not.
      const bool has_passed = section->Has(Kind::ElapsedHours) || section->Has(Kind::ElapsedMinutes) ||
                              section->Has(Kind::ElapsedSeconds);
      const auto shown =
          DateText(has_passed || !shows_sign ? std::fabs(value) : value, *section, names_, calendar);
      if (!shown) return GeneralText(value);
      text = *shown;
      break;
    }
    case FormatSection::Kind::Fraction:
      text = FractionText(value, *section);
      break;
    case FormatSection::Kind::Number:
      text = NumberText(value, *section);
      break;
  }
  return value < 0 && shows_sign && ShowsSign(*section, text) ? '-' + text : text;
}

std::string NumberFormat::Text(std::string_view text) const {
  std::string shown;
  for (const auto& token : text_.tokens)
    shown += token.kind == Kind::At || token.kind == Kind::General ? text : string_view(token.text);
  return shown;
}

bool NumberFormat::IsDate() const {
  const auto* const section = Choose(sections_, 1).section;
  return section != nullptr && section->kind == FormatSection::Kind::Date;
}

}  // namespace rowlark
