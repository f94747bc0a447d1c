#include "SearchCommand.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "CsvFile.h"
#include "host/standalone/Application.h"
#include "host/standalone/ScriptedMessagePump.h"
#include "runtime/clsVTRLKRuntime.h"
#include "settings/SharedState.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

// A table opened as the active sheet of a workbook of its own.
struct Table {
  explicit Table(const SearchArguments& arguments)
      : file(CsvFile::Open(arguments.file, arguments.separator)) {
    application->AddWorkbook(ToUtf16(arguments.file.string()));
    sheet = static_cast<standalone::Worksheet*>(application->ActiveSheet().get());
    file.ForEachRow([this](std::span<const std::string_view> cells) { sheet->AppendRow(cells); });
  }

  CsvFile file;
  Ref<standalone::Application> application = MakeRef<standalone::Application>();
  Ref<standalone::Worksheet> sheet;
};

// Address without the dollar signs: "B7".
std::string PlainAddress(const host::Range& range) {
  std::string address = ToUtf8(range.Address());
  std::erase(address, '$');
  return address;
}

// The number of a column of the table, by its letters; `option` is where they were given.
int32_t ColumnNumber(const Table& table, const char* option, const std::string& letters) {
  const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  const Ref<host::Range> used = table.sheet->UsedRange();
  const int32_t first = used->Column();
  const int32_t last = first + used->ColumnsCount() - 1;
  if (!letters.empty() && std::ranges::all_of(letters, is_letter)) {
    try {
      const int32_t column = table.sheet->Range(ToUtf16(letters + "1"))->Column();
      if (first <= column && column <= last) return column;
    } catch (const host::Error&) {  // beyond the sheet, so beyond the table
    }
  }
  const auto name = [&](int32_t column) {
    const std::string address = PlainAddress(*table.sheet->Cells(1, column));
    return address.substr(0, address.size() - 1);
  };
  throw std::runtime_error(std::string(option) + ": no column '" + letters + "' in the table (" +
                           name(first) + " to " + name(last) + ")");
}

void SetRange(const Table& table, const std::string& address, clsVTRLKItem& profile) {
  const auto fail = [&] { throw std::runtime_error("--range: not a block of cells: " + address); };
  Ref<host::Range> range;
  try {
    range = table.sheet->Range(ToUtf16(address));
  } catch (const host::Error&) {
    fail();
  }
  if (range->AreasCount() != 1) fail();
  profile.SetStartRow(range->Row());
  profile.SetStartCol(range->Column());
  profile.SetEndRow(range->Row() + range->RowsCount() - 1);
  profile.SetEndCol(range->Column() + range->ColumnsCount() - 1);
}

void SetFilters(const Table& table, const std::vector<ColumnFilter>& filters) {
  std::vector<int32_t> filtered;
  for (const ColumnFilter& filter : filters) {
    const int32_t column = ColumnNumber(table, "--filter", filter.column);
    if (std::ranges::find(filtered, column) != filtered.end()) {
      throw std::runtime_error("--filter: column " + filter.column + " is filtered twice");
    }
    filtered.push_back(column);
    const Ref<host::Range> used = table.sheet->UsedRange();
    host::AutoFilterArguments set;
    set.Field = column - used->Column() + 1;
    set.Criteria1 = ToUtf16(filter.criterion);
    used->AutoFilter(set);
  }
}

void SetProfile(const Table& table, const SearchArguments& arguments, clsVTRLKItem& profile) {
  if (!arguments.range.empty()) SetRange(table, arguments.range, profile);
  const std::string& columns = arguments.columns;
  for (std::size_t from = 0, comma = 0; !columns.empty() && comma != std::string::npos; from = comma + 1) {
    comma = columns.find(',', from);
    ColumnNumber(table, "--columns", columns.substr(from, comma - from));
  }
  profile.SearchCols = ToUtf16(columns);
  if (!arguments.jump.empty()) profile.SelectCol = ColumnNumber(table, "--jump", arguments.jump);
}

// Calls visit(first, last) for every block of visible rows of the used range.
template <class Visit>
void ForEachVisibleBlock(const Table& table, Visit&& visit) {
  const auto& used = table.sheet->Text().Used();
  if (!used) return;
  const auto& hidden = table.sheet->HiddenRows();
  for (int32_t row = hidden.Next(used->first_row, used->last_row, false); row <= used->last_row;) {
    const int32_t end = hidden.Next(row, used->last_row, true);
    visit(row, end - 1);
    row = hidden.Next(end, used->last_row, false);
  }
}

// One object on one line. The blocks may be very many, so they go out one by one.
void PrintJson(const Table& table, bool found, const std::string& error, const std::string& search_range,
               double milliseconds, Output& output) {
  const auto field = [](const char* name, const nlohmann::json& value) {
    return nlohmann::json(name).dump() + ':' + value.dump();
  };
  output.Write('{' + field("found", found) + ',' + field("error", error) + ',' +
               field("activeCell", PlainAddress(*table.application->ActiveCell())) + ",\"visibleRows\":[");
  const char* separator = "";
  ForEachVisibleBlock(table, [&](int32_t first, int32_t last) {
    output.Write(separator + nlohmann::json{first, last}.dump());
    separator = ",";
  });
  output.Write("]," + field("searchRange", search_range) + ',' + field("milliseconds", milliseconds) + "}\n");
}

void PrintRows(const Table& table, Print print, Output& output) {
  ForEachVisibleBlock(table, [&](int32_t first, int32_t last) {
    for (int32_t row = first; row <= last; ++row) {
      if (print == Print::Rows) {
        output.Write(std::to_string(row) + '\n');
      } else {
        output.Write(table.file.RowText(static_cast<std::size_t>(row) - 1));
        output.Write(table.file.LineEnd());
      }
    }
  });
}

}  // namespace

int RunSearch(const SearchArguments& arguments, Output& output) {
  const Table table(arguments);
  SetFilters(table, arguments.filters);

  standalone::ScriptedMessagePump pump;
  SharedState shared(pump);
  clsVTRLKRuntime runtime(shared);
  runtime.SetExcelApp(table.application);
  clsVTRLKOptions& options = *runtime.SearchOptions;
  options.CompareMethod = arguments.match_case ? CompareMode::Binary : CompareMode::Text;
  options.SearchWords = arguments.words;
  options.UseFilter = !arguments.go_to;
  clsVTRLKItem& profile = *runtime.Items->DefaultItem;
  SetProfile(table, arguments, profile);

  auto detected = profile.Clone();
  runtime.DetectSearchRange(*table.sheet, *detected);

  const auto start = std::chrono::steady_clock::now();
  std::u16string reason;
  const bool found = runtime.Search(ToUtf16(arguments.text), reason);
  const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;

  const std::string error = ToUtf8(reason);
  if (arguments.print == Print::Json) {
    PrintJson(table, found, error, ToUtf8(detected->SearchRange()), time.count(), output);
  } else if (found && arguments.go_to) {
    output.Write(PlainAddress(*table.application->ActiveCell()) + '\n');
  } else if (found) {
    PrintRows(table, arguments.print, output);
  }
  if (found) return 0;
  std::fprintf(stderr, "rowlark: %s\n", error.c_str());
  return reason == runtime.Language().GetText(u"Err.SearchTextNotFound", u"Text not found") ? 1 : 2;
}

}  // namespace rowlark
