// The settings. Every change counts at once; closing the form writes the configuration and registers the
// hotkeys with the host.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/ComboBox.h"
#include "controls/Frame.h"
#include "controls/Label.h"
#include "controls/ListView.h"
#include "controls/TextBox.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"
#include "forms/BaseForm.h"
#include "forms/HotKey.h"
#include "forms/frmSelectRange.h"
#include "util/mclsVTDictionary.h"

namespace rowlark {

struct TextRule;

class frmOptions final : public BaseForm {
 public:
  explicit frmOptions(SharedState& shared);

  void SetObjectRLKRuntime(clsVTRLKRuntime& runtime) override;
  // Fills the form, after the runtime object has been set.
  void Init();
  // The range selection form while it is open; otherwise null.
  Ref<frmSelectRange> Picker() const { return picker_; }

  // What other forms show may be another one now: where a workbook is searched, and the history.
  controls::Slot<> ProfileChanged{*this, "ProfileChanged"};
  controls::Slot<> HistoryCleared{*this, "HistoryCleared"};

  controls::TreeView tvw0{*this, u"tvw0"};
  controls::Button btnClose{*this, u"btnClose"};

  // Common page
  controls::Frame fra0{*this, u"fra0"};
  controls::CheckBox chk0_UnhideOnEsc{*this, u"chk0_UnhideOnEsc"};
  controls::CheckBox chk0_AutoDetectText{*this, u"chk0_AutoDetectText"};
  controls::CheckBox chk0_RecentsUse{*this, u"chk0_RecentsUse"};
  controls::CheckBox chk0_RecentsTemp{*this, u"chk0_RecentsTemp"};
  controls::Label lbl0_RecentItemsCap{*this, u"lbl0_RecentItemsCap"};
  controls::TextBox box0_RecentItems{*this, u"box0_RecentItems"};
  controls::Button btnRecentClear{*this, u"btnRecentClear"};
  controls::Frame fra0_Lang{*this, u"fra0_Lang"};
  controls::Label lbl0_LangFileCaption{*this, u"lbl0_LangFileCaption"};
  controls::ComboBox cbo0_LangFile{*this, u"cbo0_LangFile"};
  controls::Label lbl0_LangInfoCaption{*this, u"lbl0_LangInfoCaption"};
  controls::TextBox box0_LangInfo{*this, u"box0_LangInfo"};

  // Workbooks page
  controls::Frame fra1{*this, u"fra1"};
  controls::ToolBar tbr1_0{*this, u"tbr1_0"};
  controls::ListView lvw0{*this, u"lvw0"};
  controls::Label lbl1_Range{*this, u"lbl1_Range"};
  controls::TextBox box1_Range{*this, u"box1_Range"};
  controls::TextBox box1_RangeAuto{*this, u"box1_RangeAuto"};
  controls::Button btn1_SelRange{*this, u"btn1_SelRange"};
  controls::Label lbl1_SearchCols{*this, u"lbl1_SearchCols"};
  controls::TextBox box1_SearchCols{*this, u"box1_SearchCols"};
  controls::TextBox box1_SearchColsAuto{*this, u"box1_SearchColsAuto"};
  controls::Button btn1_SelSearchCols{*this, u"btn1_SelSearchCols"};
  controls::Label lbl1_Col{*this, u"lbl1_Col"};
  controls::TextBox box1_Col{*this, u"box1_Col"};
  controls::TextBox box1_ColAuto{*this, u"box1_ColAuto"};
  controls::Button btn1_SelCol{*this, u"btn1_SelCol"};
  controls::CheckBox chk1_JumpFirstRow{*this, u"chk1_JumpFirstRow"};
  controls::CheckBox chk1_DontSaveChanges{*this, u"chk1_DontSaveChanges"};

  // Edit page
  controls::Frame fra2{*this, u"fra2"};
  controls::CheckBox chk2_EditCloseForm{*this, u"chk2_EditCloseForm"};

  // Keyboard page
  controls::Frame fra3{*this, u"fra3"};
  controls::Frame fra0_Keyboard{*this, u"fra0_Keyboard"};
  controls::CheckBox chk0_HotKeySearch{*this, u"chk0_HotKeySearch"};
  controls::TextBox box0_HKS{*this, u"box0_HKS"};
  controls::CheckBox chk0_HotKeyUnhide{*this, u"chk0_HotKeyUnhide"};
  controls::TextBox box0_HKU{*this, u"box0_HKU"};

 private:
  using HotKeySetter = void (clsVTRLKItems::*)(std::u16string_view);
  // What picking on the sheet makes of the address picked, in upper case.
  using PickedText = std::u16string (frmOptions::*)(std::u16string_view address) const;

  void Form_Load() override;
  void Form_Unload() override;
  void ApplyCaptions() override;
  void ConnectCommonPages();
  void ConnectBooksPage();
  // The reference keeps them alive that a call back may replace. Throws once the form is unloaded.
  std::shared_ptr<clsVTRLKItems> SharedItems() const;
  clsVTRLKItems& Items() const { return *SharedItems(); }
  clsVTRLKRecentItems& History() const { return *Items().RecentItems; }

  void tvw0_NodeClick(std::u16string_view key);
  void FillOptions();
  void ConnectHotKey(controls::CheckBox& check, controls::TextBox& box, HotKeySetter store);
  void HotKey_Click(const controls::CheckBox& check, controls::TextBox& box, HotKeySetter store);
  void HotKey_KeyDown(controls::TextBox& box, HotKeySetter store, int32_t& key, int32_t shift);
  void chk0_RecentsUse_Click();
  void box0_RecentItems_Change();
  void FillLanguages();
  void cbo0_LangFile_Click();
  void SaveConfiguration();
  void RegisterHotKeys();

  void FillBooks();
  void lvw0_ItemClick();
  void ShowProfile();
  void ConnectField(controls::TextBox& field, controls::TextBox& automatic, const TextRule& rule,
                    void (frmOptions::*write)());
  void WriteRange();
  void WriteSearchCols();
  void WriteCol();
  void AddBook();
  void DeleteBook();
  void ResetBook();
  void Pick(controls::TextBox& field, bool multiple, PickedText text);
  std::u16string PickedRange(std::u16string_view address) const { return std::u16string(address); }
  std::u16string PickedCol(std::u16string_view address) const;
  std::u16string PickedSearchCols(std::u16string_view address) const;
  // Of the active sheet; throw host::Error.
  int32_t ColumnNumber(std::u16string_view letters) const;

  std::optional<HotKeys> old_keys_;  // before any were changed here
  bool loading_ = false;
  bool default_language_ = false;    // the user has chosen that of the set-up
  mclsVTDictionary language_files_;  // "itm_" and the index in the list, to the name of the file
  std::shared_ptr<clsVTRLKItem> profile_;
  Ref<frmSelectRange> picker_;
};

}  // namespace rowlark
