// One or more areas of a sheet.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "host/cells/Sheet.h"

namespace rowlark::cells {

// A search makes and drops one handle a match, so the sheet keeps dropped ones for their next use.
class Range final : public host::Range {
 public:
  int32_t Row() const override { return first_.first_row; }
  int32_t Column() const override { return first_.first_column; }
  int32_t RowsCount() const override { return first_.Rows(); }
  int32_t ColumnsCount() const override { return first_.Columns(); }
  int32_t AreasCount() const override { return static_cast<int32_t>(Areas().size()); }
  Ref<host::Range> Areas(int32_t index) const override;
  std::u16string Address() const override;
  std::u16string AddressLocal() const override { return Address(); }
  std::u16string ExternalAddress() const override;
  Ref<host::Range> Offset(int32_t rows, int32_t columns) const override;
  std::u16string Value() const override;
  void SetValue(std::u16string_view text) override;
  bool EntireRowHidden() const override;
  void SetEntireRowHidden(bool hidden) override;
  void Activate() override;
  Ref<host::Range> Find(const host::FindArguments& arguments) override;
  Ref<host::Range> FindNext(const host::Range& after) override;
  bool PrepareFind() override { return sheet_->ReadText(); }
  Ref<host::RowSearch> FindRows(const host::FindArguments& arguments,
                                std::optional<std::span<const int32_t>> columns) override;
  Ref<host::Range> SpecialCells(host::XlCellType type) const override;
  void AutoFilter(const host::AutoFilterArguments& arguments) override;

  cells::Sheet& Sheet() const { return *sheet_; }
  std::span<const Block> Areas() const {
    return areas_ ? std::span<const Block>(*areas_) : std::span(&first_, 1);
  }

 private:
  friend class cells::Sheet;

  void Dispose() noexcept override;

  Ref<cells::Sheet> sheet_;
  Block first_;
  std::shared_ptr<const std::vector<Block>> areas_;  // only when there is more than one
  Range* next_free_ = nullptr;
};

}  // namespace rowlark::cells
