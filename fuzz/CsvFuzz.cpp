// Any bytes are a table or refused. What is saved without an edit is the same bytes; what is written with
// quotes where they are needed reads the same; after an edit that cell has the new text and all others have
// theirs.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "csv/CsvFile.h"
#include "csv/CsvWriter.h"

namespace {

using Rows = std::vector<std::vector<std::string>>;

Rows Read(rowlark::CsvFile& file) {
  Rows rows;
  file.ForEachRow(
      [&](std::span<const std::string_view> cells) { rows.emplace_back(cells.begin(), cells.end()); },
      [&] { rows.clear(); });
  return rows;
}

std::string Save(rowlark::CsvFile& file, const rowlark::CsvRewriter::Edits& edits, bool as_utf8 = false) {
  rowlark::CsvRewriter writer(file, edits, as_utf8);
  std::string bytes;
  for (std::string piece = writer.Next(); !piece.empty(); piece = writer.Next()) bytes += piece;
  return bytes;
}

void Check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(data, data + size);
  try {
    auto file = rowlark::CsvFile::Parse(bytes);
    const Rows rows = Read(file);
    for (std::size_t row = 0; row < file.RowCount(); ++row) file.RowText(row);
    Check(Save(file, {}) == bytes);

    rowlark::CsvWriter writer(rowlark::CsvFormat{});
    for (const auto& row : rows) {
      for (const auto& cell : row) writer.Cell(cell);
      writer.EndRecord();
    }
    auto written = rowlark::CsvFile::Parse(writer.Take(), ',');
    if (file.Text().TextEncoding() == rowlark::Encoding::Charset) Check(Read(written) == rows);

    if (rows.empty()) return 0;
    // Behind the last row, or in the middle, in the column that the size gives.
    const std::size_t row = size % 3 == 0 ? rows.size() + size % 2 : size % rows.size();
    const std::size_t column = size % 5;
    const rowlark::CsvRewriter::Edits edits = {{row, {{column, "a\"\r;\xC3\xA4,"}}}};
    Rows expected = rows;
    if (expected.size() <= row) expected.resize(row + 1, std::vector<std::string>{""});
    if (expected[row].size() <= column) expected[row].resize(column + 1);
    expected[row][column] = edits.at(row).at(column);
    auto edited = rowlark::CsvFile::Parse(Save(file, edits), file.Separator(),
                                          {file.Text().TextEncoding(), file.Text().TextCharset(), {}});
    if (file.Text().IsUtf8()) Check(Read(edited) == expected);
  } catch (const std::runtime_error&) {  // no text, larger than a sheet, or not to be encoded
  }
  return 0;
}
