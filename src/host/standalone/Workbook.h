// A workbook of the stand-alone model.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/spreadsheet.h"
#include "host/standalone/Worksheet.h"

namespace rowlark::standalone {

class Workbook final : public host::Workbook {
 public:
  Workbook(Application& host, std::u16string_view full_name, bool read_only)
      : host_(&host), full_name_(full_name), read_only_(read_only) {}

  std::u16string Name() const override;
  std::u16string FullName() const override { return full_name_; }
  bool ReadOnly() const override { return read_only_; }
  void SetReadOnly(bool read_only) { read_only_ = read_only; }
  bool Saved() const override { return saved_; }
  void SetSaved(bool saved) override { saved_ = saved; }
  Ref<host::Worksheet> ActiveSheet() const override { return active_sheet_; }
  [[nodiscard]] Connection OnSheetSelectionChange(SelectionHandler handler) override {
    return selection_change_.Connect(std::move(handler));
  }

  // Added sheets become the active one. Without a name they get the next of "Sheet1", "Sheet2" ...
  Ref<Worksheet> AddWorksheet(std::u16string_view name = {});
  Ref<ChartSheet> AddChartSheet();
  void ActivateSheet(const Ref<host::Worksheet>& sheet) { active_sheet_ = sheet; }

  const std::vector<Ref<Worksheet>>& Worksheets() const { return sheets_; }
  Application& Host() const { return *host_; }

  // A cell has another text than `before`. Whoever keeps what the user does hears of it also while the host's
  // events are off.
  using ChangeHandler =
      std::function<void(Worksheet& sheet, int32_t row, int32_t column, const std::string& before)>;
  [[nodiscard]] Connection OnSheetChange(ChangeHandler handler) {
    return sheet_change_.Connect(std::move(handler));
  }
  void RaiseSheetChange(Worksheet& sheet, int32_t row, int32_t column, const std::string& before) {
    sheet_change_.Raise(sheet, row, column, before);
  }
  void RaiseSelectionChange(host::Worksheet& sheet, host::Range& target);
  void Close();

 private:
  Application* host_;
  std::u16string full_name_;
  bool read_only_;
  bool saved_ = true;
  std::vector<Ref<Worksheet>> sheets_;
  Ref<host::Worksheet> active_sheet_;
  Event<host::Worksheet&, host::Range&> selection_change_;
  Event<Worksheet&, int32_t, int32_t, const std::string&> sheet_change_;
};

}  // namespace rowlark::standalone
