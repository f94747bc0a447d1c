#include "host/standalone/Finder.h"

#include <algorithm>
#include <cstring>

namespace rowlark::standalone {
namespace {

// The row that holds the byte at `offset`, at or behind row `from`; near rows are found first.
std::size_t RowAt(const std::vector<std::size_t>& start, std::size_t from, std::size_t offset) {
  std::size_t step = 1;
  while (from + step < start.size() && start[from + step] <= offset) {
    from += step;
    step *= 2;
  }
  const auto begin = start.begin() + static_cast<std::ptrdiff_t>(from);
  const auto end = start.begin() + static_cast<std::ptrdiff_t>(std::min(from + step, start.size()));
  return static_cast<std::size_t>(std::upper_bound(begin, end, offset) - start.begin()) - 1;
}

// The separator before the cell of that column, or the end of the row when it stores no such cell.
const char* CellStart(const char* row, const char* end, int32_t column) {
  for (int32_t i = 1; i < column && row < end; ++i) {
    const auto* next = static_cast<const char*>(
        std::memchr(row + 1, CellText::kSeparator, static_cast<std::size_t>(end - row) - 1));
    row = next == nullptr ? end : next;
  }
  return row;
}

// Where the text of the cell begins that a place lies in.
const char* CellBegin(const char* place) {
  while (place[-1] != CellText::kSeparator) --place;
  return place;
}

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

// Matches farther behind the first one of a batch are left for the next one: a search that only wants the
// first must not pay for more.
constexpr std::ptrdiff_t kBatchBytes = 4096;

}  // namespace

void Finder::Begin(const host::FindArguments& arguments) {
  look_in_ = arguments.LookIn.value_or(look_in_);
  look_at_ = arguments.LookAt.value_or(look_at_);
  order_ = arguments.SearchOrder.value_or(order_);
  direction_ = arguments.SearchDirection.value_or(host::xlNext);
  pattern_ = Pattern(arguments.What, look_at_ == host::xlWhole, arguments.MatchCase.value_or(false));
  Forget();
}

void Finder::Forget() {
  sampled_ = nullptr;
  batch_.text = nullptr;
  reader_.reset();
  first_ = {};
}

bool Finder::StandsAt(const Haystack& haystack, Cell cell) const {
  return batch_.text == &haystack.text && batch_.Last().cell == cell &&
         batch_.version == haystack.text.Version() && batch_.layout == haystack.layout &&
         batch_.area_index < haystack.areas.size() && batch_.area == haystack.areas[batch_.area_index];
}

std::optional<Cell> Finder::Next(const Haystack& haystack, Cell after) {
  if (look_in_ == host::xlComments) return std::nullopt;  // the model keeps no comments
  const auto areas = haystack.areas;
  const bool resume = StandsAt(haystack, after);
  if (resume && batch_.next < batch_.count) return batch_.matches[batch_.next++].cell;

  std::size_t area = 0;
  std::optional<Cell> found;
  if (resume && batch_.Last().end != nullptr) {
    area = batch_.area_index;
    FillBatch(haystack, areas[area], after, true);
    if (batch_.count > 0) found = batch_.matches[batch_.next++].cell;
  } else {
    while (area < areas.size() && !areas[area].Contains(after.row, after.column)) ++area;
    if (area == areas.size()) throw host::Error(13, u"Type mismatch");
    if (const auto from = Successor(areas[area], after)) found = InArea(haystack, areas[area], from);
  }
  const std::size_t start_area = area;
  while (!found && (Forward() ? area + 1 < areas.size() : area > 0)) {
    area = Forward() ? area + 1 : area - 1;
    found = InArea(haystack, areas[area], std::nullopt);
  }
  if (!found) return Wrap(haystack, start_area, after);
  batch_.area_index = area;
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
    batch_.text = nullptr;
    return Matches(haystack, start) ? start : first_.cell;
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
    if (const auto found = InArea(haystack, rect, std::nullopt)) {
      batch_.text = nullptr;  // it ends at `after`
      return found;
    }
    if (area == after_area) return std::nullopt;
  }
}

// The host finds values as they are shown: not in hidden rows.
bool Finder::Matches(const Haystack& haystack, Cell cell) {
  if (look_in_ == host::xlValues && haystack.hidden.Contains(cell.row)) return false;
  if (!reader_ || !reader_->Reads(haystack.text)) reader_.emplace(haystack.text, !pattern_.MatchCase());
  return pattern_.Matches(reader_->Cell(cell.row, cell.column));
}

std::optional<Cell> Finder::Successor(const Block& area, Cell cell) const {
  if (ByRows()) return Step(area, cell, Forward());
  const auto next = Step(Transpose(area), Transpose(cell), Forward());
  return next ? std::optional(Transpose(*next)) : std::nullopt;
}

void Finder::StartBatch(const Haystack& haystack, const Block& area) {
  batch_.text = &haystack.text;
  batch_.version = haystack.text.Version();
  batch_.layout = haystack.layout;
  batch_.area = area;
  batch_.count = batch_.next = 0;
}

