// Writes comma-separated values.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "csv/CsvFile.h"

namespace rowlark {

// How a file is written.
struct CsvFormat {
  char separator = ',';
  std::string_view line_end = "\r\n";
  Encoding encoding = Encoding::Utf8;
  bool mark = true;                                  // begins with a byte order mark
  std::shared_ptr<const Charset> charset = nullptr;  // for Encoding::Charset
};

// The format of a file that was read; `as_utf8`: but in UTF-8 with a mark.
CsvFormat FormatOf(CsvFile& file, bool as_utf8);

// The encoding does not have a character of a text, or would be taken for another one.
struct NotEncodable : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Cells and records in the order of the file, as bytes.
class CsvWriter {
 public:
  explicit CsvWriter(const CsvFormat& format);

  // A cell of the record, in quotes where it needs them; UTF-8. Throws NotEncodable.
  void Cell(std::string_view text);
  // Begins a cell whose text comes as it stands in a file, with Raw.
  void BeginCell();
  // Part of a text of the same format: its bytes, or UTF-8 for UTF-16.
  void Raw(std::string_view text);
  void EndRecord(std::string_view line_end);
  void EndRecord() { EndRecord(format_.line_end); }
  void RawByte(char byte);

  // What has been written since the last call.
  std::string Take();
  // Throws NotEncodable where what was written in a character set would be read as UTF-8.
  void CheckEncoding() const;

 private:
  bool LooksMarked(std::string_view text) const;
  void Put(std::string_view utf8);

  CsvFormat format_;
  std::string bytes_;
  bool at_start_ = true;    // of the file
  char last_ = 0;           // character of what was written
  bool in_record_ = false;  // behind a cell
  bool looks_utf8_ = true;  // what has been written is UTF-8 as well
  bool looks_ascii_ = true;
};

// Writes a file that has been read anew, with other texts in some cells and everything else byte for byte as
// it was.
class CsvRewriter {
 public:
  // The place of a cell, row and column from 0, and its text.
  using Edits = std::map<std::size_t, std::map<std::size_t, std::string>>;

  // `as_utf8`: in UTF-8 with a mark instead of the file's own encoding. Rows behind those handed out can be
  // changed when all of them were.
  CsvRewriter(CsvFile& file, Edits edits, bool as_utf8);

  // The next piece; empty at the end. Throws as CsvWriter, and when the file can not be read any more.
  std::string Next();
  double Fraction() const noexcept;

  // The cell written last, for errors. Counts from 0.
  std::size_t Row() const noexcept { return row_; }
  std::size_t Column() const noexcept { return column_; }

 private:
  std::size_t TextEnd() const noexcept { return text_.Start() + text_.Text().size(); }
  void Copy(std::size_t start, std::size_t end);
  void PutRaw(std::string_view part, bool is_end);
  void CopyRecords();
  void CopyRest();
  void WriteRecord(const std::map<std::size_t, std::string>& texts);

  CsvFile& file_;
  TextReader& text_;
  Edits edits_;
  bool converts_;
  CsvWriter writer_;
  std::size_t row_ = 0;
  std::size_t column_ = 0;
  std::size_t rest_;        // where the records that were not handed out begin
  bool ends_bare_ = false;  // the last record had no line end
  bool done_ = false;
};

}  // namespace rowlark
