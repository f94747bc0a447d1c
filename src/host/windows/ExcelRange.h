// Excel's Range behind the seam.
#pragma once

#include <string>
#include <string_view>

#include "host/spreadsheet.h"
#include "host/windows/Dispatch.h"
#include "host/windows/ExcelSession.h"

namespace rowlark::windows {

class ExcelRange final : public host::Range {
 public:
  int32_t Row() const override;
  int32_t Column() const override;
  int32_t RowsCount() const override;
  int32_t ColumnsCount() const override;
  int32_t AreasCount() const override;
  Ref<host::Range> Areas(int32_t index) const override;
  std::u16string Address() const override;
  std::u16string AddressLocal() const override;
  std::u16string ExternalAddress() const override;
  Ref<host::Range> Offset(int32_t rows, int32_t columns) const override;
  std::u16string Value() const override;
  void SetValue(std::u16string_view text) override;
  bool EntireRowHidden() const override;
  void SetEntireRowHidden(bool hidden) override;
  void Activate() override;
  Ref<host::Range> Find(const host::FindArguments& arguments) override;
  Ref<host::Range> FindNext(const host::Range& after) override;
  Ref<host::Range> SpecialCells(host::XlCellType type) const override;
  void AutoFilter(const host::AutoFilterArguments& arguments) override;

  IDispatch* Object() const { return object_.get(); }

 private:
  friend class ExcelSession;

  void Dispose() noexcept override;

  Ref<ExcelSession> session_;
  Dispatch object_;
  ExcelRange* next_free_ = nullptr;
};

// Excel's object for a range of this adapter; throws host::Error for any other.
IDispatch* ObjectOf(const host::Range& range);

}  // namespace rowlark::windows