std::optional<Cell> Finder::InArea(const Haystack& haystack, const Block& area, std::optional<Cell> from) {
  StartBatch(haystack, area);
  if (!pattern_.Literal().empty() && ByRows() && Forward()) {
    FillBatch(haystack, area, from.value_or(Cell{area.first_row, area.first_column}), false);
  } else if (const auto cell = InAreaByCell(haystack, area, from)) {
    batch_.matches[batch_.count++] = {*cell, nullptr};
  }
  if (batch_.count == 0) {
    batch_.text = nullptr;
    return std::nullopt;
  }
  return batch_.matches[batch_.next++].cell;
}

void Finder::FillBatch(const Haystack& haystack, const Block& area, Cell from, bool resume) {
  if (sampled_ != &haystack.text) {
    rare_ = pattern_.ChooseRareBytes(haystack.text.SampleBytes(!pattern_.MatchCase()));
    sampled_ = &haystack.text;
  }
  const bool skip_hidden = look_in_ == host::xlValues;
  const std::string& literal = pattern_.Literal();
  const Match before = resume ? batch_.Last() : Match{};
  batch_.count = batch_.next = 0;

  int32_t next_block_row = 0;
  for (int32_t row = from.row; row <= area.last_row; row = next_block_row, resume = false) {
    const int32_t block_row = row - static_cast<int32_t>(CellText::RowInBlock(row));
    next_block_row = block_row + CellText::kBlockRows;
    const auto* block = haystack.text.BlockOf(row);
    if (block == nullptr) {
      if (!haystack.text.Used() || row > haystack.text.Used()->last_row) return;
      continue;
    }
    const auto& twin = TwinOf(*block);
    std::size_t i = CellText::RowInBlock(row);
    const auto rows = static_cast<std::size_t>(std::min(block->Rows(), area.last_row - block_row + 1));
    if (i >= rows) continue;
    const char* end = twin.Row(rows);

    // `columns` separators stand between the start of row i and `counted`.
    const char* counted = twin.Row(i);
    int32_t columns = 0;
    const char* at = counted;
    if (resume) {
      at = batch_.scanned;
      counted = before.end;
      columns = before.cell.column;
    } else if (row == from.row && from.column > 1) {
      at = CellStart(at, twin.Row(i + 1), from.column);
    }
    while ((at = scan_.find(at, end, literal.data(), literal.size(), rare_.first, rare_.second)) != end) {
      const auto offset = static_cast<std::size_t>(at - twin.bytes.data());
      if (offset >= twin.start[i + 1]) {
        i = RowAt(twin.start, i, offset);
        counted = twin.Row(i);
        columns = 0;
      }
      const int32_t found_row = block_row + static_cast<int32_t>(i);
      if (skip_hidden && haystack.hidden.Contains(found_row)) {
        const auto visible =
            haystack.hidden.Next(found_row, block_row + static_cast<int32_t>(rows) - 1, false);
        i = static_cast<std::size_t>(visible - block_row);
        if (i >= rows || twin.Row(i) >= end) break;
        at = counted = twin.Row(i);
        columns = 0;
        continue;
      }
      const char* const text = at + pattern_.LiteralLead();
      columns += scan_.count(counted, text, CellText::kSeparator);
      counted = text;
      if (columns > area.last_column) {
        at = std::min(twin.Row(i + 1), end);
        continue;
      }
      const char* const row_end = twin.Row(i + 1);
      const auto* const cell_end = static_cast<const char*>(
          std::memchr(text, CellText::kSeparator, static_cast<std::size_t>(row_end - text)));
      if (columns >= area.first_column) {
        const Cell cell{found_row, columns};
        if (pattern_.LiteralSuffices() || pattern_.Matches({CellBegin(text), cell_end})) {
          batch_.matches[batch_.count++] = {cell, cell_end};
          if (batch_.count == 1) end = std::min(end, cell_end + kBatchBytes);
          if (batch_.count == batch_.matches.size()) {
            batch_.scanned = cell_end;
            return;
          }
        }
      }
      at = std::min(cell_end, end);
    }
    if (batch_.count > 0) {
      // A literal may begin before the end of what has been scanned and go beyond it.
      const auto overlap = static_cast<std::ptrdiff_t>(literal.size()) - 1;
      const char* const last_end = batch_.matches[batch_.count - 1].end;
      batch_.scanned = end - last_end > overlap ? end - overlap : last_end;
      return;
    }
  }
}

std::optional<Cell> Finder::InAreaByCell(const Haystack& haystack, const Block& area,
                                         std::optional<Cell> from) {
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
  for (auto at = Enter(turned, turn(from.value_or(start)), Forward()); at;
       at = Step(turned, *at, Forward())) {
    if (const Cell cell = turn(*at); Matches(haystack, cell)) return cell;
  }
  return std::nullopt;
}

}  // namespace rowlark::standalone
