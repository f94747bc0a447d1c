// Any XML is a workbook or refused, and its rows come in order and lie on a sheet; any code shows a number.
// The first character says what the rest is: x, o or s for the sheets of the three formats, with more parts
// behind "\n--\n"; c for a compound file. Archives are made here: the library that reads them is not ours to
// test.
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "Archive.h"
#include "csv/CsvFile.h"
#include "tables/format/NumberFormat.h"
#include "tables/workbook/WorkbookReader.h"

namespace {

class Check final : public rowlark::SheetSink {
 public:
  void Sheet(std::string_view) override { last_ = 0; }
  void Row(int32_t row, std::span<const std::string> cells) override {
    if (row <= last_ || row > static_cast<int32_t>(rowlark::CsvFile::kMaxRows)) std::abort();
    if (cells.empty() || cells.size() > rowlark::CsvFile::kMaxColumns) std::abort();
    last_ = row;
    for (const auto& cell : cells) size_ += cell.size() + 1;
    if (size_ > kEnough) throw std::length_error("enough");  // a few bytes may repeat a row a million times
  }

 private:
  static constexpr std::size_t kEnough = 1 << 20;
  int32_t last_ = 0;
  std::size_t size_ = 0;
};

std::vector<std::string> Split(const std::string& text) {
  constexpr std::string_view kBetween = "\n--\n";
  std::vector<std::string> parts;
  for (std::size_t from = 0;;) {
    const auto end = text.find(kBetween, from);
    parts.push_back(text.substr(from, end - from));
    if (end == std::string::npos) return parts;
    from = end + kBetween.size();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  auto parts = Split(std::string(data + 1, data + size));
  parts.resize(3);  // of Office Open XML: rows, strings, the code of a format
  Check check;
  try {
    const rowlark::NumberFormat format(parts[2]);
    for (const double number : {static_cast<double>(size) * 1234.5678 - 99999, 0.0, 0.5, -1e300})
      format.Number(number);
    format.Text(parts[1]);
    if (data[0] == 'x') {
      const auto archive =
          rowlark::samples::Archive(rowlark::samples::XlsxParts({{"S", parts[0]}}, parts[1], {parts[2]}));
      rowlark::ReadWorkbook(archive, check);
    } else if (data[0] == 'o') {
      rowlark::ReadOpenDocument(rowlark::samples::OdsContent(parts[0]), check);
    } else if (data[0] == 'c') {
      rowlark::ReadWorkbook("\xD0\xCF\x11\xE0" + std::string(data + 1, data + size), check);
    } else {
      rowlark::ReadXmlSpreadsheet(parts[0], check);
    }
  } catch (const std::exception&) {
  }
  return 0;
}
