// Finds the rows that hold a match, piece by piece; between two pieces the text and the hidden rows may
// change.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "host/cells/Address.h"
#include "host/cells/CellScan.h"
#include "host/cells/CellText.h"
#include "host/cells/Pattern.h"
#include "host/cells/RowSet.h"

namespace rowlark::cells {

struct RowQuery {
  Pattern pattern;
  std::vector<Block> areas;
  std::optional<std::vector<int32_t>> columns;  // those that count, ascending; nothing: all
};

// What a search has found in a text as it was then, in hidden rows as well.
struct FoundRows {
  Pattern pattern;
  int32_t first_column = 0;
  int32_t last_column = 0;
  std::optional<std::vector<int32_t>> columns;
  const CellText* text = nullptr;
  uint64_t version = 0;
  RowSet searched;
  RowSet rows;
  int32_t count = 0;

  // Whether the text is still the same.
  bool Hold(const CellText& now) const { return text == &now && version == now.Version(); }
  // Whether no other rows can be found by that query.
  bool Cover(const RowQuery& query) const;
};

class RowFinder {
 public:
  // Looks only at the rows of `within`, where that is given, for as long as it holds. It covers the query.
  RowFinder(RowQuery query, const CellText& text, std::shared_ptr<const FoundRows> within);

  // Appends the rows of the next piece, without those in `hidden` unless that is null; false when no piece
  // is left.
  bool Next(const CellText& text, const RowSet* hidden, std::vector<int32_t>& rows);

  // All that has been found, at the end; nothing where the text was changed meanwhile.
  std::shared_ptr<const FoundRows> Found(const CellText& text) const;

 private:
  const Block& Area() const { return query_.areas[area_]; }
  WantedColumns Columns(const CellText& text) const;
  // The next rows of the area to look at; none at its end.
  RowRun NextRun(const CellText& text) const;
  // Looks at the first rows of a run, at some `bytes` of them, and appends those that match; goes on behind
  // them. Tells how much it was.
  std::size_t Look(const CellText& text, RowRun run, std::size_t bytes, std::vector<int32_t>& rows);
  std::size_t LookByCell(const CellText& text, RowRun run, std::size_t bytes, std::vector<int32_t>& rows);

  const RowQuery query_;
  const Pattern::RareBytes rare_;
  std::shared_ptr<const FoundRows> within_;
  std::shared_ptr<FoundRows> found_;
  std::size_t area_ = 0;
  int32_t row_;  // the next one of the area
};

}  // namespace rowlark::cells
