#include "SearchCommand.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host/Block.h"
#include "tables/Document.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using standalone::RowRun;

// A sheet of a document, made the active one.
struct Table {
  Table(const SearchArguments& arguments, Program& program)
      : document(program.OpenDocument(arguments.file, arguments.input)) {
    while (document->Step()) {
    }
    if (const auto cut = document->CutTexts(); cut > 0) {
      const auto told = program.Text(u"Terminal.Status.Cut", u"too long texts cut: %1", {ToText(cut)});
      std::fprintf(stderr, "rowlark: %s: %s\n", arguments.file.c_str(), ToUtf8(told).c_str());
    }
    if (!arguments.sheet.empty()) Activate(ToUtf16(arguments.sheet));
    sheet = &document->ActiveSheet();
    sheet->SetHeadRows(arguments.head_rows);
  }

  void Activate(const std::u16string& name) const {
    std::string names;
    for (const auto& one : document->Sheets()) {
      if (Compare(one->Name(), name, CompareMode::Text) == 0) return document->Workbook()->ActivateSheet(one);
      names += (names.empty() ? "" : ", ") + ToUtf8(one->Name());
    }
    throw std::runtime_error("--sheet: no sheet '" + ToUtf8(name) + "' in the file (" + names + ")");
  }

  std::unique_ptr<Document> document;
  Ref<standalone::Worksheet> sheet;
};

// Lays another profile over that of the active workbook for as long as it lives: what was asked for on the
// command line is not to be stored.
class ProfileOverlay {
 public:
  ProfileOverlay(clsVTRLKItems& items, const std::shared_ptr<clsVTRLKItem>& profile)
      : items_(items), name_(profile->Name()), own_(items.ByName(name_)) {
    if (own_) {
      items_.SetByName(name_, profile);
    } else {
      items_.Add(profile);
    }
  }
  ProfileOverlay(const ProfileOverlay&) = delete;
  ProfileOverlay& operator=(const ProfileOverlay&) = delete;
  ~ProfileOverlay() {
    if (own_) {
      items_.SetByName(name_, own_);
    } else {
      items_.Remove(name_);
    }
  }

 private:
  clsVTRLKItems& items_;
  const std::u16string name_;
  const std::shared_ptr<clsVTRLKItem> own_;  // null when the workbook has none
};

// The column of these letters, one of the sheet; 0 for anything else.
int32_t ColumnOfLetters(const Table& table, const std::string& letters) {
  const auto is_letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  if (letters.empty() || !std::ranges::all_of(letters, is_letter)) return 0;
  try {
    return table.sheet->Range(ToUtf16(letters + "1"))->Column();
  } catch (const host::Error&) {
    return 0;
  }
}

// The number of a column of the table; `option` is where it was named.
int32_t ColumnNumber(const Table& table, const char* option, const std::string& name) {
  const auto used = table.sheet->UsedBlock();
  const int32_t column = ColumnOfLetters(table, name);
  if (used.first_column <= column && column <= used.last_column) return column;
  for (int32_t named = used.first_column; named <= used.last_column && !name.empty(); ++named) {
    const auto head = ToUtf16(table.sheet->Text().Cell(used.first_row, named));
    if (Compare(head, ToUtf16(name), CompareMode::Text) == 0) return named;
  }
  throw std::runtime_error(std::string(option) + ": no column '" + name + "' in the table (" +
                           ToUtf8(ColumnLetters(used.first_column)) + " to " +
                           ToUtf8(ColumnLetters(used.last_column)) + ")");
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
  profile.SetBlock(Block::Of(*range));
}

void SetFilters(const Table& table, const std::vector<ColumnFilter>& filters) {
  std::vector<int32_t> filtered;
  for (const ColumnFilter& filter : filters) {
    const int32_t column = ColumnNumber(table, "--filter", filter.column);
    if (std::ranges::find(filtered, column) != filtered.end()) {
      throw std::runtime_error("--filter: column " + filter.column + " is filtered twice");
    }
    filtered.push_back(column);
    const auto used = table.sheet->UsedBlock();
    host::AutoFilterArguments set;
    set.Field = column - used.first_column + 1;
    set.Criteria1 = ToUtf16(filter.criterion);
    table.sheet->MakeRange(used)->AutoFilter(set);
  }
}

