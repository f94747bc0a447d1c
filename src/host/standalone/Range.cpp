#include "host/standalone/Range.h"

#include <algorithm>

#include "host/standalone/Application.h"
#include "host/standalone/Finder.h"
#include "host/standalone/Workbook.h"
#include "util/Utf.h"

namespace rowlark::standalone {
namespace {

Haystack HaystackOf(const Worksheet& sheet, std::span<const Block> areas) {
  return {sheet.Text(), sheet.HiddenRows(), sheet.Layout(), areas};
}

class SheetRows final : public host::RowSearch {
 public:
  SheetRows(Ref<Worksheet> sheet, RowFinder finder, bool passes_hidden)
      : sheet_(std::move(sheet)), finder_(std::move(finder)), passes_hidden_(passes_hidden) {}

  Piece Next(std::vector<int32_t>& rows) override {
    auto& application = sheet_->Book().Host();
    const auto before = rows.size();
    if (finder_.Next(sheet_->Text(), passes_hidden_ ? &sheet_->HiddenRows() : nullptr, rows)) {
      return rows.size() > before ? Piece::Matches : Piece::NoMatch;
    }
    application.Find().Remember(finder_.Found(sheet_->Text()));
    return Piece::End;
  }

 private:
  const Ref<Worksheet> sheet_;
  RowFinder finder_;
  const bool passes_hidden_;
};

}  // namespace

void Range::Dispose() noexcept {
  areas_.reset();
  const Ref<Worksheet> sheet = std::move(sheet_);
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

std::u16string Range::ExternalAddress() const {
  std::u16string address(1, u'[');
  return address.append(sheet_->Book().Name()).append(u"]").append(sheet_->Name()).append(u"!") + Address();
}

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

std::u16string Range::Value() const {
  return ToUtf16(sheet_->Text().Cell(first_.first_row, first_.first_column));
}

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
  return std::ranges::all_of(Areas(), [&](const Block& area) {
    return sheet_->HiddenRows().Next(area.first_row, area.last_row, false) > area.last_row;
  });
}

void Range::SetEntireRowHidden(bool hidden) {
  for (const auto& area : Areas()) sheet_->SetHidden(area, hidden);
}

void Range::Activate() {
  auto& book = sheet_->Book();
  if (book.Host().ActiveWorkbook().get() != &book || book.ActiveSheet().get() != sheet_.get()) {
    throw host::Error(1004, u"Activate method of Range class failed");
  }
  sheet_->Activate({Areas().begin(), Areas().end()});
}

Ref<host::Range> Range::Find(const host::FindArguments& arguments) {
  const Cell after = arguments.After != nullptr ? Cell{arguments.After->Row(), arguments.After->Column()}
                                                : Cell{first_.first_row, first_.first_column};
  auto& finder = sheet_->Book().Host().Find();
  finder.Begin(arguments);
  const auto cell = finder.Next(HaystackOf(*sheet_, Areas()), after);
  if (!cell) return nullptr;
  return sheet_->MakeRange(Block::OfCell(cell->row, cell->column));
}

Ref<host::Range> Range::FindNext(const host::Range& after) {
  const auto cell =
      sheet_->Book().Host().Find().NextForward(HaystackOf(*sheet_, Areas()), {after.Row(), after.Column()});
  if (!cell) return nullptr;
  return sheet_->MakeRange(Block::OfCell(cell->row, cell->column));
}

Ref<host::RowSearch> Range::FindRows(const host::FindArguments& arguments,
                                     std::optional<std::span<const int32_t>> columns) {
  auto& finder = sheet_->Book().Host().Find();
  finder.Begin(arguments);
  if (!finder.LooksAtText()) return nullptr;
  return MakeRef<SheetRows>(sheet_, finder.Rows(HaystackOf(*sheet_, Areas()), columns),
                            finder.PassesHidden());
}

Ref<host::Range> Range::SpecialCells(host::XlCellType type) const {
  if (type != host::xlCellTypeVisible) throw host::Error(1004, u"Unable to get the SpecialCells property");
  // Of a single cell the host looks at the whole used range.
  const bool single = AreasCount() == 1 && first_.Rows() == 1 && first_.Columns() == 1;
  const auto used = sheet_->UsedBlock();
  std::vector<Block> visible;
  for (const auto& area : single ? std::span(&used, 1) : Areas()) {
    sheet_->HiddenRows().ForEachRun(area.first_row, area.last_row, false, [&](RowRun run) {
      visible.push_back({run.first, area.first_column, run.last, area.last_column});
    });
  }
  if (visible.empty()) throw host::Error(1004, u"No cells were found.");
  return sheet_->MakeRange(std::move(visible));
}

void Range::AutoFilter(const host::AutoFilterArguments& arguments) { sheet_->SetFilter(first_, arguments); }

}  // namespace rowlark::standalone
