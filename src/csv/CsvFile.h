// A file of comma-separated values, read as rows of UTF-8 cells.
//
// Quoting is that of RFC 4180, read leniently: a quoted cell may hold separators, line breaks and doubled
// quotes; a quote inside an unquoted cell stands for itself; what follows a closing quote belongs to the cell
// as it stands; a quote that is never closed takes the rest of the file. Lines end in CRLF, LF or CR.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "csv/RecordReader.h"
#include "csv/TextReader.h"

namespace rowlark {

class CsvFile {
 public:
  // The size of a sheet.
  static constexpr std::size_t kMaxRows = 1'048'576;
  static constexpr std::size_t kMaxColumns = RecordReader::kMaxColumns;
  // Bytes of a record, which is in memory as a whole: no cell of a sheet holds nearly as many.
  static constexpr std::size_t kMaxRecord = 1 << 26;

  // The cells of one row, valid during the call only. An empty line is a row of one empty cell.
  using RowSink = std::function<void(std::span<const std::string_view> cells)>;

  // What reading on has come to.
  enum class Reading {
    More,
    Done,
    // The file has another encoding or another separator than it had seemed (it is no UTF-8 after all): what
    // was handed out so far was read wrongly and comes once more, from the first row.
    Again,
  };

  // Reads the first piece of a text; see TextReader for its encodings. Without `separator` that is found by
  // what most of the first records agree on. Throws std::runtime_error("path: reason") when there is no
  // readable text.
  static CsvFile Open(const std::filesystem::path& path, std::optional<char> separator = std::nullopt,
                      const TextOptions& options = {});

  // As Open, for bytes at hand.
  static CsvFile Parse(const std::string& bytes, std::optional<char> separator = std::nullopt,
                       const TextOptions& options = {});

  CsvFile(TextReader text, std::optional<char> separator);

  // Hands the rows of one piece of the file (about a millisecond's work) to `sink`, in order; of a source
  // that grows those that are there. Throws std::runtime_error when the file can not be read on, is no text
  // or is larger than a sheet.
  Reading ReadRows(const RowSink& sink);

  // Hands every row to `sink`, from the first one on. Calls `again` where what was handed out is to be
  // forgotten.
  void ForEachRow(const RowSink& sink, const std::function<void()>& again);

  // Of the file's size, what has been read.
  double Fraction() const noexcept { return text_.Fraction(); }

  // The rows handed out. Rows count from 0.
  std::size_t RowCount() const noexcept { return row_starts_.size(); }
  // The record as the file has it, quotes and all, without its line end; as UTF-8.
  std::string RowText(std::size_t row);
  // The first line end outside quotes; LF when there is none.
  std::string_view LineEnd() const noexcept { return line_end_; }

  char Separator() const noexcept { return separator_; }

  // For writing the file anew: its text and where the records begin in it; for the row behind the last one,
  // where the rows not yet handed out do.
  TextReader& Text() noexcept { return text_; }
  std::size_t RecordStart(std::size_t row) const { return row < RowCount() ? row_starts_[row] : next_; }

 private:
  void FindSeparator();
  void Restart();

  TextReader text_;
  char separator_;
  bool separator_is_known_;
  std::string_view line_end_ = "\n";
  std::vector<std::size_t> row_starts_;  // offsets into the text
  std::size_t next_ = 0;                 // and the record after them
  std::size_t wanted_ = 0;               // text to be there before that record is tried again
};

}  // namespace rowlark
