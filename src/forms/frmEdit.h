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

  // Shows the active cell, and every cell that is selected from then on. What is typed goes to the cell
  // shown, whichever is active by then.
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
  // Shows the cell that has become the active one unnoticed, in this workbook or another one, unless that
  // would drop a text.
  void Follow();
  // Selections are heard of from the active workbook.
  void Listen() noexcept;
  // The text has been changed since it was shown or written.
  bool Edited() const { return box0.Text() != shown_; }
  void box0_KeyDown(int32_t& key, int32_t shift);
  void btnOK_Click();
  // The nearest visible row in a direction (-1 up, 1 down); 0 when there is none.
  int32_t VisibleRow(int32_t row, int32_t column, int32_t direction) const;

  Ref<host::Range> cell_;   // the one shown; nothing before there was one
  std::u16string address_;  // of that cell, with its workbook and sheet
  std::u16string shown_;    // the text of the cell
  Connection evtBook_;
  Connection evtRLRTM_;
};

}  // namespace rowlark
