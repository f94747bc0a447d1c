// Shows what is selected on the sheet while another form waits for it, and lets the user correct it.
#pragma once

#include <cstdint>

#include "controls/Button.h"
#include "controls/TextBox.h"
#include "forms/BaseForm.h"

namespace rowlark {

class frmSelectRange final : public BaseForm {
 public:
  explicit frmSelectRange(SharedState& shared);

  // Whether all areas of a selection are listed, or the first one; all of them when the form has been loaded.
  bool AllowMultipleSelection() const { return multiple_; }
  void SetAllowMultipleSelection(bool allow);

  // From loading until the user accepts or cancels; both leave the text as it stands.
  bool uVisible() const { return visible_; }
  // How that ended.
  bool Accepted() const { return accepted_; }

  controls::TextBox box0{*this, u"box0"};  // addresses without dollar signs: "A1:C20;E1:E20"
  controls::Button btn0{*this, u"btn0"};

 private:
  void Form_Load() override;
  void Form_Unload() override;
  void Form_Close() override { End(false); }
  void ApplyCaptions() override;
  void ShowSelection();
  void End(bool accepted);

  bool multiple_ = true;
  bool visible_ = false;
  bool accepted_ = false;
  Connection evtBook_;
};

}  // namespace rowlark
