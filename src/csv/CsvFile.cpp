#include "csv/CsvFile.h"

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

namespace rowlark {
namespace {

using std::string_view;

constexpr std::size_t kSampleBytes = 1 << 19;
constexpr std::size_t kSampleRecords = 100;

struct Found {
  char character = ',';
  bool is_certain = false;  // the sample was as large as it may be
};

// Of the characters that stand in half of the first records or more, the one with which most of these have
// the same number of columns; of equals the one that gives more columns. An empty line is no record.
Found DetectSeparator(const TextReader& text) {
  const string_view sample = text.Text().substr(0, kSampleBytes);

  struct Score {
    std::size_t records = 0;
    std::size_t columns = 0;
    auto operator<=>(const Score&) const = default;  // NOLINT(modernize-use-nullptr): a fault of the check
  };
  Found best;
  best.is_certain = text.IsWhole() || sample.size() == kSampleBytes;
  Score best_score;
  std::vector<string_view> cells;
  for (const char candidate : {',', ';', '\t', '|', '^', '~', '\x1F', '\x01'}) {
    if (text.TextCharset() && !text.TextCharset()->Tells(candidate)) continue;
    RecordReader reader(sample, candidate);
    std::map<std::size_t, std::size_t> records_by_columns;
    std::size_t all = 0;
    std::size_t cut = 0;
    while (all < kSampleRecords && reader.Next(cells)) {
      if (cells.size() == 1 && cells[0].empty()) continue;
      ++all;
      if (cells.size() == 1) continue;
      ++cut;
      ++records_by_columns[cells.size()];
    }
    best.is_certain = best.is_certain || all == kSampleRecords;
    Score score;
    for (const auto& [columns, records] : records_by_columns) score = std::max(score, {records, columns});
    if (2 * cut >= all && score > best_score) {
      best.character = candidate;
      best_score = score;
    }
  }
  return best;
}

}  // namespace

CsvFile CsvFile::Open(const std::filesystem::path& path, std::optional<char> separator,
                      const TextOptions& options) {
  return {TextReader(path, options), separator};
}

CsvFile CsvFile::Parse(const std::string& bytes, std::optional<char> separator, const TextOptions& options) {
  return {TextReader(bytes, options), separator};
}

CsvFile::CsvFile(TextReader text, std::optional<char> separator)
    : text_(std::move(text)),
      separator_(separator.value_or(',')),
      separator_is_known_(separator.has_value()) {
  FindSeparator();
}

// What came from a slow source so far may be too little to tell.
void CsvFile::FindSeparator() {
  if (separator_is_known_ || text_.Text().empty()) return;
  const Found found = DetectSeparator(text_);
  separator_ = found.character;
  separator_is_known_ = found.is_certain;
}

CsvFile::Reading CsvFile::ReadRows(const RowSink& sink) {
  text_.Drop(next_);
  if (text_.Start() + text_.Text().size() - next_ < TextReader::kPiece || next_ < wanted_) {
    const int corrections = text_.Corrections();
    const char separator = separator_;
    text_.ReadPiece();
    FindSeparator();
    if ((corrections != text_.Corrections() || separator != separator_) && RowCount() > 0) {
      Restart();
      return Reading::Again;
    }
  }
  const string_view text = text_.Text();
  const std::size_t end = text_.Start() + text.size();
  if (end < wanted_ && !text_.IsWhole()) return Reading::More;

  const std::size_t start = next_;
  RecordReader reader(text.substr(start - text_.Start()), separator_, text_.IsWhole());
  std::vector<string_view> cells;
  std::deque<std::string> scratch;
  while (next_ - start < TextReader::kPiece && reader.Next(cells)) {
    if (row_starts_.size() == kMaxRows) text_.Fail("More than 1,048,576 rows");
    if (cells.size() > kMaxColumns) text_.Fail("More than 16,384 columns");
    if (row_starts_.empty() && !reader.LineEnd().empty()) {
      line_end_ = reader.LineEnd() == "\r\n" ? "\r\n" : reader.LineEnd() == "\r" ? "\r" : "\n";
    }
    row_starts_.push_back(next_);
    next_ = text_.Start() + static_cast<std::size_t>(reader.Position() - text.data());
    if (!text_.IsUtf8()) {
      scratch.resize(std::max(scratch.size(), cells.size()));
      for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = text_.ToUtf8(cells[i], scratch[i]);
    }
    sink(cells);
  }
  // A long record that is not there yet is tried again once twice as much of it is: a cell may be most of
  // the file.
  if (next_ == start && end - start > kMaxRecord) text_.Fail("A row of more than 64 MiB");
  if (next_ == start) wanted_ = end - start < TextReader::kPiece ? end + 1 : start + 2 * (end - start);
  return text_.IsWhole() && next_ == end ? Reading::Done : Reading::More;
}

void CsvFile::Restart() {
  text_.Rewind();
  row_starts_.clear();
  next_ = wanted_ = 0;
}

void CsvFile::ForEachRow(const RowSink& sink, const std::function<void()>& again) {
  Restart();
  for (Reading reading = Reading::More; reading != Reading::Done;) {
    reading = ReadRows(sink);
    if (reading == Reading::Again) again();
  }
}

std::string CsvFile::RowText(std::size_t row) {
  string_view text = text_.Range(row_starts_.at(row), RecordStart(row + 1));
  if (text.ends_with('\n')) text.remove_suffix(1);
  if (text.ends_with('\r')) text.remove_suffix(1);
  std::string scratch;
  return std::string(text_.ToUtf8(text, scratch));
}

}  // namespace rowlark
