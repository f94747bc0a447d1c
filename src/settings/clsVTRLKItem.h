// What the search needs to know about one workbook: the block searched, the columns compared, the column gone
// to and two switches.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "host/Block.h"
#include "settings/SharedState.h"

namespace rowlark {

class clsVTRLKItem {
 public:
  explicit clsVTRLKItem(const SharedState& shared) : clsVTRLKItem(shared.Foundation) {}
  explicit clsVTRLKItem(std::shared_ptr<const Foundation> foundation) : foundation_(std::move(foundation)) {
    UpdateSearchRange();
  }

  // All four coordinates are negative: no fixed block. Follows the coordinates; range detection sets it as
  // well.
  bool UsingAutoRange = false;
  bool UnhideJumpFirstRow = true;  // Show All goes to the first row of the range
  bool DontSaveChanges = false;    // shown and hidden rows do not count as changes of the workbook
  std::u16string SearchCols;       // letters of the columns searched, with commas between ("A,C"); empty: all
  int32_t SelectCol = 0;           // the column gone to in a found row, from 1; 0: automatic

  // The block's address without dollar signs ("B3:F200"), formed against the sheet that was active at the
  // last change of a coordinate; empty when `StartRow` is negative.
  const std::u16string& SearchRange() const { return search_range_; }

  // Corners of the block, from 1; 0 and below: open.
  int32_t StartCol() const { return block_.first_column; }
  int32_t StartRow() const { return block_.first_row; }
  int32_t EndCol() const { return block_.last_column; }
  int32_t EndRow() const { return block_.last_row; }
  void SetStartCol(int32_t column) { SetCoordinate(block_.first_column, column); }
  void SetStartRow(int32_t row) { SetCoordinate(block_.first_row, row); }
  void SetEndCol(int32_t column) { SetCoordinate(block_.last_column, column); }
  void SetEndRow(int32_t row) { SetCoordinate(block_.last_row, row); }
  // All four in one step: the address is formed once.
  const rowlark::Block& Block() const { return block_; }
  void SetBlock(const rowlark::Block& block);

  // Full path of the workbook, and the part behind its last separator: "\", or "/" as in the address of a
  // workbook on a web server.
  const std::u16string& FileFullName() const { return file_full_name_; }
  void SetFileFullName(std::u16string_view path);
  const std::u16string& Name() const { return name_; }
  static std::u16string_view NameOf(std::u16string_view path);

  // The stored fields as a packed list, and back. What can not be read keeps its value; the result is true.
  std::u16string ToString() const;
  bool ToObject(std::u16string_view strData);

  // A copy, for another workbook when its path is given.
  std::shared_ptr<clsVTRLKItem> Clone(std::u16string_view strFileFullName = {}) const;

 private:
  void SetCoordinate(int32_t& coordinate, int32_t value);
  void UpdateSearchRange();

  std::shared_ptr<const Foundation> foundation_;
  std::u16string search_range_;
  rowlark::Block block_;
  std::u16string file_full_name_;
  std::u16string name_;
};

}  // namespace rowlark
