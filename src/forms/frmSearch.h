// The small window in which the user types what to search for.
#pragma once

#include <string>

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/ComboBox.h"
#include "controls/Frame.h"
#include "controls/Image.h"
#include "controls/OptionButton.h"
#include "controls/TextBox.h"
#include "controls/Timer.h"
#include "forms/BaseForm.h"

namespace rowlark {

class frmSearch final : public BaseForm {
 public:
  explicit frmSearch(SharedState& shared);

  // Fills the form; the first search comes with the first change.
  void SetObjectRLKRuntime(clsVTRLKRuntime& runtime) override;

  // Gives the text the focus and selects it.
  void uActivateCboText();
  // What other forms have changed.
  void uProfileChanged() { ShowFormCaption(); }
  void uHistoryCleared() { FillHistory(); }

  controls::Frame fraTextCaption{*this, u"fraTextCaption"};
  controls::ComboBox cboText{*this, u"cboText"};
  controls::Image imgExclamationNormal{*this, u"imgExclamationNormal", u"exclamation-normal"};
  controls::Image imgExclamationErr{*this, u"imgExclamationErr", u"exclamation-error"};
  controls::OptionButton optWordsAll{*this, u"optWordsAll"};
  controls::OptionButton optWordsCell{*this, u"optWordsCell"};
  controls::OptionButton optWordsAny{*this, u"optWordsAny"};
  controls::CheckBox chkCase{*this, u"chkCase"};
  controls::CheckBox chkSearchAll{*this, u"chkSearchAll"};
  controls::CheckBox chkEditMode{*this, u"chkEditMode"};
  controls::Button btnMode{*this, u"btnMode"};
  controls::Button btnUnhide{*this, u"btnUnhide"};
  controls::Button btnOptions{*this, u"btnOptions"};
  controls::Button btnClose{*this, u"btnClose"};
  controls::TextBox boxError{*this, u"boxError"};
  controls::Timer tmr0{*this, u"tmr0"};

 private:
  void Form_Load() override;
  void Form_Unload() override;
  void ApplyCaptions() override;
  void evtLang_NewLangLoaded() override;
  void evtRLRTM_Searching(bool searching);
  void Form_KeyDown(int32_t& key, int32_t shift);
  void cboText_Change();
  void cboText_KeyDown(int32_t& key, int32_t shift);
  void chkEditMode_Click();
  void Options_Click();
  void btnMode_Click();
  void btnUnhide_Click();
  void tmr0_Timer();

  void ShowFormCaption();
  std::u16string SearchedRange() const;
  std::shared_ptr<clsVTRLKItem> ActiveProfile(const clsVTRLKItems& items) const;
  void SetEditMode(bool edit);
  void FillHistory();
  void ApplyOptions();
  void RestartDelay();
  bool RunSearch();
  void StartEdit();
  void Finish();
  void ShowAllRows();
  // Calls an operation of the runtime. True when it succeeded, and the form is still there.
  template <class Operation>
  bool Run(Operation operation);
  void ShowError(std::u16string_view text);
  void DeleteLastWord();

  Connection evtRLRTM_;
  bool loading_ = false;
  bool edit_mode_ = false;
  bool editing_ = false;        // hidden, until the edit form is closed
  bool search_is_due_ = false;  // then
  bool going_ = false;          // closing, to leave the user on the cell that was found
  std::u16string idle_caption_;
  std::u16string searching_caption_;
  std::u16string typed_;  // the text as it was before an entry of the history was picked
};

}  // namespace rowlark