void SetProfile(const Table& table, const SearchArguments& arguments, clsVTRLKItem& profile) {
  if (!arguments.range.empty()) SetRange(table, arguments.range, profile);
  std::u16string columns;
  for (const auto& name : Columns(ToUtf16(arguments.columns)).Names())
    columns += (columns.empty() ? u"" : u",") + ColumnLetters(ColumnNumber(table, "--columns", ToUtf8(name)));
  if (!columns.empty()) profile.SearchCols = columns;
  if (arguments.jump.empty()) return;
  profile.SelectCol = ColumnOfLetters(table, arguments.jump);  // also one beside the table
  if (profile.SelectCol == 0) profile.SelectCol = ColumnNumber(table, "--jump", arguments.jump);
}

// Calls visit(RowRun) for every run of visible rows below the head.
template <class Visit>
void ForEachVisibleRun(const Table& table, Visit&& visit) {
  if (const auto& used = table.sheet->Text().Used())
    table.sheet->HiddenRows().ForEachRun(used->first_row + table.sheet->HeadRows(), used->last_row, false,
                                         visit);
}

// One object on one line. The blocks may be very many, so they go out one by one.
void PrintJson(const Table& table, const host::Range& active_cell, bool found, const std::string& error,
               const std::string& search_range, double milliseconds, Output& output) {
  const auto field = [](const char* name, const nlohmann::json& value) {
    return nlohmann::json(name).dump() + ':' + value.dump();
  };
  output.Write('{' + field("found", found) + ',' + field("error", error) + ',' +
               field("activeCell", ToUtf8(PlainAddress(active_cell))) + ",\"visibleRows\":[");
  const char* separator = "";
  ForEachVisibleRun(table, [&](RowRun run) {
    output.Write(separator + nlohmann::json{run.first, run.last}.dump());
    separator = ",";
  });
  output.Write("]," + field("searchRange", search_range) + ',' + field("milliseconds", milliseconds) + "}\n");
}

void PrintRows(const Table& table, Print print, Output& output) {
  const auto write = [&](RowRun run) {
    for (int32_t row = run.first; row <= run.last; ++row) {
      if (print == Print::Rows) {
        output.Write(std::to_string(row) + '\n');
      } else {
        output.Write(table.document->RowText(*table.sheet, row));
        output.Write(table.document->LineEnd());
      }
    }
  };
  if (print == Print::Csv) {
    const auto used = table.sheet->UsedBlock();
    write({used.first_row, std::min(used.last_row, used.first_row + table.sheet->HeadRows() - 1)});
  }
  ForEachVisibleRun(table, write);
}

}  // namespace

int RunSearch(const SearchArguments& arguments, Program& program, Output& output) {
  const Table table(arguments, program);
  SetFilters(table, arguments.filters);

  clsVTRLKRuntime& runtime = program.Runtime();
  clsVTRLKOptions& options = *runtime.SearchOptions;
  options.CompareMethod = arguments.match_case ? CompareMode::Binary : CompareMode::Text;
  options.SearchWords = arguments.words;
  options.UseFilter = !arguments.go_to;

  OperationResult result;
  std::u16string range;
  std::chrono::duration<double, std::milli> time{};
  {
    const auto workbook = program.Host()->ActiveWorkbook();
    const auto profile = program.Items().ForWorkbook(workbook->Name())->Clone(workbook->FullName());
    SetProfile(table, arguments, *profile);
    const ProfileOverlay overlay(program.Items(), profile);

    const auto detected = profile->Clone();
    runtime.DetectSearchRange(*table.sheet, *detected);
    range = detected->SearchRange();

    const auto start = std::chrono::steady_clock::now();
    result = runtime.RunSearch(ToUtf16(arguments.text));
    time = std::chrono::steady_clock::now() - start;
  }
  const bool found = result.outcome == Outcome::Done;
  if (found && arguments.remember) program.Items().RecentItems->Add(ToUtf16(arguments.text));
  program.Save();

  const std::string error = ToUtf8(result.error);
  const auto active_cell = program.Host()->ActiveCell();
  if (arguments.print == Print::Json) {
    PrintJson(table, *active_cell, found, error, ToUtf8(range), time.count(), output);
  } else if (found && arguments.go_to) {
    output.Write(ToUtf8(PlainAddress(*active_cell)) + '\n');
  } else if (found) {
    PrintRows(table, arguments.print, output);
  }
  if (found) return 0;
  std::fprintf(stderr, "rowlark: %s\n", error.c_str());
  return result.outcome == Outcome::NotFound ? 1 : 2;
}

}  // namespace rowlark
