// Excel's Workbook, Worksheet, AutoFilter and Filter behind the seam.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "host/spreadsheet.h"
#include "host/windows/Dispatch.h"
#include "host/windows/ExcelSession.h"

namespace rowlark::windows {

class ExcelWorkbook final : public host::Workbook {
 public:
  ExcelWorkbook(Ref<ExcelSession> session, Dispatch object)
      : session_(std::move(session)), object_(std::move(object)) {}

  std::u16string Name() const override;
  std::u16string FullName() const override;
  bool ReadOnly() const override;
  bool Saved() const override;
  void SetSaved(bool saved) override;
  Ref<host::Worksheet> ActiveSheet() const override;
  [[nodiscard]] Connection OnSheetSelectionChange(SelectionHandler handler) override;

 private:
  Ref<ExcelSession> session_;
  Dispatch object_;
};

// A worksheet, or a chart: that fails where cells are asked for.
class ExcelSheet final : public host::Worksheet {
 public:
  ExcelSheet(Ref<ExcelSession> session, SheetMembers& members, Dispatch object)
      : session_(std::move(session)), members_(members), object_(std::move(object)) {}

  Ref<host::Workbook> Parent() const override;
  Ref<host::Range> Range(std::u16string_view address) const override;
  Ref<host::Range> Range(const host::Range& cell1, const host::Range& cell2) const override;
  Ref<host::Range> Cells() const override;
  Ref<host::Range> Cells(int32_t row, int32_t column) const override;
  Ref<host::Range> UsedRange() const override;
  bool AutoFilterMode() const override;
  Ref<host::AutoFilter> AutoFilter() const override;
  bool ProtectScenarios() const override;
  std::size_t HideRows(std::span<const host::RowRun> runs) override;

 private:
  void HideRowsOf(std::string_view address);

  Ref<ExcelSession> session_;
  SheetMembers& members_;  // of the session
  Dispatch object_;
};

}  // namespace rowlark::windows
