#include "util/Text.h"

#include <array>
#include <charconv>

#include "util/Utf.h"

namespace rowlark {
namespace {

struct CaseRange {
  char32_t first;
  char32_t last;
  char32_t step;
  int32_t delta;
};

#include "util/CaseTables.inc"

// The ranges spread over pages of distances at compile time, so that mapping a code point is two reads. A
// mapping never leaves its plane, so distances are kept modulo 2^16. Page 0 is the one of unmapped blocks.
struct CaseTable {
  static constexpr char32_t kPageSize = 128;
  static constexpr char32_t kPages = 42;
  static constexpr char32_t kLimit = 0x1F000;

  // Too few pages or too low a limit for the ranges do not compile.
  template <std::size_t kRanges>
  consteval explicit CaseTable(const CaseRange (&ranges)[kRanges]) {
    uint8_t used = 0;
    for (const CaseRange& range : ranges) {
      for (char32_t c = range.first; c <= range.last; c += range.step) {
        uint8_t& page = page_of[c / kPageSize];
        if (page == 0) page = ++used;
        pages[page][c % kPageSize] = static_cast<uint16_t>(range.delta);
      }
    }
  }

  constexpr char32_t Map(char32_t c) const noexcept {
    if (c >= kLimit) return c;
    const uint16_t delta = pages[page_of[c / kPageSize]][c % kPageSize];
    return (c & ~char32_t{0xFFFF}) | ((c + delta) & 0xFFFF);
  }

  std::array<uint8_t, kLimit / kPageSize> page_of{};
  std::array<std::array<uint16_t, kPageSize>, kPages> pages{};
};

constexpr CaseTable kFold(kFoldRanges);
constexpr CaseTable kLower(kLowerRanges);
constexpr CaseTable kUpper(kUpperRanges);

// A mapping keeps the plane of a code point, so the mapped text has the length of the given one.
std::u16string MapText(std::u16string_view text, const CaseTable& table) {
  std::u16string mapped;
  mapped.reserve(text.size());
  while (!text.empty()) AppendUtf16(mapped, table.Map(TakeUtf16(text)));
  return mapped;
}

template <class View>
std::vector<View> PiecesOf(View text, View separator) {
  std::vector<View> pieces;
  for (;;) {
    const auto end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == View::npos) return pieces;
    text.remove_prefix(end + separator.size());
  }
}

}  // namespace

char32_t FoldCase(char32_t c) noexcept { return kFold.Map(c); }
char32_t ToLower(char32_t c) noexcept { return kLower.Map(c); }
char32_t ToUpper(char32_t c) noexcept { return kUpper.Map(c); }

std::u16string FoldCase(std::u16string_view text) { return MapText(text, kFold); }
std::u16string ToLower(std::u16string_view text) { return MapText(text, kLower); }
std::u16string ToUpper(std::u16string_view text) { return MapText(text, kUpper); }

int32_t Compare(std::u16string_view a, std::u16string_view b, CompareMode mode) {
  if (mode == CompareMode::Binary) {
    const int order = a.compare(b);
    return (order > 0) - (order < 0);
  }
  while (!a.empty() && !b.empty()) {
    const char32_t left = FoldCase(TakeUtf16(a));
    const char32_t right = FoldCase(TakeUtf16(b));
    if (left != right) return left < right ? -1 : 1;
  }
  return static_cast<int32_t>(b.empty()) - static_cast<int32_t>(a.empty());
}

std::size_t Find(std::u16string_view source, std::u16string_view find, std::size_t from, CompareMode mode) {
  if (mode == CompareMode::Binary) return source.find(find, from);
  if (from > source.size()) return std::u16string_view::npos;
  const std::size_t offset = FoldCase(source.substr(from)).find(FoldCase(find));
  return offset == std::u16string::npos ? offset : from + offset;
}

std::vector<std::u16string_view> Pieces(std::u16string_view text, std::u16string_view separator) {
  return PiecesOf(text, separator);
}

std::vector<std::string_view> Pieces(std::string_view text, std::string_view separator) {
  return PiecesOf(text, separator);
}

std::u16string ToText(int32_t number) {
  char digits[11];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
  return {digits, end};
}

std::optional<int32_t> ToInteger(std::u16string_view text) {
  constexpr std::u16string_view kBlanks = u" \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
  if (text.front() == u'+') {
    text.remove_prefix(1);
    if (text.starts_with(u'-')) return std::nullopt;
  }
  std::string digits;
  for (const char16_t unit : text) digits += unit < 0x80 ? static_cast<char>(unit) : '?';
  int32_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

}  // namespace rowlark
