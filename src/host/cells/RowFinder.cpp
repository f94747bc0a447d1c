#include "host/cells/RowFinder.h"

#include <algorithm>
#include <utility>

namespace rowlark::cells {
namespace {

// A piece: less than a millisecond where the scan goes at the speed of memory, some where every cell is
// compared with wildcards.
constexpr std::size_t kPieceBytes = std::size_t{256} * 1024;
// What a run of rows costs beside its text.
constexpr std::size_t kRunBytes = 64;
// As far as the end of a run is looked for: rows that nearly all matched are one run of the whole text, of
// which a piece takes a little.
constexpr int32_t kRunRows = 4096;

bool SameColumns(const Block& a, const Block& b) {
  return a.first_column == b.first_column && a.last_column == b.last_column;
}

// Fewer rows of a piece, of at most so many bytes but one row.
CellText::Piece Front(CellText::Piece piece, const CellText::Twin& twin, std::size_t bytes) {
  const auto begin = twin.start.begin();
  const auto end =
      std::upper_bound(begin + static_cast<std::ptrdiff_t>(piece.first) + 2,
                       begin + static_cast<std::ptrdiff_t>(piece.end) + 1, twin.start[piece.first] + bytes);
  piece.end = static_cast<std::size_t>(end - begin) - 1;
  return piece;
}

}  // namespace

bool FoundRows::Cover(const RowQuery& query) const {
  return query.pattern.Implies(pattern) && query.columns == columns &&
         std::ranges::all_of(query.areas, [this](const Block& area) {
           return area.first_column == first_column && area.last_column == last_column &&
                  searched.Next(area.first_row, area.last_row, false) > area.last_row;
         });
}

RowFinder::RowFinder(RowQuery query, const CellText& text, std::shared_ptr<const FoundRows> within)
    : query_(std::move(query)),
      rare_(query_.pattern.ChooseRareBytes(text.SampleBytes(!query_.pattern.MatchCase()))),
      within_(std::move(within)),
      row_(Area().first_row) {
  const Block& first = query_.areas.front();
  if (!std::ranges::all_of(query_.areas, [&](const Block& area) { return SameColumns(area, first); })) return;
  found_ = std::make_shared<FoundRows>();
  found_->pattern = query_.pattern;
  found_->first_column = first.first_column;
  found_->last_column = first.last_column;
  found_->columns = query_.columns;
  found_->text = &text;
  found_->version = text.Version();
}

bool RowFinder::Next(const CellText& text, const RowSet* hidden, std::vector<int32_t>& rows) {
  if (within_ && !within_->Hold(text)) within_.reset();
  if (area_ == query_.areas.size()) return false;
  const auto before = static_cast<std::ptrdiff_t>(rows.size());
  for (std::size_t bytes = 0; bytes < kPieceBytes && area_ < query_.areas.size(); bytes += kRunBytes) {
    const RowRun run = NextRun(text);
    if (run.Rows() > 0) {
      bytes += Look(text, run, kPieceBytes - bytes, rows);
    } else {
      if (found_) found_->searched.Assign(Area().first_row, Area().last_row, true);
      if (++area_ < query_.areas.size()) row_ = Area().first_row;
    }
  }
  const auto found = rows.begin() + before;
  if (found_) {
    for (auto row = found; row != rows.end();) {
      const auto first = row;
      do ++row;
      while (row != rows.end() && *row == *first + (row - first));
      found_->rows.Assign(*first, *std::prev(row), true);
    }
    found_->count += static_cast<int32_t>(rows.end() - found);
  }
  if (hidden != nullptr) {
    rows.erase(std::remove_if(found, rows.end(), [=](int32_t row) { return hidden->Contains(row); }),
               rows.end());
  }
  return true;
}

std::shared_ptr<const FoundRows> RowFinder::Found(const CellText& text) const {
  return found_ && found_->Hold(text) ? found_ : nullptr;
}

WantedColumns RowFinder::Columns(const CellText& text) const {
  const int32_t used = text.Used() ? text.Used()->last_column : 0;
  const int32_t last = query_.pattern.IsEmpty() ? Area().last_column : std::min(Area().last_column, used);
  return {Area().first_column, last, query_.columns ? &*query_.columns : nullptr, used};
}

// Only cells with a text can match a pattern that is not empty.
RowRun RowFinder::NextRun(const CellText& text) const {
  int32_t last = Area().last_row;
  if (!query_.pattern.IsEmpty()) last = std::min(last, text.Used() ? text.Used()->last_row : 0);
  if (!within_) return {row_, last};
  const int32_t first = within_->rows.Next(row_, last, true);
  last = std::min(last, first + kRunRows);
  return {first, within_->rows.Next(first, last, false) - 1};
}

std::size_t RowFinder::Look(const CellText& text, RowRun run, std::size_t bytes, std::vector<int32_t>& rows) {
  if (query_.pattern.Literal().empty()) return LookByCell(text, run, bytes, rows);
  const auto stored = text.PieceOf(run.first, run.last);
  if (!stored) {
    row_ = run.last + 1;
    return 0;
  }
  const auto& twin = stored->TwinFor(query_.pattern.MatchCase());
  const auto piece = Front(*stored, twin, bytes);
  const WantedColumns columns = Columns(text);
  CellScan scan(query_.pattern, rare_, columns);
  for (scan.Start(piece); scan.Find(); scan.PassRow()) rows.push_back(piece.RowOnSheet(scan.Row()));
  row_ = piece.RowOnSheet(piece.end);
  return twin.start[piece.end] - twin.start[piece.first];
}

std::size_t RowFinder::LookByCell(const CellText& text, RowRun run, std::size_t bytes,
                                  std::vector<int32_t>& rows) {
  const WantedColumns columns = Columns(text);
  const bool folded = !query_.pattern.MatchCase();
  CellReader reader(text, folded);
  std::size_t looked_at = 0;
  for (row_ = run.first; row_ <= run.last && looked_at < bytes; ++row_) {
    looked_at += text.Row(row_, folded).size() + kRunBytes;
    for (auto column = columns.From(1); column; column = columns.From(*column + 1)) {
      if (!query_.pattern.Matches(reader.Cell(row_, *column))) continue;
      rows.push_back(row_);
      break;
    }
  }
  return looked_at;
}

}  // namespace rowlark::cells
