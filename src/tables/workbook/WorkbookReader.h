// Reads the sheets of workbooks: Office Open XML (.xlsx), OpenDocument (.ods, .fods) and XML Spreadsheet
// 2003. Cells come as the spreadsheet shows them: formulas with the results stored in the file, numbers and
// dates in their formats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark {

// Takes the sheets, one after the other, and the rows of each from the first one on. Empty rows are left out.
class SheetSink {
 public:
  virtual ~SheetSink() = default;
  virtual void Sheet(std::string_view name) = 0;
  // Rows count from 1; texts may hold malformed UTF-8.
  virtual void Row(int32_t row, std::span<const std::string> cells) = 0;
  // A text of the next row is longer than a cell holds; the rest of it is left out.
  virtual void Cut() {}
  // How much of all has been read, 0 to 1; now and then.
  virtual void Progress(double) {}
  // What was read is no workbook but a text: its next part, as it stands.
  virtual void Text(std::string_view) {}
};

// Whether the first bytes of a file are those of a workbook, also one that can not be read.
bool IsWorkbook(std::string_view beginning);
// Whether they are not, and more bytes could make them so.
bool MayBeWorkbook(std::string_view beginning);

// Throws std::exception with the reason when it can not be read.
void ReadWorkbook(std::string_view bytes, SheetSink& sink);

// Adds to the text of a cell, which may become longer than a cell holds but not without bound.
void AppendToCell(std::string& text, std::string_view more);
// The number that a cell stores; nothing where that is none.
std::optional<double> CellNumber(std::string_view text);
// What is shown of a formula whose result is not in the file: the formula.
std::string FormulaText(std::string_view formula);

// Builds rows in order and within the bounds of a sheet.
class RowBuilder {
 public:
  explicit RowBuilder(SheetSink& sink) : sink_(sink) {}

  void StartSheet(std::string_view name);
  void Progress(double fraction) { sink_.Progress(fraction); }
  // Ends the row at hand and goes to that one, from 1; throws when it lies before.
  void StartRow(std::size_t row);
  std::size_t Row() const noexcept { return row_; }
  // Puts a text into a column, from 1; of a long one what a cell holds, 32,767 characters. Throws beyond the
  // sheet.
  void Put(std::size_t column, std::string_view text);
  // The row at hand so many times.
  void EndRow(std::size_t times = 1);

 private:
  SheetSink& sink_;
  std::size_t row_ = 1;
  std::vector<std::string> cells_;
};

// The readers of the formats.
class Package;
void ReadOfficeOpenXml(const Package& package, SheetSink& sink);
void ReadOpenDocument(const Package& package, SheetSink& sink);
void ReadOpenDocument(std::string_view content, SheetSink& sink);  // of a file that is no archive
void ReadXmlSpreadsheet(std::string_view content, SheetSink& sink);

}  // namespace rowlark
