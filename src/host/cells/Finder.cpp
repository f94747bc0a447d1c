#include "host/cells/Finder.h"

#include <algorithm>
#include <utility>

#include "host/cells/CellScan.h"

namespace rowlark::cells {
namespace {

std::optional<Block> Intersect(const Block& a, const Block& b) {
  const Block both{std::max(a.first_row, b.first_row), std::max(a.first_column, b.first_column),
                   std::min(a.last_row, b.last_row), std::min(a.last_column, b.last_column)};
  if (both.Rows() <= 0 || both.Columns() <= 0) return std::nullopt;
  return both;
}

// Rows and columns change places, so that a search by columns is one by rows.
Block Transpose(const Block& r) { return {r.first_column, r.first_row, r.last_column, r.last_row}; }
Cell Transpose(Cell c) { return {c.column, c.row}; }

// The cell behind (or before) `cell` in the area's order of rows.
std::optional<Cell> Step(const Block& area, Cell cell, bool forward) {
  if (forward) {
    if (cell.column < area.last_column) return Cell{cell.row, std::max(cell.column + 1, area.first_column)};
    if (cell.row < area.last_row) return Cell{cell.row + 1, area.first_column};
  } else {
    if (cell.column > area.first_column) return Cell{cell.row, std::min(cell.column - 1, area.last_column)};
    if (cell.row > area.first_row) return Cell{cell.row - 1, area.last_column};
  }
  return std::nullopt;
}

// The first cell of the area at or behind (or before) `cell`, which may lie outside of it.
std::optional<Cell> Enter(const Block& area, Cell cell, bool forward) {
  if (forward) {
    if (cell.row < area.first_row) return Cell{area.first_row, area.first_column};
    if (cell.row > area.last_row) return std::nullopt;
    if (cell.column < area.first_column) return Cell{cell.row, area.first_column};
  } else {
    if (cell.row > area.last_row) return Cell{area.last_row, area.last_column};
    if (cell.row < area.first_row) return std::nullopt;
    if (cell.column > area.last_column) return Cell{cell.row, area.last_column};
  }
  if (area.Contains(cell.row, cell.column)) return cell;
  return Step(area, cell, forward);
}

// As many as the words of a search, and the steps back with the backspace key, that are worth it.
constexpr std::size_t kFoundRows = 4;

}  // namespace

void Finder::Begin(const host::FindArguments& arguments) {
  look_in_ = arguments.LookIn.value_or(look_in_);
  look_at_ = arguments.LookAt.value_or(look_at_);
  order_ = arguments.SearchOrder.value_or(order_);
  direction_ = arguments.SearchDirection.value_or(host::xlNext);
  pattern_ = Pattern(arguments.What, look_at_ == host::xlWhole, arguments.MatchCase.value_or(false));
  sampled_ = nullptr;
  last_ = {};
  first_ = {};
}

void Finder::Forget() {
  sampled_ = nullptr;
  last_ = {};
  first_ = {};
  found_.clear();
}

Pattern::RareBytes Finder::RareBytes(const CellText& text) {
  if (std::exchange(sampled_, &text) != &text) {
    rare_ = pattern_.ChooseRareBytes(text.SampleBytes(!pattern_.MatchCase()));
  }
  return rare_;
}

RowQuery Finder::QueryFor(std::span<const Block> areas,
                          std::optional<std::span<const int32_t>> columns) const {
  RowQuery query{pattern_, {areas.begin(), areas.end()}, std::nullopt};
  if (columns) query.columns.emplace(columns->begin(), columns->end());
  return query;
}

RowFinder Finder::Rows(RowQuery query, const CellText& text) const {
  std::shared_ptr<const FoundRows> fewest;
  for (const auto& found : found_) {
    if (found->Hold(text) && found->Cover(query) && (!fewest || found->count < fewest->count)) {
      fewest = found;
    }
  }
  return RowFinder(std::move(query), text, std::move(fewest));
}

void Finder::Remember(std::shared_ptr<const FoundRows> found) {
  if (found == nullptr) return;
  std::erase_if(found_, [&](const auto& other) { return !other->Hold(*found->text); });
  found_.insert(found_.begin(), std::move(found));
  if (found_.size() > kFoundRows) found_.pop_back();
}

std::size_t Finder::AreaOf(const Haystack& haystack, Cell cell) const {
  const auto& areas = haystack.areas;
  const auto contains = [cell](const Block& area) { return area.Contains(cell.row, cell.column); };
  if (last_.text == &haystack.text && last_.cell == cell && last_.area < areas.size() &&
      contains(areas[last_.area])) {
    return last_.area;
  }
  const auto area = std::ranges::find_if(areas, contains);
  if (area == areas.end()) throw host::Error(13, u"Type mismatch");
  return static_cast<std::size_t>(area - areas.begin());
}

std::optional<Cell> Finder::Next(const Haystack& haystack, Cell after) {
  if (!LooksAtText()) return std::nullopt;
  const auto areas = haystack.areas;
  const std::size_t start_area = AreaOf(haystack, after);
  std::size_t area = start_area;
  std::optional<Cell> found;
  if (const auto from = Successor(areas[area], after)) found = InArea(haystack, areas[area], from);
  while (!found && (Forward() ? area + 1 < areas.size() : area > 0)) {
    area = Forward() ? area + 1 : area - 1;
    found = InArea(haystack, areas[area], std::nullopt);
  }
  if (!found) return Wrap(haystack, start_area, after);
  last_ = {&haystack.text, *found, area};
  if (Forward() && start_area == 0 && after == Cell{areas[0].first_row, areas[0].first_column}) {
    first_ = {&haystack.text, haystack.text.Version(), haystack.layout, areas.data(), areas[0], *found};
  }
  return found;
}

// From the other end of the range to `after`, behind which there is no match.
std::optional<Cell> Finder::Wrap(const Haystack& haystack, std::size_t after_area, Cell after) {
  const auto areas = haystack.areas;
  if (Forward() && first_.text == &haystack.text && first_.version == haystack.text.Version() &&
      first_.layout == haystack.layout && first_.area == areas[0] &&
      (areas.size() == 1 || first_.areas == areas.data())) {
    const Cell start{areas[0].first_row, areas[0].first_column};
    CellReader reader(haystack.text, !pattern_.MatchCase());
    return IsMatch(haystack, reader, start) ? start : first_.cell;
  }
  const std::size_t begin = Forward() ? 0 : areas.size() - 1;
  for (std::size_t area = begin;; area = Forward() ? area + 1 : area - 1) {
    Block rect = areas[area];
    if (area == after_area) {  // no farther than `after`
      if (ByRows()) {
        (Forward() ? rect.last_row : rect.first_row) = after.row;
      } else {
        (Forward() ? rect.last_column : rect.first_column) = after.column;
      }
    }
    if (const auto found = InArea(haystack, rect, std::nullopt)) return found;
    if (area == after_area) return std::nullopt;
  }
}

bool Finder::IsMatch(const Haystack& haystack, CellReader& reader, Cell cell) const {
  if (PassesHidden() && haystack.hidden.Contains(cell.row)) return false;
  return pattern_.Matches(reader.Cell(cell.row, cell.column));
}

std::optional<Cell> Finder::Successor(const Block& area, Cell cell) const {
  if (ByRows()) return Step(area, cell, Forward());
  const auto next = Step(Transpose(area), Transpose(cell), Forward());
  return next ? std::optional(Transpose(*next)) : std::nullopt;
}

std::optional<Cell> Finder::InArea(const Haystack& haystack, const Block& area, std::optional<Cell> from) {
  if (pattern_.Literal().empty() || !ByRows() || !Forward()) return InAreaByCell(haystack, area, from);
  return InAreaByScan(haystack, area, from.value_or(Cell{area.first_row, area.first_column}));
}

std::optional<Cell> Finder::InAreaByScan(const Haystack& haystack, const Block& area, Cell from) {
  const auto& text = haystack.text;
  if (!text.Used()) return std::nullopt;
  const WantedColumns columns(area.first_column, area.last_column, nullptr, text.Used()->last_column);
  CellScan scan(pattern_, RareBytes(text), columns);
  for (auto piece = text.PieceOf(from.row, area.last_row); piece;
       piece = text.PieceOf(piece->RowOnSheet(piece->end), area.last_row)) {
    scan.Start(*piece);
    if (piece->RowOnSheet(piece->first) == from.row) scan.PassTo(from.column);
    while (scan.Find()) {
      const int32_t row = piece->RowOnSheet(scan.Row());
      if (!PassesHidden() || !haystack.hidden.Contains(row)) return Cell{row, scan.Column()};
      scan.PassToRow(
          static_cast<std::size_t>(haystack.hidden.Next(row, area.last_row, false) - piece->RowOnSheet(0)));
    }
  }
  return std::nullopt;
}

std::optional<Cell> Finder::InAreaByCell(const Haystack& haystack, const Block& area,
                                         std::optional<Cell> from) const {
  Block rect = area;
  if (!pattern_.IsEmpty()) {  // only cells with a text can match
    const auto used = haystack.text.Used();
    const auto both = used ? Intersect(area, *used) : std::nullopt;
    if (!both) return std::nullopt;
    rect = *both;
  }
  const auto turn = [this](const auto& value) { return ByRows() ? value : Transpose(value); };
  const Block turned = turn(rect);
  const Cell start =
      Forward() ? Cell{area.first_row, area.first_column} : Cell{area.last_row, area.last_column};
  CellReader reader(haystack.text, !pattern_.MatchCase());
  for (auto at = Enter(turned, turn(from.value_or(start)), Forward()); at;
       at = Step(turned, *at, Forward())) {
    if (const Cell cell = turn(*at); IsMatch(haystack, reader, cell)) return cell;
  }
  return std::nullopt;
}

}  // namespace rowlark::cells
