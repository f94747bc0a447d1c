#include "tables/workbook/WorkbookReader.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "csv/CsvFile.h"
#include "tables/workbook/Package.h"

namespace rowlark {
namespace {

constexpr std::string_view kZip = "PK\x03\x04";
constexpr std::string_view kCompoundFile = "\xD0\xCF\x11\xE0";  // of older versions, and of encrypted ones
constexpr std::string_view kXmlSpreadsheet = "urn:schemas-microsoft-com:office:spreadsheet";
constexpr std::string_view kOpenDocument = "urn:oasis:names:tc:opendocument:xmlns:office";

bool IsXmlWith(std::string_view beginning, std::string_view name_space) {
  constexpr std::size_t kPrologue = 4096;
  beginning = beginning.substr(0, kPrologue);
  return beginning.starts_with("<?xml") && beginning.find(name_space) != std::string_view::npos;
}

std::string_view WithoutMark(std::string_view bytes) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  return bytes.substr(bytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
}

}  // namespace

bool IsWorkbook(std::string_view beginning) {
  const auto xml = WithoutMark(beginning);
  return beginning.starts_with(kZip) || beginning.starts_with(kCompoundFile) ||
         IsXmlWith(xml, kXmlSpreadsheet) || IsXmlWith(xml, kOpenDocument);
}

void ReadWorkbook(std::string_view bytes, SheetSink& sink) {
  const auto xml = WithoutMark(bytes);
  if (bytes.starts_with(kCompoundFile)) {
    throw std::runtime_error("A workbook of an old version or with a password; save it as .xlsx without one");
  }
  if (IsXmlWith(xml, kOpenDocument)) return ReadOpenDocument(xml, sink);
  if (IsXmlWith(xml, kXmlSpreadsheet)) return ReadXmlSpreadsheet(xml, sink);
  const Package package(bytes);
  if (package.Has("_rels/.rels")) return ReadOfficeOpenXml(package, sink);
  const auto content = package.Read("content.xml");
  if (!content) throw std::runtime_error("No workbook is in this archive");
  ReadOpenDocument(*content, sink);
}

void RowBuilder::StartSheet(std::string_view name) {
  row_ = 1;
  cells_.clear();
  sink_.Sheet(name);
}

void RowBuilder::StartRow(std::size_t row) {
  if (row < row_) throw std::runtime_error("Rows out of order");
  row_ = row;
}

void RowBuilder::Put(std::size_t column, std::string_view text) {
  if (text.empty()) return;
  if (column == 0 || column > CsvFile::kMaxColumns) throw std::runtime_error("More than 16,384 columns");
  if (cells_.size() < column) cells_.resize(column);
  cells_[column - 1] = text;
}

void RowBuilder::EndRow(std::size_t times) {
  if (cells_.empty()) {
    // An empty row may stand for all that the sheet has left.
    row_ = std::min(row_, CsvFile::kMaxRows) + std::min(times, CsvFile::kMaxRows);
    return;
  }
  for (; times > 0; --times, ++row_) {
    if (row_ > CsvFile::kMaxRows) throw std::runtime_error("More than 1,048,576 rows");
    sink_.Row(static_cast<int32_t>(row_), cells_);
  }
  cells_.clear();
}

}  // namespace rowlark
