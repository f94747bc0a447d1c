// Cuts a text into records, and these into cells, by the rules of CsvFile. The text may be in any encoding
// that holds ASCII as it is.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark {

class RecordReader {
 public:
  // Of a record with more cells than this only one cell more is kept.
  static constexpr std::size_t kMaxColumns = 16'384;

  // `whole`: nothing follows behind the text. Otherwise a record counts as cut off unless it ends in LF or
  // something stands behind its CR.
  RecordReader(std::string_view text, char separator, bool whole = true)
      : at_(text.data()), end_(text.data() + text.size()), separator_(separator), whole_(whole) {}

  // The next record's cells, valid until the next call; `raw`, if given, gets them as they are written.
  // False, and still before the record, at the end of the text or when the record may be cut off.
  bool Next(std::vector<std::string_view>& cells, std::vector<std::string_view>* raw = nullptr);

  const char* Position() const noexcept { return at_; }
  // The line end of the last record; empty at the end of the text.
  std::string_view LineEnd() const noexcept { return line_end_; }
  // Whether the last record's last cell begins with a quote that is never closed.
  bool IsUnclosed() const noexcept { return unclosed_; }

 private:
  std::string_view PlainText();
  std::string_view QuotedCell();
  std::string_view QuotedPart();
  void TakeLineEnd();
  bool IsDelimiter(char c) const noexcept { return c == separator_ || c == '\n' || c == '\r'; }
  const char* FindDelimiter(const char* at) const noexcept;

  const char* at_;
  const char* end_;
  char separator_;
  bool whole_;
  bool unclosed_ = false;
  std::string_view line_end_;
  // Cells whose text does not stand in the file in one piece; the strings are used again for every record.
  std::deque<std::string> scratch_;
  std::size_t scratch_used_ = 0;
};

}  // namespace rowlark
