// A small sheet written down as text, for tests: rows apart by '|', cells by ','.
#pragma once

#include <string>
#include <string_view>

#include "host/Block.h"
#include "host/cells/Range.h"
#include "host/standalone/Application.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::testing {

// An application with one workbook, whose one sheet holds the cells.
struct SampleHost {
  explicit SampleHost(std::string_view cells, std::u16string_view book_name = u"C:\\Data\\Book1.xls",
                      std::u16string_view version = u"16.0", bool read_only = false)
      : application(MakeRef<standalone::Application>(version)),
        book(application->AddWorkbook(book_name, read_only)),
        sheet(static_cast<standalone::Worksheet*>(book->ActiveSheet().get())) {
    if (cells.empty()) return;
    for (const auto row : Pieces(cells, "|")) sheet->AppendRow(Pieces(row, ","));
  }

  // "1 2 5": the rows from 1 to `last` that are visible.
  std::string VisibleRows(int32_t last) const {
    std::string rows;
    for (int32_t row = 1; row <= last; ++row) {
      if (sheet->HiddenRows().Contains(row)) continue;
      if (!rows.empty()) rows += ' ';
      rows += std::to_string(row);
    }
    return rows;
  }
  std::string ActiveCell() const { return Plain(*application->ActiveCell()); }

  // The address without dollar signs.
  static std::string Plain(const host::Range& range) { return ToUtf8(PlainAddress(range)); }

  Ref<standalone::Application> application;
  Ref<standalone::Workbook> book;
  Ref<standalone::Worksheet> sheet;
};

}  // namespace rowlark::testing
