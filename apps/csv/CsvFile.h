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

namespace rowlark {

class CsvFile {
 public:
  // The size of a sheet.
  static constexpr std::size_t kMaxRows = 1'048'576;
  static constexpr std::size_t kMaxColumns = 16'384;

  // The cells of one row, valid during the call only. An empty line is a row of one empty cell.
  using RowSink = std::function<void(std::span<const std::string_view> cells)>;

  // Reads UTF-8 (with or without a mark), UTF-16 (with a mark) or, where the bytes are not UTF-8,
  // Windows-1252. Without `separator` the file's first records decide between comma, semicolon and tab.
  // Throws std::runtime_error("path: reason") when there is no readable text.
  static CsvFile Open(const std::filesystem::path& path, std::optional<char> separator = std::nullopt);

  // The same for bytes at hand.
  static CsvFile Parse(std::string bytes, std::optional<char> separator = std::nullopt);

  // Hands every row to `sink`, in order. Throws std::runtime_error when the file is larger than a sheet.
  void ForEachRow(const RowSink& sink);

  // What the last ForEachRow has met; rows count from 0.
  std::size_t RowCount() const noexcept { return row_starts_.size(); }
  // The record as the file has it, quotes and all, without its line end.
  std::string_view RowText(std::size_t row) const;
  // The first line end outside quotes; LF when there is none.
  std::string_view LineEnd() const noexcept { return line_end_; }

  char Separator() const noexcept { return separator_; }

 private:
  CsvFile(std::string path, std::shared_ptr<const void> storage, std::string_view bytes,
          std::optional<char> separator);

  std::string path_;
  std::shared_ptr<const void> storage_;  // keeps alive what text_ looks at: a mapped file or a converted copy
  std::string_view text_;                // the whole file in UTF-8, without its mark
  char separator_ = ',';
  std::string_view line_end_ = "\n";
  std::vector<std::size_t> row_starts_;  // offsets into text_
};

}  // namespace rowlark
