#include "util/mclsVTString.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

constexpr std::size_t kCountDigits = 9;
constexpr std::size_t kMaxCount = 999'999'999;

std::u16string Source(std::u16string_view member) {
  return std::u16string(u"VTRLKRuntime.mclsVTString.").append(member);
}

int32_t Position(std::size_t position, std::u16string_view member) {
  if (position > static_cast<std::size_t>(std::numeric_limits<int32_t>::max())) {
    throw AutomationError::Overflow(Source(member));
  }
  return static_cast<int32_t>(position);
}

// Texts of an operation in the form in which they are compared exactly.
class Comparable {
 public:
  Comparable(std::u16string_view text, CompareMode mode) : view_(text) {
    if (mode == CompareMode::Text) view_ = folded_ = FoldCase(text);
  }
  Comparable(const Comparable&) = delete;
  Comparable& operator=(const Comparable&) = delete;

  std::u16string_view operator*() const { return view_; }
  const std::u16string_view* operator->() const { return &view_; }

 private:
  std::u16string folded_;
  std::u16string_view view_;
};

std::u16string ChangePiece(std::u16string_view piece, int32_t mode) {
  if (mode == 1) return ToLower(piece);
  if (mode == 2) return ToUpper(piece);
  if (mode != 0 || piece.empty()) return std::u16string(piece);
  std::u16string changed;
  AppendUtf16(changed, ToUpper(TakeUtf16(piece)));
  return changed += ToLower(piece);
}

// The first or last separator; none when it is empty.
std::size_t FindSeparator(std::u16string_view source, std::u16string_view separator, bool last) {
  if (separator.empty()) return source.npos;
  return last ? source.rfind(separator) : source.find(separator);
}

std::optional<std::size_t> ReadCount(std::u16string_view digits) {
  if (digits.size() != kCountDigits) return std::nullopt;
  std::size_t count = 0;
  for (const char16_t digit : digits) {
    if (digit < u'0' || digit > u'9') return std::nullopt;
    count = count * 10 + static_cast<std::size_t>(digit - u'0');
  }
  return count;
}

struct PackedList {
  std::vector<std::u16string> elements;
  std::size_t consumed = 0;
};

std::optional<PackedList> Unpack(std::u16string_view text, PackedCount rule) {
  PackedList list;
  const std::size_t own = rule == PackedCount::Record ? kCountDigits : 0;
  while (list.consumed + 1 < text.size()) {
    const std::u16string_view rest = text.substr(list.consumed);
    const std::optional<std::size_t> count = ReadCount(rest.substr(0, kCountDigits));
    if (!count || *count < own || *count - own > rest.size() - kCountDigits) return std::nullopt;
    list.elements.emplace_back(rest.substr(kCountDigits, *count - own));
    list.consumed += kCountDigits + *count - own;
  }
  return list;
}

}  // namespace

std::u16string mclsVTString::ChangeCase(std::u16string_view value, int32_t mode,
                                        std::u16string_view delimiters) {
  std::u16string changed;
  while (true) {
    const std::size_t end = value.find_first_of(delimiters);
    changed += ChangePiece(value.substr(0, end), mode);
    if (end == value.npos) return changed;
    changed += value[end];
    value.remove_prefix(end + 1);
  }
}

std::u16string mclsVTString::ArrayJoin(std::span<const std::u16string> list, PackedCount count) {
  std::size_t total = 0;
  for (const std::u16string& element : list) total += element.size() + kCountDigits;
  Position(total, u"ArrayJoin");

  std::u16string text(total, u'0');
  auto position = text.begin();
  for (const std::u16string& element : list) {
    std::size_t length = element.size() + (count == PackedCount::Record ? kCountDigits : 0);
    if (length > kMaxCount) throw AutomationError::Overflow(Source(u"ArrayJoin"));
    position += kCountDigits;
    for (auto digit = position; length > 0; length /= 10) *--digit += static_cast<char16_t>(length % 10);
    position = std::copy(element.begin(), element.end(), position);
  }
  return text;
}

std::vector<std::u16string> mclsVTString::ArraySplit(std::u16string_view text, PackedCount count) {
  Position(text.size(), u"ArraySplit");
  std::optional<PackedList> list = Unpack(text, count);
  if (!list) throw AutomationError::TypeMismatch(Source(u"ArraySplit"));
  return std::move(list->elements);
}

