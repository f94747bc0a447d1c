#include "tables/workbook/NumberFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace rowlark {
namespace {

using std::string_view;

std::string Print(double value, std::chars_format form, int precision) {
  std::array<char, 400> text{};
  const auto [end, failed] = std::to_chars(text.data(), text.data() + text.size(), value, form, precision);
  return failed == std::errc() ? std::string(text.data(), end) : std::string();
}

std::string General(double value) {
  constexpr int kDigits = 15;
  auto text = Print(value, std::chars_format::general, kDigits);
  if (const auto e = text.find('e'); e != std::string::npos) text[e] = 'E';
  return text;
}

bool IsOneOf(char c, string_view characters) { return characters.find(c) != string_view::npos; }

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// A piece of a format: a text as it stands, or a run of one letter or of placeholders for digits.
struct Token {
  enum class Kind { Text, Letters, Digits, Elapsed, Percent, Exponent, Halves, At } kind;
  std::string text;
};

// The pieces of a format; nothing where it has any that are not shown (fractions, conditions).
std::optional<std::vector<Token>> Split(string_view code) {
  using enum Token::Kind;
  std::vector<Token> tokens;
  const auto add_text = [&](string_view text) { tokens.push_back({Text, std::string(text)}); };
  while (!code.empty()) {
    const char c = code.front();
    std::size_t size = 1;
    if (c == '"') {
      const auto end = code.find('"', 1);
      if (end == string_view::npos) return std::nullopt;
      add_text(code.substr(1, end - 1));
      size = end + 1;
    } else if (c == '\\' || c == '_' ||
               c == '*') {  // a character as it stands, its width, or it as a filling
      std::size_t next = 2;
      while (next < code.size() && (code[next] & 0xC0) == 0x80) ++next;
      if (c != '*') add_text(c == '\\' ? code.substr(1, next - 1) : string_view(" "));
      size = std::min(next, code.size());
    } else if (c == '[') {
      const auto end = code.find(']');
      if (end == string_view::npos) return std::nullopt;
      const auto inside = code.substr(1, end - 1);
      if (!inside.empty() && IsOneOf(Lower(inside.front()), "hms") &&
          std::ranges::all_of(inside, [&](char x) { return Lower(x) == Lower(inside.front()); })) {
        tokens.push_back({Elapsed, std::string(1, Lower(inside.front()))});
      } else if (inside.starts_with('$')) {  // a currency, and its country
        add_text(inside.substr(1, inside.find('-') - 1));
      } else if (!inside.empty() && IsOneOf(inside.front(), "<>=")) {
        return std::nullopt;
      }
      size = end + 1;
    } else if (code.starts_with("AM/PM") || code.starts_with("am/pm") || code.starts_with("A/P")) {
      size = c == 'A' && code[1] == '/' ? 3 : 5;
      tokens.push_back({Halves, {}});
    } else if (IsOneOf(Lower(c), "ymdhs")) {
      while (size < code.size() && Lower(code[size]) == Lower(c)) ++size;
      tokens.push_back({Letters, std::string(size, Lower(c))});
    } else if (IsOneOf(c, "0#?") || (c == '.' && code.size() > 1 && IsOneOf(code[1], "0#?"))) {
      while (size < code.size() && IsOneOf(code[size], "0#?,.")) ++size;
      tokens.push_back({Digits, std::string(code.substr(0, size))});
    } else if (IsOneOf(c, "Ee") && code.size() > 1 && IsOneOf(code[1], "+-")) {
      tokens.push_back({Exponent, std::string(code.substr(1, 1))});
      size = 2;
    } else if (c == '%' || c == '@') {
      tokens.push_back({c == '%' ? Percent : At, {}});
    } else if (c == '/' && !tokens.empty() && tokens.back().kind == Digits) {
      return std::nullopt;  // a fraction
    } else {
      while (size < code.size() && (code[size] & 0xC0) == 0x80) ++size;
      add_text(code.substr(0, size));
    }
    code.remove_prefix(size);
  }
  return tokens;
}

// The part of the format that is for this number; a negative one loses its sign where it has a part of its
// own.
string_view Section(string_view code, double& value) {
  std::array<string_view, 3> sections;
  std::size_t count = 0;
  for (bool quoted = false; count < sections.size();) {
    std::size_t end = 0;
    for (; end < code.size() && (quoted || code[end] != ';'); ++end) {
      if (code[end] == '\\' && !quoted)
        ++end;
      else if (code[end] == '"')
        quoted = !quoted;
    }
    end = std::min(end, code.size());
    sections[count++] = code.substr(0, end);
    if (end == code.size()) break;
    code.remove_prefix(end + 1);
  }
  if (value < 0 && count > 1) {
    value = -value;
    return sections[1];
  }
  return value == 0 && count > 2 ? sections[2] : sections[0];
}

std::string Padded(int64_t number, std::size_t width) {
  auto text = std::to_string(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

class DateFormat {
 public:
  DateFormat(double value, const std::vector<Token>& tokens, bool since_1904) : tokens_(tokens) {
    using namespace std::chrono;
    // As finely as the format shows it, so that 10:20 is not 10:19:59.9999.
    const auto total = static_cast<int64_t>(std::llround(value * 86400 * 1000));
    total_seconds_ = (total + 500) / 1000;
    for (const auto& token : tokens) {
      if (token.kind == Token::Kind::Digits) total_seconds_ = total / 1000;
    }
    milliseconds_ = total % 1000;
    auto day = total_seconds_ / 86400;
    if (!since_1904 && day < 60) ++day;  // the calendar of the format has a 29th of February in 1900
    const sys_days start =
        since_1904 ? sys_days(year(1904) / January / 1) : sys_days(year(1899) / December / 30);
    const sys_days date = start + days(day);
    date_ = year_month_day(date);
    weekday_ = weekday(date).c_encoding();
    has_halves_ = std::ranges::any_of(tokens, [](const auto& t) { return t.kind == Token::Kind::Halves; });
  }

  std::string Text() const {
    using enum Token::Kind;
    std::string text;
    for (std::size_t i = 0; i < tokens_.size(); ++i) {
      const auto& [kind, piece] = tokens_[i];
      if (kind == Token::Kind::Text) text += piece;
      if (kind == Halves) text += Hour() < 12 ? "AM" : "PM";
      if (kind == Letters) text += Field(i);
      if (kind == Elapsed) {
        text += std::to_string(piece == "h"   ? total_seconds_ / 3600
                               : piece == "m" ? total_seconds_ / 60
                                              : total_seconds_);
      }
      // Fractions of a second: ".0", ".000".
      if (kind == Digits)
        text += piece[0] == '.' ? '.' + Padded(milliseconds_, 3).substr(0, piece.size() - 1) : piece;
    }
    return text;
  }

 private:
  int64_t Hour() const { return total_seconds_ / 3600 % 24; }

  // "m" is minutes behind hours and before seconds.
  bool IsMinutes(std::size_t at) const {
    const auto is_time = [](const Token& token) {
      return token.kind == Token::Kind::Elapsed ||
             (token.kind == Token::Kind::Letters && token.text[0] != 'm');
    };
    const auto is_letter = [&](const Token& token, char letter) {
      return is_time(token) && token.text[0] == letter;
    };
    for (std::size_t i = at; i-- > 0;) {
      if (is_time(tokens_[i])) {
        if (is_letter(tokens_[i], 'h')) return true;
        break;
      }
    }
    for (std::size_t i = at + 1; i < tokens_.size(); ++i) {
      if (is_time(tokens_[i])) return is_letter(tokens_[i], 's');
    }
    return false;
  }

  std::string Field(std::size_t at) const {
    constexpr string_view kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
    constexpr string_view kDays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                     "Thursday", "Friday", "Saturday"};
    const std::size_t width = tokens_[at].text.size();
    const std::size_t padding = std::min(width, std::size_t{2});
    const auto name = [&](string_view whole) { return std::string(width == 3 ? whole.substr(0, 3) : whole); };
    const auto month = static_cast<unsigned>(date_.month());
    switch (tokens_[at].text[0]) {
      case 'y':
        return Padded(width > 2 ? int{date_.year()} : int{date_.year()} % 100, width > 2 ? 4 : 2);
      case 'd':
        return width > 2 ? name(kDays[weekday_]) : Padded(unsigned{date_.day()}, padding);
      case 'h':
        return Padded(has_halves_ ? (Hour() + 11) % 12 + 1 : Hour(), padding);
      case 's':
        return Padded(total_seconds_ % 60, padding);
      default:
        break;
    }
    if (IsMinutes(at)) return Padded(total_seconds_ / 60 % 60, padding);
    if (width == 5) return std::string(kMonths[month - 1].substr(0, 1));
    return width > 2 ? name(kMonths[month - 1]) : Padded(month, padding);
  }

  const std::vector<Token>& tokens_;
  int64_t total_seconds_ = 0;
  int64_t milliseconds_ = 0;
  std::chrono::year_month_day date_;
  unsigned weekday_ = 0;
  bool has_halves_ = false;
};

// Digits at the places of the one run of placeholders, texts around them.
std::optional<std::string> FormatDigits(double value, const std::vector<Token>& tokens) {
  using enum Token::Kind;
  std::string places;
  std::string exponent;
  bool is_exponent = false;
  for (const auto& [kind, text] : tokens) {
    if (kind == Digits && is_exponent) exponent = text;
    if (kind == Digits && !is_exponent && !std::exchange(places, text).empty()) return std::nullopt;
    if (kind == Exponent) is_exponent = true;
    if (kind == Percent) value *= 100;
  }
  const auto point = std::min(places.find('.'), places.size());
  auto whole = places.substr(0, point);
  auto decimals = places.substr(std::min(point + 1, places.size()));
  // Commas at the end divide by thousands; others group.
  for (auto* part : {&whole, &decimals}) {
    for (; part->ends_with(','); part->pop_back()) value /= 1000;
  }
  const bool groups = whole.find(',') != std::string::npos;
  const auto count = [](const std::string& text, string_view of) {
    return static_cast<std::size_t>(std::ranges::count_if(text, [&](char c) { return IsOneOf(c, of); }));
  };
  const auto precision = static_cast<int>(std::min(count(decimals, "0#?"), std::size_t{30}));
  // Halves go up, and 1.005 is a half although its nearest binary number is a little less.
  constexpr double kNudge = 1 + 4e-16;
  constexpr int kNudged = 10;
  const double size = std::fabs(value) * (precision <= kNudged ? kNudge : 1);
  auto digits =
      Print(size, is_exponent ? std::chars_format::scientific : std::chars_format::fixed, precision);
  if (digits.empty()) return std::nullopt;
  std::string power;
  if (const auto e = digits.find('e'); e != std::string::npos) {
    power = digits.substr(e + 1);
    digits.resize(e);
    auto number = power.substr(1);
    number.erase(0, std::min(number.find_first_not_of('0'), number.size()));
    power = (power[0] == '-' ? "-" : "+") +
            std::string(std::max(count(exponent, "0"), number.size()) - number.size(), '0') + number;
  }
  auto fraction = digits.substr(std::min(digits.find('.'), digits.size()));
  digits.resize(digits.size() - fraction.size());
  // "#" shows no zero at the ends.
  for (auto keep = count(decimals, "0"); fraction.size() > keep + 1 && fraction.back() == '0';)
    fraction.pop_back();
  if (fraction == ".") fraction.clear();
  if (digits == "0" && count(whole, "0") == 0 && !places.empty()) digits.clear();
  if (digits.size() < count(whole, "0")) digits.insert(0, count(whole, "0") - digits.size(), '0');
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; groups && at > 0; at -= 3) {
    digits.insert(static_cast<std::size_t>(at), 1, ',');
  }
  const auto shown = digits + fraction;
  std::string text = value < 0 && shown.find_first_of("123456789") != std::string::npos ? "-" : "";
  bool behind_exponent = false;
  for (const auto& [kind, piece] : tokens) {
    if (kind == Text) text += piece;
    if (kind == Percent) text += '%';
    if (kind == Digits && !behind_exponent) text += shown;
    if (kind == Exponent) {
      behind_exponent = true;
      text += 'E' + (power.starts_with('+') && piece == "-" ? power.substr(1) : power);
    }
  }
  return text;
}

}  // namespace

