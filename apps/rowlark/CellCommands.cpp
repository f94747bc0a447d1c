#include "CellCommands.h"

#include <utility>
#include <vector>

#include "Clipboard.h"
#include "host/Block.h"
#include "host/cells/CellText.h"
#include "host/terminal/TextLines.h"
#include "runtime/Failure.h"
#include "settings/Product.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {

void CellCommands::Tell(const host::Error& error) const {
  windows_.MsgBox(error.Description(), host::MsgBoxIcon::Exclamation, kProductTitle);
}

void CellCommands::Ask(std::u16string_view title, std::u16string_view text, CellEditor::EndHandler ended) {
  editor_ = MakeRef<CellEditor>(title, text, std::move(ended), program_.Trace());
  editor_->Open(windows_);
}

// The active cell may be another one when the user has ended.
void CellCommands::Edit() {
  if (Editing()) return;
  Attempt(program_.Trace(), [this] {
    const auto cell = Require(program_.Host()->ActiveCell());
    const auto ended = [this, cell](CellEditor::End end, const std::u16string& text) {
      if (end == CellEditor::End::Cancelled) return;
      try {
        if (text != cell->Value()) cell->SetValue(text);
      } catch (const host::Error& error) {
        return Tell(error);
      }
      tables_.View().Navigate({end == CellEditor::End::Down ? controls::kKeyDown : controls::kKeyRight});
    };
    Ask(PlainAddress(*cell), cell->Value(), ended);
  });
}

// The cell shows, so that the user sees what happens.
void CellCommands::Repeat(Change change, const std::u16string& nothing) {
  try {
    const auto place = (tables_.Active().*change)();
    if (!place) return status_.Tell(nothing);
    const auto [sheet, row, column] = *place;
    tables_.Active().Workbook()->ActivateSheet(sheet);
    sheet->Select({Block::OfCell(row, column)}, {row, column});
  } catch (const host::Error& error) {
    Tell(error);
  }
}

void CellCommands::GoTo() {
  if (Editing()) return;
  Ask(Text(u"Terminal.GoTo.Caption", u"Go to a row or cell"), u"",
      [this](CellEditor::End end, const std::u16string& place) {
        if (end != CellEditor::End::Cancelled) GoTo(place);
      });
}

// "17" is a row, "B17" a cell.
void CellCommands::GoTo(const std::u16string& place) {
  auto& view = tables_.View();
  const auto row = ToInteger(place);
  sheetview::Cell cell{row.value_or(0), view.At().column};
  if (!row) {
    try {
      const auto range = view.Sheet().Range(place);
      cell = {range->Row(), range->Column()};
    } catch (const host::Error&) {  // told below: row 0 is none
    }
  }
  if (view.Sheet().UsedBlock().Contains(cell.row, cell.column)) {
    view.GoTo(cell);
  } else {
    status_.Tell(program_.Text(u"Terminal.GoTo.None", u"No such place: %1", {place}));
  }
}

void CellCommands::Show() {
  const auto [row, column] = tables_.View().At();
  const auto text = ToUtf16(tables_.View().Sheet().Text().Cell(row, column));
  std::vector<terminal::ListForm::Entry> lines;
  for (const auto [begin, end] : terminal::BreakLines(text, screen_.Size().width - 6))
    lines.push_back({text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin))});
  windows_.ChooseFrom(lines, 0, {1, 1});
}

void CellCommands::Copy() {
  using Entry = terminal::ListForm::Entry;
  const int32_t chosen = windows_.ChooseFrom({Entry::Of(Text(u"Terminal.Copy.Selection", u"&Cells selected")),
                                              Entry::Of(Text(u"Terminal.Copy.Row", u"&Row")),
                                              Entry::Of(Text(u"Terminal.Copy.Visible", u"&Visible rows"))},
                                             0, {1, screen_.Size().height - 1});
  if (chosen == 0) return CopySelection();
  auto& view = tables_.View();
  auto block = view.Sheet().UsedBlock();
  if (chosen == 1) block.first_row = block.last_row = view.At().row;
  if (chosen >= 0) Copy({&block, 1});
}

void CellCommands::CopySelection() { Copy(tables_.View().Sheet().Selection()); }

void CellCommands::Copy(std::span<const Block> blocks) {
  constexpr std::size_t kMost = 1 << 20;  // bytes, more than most terminals take
  if (const auto text = ClipboardText(tables_.View().Sheet(), blocks, kMost)) {
    screen_.Copy(*text);
    status_.Tell(Text(u"Terminal.Copy.Done", u"Copied"));
  } else {
    status_.Tell(Text(u"Terminal.Copy.TooMuch", u"Too much for the clipboard"));
  }
}

}  // namespace rowlark
