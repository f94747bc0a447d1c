#include "host/cells/Range.h"

#include <algorithm>

#include "host/cells/Finder.h"

namespace rowlark::cells {
namespace {

Haystack HaystackOf(const Sheet& sheet, std::span<const Block> areas) {
  return {sheet.Text(), sheet.HiddenRows(), sheet.Layout(), areas};
}

// Waits for the text that the sheet has not read yet, also for what changes later.
class SheetRows final : public host::RowSearch {
 public:
  SheetRows(Ref<Sheet> sheet, RowQuery query, bool passes_hidden)
      : sheet_(std::move(sheet)), query_(std::move(query)), passes_hidden_(passes_hidden) {}

  Piece Next(std::vector<int32_t>& rows) override {
    sheet_->RequireOpen();
    if (!sheet_->ReadText()) return Piece::NoMatch;
    const auto& text = sheet_->Text();
    auto& host = sheet_->FinderOfHost();
    if (!finder_) finder_.emplace(host.Rows(std::move(query_), text));
    const auto before = rows.size();
    if (finder_->Next(text, passes_hidden_ ? &sheet_->HiddenRows() : nullptr, rows)) {
      return rows.size() > before ? Piece::Matches : Piece::NoMatch;
    }
    host.Remember(finder_->Found(text));
    return Piece::End;
  }

 private:
  const Ref<Sheet> sheet_;
  RowQuery query_;
  std::optional<RowFinder> finder_;
  const bool passes_hidden_;
};

}  // namespace

void Range::Dispose() noexcept {
  areas_.reset();
  const Ref<cells::Sheet> sheet = std::move(sheet_);
  sheet->Recycle(this);
}

Ref<host::Range> Range::Areas(int32_t index) const {
  if (index < 1 || index > AreasCount()) throw host::Error(9, u"Subscript out of range");
  return sheet_->MakeRange(Areas()[static_cast<std::size_t>(index) - 1]);
}

std::u16string Range::Address() const {
  std::u16string text;
  for (const auto& area : Areas()) {
    if (!text.empty()) text += u',';
    AppendAddress(text, area, sheet_->Size());
  }
  return text;
}

std::u16string Range::ExternalAddress() const { return sheet_->ExternalName() + u"!" + Address(); }

Ref<host::Range> Range::Offset(int32_t rows, int32_t columns) const {
  const SheetSize& size = sheet_->Size();
  std::vector<Block> areas(Areas().begin(), Areas().end());
  for (auto& area : areas) {
    const auto moved = [](int32_t place, int32_t by) { return int64_t{place} + by; };
    if (moved(area.first_row, rows) < 1 || moved(area.last_row, rows) > size.rows ||
        moved(area.first_column, columns) < 1 || moved(area.last_column, columns) > size.columns) {
      throw host::Error(1004, u"Application-defined or object-defined error");
    }
    area = {area.first_row + rows, area.first_column + columns, area.last_row + rows,
            area.last_column + columns};
  }
  return sheet_->MakeRange(std::move(areas));
}

std::u16string Range::Value() const { return sheet_->ValueOf({first_.first_row, first_.first_column}); }

void Range::SetValue(std::u16string_view text) {
  for (const auto& area : Areas()) {
    for (int32_t row = area.first_row; row <= area.last_row; ++row) {
      for (int32_t column = area.first_column; column <= area.last_column; ++column) {
        sheet_->SetCell(row, column, text);
      }
    }
  }
}

bool Range::EntireRowHidden() const {
  const auto& hidden = sheet_->HiddenRows();
  return std::ranges::all_of(Areas(), [&](const Block& area) {
    return hidden.Next(area.first_row, area.last_row, false) > area.last_row;
  });
}

void Range::SetEntireRowHidden(bool hidden) { sheet_->SetRowsHidden(Areas(), hidden); }

void Range::Activate() { sheet_->Activate(Areas()); }

Ref<host::Range> Range::Find(const host::FindArguments& arguments) {
  const Cell after = arguments.After != nullptr ? Cell{arguments.After->Row(), arguments.After->Column()}
                                                : Cell{first_.first_row, first_.first_column};
  auto& finder = sheet_->FinderOfHost();
  finder.Begin(arguments);
  const auto cell = finder.Next(HaystackOf(*sheet_, Areas()), after);
  if (!cell) return nullptr;
  return sheet_->MakeRange(Block::OfCell(cell->row, cell->column));
}

Ref<host::Range> Range::FindNext(const host::Range& after) {
  const auto cell =
      sheet_->FinderOfHost().NextForward(HaystackOf(*sheet_, Areas()), {after.Row(), after.Column()});
  if (!cell) return nullptr;
  return sheet_->MakeRange(Block::OfCell(cell->row, cell->column));
}

Ref<host::RowSearch> Range::FindRows(const host::FindArguments& arguments,
                                     std::optional<std::span<const int32_t>> columns) {
  auto& finder = sheet_->FinderOfHost();
  finder.Begin(arguments);
  if (!finder.LooksAtText()) return nullptr;
  return MakeRef<SheetRows>(sheet_, finder.QueryFor(Areas(), columns), finder.PassesHidden());
}

Ref<host::Range> Range::SpecialCells(host::XlCellType type) const {
  if (type != host::xlCellTypeVisible) throw host::Error(1004, u"Unable to get the SpecialCells property");
  // Of a single cell the host looks at the whole used range.
  const bool single = AreasCount() == 1 && first_.Rows() == 1 && first_.Columns() == 1;
  const auto used = single ? sheet_->UsedBlock() : first_;
  std::vector<Block> visible;
  const auto& hidden = sheet_->HiddenRows();
  for (const auto& area : single ? std::span(&used, 1) : Areas()) {
    hidden.ForEachRun(area.first_row, area.last_row, false, [&](RowRun run) {
      visible.push_back({run.first, area.first_column, run.last, area.last_column});
    });
  }
  if (visible.empty()) throw host::Error(1004, u"No cells were found.");
  return sheet_->MakeRange(std::move(visible));
}

void Range::AutoFilter(const host::AutoFilterArguments& arguments) { sheet_->SetFilter(first_, arguments); }

}  // namespace rowlark::cells