std::vector<std::u16string> mclsVTString::ArraySalvage(std::u16string_view text, bool keep_cut_element,
                                                       bool* damaged) {
  for (const PackedCount count : {PackedCount::Text, PackedCount::Record}) {
    std::optional<PackedList> list = Unpack(text, count);
    if (list && list->consumed == text.size()) return std::move(list->elements);
  }
  if (damaged != nullptr) *damaged = true;
  std::vector<std::u16string> elements;
  while (const std::optional<std::size_t> count = ReadCount(text.substr(0, kCountDigits))) {
    text.remove_prefix(kCountDigits);
    if (*count <= text.size() || keep_cut_element) elements.emplace_back(text.substr(0, *count));
    text.remove_prefix(std::min(*count, text.size()));
  }
  return elements;
}

int32_t mclsVTString::InstrRight(std::u16string_view source, std::u16string_view find, int32_t start,
                                 CompareMode mode) {
  if (start == 0) return 0;
  if (start > 0) source = source.substr(0, static_cast<std::size_t>(start));
  const int32_t length = Position(source.size(), u"InstrRight");
  if (find.empty()) return length;
  const std::size_t last = Comparable(source, mode)->rfind(*Comparable(find, mode));
  return last == source.npos ? 0 : static_cast<int32_t>(last + 1);
}

std::u16string mclsVTString::Replace(std::u16string_view source, std::u16string_view find,
                                     std::u16string_view replacement, CompareMode mode) {
  Position(source.size(), u"Replace");
  if (find.empty()) return std::u16string(source);
  const Comparable in(source, mode), what(find, mode), by(replacement, mode);
  const bool resumes_behind = by->find(*what) != by->npos;

  // The text under work is `done`, then the replacement made last if the next occurrence may begin within it,
  // then the source from `rest` on. Such an occurrence ends in the source, since the replacement holds none
  // whole; so every round consumes some of the source.
  std::u16string done;
  std::u16string seam;
  std::size_t rest = 0;
  std::size_t hit = in->find(*what);
  while (hit != in->npos) {
    done += source.substr(rest, hit - rest);
    rest = hit + find.size();
    if (!resumes_behind) {
      while (true) {
        seam.assign(*by).append(in->substr(rest, find.size() - 1));
        const std::size_t overlap = seam.find(*what);
        if (overlap >= replacement.size()) break;
        done += replacement.substr(0, overlap);
        rest += overlap + find.size() - replacement.size();
        Position(done.size(), u"Replace");
      }
    }
    done += replacement;
    Position(done.size(), u"Replace");
    hit = in->find(*what, rest);
  }
  done += source.substr(rest);
  Position(done.size(), u"Replace");
  return done;
}

std::u16string mclsVTString::Filter(std::u16string_view source, std::u16string_view characters, bool keep,
                                    CompareMode mode, int32_t& caret) {
  const int32_t length = Position(source.size(), u"Filter");
  const Comparable in(source, mode), set(characters, mode);
  std::u16string kept;
  int32_t dropped = 0;
  for (int32_t position = 1; position <= length; ++position) {
    const auto offset = static_cast<std::size_t>(position) - 1;
    if ((set->find((*in)[offset]) != set->npos) == keep) {
      kept += source[offset];
    } else if (position <= caret) {
      ++dropped;
    }
  }
  caret -= dropped;
  return kept;
}

std::u16string mclsVTString::GetLeft(std::u16string_view source, std::u16string_view separator,
                                     bool from_right, bool include_separator, bool whole_if_not_found) {
  Position(source.size(), u"GetLeft");
  const std::size_t at = FindSeparator(source, separator, from_right);
  if (at == source.npos) return std::u16string(whole_if_not_found ? source : std::u16string_view());
  return std::u16string(source.substr(0, include_separator ? at + separator.size() : at));
}

std::u16string mclsVTString::GetRight(std::u16string_view source, std::u16string_view separator,
                                      bool from_left, bool include_separator, bool whole_if_not_found) {
  Position(source.size(), u"GetRight");
  const std::size_t at = FindSeparator(source, separator, !from_left);
  if (at == source.npos) return std::u16string(whole_if_not_found ? source : std::u16string_view());
  return std::u16string(source.substr(include_separator ? at : at + separator.size()));
}

std::u16string mclsVTString::Trim(std::u16string_view source, std::u16string_view characters, int32_t sides,
                                  CompareMode mode, int32_t& caret) {
  Position(source.size(), u"Trim");
  const Comparable in(source, mode), set(characters, mode);
  std::size_t first = 0;
  std::size_t end = source.size();
  if ((sides & kTrimLeft) != 0) {
    for (; first < end && set->find((*in)[first]) != set->npos; ++first) {
      if (caret >= 1) --caret;
    }
  }
  if ((sides & kTrimRight) != 0) {
    for (; first < end && set->find((*in)[end - 1]) != set->npos; --end) {
      caret = std::min(caret, static_cast<int32_t>(end - 1 - first));
    }
  }
  return std::u16string(source.substr(first, end - first));
}

}  // namespace rowlark
