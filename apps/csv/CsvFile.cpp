#include "CsvFile.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <deque>
#include <iterator>
#include <map>
#include <stdexcept>

#include "FileBytes.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using std::string_view;

constexpr string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr string_view kUtf16LittleMark = "\xFF\xFE";
constexpr string_view kUtf16BigMark = "\xFE\xFF";

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw std::runtime_error(path + ": " + reason);
}

std::string FromUtf16(string_view bytes, std::endian order) {
  const std::size_t low = order == std::endian::little ? 0 : 1;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  std::u16string units;
  units.reserve(bytes.size() / 2 + 1);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(byte(i + low) | byte(i + 1 - low) << 8);
  }
  if (bytes.size() % 2 != 0) units += u'\uFFFD';  // half a unit: the file was cut off
  return ToUtf8(units);
}

std::string FromAnsi(string_view bytes) {
  constexpr std::size_t kBlock = 1 << 16;  // keeps the UTF-16 in between small
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kBlock, bytes.size()))) {
    text += ToUtf8(FromWindows1252(bytes.substr(0, kBlock)));
  }
  return text;
}

Bytes ToUtf8Text(Bytes bytes) {
  string_view& view = bytes.view;
  if (view.starts_with(kUtf16LittleMark)) return Own(FromUtf16(view.substr(2), std::endian::little));
  if (view.starts_with(kUtf16BigMark)) return Own(FromUtf16(view.substr(2), std::endian::big));
  const bool marked = view.starts_with(kUtf8Mark);
  if (marked) view.remove_prefix(kUtf8Mark.size());
  if (IsValidUtf8(view)) return bytes;
  return Own(marked ? ToUtf8(ToUtf16(view)) : FromAnsi(view));
}

// Cuts a text into records, and these into cells.
class RecordReader {
 public:
  RecordReader(string_view text, char separator)
      : at_(text.data()), end_(text.data() + text.size()), separator_(separator) {}

  const char* Position() const noexcept { return at_; }
  // The line end of the last record; empty at the end of the text.
  string_view LineEnd() const noexcept { return line_end_; }

  // False at the end of the text. Of a record with too many columns only kMaxColumns + 1 cells are kept.
  bool Next(std::vector<string_view>& cells) {
    cells.clear();
    scratch_used_ = 0;
    if (at_ == end_) return false;
    for (;;) {
      const string_view cell = at_ != end_ && *at_ == '"' ? QuotedCell() : PlainText();
      if (cells.size() <= CsvFile::kMaxColumns) cells.push_back(cell);
      if (at_ == end_ || *at_ != separator_) break;
      ++at_;
    }
    TakeLineEnd();
    return true;
  }

 private:
  // Up to the next separator or line end.
  string_view PlainText() {
    const char* const start = at_;
    at_ = FindDelimiter(at_);
    return {start, at_};
  }

  string_view QuotedCell() {
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
  string_view QuotedPart() {
    const char* const start = ++at_;
    const void* const quote = std::memchr(start, '"', static_cast<std::size_t>(end_ - start));
    const char* const stop = quote == nullptr ? end_ : static_cast<const char*>(quote);
    at_ = quote == nullptr ? end_ : stop + 1;
    return {start, stop};
  }

  void TakeLineEnd() {
    const string_view rest(at_, static_cast<std::size_t>(end_ - at_));
    line_end_ = rest.substr(0, rest.starts_with("\r\n") ? 2 : 1);
    at_ += line_end_.size();
  }

  bool IsDelimiter(char c) const noexcept { return c == separator_ || c == '\n' || c == '\r'; }

  // Eight bytes at a time: cells are short, so neither memchr nor wide vectors pay off.
  const char* FindDelimiter(const char* at) const noexcept {
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

  const char* at_;
  const char* end_;
  char separator_;
  string_view line_end_;
  // Cells whose text does not stand in the file in one piece; the strings are used again for every record.
  std::deque<std::string> scratch_;
  std::size_t scratch_used_ = 0;
};

// The separator with which most of the first records have the same number of columns, two or more; of equals
// the one that gives more columns.
char DetectSeparator(string_view text) {
  constexpr std::size_t kSampleRecords = 100;
  constexpr std::size_t kSampleBytes = 1 << 20;
  const string_view sample = text.substr(0, kSampleBytes);

  struct Score {
    std::size_t records = 0;
    std::size_t columns = 0;
    auto operator<=>(const Score&) const = default;  // NOLINT(modernize-use-nullptr): a fault of the check
  };
  char best = ',';
  Score best_score;
  std::vector<string_view> cells;
  for (const char candidate : {',', ';', '\t'}) {
    RecordReader reader(sample, candidate);
    std::map<std::size_t, std::size_t> records_by_columns;
    for (std::size_t i = 0; i < kSampleRecords && reader.Next(cells); ++i) {
      if (cells.size() > 1) ++records_by_columns[cells.size()];
    }
    Score score;
    for (const auto& [columns, records] : records_by_columns) score = std::max(score, {records, columns});
    if (score > best_score) {
      best = candidate;
      best_score = score;
    }
  }
  return best;
}

}  // namespace

CsvFile CsvFile::Open(const std::filesystem::path& path, std::optional<char> separator) {
  Bytes bytes = ReadBytes(path);
  return CsvFile(path.string(), std::move(bytes.storage), bytes.view, separator);
}

CsvFile CsvFile::Parse(std::string bytes, std::optional<char> separator) {
  Bytes owned = Own(std::move(bytes));
  return CsvFile("", std::move(owned.storage), owned.view, separator);
}

CsvFile::CsvFile(std::string path, std::shared_ptr<const void> storage, string_view bytes,
                 std::optional<char> separator)
    : path_(std::move(path)) {
  Bytes text = ToUtf8Text({std::move(storage), bytes});
  if (text.view.find('\0') != string_view::npos) Fail(path_, "Not a text file (it holds a NUL character)");
  storage_ = std::move(text.storage);
  text_ = text.view;
  separator_ = separator ? *separator : DetectSeparator(text_);
}

void CsvFile::ForEachRow(const RowSink& sink) {
  row_starts_.clear();
  RecordReader reader(text_, separator_);
  std::vector<string_view> cells;
  for (;;) {
    const auto start = static_cast<std::size_t>(reader.Position() - text_.data());
    if (!reader.Next(cells)) return;
    if (row_starts_.size() == kMaxRows) Fail(path_, "More than 1,048,576 rows");
    if (cells.size() > kMaxColumns) Fail(path_, "More than 16,384 columns");
    if (row_starts_.empty() && !reader.LineEnd().empty()) line_end_ = reader.LineEnd();
    row_starts_.push_back(start);
    sink(cells);
  }
}

string_view CsvFile::RowText(std::size_t row) const {
  const std::size_t start = row_starts_.at(row);
  const std::size_t next = row + 1 < row_starts_.size() ? row_starts_[row + 1] : text_.size();
  string_view text = text_.substr(start, next - start);
  if (text.ends_with('\n')) text.remove_suffix(1);
  if (text.ends_with('\r')) text.remove_suffix(1);
  return text;
}

}  // namespace rowlark
