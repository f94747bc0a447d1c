// The small window in which the user edits cell after cell without touching the sheet.
#pragma once

#include <cstdint>

#include "controls/Button.h"
#include "controls/Label.h"
#include "controls/TextBox.h"
#include "forms/BaseForm.h"

namespace rowlark {

class frmEdit final : public BaseForm {
 public:
  explicit frmEdit(SharedState& shared);

  // Shows the active cell, and every cell that is selected from then on.
  void SetObjectRLKRuntime(clsVTRLKRuntime& runtime) override;

  controls::Label lblBack{*this, u"lblBack"};
  controls::Label lblActiveCell{*this, u"lblActiveCell"};
  controls::TextBox box0{*this, u"box0"};
  controls::Button btnOK{*this, u"btnOK"};
  controls::Button btnClose{*this, u"btnClose"};

 private:
  void Form_Load() override;
  void Form_Unload() override;
  void ApplyCaptions() override;
  void ShowActiveCell();
  void box0_KeyDown(int32_t& key, int32_t shift);
  void btnOK_Click();
  // The nearest visible row in a direction (-1 up, 1 down); 0 when there is none.
  int32_t VisibleRow(int32_t row, int32_t column, int32_t direction) const;

  Connection evtBook_;
};

}  // namespace rowlark
