// Finds the cells that match a pattern, in the order and with the wrap-around of the host's Find and
// FindNext. One for the whole application, since it remembers the last settings for what a later call leaves
// out.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "host/spreadsheet.h"
#include "host/standalone/Address.h"
#include "host/standalone/CellText.h"
#include "host/standalone/Pattern.h"
#include "host/standalone/RowSet.h"
#include "host/standalone/Scan.h"

namespace rowlark::standalone {

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
  Finder() : scan_(SelectScan()) {}

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

 private:
  // A match, and the separator behind its cell (null when the match was not found by its literal).
  struct Match {
    Cell cell;
    const char* end = nullptr;
  };
  // Matches that stand close together are found in one go and handed out one by one: those of `matches` up to
  // `count`, in an area of a sheet as it was at the time. The one handed out last is where a search goes on.
  struct Batch {
    const CellText* text = nullptr;
    uint64_t version = 0;
    uint64_t layout = 0;
    std::size_t area_index = 0;
    Block area;
    std::size_t count = 0;
    std::size_t next = 0;           // of the matches to hand out
    const char* scanned = nullptr;  // behind the last match; no other starts before this place
    std::array<Match, 128> matches;
    const Match& Last() const { return matches[next - 1]; }
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
  const CellText::Twin& TwinOf(const CellText::Block& block) const {
    return block.twins[pattern_.MatchCase() ? 0 : 1];
  }
  // Whether the batch stands at that cell of that haystack.
  bool StandsAt(const Haystack& haystack, Cell cell) const;
  void StartBatch(const Haystack& haystack, const Block& area);
  bool Matches(const Haystack& haystack, Cell cell);
  std::optional<Cell> Successor(const Block& area, Cell cell) const;
  std::optional<Cell> Wrap(const Haystack& haystack, std::size_t area, Cell after);
  // The first match of an area at or behind `from`, or in the whole of it, as the first of a new batch.
  std::optional<Cell> InArea(const Haystack& haystack, const Block& area, std::optional<Cell> from);
  std::optional<Cell> InAreaByCell(const Haystack& haystack, const Block& area, std::optional<Cell> from);
  // Fills the batch, going on from where it stands when `resume` is set.
  void FillBatch(const Haystack& haystack, const Block& area, Cell from, bool resume);

  const ScanKernel& scan_;
  Pattern pattern_;
  Pattern::RareBytes rare_;
  const CellText* sampled_ = nullptr;  // the text whose bytes `rare_` was chosen by

  host::XlFindLookIn look_in_ = host::xlFormulas;
  host::XlLookAt look_at_ = host::xlPart;
  host::XlSearchOrder order_ = host::xlByRows;
  host::XlSearchDirection direction_ = host::xlNext;

  Batch batch_;
  std::optional<CellReader> reader_;  // stands at the last cell that was looked at by itself
  FirstMatch first_;
};

}  // namespace rowlark::standalone
