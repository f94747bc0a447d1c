#include "tables/workbook/WorkbookReader.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "csv/CsvFile.h"
#include "tables/workbook/CompoundFile.h"
#include "tables/workbook/EncryptedPackage.h"
#include "tables/workbook/Package.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

constexpr std::string_view kZip = "PK\x03\x04";
constexpr std::string_view kCompoundFile = "\xD0\xCF\x11\xE0";  // of older versions, and of encrypted ones
constexpr std::string_view kXmlSpreadsheet = "urn:schemas-microsoft-com:office:spreadsheet";
constexpr std::string_view kOpenDocument = "urn:oasis:names:tc:opendocument:xmlns:office";

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kXml = "<?xml";
constexpr std::size_t kPrologue = 4096;

bool IsXmlWith(std::string_view beginning, std::string_view name_space) {
  beginning = beginning.substr(0, kPrologue);
  return beginning.starts_with(kXml) && beginning.find(name_space) != std::string_view::npos;
}

constexpr std::size_t kMaxCellLength = 32'767;  // in units of UTF-16

// Without blanks at the ends.
std::string_view WithoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string_view CutToCell(std::string_view text) {
  if (text.size() <= kMaxCellLength) return text;
  auto rest = text;
  for (std::size_t length = 0; !rest.empty();) {
    const auto before = rest;
    length += TakeUtf8(rest) > 0xFFFF ? 2 : 1;
    if (length > kMaxCellLength) return text.substr(0, text.size() - before.size());
  }
  return text;
}

std::string_view WithoutMark(std::string_view bytes) {
  return bytes.substr(bytes.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
}

// XML without what may stand before it.
std::string_view XmlOf(std::string_view bytes) { return WithoutBlanks(WithoutMark(bytes)); }

void ReadCompoundFile(std::string_view bytes, SheetSink& sink) {
  const auto archive = DecryptPackage(CompoundFile(bytes));
  if (!archive) throw std::runtime_error("A workbook of an old version; save it as .xlsx");
  ReadOfficeOpenXml(Package(*archive), sink);
}

}  // namespace

bool IsWorkbook(std::string_view beginning) {
  const auto xml = XmlOf(beginning);
  return beginning.starts_with(kZip) || beginning.starts_with(kCompoundFile) ||
         IsXmlWith(xml, kXmlSpreadsheet) || IsXmlWith(xml, kOpenDocument);
}

bool MayBeWorkbook(std::string_view beginning) {
  if (IsWorkbook(beginning)) return false;
  const auto xml = WithoutMark(beginning);
  if (xml.starts_with(kXml)) return xml.size() < kPrologue;
  const auto begins = [](std::string_view whole, std::string_view part) { return whole.starts_with(part); };
  return begins(kXml, xml) || begins(kUtf8Mark, beginning) || begins(kZip, beginning) ||
         begins(kCompoundFile, beginning);
}

void ReadWorkbook(std::string_view bytes, SheetSink& sink) {
  const auto xml = XmlOf(bytes);
  if (bytes.starts_with(kCompoundFile)) return ReadCompoundFile(bytes, sink);
  if (IsXmlWith(xml, kOpenDocument)) return ReadOpenDocument(xml, sink);
  if (IsXmlWith(xml, kXmlSpreadsheet)) return ReadXmlSpreadsheet(xml, sink);
  const Package package(bytes);
  if (package.Has("_rels/.rels")) return ReadOfficeOpenXml(package, sink);
  ReadOpenDocument(package, sink);
}

void AppendToCell(std::string& text, std::string_view more) {
  constexpr std::size_t kMaxBytes = 3 * kMaxCellLength;  // at most, of a unit of UTF-16
  if (text.size() <= kMaxBytes) text += more;
}

std::optional<double> CellNumber(std::string_view text) {
  text = WithoutBlanks(text);
  double number = 0;
  const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failed != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string FormulaText(std::string_view formula) { return '=' + std::string(formula); }

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
  const auto held = CutToCell(text);
  if (held.size() < text.size()) sink_.Cut();
  cells_[column - 1] = held;
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
