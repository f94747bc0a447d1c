#include "SettingsCommands.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "host/Block.h"
#include "host/Error.h"
#include "host/cells/Address.h"
#include "util/FileSystemPlatform.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

constexpr const char* kDefault = "default";

std::u16string FileName(const std::string& workbook) {
  return std::u16string(clsVTRLKItem::NameOf(platform::ToText(workbook)));
}

// The profile of a workbook, or null; `kDefault` names the default profile.
std::shared_ptr<clsVTRLKItem> Find(const std::string& workbook, Program& program) {
  if (workbook == kDefault) return program.Items().DefaultItem;
  auto item = program.Items().ByName(FileName(workbook));
  if (!item) std::fprintf(stderr, "rowlark: no profile '%s'\n", ToUtf8(FileName(workbook)).c_str());
  return item;
}

// Addresses are read by a sheet; any will do.
Ref<host::Range> Evaluate(const std::string& address, const char* option, const std::string& given,
                          Program& program) {
  const auto fail = [&] { throw std::runtime_error(std::string(option) + ": not on a sheet: " + given); };
  Ref<host::Range> range;
  try {
    range = program.Host()->ActiveSheet()->Range(ToUtf16(address));
  } catch (const host::Error&) {
    fail();
  }
  if (range->AreasCount() != 1) fail();
  return range;
}

void SetRange(clsVTRLKItem& item, const std::string& address, Program& program) {
  item.SetBlock(address == "auto" ? Block() : Block::Of(*Evaluate(address, "--range", address, program)));
}

void SetColumns(clsVTRLKItem& item, const std::string& columns, Program& program) {
  item.SearchCols.clear();
  if (columns == "all") return;
  const auto text = ToUtf16(columns);
  for (const auto& name : Columns(text).Names()) Evaluate(ToUtf8(name) + "1", "--columns", columns, program);
  item.SearchCols = ToUpper(text);
}

void RequireSaved(Program& program) {
  if (!program.Save()) throw std::runtime_error("the settings were not saved");
}

// A cell on the sheet: what lies beyond its edges is at them.
Ref<host::Range> CellAt(int32_t row, int32_t column, Program& program) {
  return program.Host()->ActiveSheet()->Cells(std::min(row, cells::kMaxRow),
                                              std::min(column, cells::kMaxColumn));
}

// The profile's own address was formed when it was loaded, and there was no sheet then.
std::string Range(const clsVTRLKItem& item, Program& program) {
  if (item.StartRow() < 1) return "auto";
  const auto& block = item.Block();
  if (!block.IsClosed()) return "partly auto";
  return ToUtf8(PlainAddress(
      *program.Host()->ActiveSheet()->Range(*CellAt(block.first_row, block.first_column, program),
                                            *CellAt(block.last_row, block.last_column, program))));
}

std::string SearchedColumns(const clsVTRLKItem& item) {
  return item.SearchCols.empty() ? "all" : ToUtf8(item.SearchCols);
}

std::string Jump(const clsVTRLKItem& item) {
  return item.SelectCol < 1 ? "auto" : ToUtf8(ColumnLetters(std::min(item.SelectCol, cells::kMaxColumn)));
}

}  // namespace

int ListProfiles(Program& program, Output& output) {
  const auto print = [&](const std::string& name, const clsVTRLKItem& item) {
    output.Write(name + '\t' + Range(item, program) + '\t' + SearchedColumns(item) + '\t' + Jump(item) +
                 '\n');
  };
  print(kDefault, *program.Items().DefaultItem);
  for (int32_t i = 0; i < program.Items().count(); ++i) {
    const auto item = program.Items().Item(i);
    print(platform::ToPath(item->Name()).string(), *item);
  }
  return 0;
}

int ShowProfile(const std::string& workbook, Program& program, Output& output) {
  const auto item = Find(workbook, program);
  if (!item) return 1;
  const auto yes = [](bool on) { return on ? "yes" : "no"; };
  output.Write("workbook: " +
               (workbook == kDefault ? kDefault : platform::ToPath(item->FileFullName()).string()) + '\n');
  output.Write("range: " + Range(*item, program) + '\n');
  output.Write("columns: " + SearchedColumns(*item) + '\n');
  output.Write("jump: " + Jump(*item) + '\n');
  output.Write(std::string("jump-first-row: ") + yes(item->UnhideJumpFirstRow) + '\n');
  output.Write(std::string("dont-save: ") + yes(item->DontSaveChanges) + '\n');
  return 0;
}

int SetProfile(const ProfileArguments& arguments, Program& program) {
  const bool is_default = arguments.workbook == kDefault;
  auto& items = program.Items();
  auto item = is_default ? items.DefaultItem : items.ByName(FileName(arguments.workbook));
  if (!item) {
    item = program.CloneDefault(arguments.workbook);
    if (item->Name().empty()) throw std::runtime_error("not the name of a file: " + arguments.workbook);
    items.Add(item);
  }
  if (!arguments.range.empty()) SetRange(*item, arguments.range, program);
  if (!arguments.columns.empty()) SetColumns(*item, arguments.columns, program);
  if (arguments.jump == "auto")
    item->SelectCol = 0;
  else if (!arguments.jump.empty()) {
    item->SelectCol = Evaluate(arguments.jump + "1", "--jump", arguments.jump, program)->Column();
  }
  item->UnhideJumpFirstRow = arguments.jump_first_row.value_or(item->UnhideJumpFirstRow);
  item->DontSaveChanges = arguments.dont_save.value_or(item->DontSaveChanges);
  RequireSaved(program);
  return 0;
}

int RemoveProfile(const std::string& workbook, Program& program) {
  if (workbook == kDefault) throw std::runtime_error("the default profile can not be removed");
  const auto item = Find(workbook, program);
  if (!item) return 1;
  program.Items().Remove(item->Name());
  RequireSaved(program);
  return 0;
}

int ListHistory(Program& program, Output& output) {
  const auto& history = *program.Items().RecentItems;
  for (int32_t i = history.count() - 1; i >= 0; --i) output.Write(ToUtf8(history.Item(i)) + '\n');
  return 0;
}

int ClearHistory(Program& program) {
  program.Items().RecentItems->Clear();
  RequireSaved(program);
  return 0;
}

}  // namespace rowlark
