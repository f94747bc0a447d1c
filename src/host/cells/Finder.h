// Finds the cells that match a pattern, in the order and with the wrap-around of the host's Find and
// FindNext. One for the whole application, since it remembers the last settings for what a later call leaves
// out.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "host/cells/Address.h"
#include "host/cells/CellText.h"
#include "host/cells/Pattern.h"
#include "host/cells/RowFinder.h"
#include "host/cells/RowSet.h"
#include "host/spreadsheet.h"

namespace rowlark::cells {

// What a search looks through: the text and the hidden rows of one sheet, and the areas of a range. Whoever
// changes the hidden rows makes a new `layout` number.
struct Haystack {
  const CellText& text;
  const RowSet& hidden;
  uint64_t layout;
  std::span<const Block> areas;
};

class Finder {
 public:
  // Takes the settings of a new search; `after` is not read.
  void Begin(const host::FindArguments& arguments);

  // Drops what it knows of the places of matches, since a sheet goes; the settings stay.
  void Forget();

  // The next match behind `after`, which lies in one of the areas and is itself looked at last.
  std::optional<Cell> Next(const Haystack& haystack, Cell after);

  // The same in forward direction, whatever the direction of the search was.
  std::optional<Cell> NextForward(const Haystack& haystack, Cell after) {
    direction_ = host::xlNext;
    return Next(haystack, after);
  }

  // The search for all rows with a match in one of the columns (ascending; nothing: in any). Where what was
  // found before shows that there can be none in other rows, only those are looked at.
  RowQuery QueryFor(std::span<const Block> areas, std::optional<std::span<const int32_t>> columns) const;
  RowFinder Rows(RowQuery query, const CellText& text) const;
  // What a RowFinder found; nothing is taken.
  void Remember(std::shared_ptr<const FoundRows> found);

  // Comments are not kept.
  bool LooksAtText() const { return look_in_ != host::xlComments; }
  // Whether hidden rows are passed over: the host finds values as they are shown.
  bool PassesHidden() const { return look_in_ == host::xlValues; }

 private:
  // The match that was handed out last: which of overlapping areas it belongs to, and its place among many.
  struct LastMatch {
    const CellText* text = nullptr;
    Cell cell;
    std::size_t area = 0;
  };
  // The first match behind the upper left cell of a range. A search that wraps around ends there.
  struct FirstMatch {
    const CellText* text = nullptr;
    uint64_t version = 0;
    uint64_t layout = 0;
    const Block* areas = nullptr;
    Block area;
    Cell cell;
  };

  bool Forward() const { return direction_ == host::xlNext; }
  bool ByRows() const { return order_ == host::xlByRows; }
  std::size_t AreaOf(const Haystack& haystack, Cell cell) const;
  std::optional<Cell> Successor(const Block& area, Cell cell) const;
  std::optional<Cell> Wrap(const Haystack& haystack, std::size_t area, Cell after);
  // The first match of an area at or behind `from`, or in the whole of it.
  std::optional<Cell> InArea(const Haystack& haystack, const Block& area, std::optional<Cell> from);
  std::optional<Cell> InAreaByScan(const Haystack& haystack, const Block& area, Cell from);
  std::optional<Cell> InAreaByCell(const Haystack& haystack, const Block& area,
                                   std::optional<Cell> from) const;
  bool IsMatch(const Haystack& haystack, CellReader& reader, Cell cell) const;
  // The bytes of the pattern that are rarest in the text.
  Pattern::RareBytes RareBytes(const CellText& text);

  Pattern pattern_;
  Pattern::RareBytes rare_;
  const CellText* sampled_ = nullptr;  // the text whose bytes `rare_` was chosen by

  host::XlFindLookIn look_in_ = host::xlFormulas;
  host::XlLookAt look_at_ = host::xlPart;
  host::XlSearchOrder order_ = host::xlByRows;
  host::XlSearchDirection direction_ = host::xlNext;

  LastMatch last_;
  FirstMatch first_;
  std::vector<std::shared_ptr<const FoundRows>> found_;  // the latest one first
};

}  // namespace rowlark::cells
