#include "tables/format/FormatCode.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

namespace rowlark {
namespace {

using std::string_view;
using Kind = FormatToken::Kind;

constexpr std::size_t kMaxSections = 4;

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

// `beginning` in small letters.
bool StartsWith(string_view text, string_view beginning) {
  return text.size() >= beginning.size() &&
         std::ranges::equal(text.substr(0, beginning.size()), beginning, {}, Lower);
}

bool IsDigitPlace(char c) { return c == '0' || c == '#' || c == '?'; }

bool IsDatePart(Kind kind) { return kind >= Kind::Year; }

std::optional<FormatCondition> ParseCondition(string_view text) {
  using enum FormatCondition::Compare;
  constexpr std::pair<string_view, FormatCondition::Compare> kSigns[] = {
      {"<=", LessEqual}, {"<>", NotEqual}, {">=", GreaterEqual}, {"<", Less}, {">", Greater}, {"=", Equal}};
  for (const auto& [sign, compare] : kSigns) {
    if (!text.starts_with(sign)) continue;
    FormatCondition condition{compare};
    const auto limit = text.substr(sign.size());
    const auto [end, failed] = std::from_chars(limit.data(), limit.data() + limit.size(), condition.limit);
    if (failed != std::errc() || end != limit.data() + limit.size()) return std::nullopt;
    return condition;
  }
  return std::nullopt;
}

// Takes one section after the other from the front of a code.
class Parser {
 public:
  explicit Parser(string_view code) : rest_(code) {}

  // False where the code makes no sense.
  bool Next(FormatSection& section) {
    section_ = &section;
    while (!rest_.empty() && rest_.front() != ';') {
      if (!TakeToken()) return false;
    }
    is_last_ = rest_.empty();
    if (!is_last_) rest_.remove_prefix(1);
    Resolve();
    return true;
  }
  bool IsLast() const { return is_last_; }

 private:
  // As many bytes as the character at the front has.
  std::size_t CharacterSize(std::size_t at = 0) const {
    std::size_t size = 1;
    while (at + size < rest_.size() && (rest_[at + size] & 0xC0) == 0x80) ++size;
    return size;
  }

  void Add(Kind kind, string_view text = {}, std::size_t width = 1) {
    section_->tokens.push_back({kind, std::string(text), width});
  }
  void AddText(string_view text) {
    auto& tokens = section_->tokens;
    if (!tokens.empty() && tokens.back().kind == Kind::Text)
      tokens.back().text += text;
    else
      Add(Kind::Text, text);
  }

  bool TakeToken() {
    const char c = rest_.front();
    if (c == '"') return TakeQuoted();
    if (c == '[') return TakeBracket();
    if (c == '\\' || c == '_' || c == '*') return TakeEscape(c);
    if (TakeKeyword() || TakeDateLetters()) return true;
    std::size_t size = 1;
    if (IsDigitPlace(c)) {
      Add(Kind::Digit, rest_.substr(0, 1));
    } else if (c == '.') {
      Add(Kind::Point, ".");
    } else if (c == ',') {
      TakeComma();
    } else if (c == '%') {
      Add(Kind::Percent, "%");
      section_->scale += 2;
    } else if (c == '@') {
      Add(Kind::At);
    } else if (Lower(c) == 'e' && rest_.size() > 1 && (rest_[1] == '+' || rest_[1] == '-')) {
      Add(Kind::Exponent, rest_.substr(1, 1));
      size = 2;
    } else if (c == '/' && !section_->tokens.empty() && section_->tokens.back().kind == Kind::Digit) {
      size = TakeSlash();
    } else {
      size = CharacterSize();
      AddText(rest_.substr(0, size));
    }
    rest_.remove_prefix(size);
    return true;
  }

  bool TakeQuoted() {
    const auto end = rest_.find('"', 1);
    if (end == string_view::npos) return false;
    AddText(rest_.substr(1, end - 1));
    rest_.remove_prefix(end + 1);
    return true;
  }

  // "\x" is the character, "_x" a blank as wide as it, "*x" fills the cell with it, which a text can not
  // show.
  bool TakeEscape(char c) {
    const auto size = rest_.size() > 1 ? CharacterSize(1) : 0;
    if (c != '*') AddText(c == '\\' ? rest_.substr(1, size) : " ");
    rest_.remove_prefix(1 + size);
    return true;
  }

  bool TakeBracket() {
    const auto end = rest_.find(']');
    if (end == string_view::npos) return false;
    const auto inside = rest_.substr(1, end - 1);
    rest_.remove_prefix(end + 1);
    if (inside.empty()) return true;
    const char c = Lower(inside.front());
    if ((c == 'h' || c == 'm' || c == 's') &&
        std::ranges::all_of(inside, [&](char x) { return Lower(x) == c; })) {
      Add(c == 'h'   ? Kind::ElapsedHours
          : c == 'm' ? Kind::ElapsedMinutes
                     : Kind::ElapsedSeconds,
          {}, inside.size());
    } else if (c == '$') {  // a currency, and a country
      const auto dash = std::min(inside.find('-', 1), inside.size());
      if (dash > 1) AddText(inside.substr(1, dash - 1));
      if (dash < inside.size()) section_->locale = inside.substr(dash + 1);
    } else if (c == '<' || c == '>' || c == '=') {
      section_->condition = ParseCondition(inside);
      return section_->condition.has_value();
    }  // anything else is a colour or a way to write digits
    return true;
  }

  bool TakeKeyword() {
    constexpr string_view kGeneral = "general";
    if (StartsWith(rest_, kGeneral)) {
      Add(Kind::General);
      rest_.remove_prefix(kGeneral.size());
      return true;
    }
    for (const string_view halves : {"am/pm", "a/p", "上午/下午"}) {
      if (!StartsWith(rest_, halves)) continue;
      Add(Kind::Halves, halves == "am/pm" ? "AM/PM" : rest_.substr(0, halves.size()));
      rest_.remove_prefix(halves.size());
      return true;
    }
    return false;
  }

