// A sheet whose text and hidden rows are kept here, for hosts that can not search what they show, or have no
// other: ranges answer for themselves, and what they can not comes from the sheet.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/cells/Address.h"
#include "host/cells/CellText.h"
#include "host/cells/Finder.h"
#include "host/cells/RowSet.h"
#include "host/spreadsheet.h"

namespace rowlark::cells {

class Range;

class Sheet : public host::Worksheet {
 public:
  ~Sheet() override;

  Ref<host::Range> Range(std::u16string_view address) const override;
  Ref<host::Range> Range(const host::Range& cell1, const host::Range& cell2) const override;
  Ref<host::Range> Cells() const override;
  Ref<host::Range> Cells(int32_t row, int32_t column) const override;

  // Handles are kept for their next use: a search makes and drops one a match.
  Ref<host::Range> MakeRange(const Block& area) const;
  Ref<host::Range> MakeRange(std::vector<Block> areas) const;  // not empty

  // What ranges stand on. Rows and columns lie on the sheet; each may throw host::Error.
  virtual void RequireOpen() const = 0;  // fails when the workbook has been closed
  virtual const SheetSize& Size() const = 0;
  virtual std::u16string ExternalName() const = 0;  // "[Book1.xls]Sheet1"
  virtual Block UsedBlock() const = 0;              // A1 where no cell is in use
  virtual std::u16string ValueOf(Cell cell) const = 0;
  // Reads for some milliseconds what is missing of the text; true when nothing is.
  virtual bool ReadText() const { return true; }
  virtual const CellText& Text() const = 0;  // all of it
  virtual const RowSet& HiddenRows() const = 0;
  virtual uint64_t Layout() const = 0;  // changes with the hidden rows
  virtual Finder& FinderOfHost() const = 0;
  virtual void SetCell(int32_t row, int32_t column, std::u16string_view text) = 0;
  virtual void SetRowsHidden(std::span<const Block> rows, bool hidden) = 0;
  virtual void SetFilter(const Block& range, const host::AutoFilterArguments& arguments) = 0;
  virtual void Activate(std::span<const Block> areas) = 0;

 private:
  friend class cells::Range;

  void Recycle(cells::Range* range) const noexcept;

  mutable cells::Range* free_ranges_ = nullptr;
};

}  // namespace rowlark::cells
