#include "Matches.h"

#include <algorithm>

#include "host/cells/CellText.h"

namespace rowlark {
namespace {

using sheetview::Cell;

constexpr int32_t kRowsAMark = 256;

}  // namespace

Matches::Matches(Ref<standalone::Worksheet> sheet, const Highlight& highlight)
    : sheet_(std::move(sheet)),
      highlight_(highlight),
      layout_(sheet_->Layout()),
      version_(sheet_->Text().Version()) {
  const auto used = sheet_->UsedBlock();
  first_row_ = std::max(highlight.Area().first_row, used.first_row);
  last_row_ = std::min(highlight.Area().last_row, used.last_row);
  next_row_ = sheet_->HiddenRows().Next(first_row_, last_row_, false);
}

bool Matches::Holds() const { return layout_ == sheet_->Layout() && version_ == sheet_->Text().Version(); }

std::vector<int32_t> Matches::ColumnsIn(int32_t row) const {
  std::vector<int32_t> columns;
  if (row < first_row_ || row > last_row_ || sheet_->HiddenRows().Contains(row)) return columns;
  const auto used = sheet_->UsedBlock();
  cells::CellReader reader(sheet_->Text(), highlight_.Folded());
  const int32_t last = std::min(highlight_.Area().last_column, used.last_column);
  for (int32_t column = std::max(highlight_.Area().first_column, used.first_column); column <= last;
       ++column) {
    if (highlight_.Covers(row, column) && highlight_.Matches(reader.Cell(row, column)))
      columns.push_back(column);
  }
  return columns;
}

bool Matches::Count(std::chrono::steady_clock::time_point until) {
  const auto& hidden = sheet_->HiddenRows();
  while (!Counted()) {
    marks_.push_back({next_row_, cells_});
    for (int32_t i = 0; i < kRowsAMark && !Counted(); ++i) {
      const auto found = static_cast<int32_t>(ColumnsIn(next_row_).size());
      cells_ += found;
      rows_ += found > 0 ? 1 : 0;
      next_row_ = hidden.Next(next_row_ + 1, last_row_, false);
    }
    if (std::chrono::steady_clock::now() >= until) return true;
  }
  return false;
}

int32_t Matches::Number(Cell cell) const {
  const auto columns = ColumnsIn(cell.row);
  const auto at = std::ranges::find(columns, cell.column);
  const auto behind = std::ranges::upper_bound(marks_, cell.row, {}, &Mark::row);
  if (at == columns.end() || behind == marks_.begin()) return 0;
  auto [row, number] = *(behind - 1);
  for (; row < cell.row; row = sheet_->HiddenRows().Next(row + 1, last_row_, false))
    number += static_cast<int32_t>(ColumnsIn(row).size());
  return number + static_cast<int32_t>(at - columns.begin()) + 1;
}

std::optional<int32_t> Matches::RowBeside(int32_t row, bool above) const {
  if (first_row_ > last_row_) return std::nullopt;
  row = std::clamp(row, first_row_ - 1, last_row_ + 1);
  const auto& hidden = sheet_->HiddenRows();
  const int32_t beside =
      above ? hidden.Previous(row - 1, first_row_, false) : hidden.Next(row + 1, last_row_, false);
  return beside < first_row_ || beside > last_row_ ? std::nullopt : std::optional(beside);
}

}  // namespace rowlark