  bool TakeDateLetters() {
    const char c = Lower(rest_.front());
    std::size_t width = 1;
    while (width < rest_.size() && Lower(rest_[width]) == c) ++width;
    switch (c) {
      case 'y':
        Add(Kind::Year, {}, width > 2 ? 4 : 2);
        break;
      case 'e':
        if (width < rest_.size() && (rest_[width] == '+' || rest_[width] == '-')) return false;
        Add(Kind::Year, {}, 4);
        break;
      case 'b':
        Add(Kind::BuddhistYear, {}, width > 2 ? 4 : 2);
        break;
      case 'm':
        Add(Kind::Month, {}, width);
        break;
      case 'd':
        Add(width > 2 ? Kind::Weekday : Kind::Day, {}, width);
        break;
      case 'a':
        if (width < 3) return false;
        Add(Kind::Weekday, {}, width);
        break;
      case 'h':
        Add(Kind::Hour, {}, width);
        break;
      case 's':
        Add(Kind::Second, {}, width);
        break;
      case 'g':
        Add(Kind::Era, rest_.substr(0, width));
        break;
      default:
        return false;
    }
    rest_.remove_prefix(width);
    return true;
  }

  // Between places of digits commas group; behind them each divides by a thousand.
  void TakeComma() {
    auto& tokens = section_->tokens;
    const bool behind_digit = !tokens.empty() && tokens.back().kind == Kind::Digit;
    if (!behind_digit) return AddText(",");
    for (const char c : rest_.substr(0, rest_.find(';'))) {
      if (c == '.') break;
      if (IsDigitPlace(c) && !section_->Has(Kind::Point)) {
        section_->groups = true;
        return;
      }
    }
    while (rest_.size() > 1 && rest_[1] == ',') {
      section_->scale -= 3;
      rest_.remove_prefix(1);
    }
    section_->scale -= 3;
  }

  // How many characters it has.
  std::size_t TakeSlash() {
    Add(Kind::Slash, "/");
    constexpr string_view kDigits = "0123456789";
    const auto behind = rest_.substr(1);
    if (behind.empty() || behind.front() < '1' || behind.front() > '9') return 1;
    const auto size = std::min(behind.find_first_not_of(kDigits), behind.size());
    Add(Kind::Fixed, behind.substr(0, size));
    return 1 + size;
  }

  // What a token means may hang on those behind it.
  void Resolve() {
    auto& tokens = section_->tokens;
    if (std::ranges::any_of(tokens, [](const auto& token) { return IsDatePart(token.kind); })) {
      section_->kind = FormatSection::Kind::Date;
      ResolveDate();
    } else if (section_->Has(Kind::Slash)) {
      section_->kind = FormatSection::Kind::Fraction;
    } else if (section_->Has(Kind::At)) {
      section_->kind = FormatSection::Kind::Text;
    }
  }

  void ResolveDate() {
    auto& tokens = section_->tokens;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      auto& token = tokens[i];
      if (token.kind == Kind::Month && token.width <= 2 && IsMinute(i)) token.kind = Kind::Minute;
      if (token.kind != Kind::Point) continue;
      // ".00" are decimals of the seconds.
      auto end = i + 1;
      while (end < tokens.size() && tokens[end].kind == Kind::Digit) ++end;
      if (end == i + 1) continue;
      token = {Kind::SecondDecimals, ".", end - i - 1};
      tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                   tokens.begin() + static_cast<std::ptrdiff_t>(end));
    }
  }

  // "m" is minutes behind hours and beside seconds.
  bool IsMinute(std::size_t at) const {
    const auto& tokens = section_->tokens;
    const auto is_date_part = [](const FormatToken& token) {
      return IsDatePart(token.kind) && token.kind != Kind::Halves;
    };
    const auto before =
        std::find_if(tokens.rend() - static_cast<std::ptrdiff_t>(at), tokens.rend(), is_date_part);
    if (before != tokens.rend() &&
        (before->kind == Kind::Hour || before->kind == Kind::ElapsedHours || before->kind == Kind::Second))
      return true;
    const auto behind =
        std::find_if(tokens.begin() + static_cast<std::ptrdiff_t>(at) + 1, tokens.end(), is_date_part);
    return behind != tokens.end() && (behind->kind == Kind::Second || behind->kind == Kind::ElapsedSeconds);
  }

  string_view rest_;
  FormatSection* section_ = nullptr;
  bool is_last_ = false;
};

}  // namespace

bool FormatCondition::Holds(double value) const {
  using enum Compare;
  switch (compare) {
    case Less:
      return value < limit;
    case LessEqual:
      return value <= limit;
    case Equal:
      return value == limit;
    case NotEqual:
      return value != limit;
    case GreaterEqual:
      return value >= limit;
    case Greater:
      return value > limit;
  }
  return false;
}

bool FormatCondition::HoldsForNegativesOnly() const {
  return (compare == Compare::Less && limit <= 0) ||
         ((compare == Compare::LessEqual || compare == Compare::Equal) && limit < 0);
}

bool FormatSection::Has(FormatToken::Kind token) const {
  return std::ranges::find(tokens, token, &FormatToken::kind) != tokens.end();
}

std::optional<std::vector<FormatSection>> ParseFormatCode(std::string_view code) {
  std::vector<FormatSection> sections;
  Parser parser(code);
  do {
    if (sections.size() == kMaxSections || !parser.Next(sections.emplace_back())) return std::nullopt;
  } while (!parser.IsLast());
  return sections;
}

}  // namespace rowlark