string_view BuiltinFormat(int id) {
  switch (id) {
    case 1:
      return "0";
    case 2:
      return "0.00";
    case 3:
    case 37:
    case 38:
      return "#,##0";
    case 4:
    case 39:
    case 40:
      return "#,##0.00";
    case 9:
      return "0%";
    case 10:
      return "0.00%";
    case 11:
      return "0.00E+00";
    case 14:
      return "yyyy-mm-dd";
    case 15:
      return "d-mmm-yy";
    case 16:
      return "d-mmm";
    case 17:
      return "mmm-yy";
    case 18:
      return "h:mm AM/PM";
    case 19:
      return "h:mm:ss AM/PM";
    case 20:
      return "h:mm";
    case 21:
      return "h:mm:ss";
    case 22:
      return "yyyy-mm-dd h:mm";
    case 45:
      return "mm:ss";
    case 46:
      return "[h]:mm:ss";
    case 47:
      return "mm:ss.0";
    case 48:
      return "##0.0E+0";
    default:
      return "General";
  }
}

std::string FormatNumber(double value, string_view code, bool since_1904) {
  using enum Token::Kind;
  const double given = value;
  const auto section = Section(code, value);
  if (section.empty() || section.find("General") != string_view::npos) return General(given);
  const auto tokens = Split(section);
  if (!tokens || !std::isfinite(value)) return General(given);
  const auto has = [&](Token::Kind kind) {
    return std::ranges::any_of(*tokens, [&](const Token& token) { return token.kind == kind; });
  };
  if (has(At)) return General(given);
  if (has(Letters) || has(Elapsed)) {
    constexpr double kLastDay = 2958466;  // behind 9999-12-31
    if (value < 0 || value >= kLastDay) return General(given);
    return DateFormat(value, *tokens, since_1904).Text();
  }
  return FormatDigits(value, *tokens).value_or(General(given));
}

}  // namespace rowlark
