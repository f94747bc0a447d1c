#include "csv/RecordReader.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace rowlark {

using std::string_view;

bool RecordReader::Next(std::vector<string_view>& cells, std::vector<string_view>* raw) {
  cells.clear();
  if (raw != nullptr) raw->clear();
  scratch_used_ = 0;
  unclosed_ = false;
  if (at_ == end_) return false;
  const char* const record = at_;
  for (;;) {
    const char* const start = at_;
    const string_view cell = at_ != end_ && *at_ == '"' ? QuotedCell() : PlainText();
    if (cells.size() <= kMaxColumns) {
      cells.push_back(cell);
      if (raw != nullptr) raw->emplace_back(start, at_);
    }
    if (at_ == end_ || *at_ != separator_) break;
    ++at_;
  }
  TakeLineEnd();
  if (at_ != end_ || whole_ || line_end_.ends_with('\n')) return true;
  at_ = record;
  return false;
}

// The text up to the next separator or line end.
string_view RecordReader::PlainText() {
  const char* const start = at_;
  at_ = FindDelimiter(at_);
  return {start, at_};
}

string_view RecordReader::QuotedCell() {
  const string_view inside = QuotedPart();
  if (at_ == end_ || IsDelimiter(*at_)) return inside;

  if (scratch_used_ == scratch_.size()) scratch_.emplace_back();
  std::string& text = scratch_[scratch_used_++];
  text = inside;
  while (at_ != end_ && *at_ == '"') {  // a doubled quote: one quote, and the quoted part goes on
    text += '"';
    text += QuotedPart();
  }
  text += PlainText();
  return text;
}

// From the quote at hand to the next one, or to the end of the text.
string_view RecordReader::QuotedPart() {
  const char* const start = ++at_;
  const void* const quote = std::memchr(start, '"', static_cast<std::size_t>(end_ - start));
  unclosed_ = quote == nullptr;
  const char* const stop = unclosed_ ? end_ : static_cast<const char*>(quote);
  at_ = unclosed_ ? end_ : stop + 1;
  return {start, stop};
}

void RecordReader::TakeLineEnd() {
  const string_view rest(at_, static_cast<std::size_t>(end_ - at_));
  line_end_ = rest.substr(0, rest.starts_with("\r\n") ? 2 : 1);
  at_ += line_end_.size();
}

// Eight bytes at a time: cells are short, so neither memchr nor wide vectors pay off.
const char* RecordReader::FindDelimiter(const char* at) const noexcept {
  constexpr std::uint64_t kOnes = 0x0101010101010101u;
  constexpr std::uint64_t kHighs = kOnes << 7;
  // The high bit of every byte of `word` that is `c`; above the first one there may be false ones.
  const auto marks = [](std::uint64_t word, char c) {
    const std::uint64_t zero = word ^ (kOnes * static_cast<unsigned char>(c));
    return (zero - kOnes) & ~zero & kHighs;
  };
  if constexpr (std::endian::native == std::endian::little) {
    for (; end_ - at >= 8; at += 8) {
      std::uint64_t word = 0;
      std::memcpy(&word, at, sizeof word);
      const std::uint64_t found = marks(word, separator_) | marks(word, '\n') | marks(word, '\r');
      if (found != 0) return at + std::countr_zero(found) / 8;
    }
  }
  return std::find_if(at, end_, [this](char c) { return IsDelimiter(c); });
}

}  // namespace rowlark
