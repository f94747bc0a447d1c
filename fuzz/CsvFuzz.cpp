// Any bytes are a table or refused; what is read and written with full quoting reads the same.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "CsvFile.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows Read(rowlark::CsvFile& file) {
  Rows rows;
  file.ForEachRow(
      [&](std::span<const std::string_view> cells) { rows.emplace_back(cells.begin(), cells.end()); });
  return rows;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  try {
    auto file = rowlark::CsvFile::Parse(std::string(data, data + size));
    const Rows rows = Read(file);
    std::string quoted = "\xEF\xBB\xBF";
    for (const auto& row : rows) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        if (i > 0) quoted += ',';
        quoted += '"';
        for (const char c : row[i]) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
        quoted += '"';
      }
      quoted += '\n';
    }
    auto again = rowlark::CsvFile::Parse(quoted, ',');
    if (Read(again) != rows) std::abort();
    for (std::size_t row = 0; row < file.RowCount(); ++row) file.RowText(row);
  } catch (const std::runtime_error&) {  // no text, or larger than a sheet
  }
  return 0;
}
