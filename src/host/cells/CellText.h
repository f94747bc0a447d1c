// The text of a sheet's cells, laid out for searching: the rows of a block stand one after the other in one
// buffer of UTF-8, and a twin of that buffer holds the same text case-folded, made when the text is stored.
//
// A stored row is kSeparator, then for each of its cells the cell's text and kSeparator; so a whole cell is
// found as the literal separator-text-separator, and the column of a place is the number of separators before
// it in its row. Cells behind the last stored one of a row, and rows that store nothing, are empty.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/cells/Address.h"

namespace rowlark::cells {

class CellText {
 public:
  static constexpr char kSeparator = '\xFF';  // in no UTF-8 text
  static constexpr int32_t kBlockRows = 16384;

  // A buffer of rows. Row i of a block (from 0) lies at start[i] to start[i + 1].
  struct Twin {
    std::string bytes;               // with kScanPadding bytes behind the last row
    std::vector<std::size_t> start;  // one entry more than rows stored
    const char* Row(std::size_t i) const { return bytes.data() + start[i]; }
  };
  struct Block {
    std::array<Twin, 2> twins;  // exact, folded
    int32_t Rows() const { return static_cast<int32_t>(twins[0].start.size()) - 1; }
  };

  // Rows one after the other, made to be put into a text together.
  class Rows {
   public:
    Rows() {
      for (auto& twin : block_.twins) twin.start.push_back(0);
    }
    void Append(std::span<const std::string_view> cells);  // UTF-8

   private:
    friend class CellText;
    Block block_;
    std::optional<rowlark::Block> used_;  // the first row counts as 1
  };

  // Stores `cells` as the row behind the last one that was appended; they are UTF-8.
  void AppendRow(std::span<const std::string_view> cells);
  int32_t AppendedRows() const { return appended_rows_; }
  void Clear();

  std::string_view Cell(int32_t row, int32_t column, bool folded = false) const;
  // What a row stores: separators and texts; empty for a row that stores nothing.
  std::string_view Row(int32_t row, bool folded = false) const;
  // The texts that a row stores, from column 1 on.
  std::vector<std::string_view> Cells(int32_t row) const;
  void SetCell(int32_t row, int32_t column, std::string_view text);
  // Stores rows, which lie in one block, in place of those from `first` on; false when they were the same.
  bool Replace(int32_t first, const Rows& rows);

  // The smallest rectangle that holds every cell that ever had a text.
  const std::optional<rowlark::Block>& Used() const { return used_; }

  // Changes with every change of the text.
  uint64_t Version() const { return version_; }

  // Rows `first` to `end` (excluded) of a block, counted from 0.
  struct Piece {
    const Block* block;
    int32_t before;  // the rows of the sheet before the block
    std::size_t first;
    std::size_t end;
    const Twin& TwinFor(bool match_case) const { return block->twins[match_case ? 0 : 1]; }
    int32_t RowOnSheet(std::size_t row) const { return before + 1 + static_cast<int32_t>(row); }
  };
  // The first of the pieces in which the rows `first` to `last` are stored; nothing when none of them is.
  std::optional<Piece> PieceOf(int32_t first, int32_t last) const;

  // How often each byte stands in a sample of the text.
  std::array<uint32_t, 256> SampleBytes(bool folded) const;

 private:
  static std::size_t RowInBlock(int32_t row) { return static_cast<std::size_t>(row - 1) % kBlockRows; }
  // The block of a row, or null when it stores nothing.
  const Block* BlockOf(int32_t row) const;
  Block& BlockFor(int32_t row);
  void Use(const rowlark::Block& rect);

  std::vector<std::unique_ptr<Block>> blocks_;
  std::optional<rowlark::Block> used_;
  int32_t appended_rows_ = 0;
  uint64_t version_ = 0;
};

// Reads cells one after the other: going on to the right in a row costs only the way from the last cell read.
class CellReader {
 public:
  CellReader(const CellText& text, bool folded) : text_(&text), version_(text.Version()), folded_(folded) {}

  // Whether it reads that text, as it was when the reader was made.
  bool Reads(const CellText& text) const { return text_ == &text && version_ == text.Version(); }

  // Empty for a cell that stores nothing.
  std::string_view Cell(int32_t row, int32_t column);

 private:
  const CellText* text_;
  uint64_t version_;
  bool folded_;
  int32_t row_ = 0;
  int32_t column_ = 0;     // of the cell that `rest_` begins with
  std::string_view rest_;  // of the row, from the separator before that cell
};

}  // namespace rowlark::cells
