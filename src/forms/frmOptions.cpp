#include "forms/frmOptions.h"

#include "forms/TextRule.h"
#include "lang/mclsVTIniFile.h"
#include "runtime/Failure.h"
#include "runtime/modMain.h"
#include "settings/Product.h"
#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

using controls::Layout;

constexpr std::u16string_view kCommon = u"COMMON";
constexpr std::u16string_view kBooks = u"BOOKS";
constexpr std::u16string_view kKeyboard = u"KEYB";
constexpr std::u16string_view kEdit = u"EDIT";

}  // namespace

frmOptions::frmOptions(SharedState& shared) : BaseForm(shared, u"frmOptions", HelpTopic::Options) {
  tvw0.NodeClick = [this](const controls::TreeView::Node& node) { tvw0_NodeClick(node.key); };
  btnClose.Click = [this] { Unload(); };
  btnClose.Cancel = true;
  ConnectCommonPages();
  ConnectBooksPage();

  const auto field = [](controls::TextBox& box, controls::TextBox& automatic) {
    return Layout::Stack({box, automatic}).Wide();
  };
  const auto language = Layout::Framed(
      fra0_Lang, Layout::Column({Layout::Row({lbl0_LangFileCaption, Layout(cbo0_LangFile, {32}).Wide()}),
                                 lbl0_LangInfoCaption, Layout(box0_LangInfo, {42, 4}).High()}));
  const auto common = Layout::Framed(
      fra0, Layout::Column({chk0_UnhideOnEsc, chk0_AutoDetectText,
                            Layout::Row({Layout(chk0_RecentsUse).Wide(), btnRecentClear}),
                            Layout(chk0_RecentsTemp).Indented(),
                            Layout::Row({lbl0_RecentItemsCap, Layout(box0_RecentItems, {6})}).Indented(),
                            Layout(language).High()}));
  const auto books = Layout::Framed(
      fra1, Layout::Column(
                {tbr1_0, Layout(lvw0, {45, 4}).High(),
                 Layout::Grid(3, {lbl1_Range, field(box1_Range, box1_RangeAuto), btn1_SelRange,
                                  lbl1_SearchCols, field(box1_SearchCols, box1_SearchColsAuto),
                                  btn1_SelSearchCols, lbl1_Col, field(box1_Col, box1_ColAuto), btn1_SelCol}),
                 chk1_JumpFirstRow, chk1_DontSaveChanges}));
  const auto keyboard = Layout::Framed(
      fra3, Layout::Column({Layout::Framed(fra0_Keyboard,
                                           Layout::Grid(2, {chk0_HotKeySearch, Layout(box0_HKS, {22}).Wide(),
                                                            chk0_HotKeyUnhide, box0_HKU})),
                            Layout().High()}));
  const auto edit = Layout::Framed(fra2, Layout::Column({chk2_EditCloseForm, Layout().High()}));
  SetLayout(
      Layout::Column({Layout::Row({Layout(tvw0, {18}), Layout::Stack({common, books, keyboard, edit}).Wide()})
                          .Apart()
                          .High(),
                      Layout::Row({Layout().Wide(), btnClose})})
          .Apart());
}

void frmOptions::ConnectCommonPages() {
  chk0_UnhideOnEsc.Click = [this] { Items().UnhideOnEsc = chk0_UnhideOnEsc.Value(); };
  chk0_AutoDetectText.Click = [this] { Items().AutoDetectSearchText = chk0_AutoDetectText.Value(); };
  chk0_RecentsUse.Click = [this] { chk0_RecentsUse_Click(); };
  chk0_RecentsTemp.Click = [this] { History().IsTemporary = chk0_RecentsTemp.Value(); };
  chk2_EditCloseForm.Click = [this] { Items().EditAutoClose = chk2_EditCloseForm.Value(); };
  box0_RecentItems.Change = [this] { box0_RecentItems_Change(); };
  btnRecentClear.Click = [this] {
    History().Clear();
    HistoryCleared.Raise();
  };
  cbo0_LangFile.DropDownList = true;
  cbo0_LangFile.Click = [this] { cbo0_LangFile_Click(); };
  box0_LangInfo.ReadOnly = true;
  box0_LangInfo.MultiLine = true;
  ConnectHotKey(chk0_HotKeySearch, box0_HKS, &clsVTRLKItems::SetHotKeySearch);
  ConnectHotKey(chk0_HotKeyUnhide, box0_HKU, &clsVTRLKItems::SetHotKeyUnhide);
}

void frmOptions::Form_Load() {
  for (const auto key : {kCommon, kBooks, kKeyboard, kEdit}) tvw0.AddNode(key);
  language_files_.SetSortMode(SortMode::Ascending);
  Float();
  shared_.OptionsFormOpen = Loaded();
}

std::shared_ptr<clsVTRLKItems> frmOptions::SharedItems() const {
  if (runtime_ == nullptr) throw host::Error(91, u"Object variable or With block variable not set");
  return runtime_->Items;
}

void frmOptions::SetObjectRLKRuntime(clsVTRLKRuntime& runtime) {
  BaseForm::SetObjectRLKRuntime(runtime);
  old_keys_.emplace(Items());
  const bool sheet = Attempt([this] { Require(Host()->ActiveSheet()); });
  for (auto* button : {&btn1_SelRange, &btn1_SelSearchCols, &btn1_SelCol}) button->SetEnabled(sheet);
}

void frmOptions::Init() {
  ApplyCaptions();
  FillBooks();
  if (!Loaded()) return;
  FillOptions();
  FillLanguages();
  CentreOverHost();
}

void frmOptions::Form_Unload() {
  if (picker_) picker_->Unload();
  if (runtime_ != nullptr) {
    Attempt([this] { SaveConfiguration(); });
    Attempt([this] { RegisterHotKeys(); });
  }
  language_files_.Clear();
  BaseForm::Form_Unload();
  shared_.OptionsFormOpen = false;
}

void frmOptions::SaveConfiguration() {
  const auto items = SharedItems();
  if (items->CfgSave(default_language_)) {
    if (default_language_) shared_.Language->SetLangFile(u"");
    return;
  }
  ShowFailure(shared_,
              shared_.Language->GetText(u"Err.WriteCfg", u"Configuration write error in file\\n%1",
                                        items->CfgFileName),
              HelpTopic::Troubleshooting);
}

void frmOptions::RegisterHotKeys() {
  const HotKeys keys(Items());
  const auto host = Host();
  if (old_keys_) ReleaseHotKeys(*host, *old_keys_, shared_.Platform.Trace);
  const auto refused = AssignHotKeys(*host, keys, shared_.Platform.Trace);
  // A host that ends refuses everything, and nobody can choose anything any more.
  if (refused.empty() || shared_.Terminating) return;
  ShowFailure(shared_,
              shared_.Language->GetText(
                  u"Err.HotKey", u"Excel refuses the hotkey %1. Choose another one in the options.", refused),
              HelpTopic::Troubleshooting);
}

void frmOptions::ApplyCaptions() {
  SetCaption(Text(u"Options.UI.FormCaption", u"Options"));
  btnClose.SetCaption(Text(u"Options.UI.ButtonClose", u"Close"));
  fra0.SetCaption(Padded(Text(u"Options.UI.Tree.Common", u"Common")));
  fra1.SetCaption(Padded(Text(u"Options.UI.Tree.Books", u"Books")));
  fra2.SetCaption(Padded(Text(u"Options.UI.Tree.Edit", u"Edit")));
  fra3.SetCaption(Padded(Text(u"Options.UI.Tree.Keyboard", u"Keyboard")));
  fra0_Lang.SetCaption(Padded(Text(u"Options.UI.Lng.Header", u"Language")));
  fra0_Keyboard.SetCaption(Padded(Text(u"Options.UI.Kbd.Header", u"Global Excel hotkeys")));
  lbl0_LangFileCaption.SetCaption(Text(u"Options.UI.Lng.File", u"File:"));
  lbl0_LangInfoCaption.SetCaption(Text(u"Options.UI.Lng.Info", u"Language info:"));
  chk0_HotKeySearch.SetCaption(Text(u"Options.UI.Kbd.HotKeySearch", u"Form 'Search'"));
  chk0_HotKeyUnhide.SetCaption(Text(u"Options.UI.Kbd.HotKeyUnhide", u"Show All"));
  chk0_UnhideOnEsc.SetCaption(Text(u"Options.UI.Kbd.UnhideOnEsc", u"Show All after Search form closed"));
  chk2_EditCloseForm.SetCaption(
      Text(u"Options.UI.Edit.AutoClose", u"Auto close this form after cell edit ended"));
  chk0_RecentsUse.SetCaption(Text(u"Options.UI.Common.UseRecent", u"Use history"));
  chk0_RecentsTemp.SetCaption(Text(u"Options.UI.Common.RecentTemp", u"Temporary history"));
  lbl0_RecentItemsCap.SetCaption(Text(u"Options.UI.Common.RecentAmount", u"History max. items"));
  btnRecentClear.SetCaption(Text(u"Options.UI.Common.BtnRecentClear", u"Clear"));
  btnRecentClear.SetToolTip(Text(u"Options.UI.Common.BtnRecentClearTip", u"Clear history"));
  chk0_AutoDetectText.SetCaption(Text(u"Options.UI.Common.AutoDetectText", u"Auto detect search text"));

  lbl1_Range.SetCaption(Text(u"Options.UI.Book.RangeCaption", u"Search range:"));
  lbl1_SearchCols.SetCaption(Text(u"Options.UI.Book.SearchColsCaption", u"Search in columns:"));
  lbl1_Col.SetCaption(Text(u"Options.UI.Book.JumpColCaption", u"GoTo column:"));
  chk1_JumpFirstRow.SetCaption(
      Text(u"Options.UI.Book.JumpFirstRow", u"On command [Show All] goto first row"));
  chk1_DontSaveChanges.SetCaption(
      Text(u"Options.UI.Book.DontSaveChanges", u"Don't save workbook changes on close"));

  const std::u16string nodes[] = {
      Text(u"Options.UI.Tree.Common", u"Common"), Text(u"Options.UI.Tree.Books", u"Excel workbooks"),
      Text(u"Options.UI.Tree.Keyboard", u"Keyboard"), Text(u"Options.UI.Tree.Edit", u"Edit mode")};
  for (std::size_t i = 0; i < std::size(nodes); ++i) tvw0.SetNodeText(i, nodes[i]);
  tbr1_0.SetButtons({{u"ADD", Text(u"Options.UI.Toolbar.Add.Caption", u"Add"),
                      Text(u"Options.UI.Toolbar.Add.Tip", u"Add current workbook")},
                     {u"DEL", Text(u"Options.UI.Toolbar.Del.Caption", u"Del"),
                      Text(u"Options.UI.Toolbar.Del.Tip", u"Delete selected workbook")},
                     {u"RESET", Text(u"Options.UI.Toolbar.Reset.Caption", u"Reset"),
                      Text(u"Options.UI.Toolbar.Reset.Tip", u"Reset selected workbook parameters")}});
  btn1_SelRange.SetToolTip(Text(u"Options.UI.Book.PickRangeTip", u"Select the search range on the sheet"));
  btn1_SelSearchCols.SetToolTip(
      Text(u"Options.UI.Book.PickSearchColsTip", u"Select the columns to search on the sheet"));
  btn1_SelCol.SetToolTip(Text(u"Options.UI.Book.PickColTip", u"Select the column to go to on the sheet"));
  const auto automatic = Text(u"Options.UI.Book.Auto", u"<auto>");
  for (auto* box : {&box1_RangeAuto, &box1_SearchColsAuto, &box1_ColAuto}) box->SetText(automatic);
  if (cbo0_LangFile.ListCount() > 0) cbo0_LangFile.SetList(0, Text(u"Options.UI.DefaultItem", u"<Default>"));

  tvw0.Select(std::max(tvw0.Selected(), 0));
  Arrange();
}

void frmOptions::tvw0_NodeClick(std::u16string_view key) {
  const auto& chosen = key == kCommon ? fra0 : key == kBooks ? fra1 : key == kEdit ? fra2 : fra3;
  // What is hidden loses the focus; the page that stays does not.
  for (auto* page : {&fra0, &fra1, &fra2, &fra3}) page->SetVisible(page == &chosen);
}

void frmOptions::FillOptions() {
  const ScopedFlag loading(loading_);
  chk0_UnhideOnEsc.SetValue(Items().UnhideOnEsc);
  chk0_HotKeySearch.SetValue(!Items().HotKeySearch().empty());
  chk0_HotKeyUnhide.SetValue(!Items().HotKeyUnhide().empty());
  chk2_EditCloseForm.SetValue(Items().EditAutoClose);
  chk0_RecentsUse.SetValue(History().Use);
  chk0_RecentsTemp.SetValue(History().IsTemporary);
  box0_RecentItems.SetText(ToText(History().MaxItemsCount));
  chk0_AutoDetectText.SetValue(Items().AutoDetectSearchText);
  // What depends on a box that kept its value.
  for (auto* check : {&chk0_HotKeySearch, &chk0_HotKeyUnhide, &chk0_RecentsUse}) check->Click.Raise();
  box0_HKS.SetText(HotKeyText(Items().HotKeySearch()));
  box0_HKU.SetText(HotKeyText(Items().HotKeyUnhide()));
}

void frmOptions::chk0_RecentsUse_Click() {
  const bool use = chk0_RecentsUse.Value();
  History().Use = use;
  chk0_RecentsTemp.SetEnabled(use);
  box0_RecentItems.SetEnabled(use);
  lbl0_RecentItemsCap.SetEnabled(use);
}

// A number that is out of bounds leaves the maximum as it was.
void frmOptions::box0_RecentItems_Change() {
  constexpr int32_t kMost = 999;
  if (!ApplyRule(box0_RecentItems, kNumberRule)) return;
  const auto number = ToInteger(box0_RecentItems.Text());
  if (number && *number >= 0 && *number <= kMost) History().MaxItemsCount = *number;
}

void frmOptions::ConnectHotKey(controls::CheckBox& check, controls::TextBox& box, HotKeySetter store) {
  check.Click = [this, &check, &box, store] { HotKey_Click(check, box, store); };
  box.KeyDown = [this, &box, store](int32_t& key, int32_t shift) { HotKey_KeyDown(box, store, key, shift); };
  // Nothing can be typed.
  box.KeyPress = [](char16_t& character) { character = 0; };
  box.KeyUp = [](int32_t& key, int32_t) { key = 0; };
}

void frmOptions::HotKey_Click(const controls::CheckBox& check, controls::TextBox& box, HotKeySetter store) {
  box.SetEnabled(check.Value());
  if (check.Value()) return;
  (Items().*store)(u"");
  box.SetText(u"");
}

void frmOptions::HotKey_KeyDown(controls::TextBox& box, HotKeySetter store, int32_t& key, int32_t shift) {
  if (shift == controls::kNoShift) {
    if (key == controls::kKeyReturn || key == controls::kKeyTab) return;  // as in any dialog
    if (key == controls::kKeyEscape) {
      key = 0;
      return box.SetText(u"");
    }
  }
  const auto captured = CaptureHotKey(key, shift);
  key = 0;
  box.SetText(captured.text);
  if (!HotKeyName(captured.code).empty()) (Items().*store)(captured.code);
}

void frmOptions::FillLanguages() {
  const ScopedFlag loading(loading_);
  const auto language = shared_.Language;
  const auto& files = shared_.Platform.Files;
  const auto complain = [&](std::u16string_view text) {
    ShowFailure(shared_, text, HelpTopic::Troubleshooting);
  };
  mclsVTDictionary found;
  language_files_.Clear();
  if (!Attempt([&] {
        if (!files.IsPathExists(language->Path())) throw host::Error(76, u"Path not found");
        files.DirScanFiles(language->Path(), found, false);
      })) {
    complain(Text(u"Err.LangFiles.Search", u"Language files not found!"));
    if (!Loaded()) return;
  }
  cbo0_LangFile.Clear();
  cbo0_LangFile.AddItem(Text(u"Options.UI.DefaultItem", u"<Default>"));
  cbo0_LangFile.SetListIndex(0);
  try {
    for (const auto& path : found) {
      const auto name = path.substr(path.find_last_of(u"\\/") + 1);
      if (!ToLower(name).ends_with(u".lng")) continue;
      mclsVTIniFile file(files);
      file.SetSepComment(u";");
      file.SetFullName(path);
      const auto value = [&file](std::u16string_view key) { return file.GetData(key, u"").value_or(u""); };
      if (value(u"PRG_KEY") != u"VTRLK 1.x") continue;
      cbo0_LangFile.AddItem(value(u"LANGUAGE_NAME_ENG") + u" (" + value(u"LANGUAGE_NAME") + u")");
      const int32_t index = cbo0_LangFile.ListCount() - 1;
      language_files_.Add(u"itm_" + ToText(index), name);
      if (Compare(name, language->LangFile(), CompareMode::Text) == 0) cbo0_LangFile.SetListIndex(index);
    }
  } catch (...) {
    TraceCaught(shared_.Platform.Trace);
    complain(language->GetText(u"Err.LangFiles.Internal", u"Language files search error:\\n%1",
                               CurrentDescription()));
  }
}

// "<Default>" counts when the form is closed: the configuration then names no language.
void frmOptions::cbo0_LangFile_Click() {
  std::u16string file = u"<default>";
  std::u16string author(kCompanyName);
  std::u16string mail(kProductMail);
  std::u16string web(kProductWebSite);
  const auto* entry =
      std::get_if<std::u16string>(&language_files_.Data(u"itm_" + ToText(cbo0_LangFile.ListIndex())));
  const auto name = entry != nullptr ? *entry : std::u16string();
  if (!loading_) default_language_ = name.empty();
  if (!name.empty()) {
    const auto language = shared_.Language;
    const auto path = language->Path() + name;
    Attempt([&] {
      if (!shared_.Platform.Files.IsFileExists(path)) return;
      mclsVTIniFile texts(shared_.Platform.Files);
      texts.SetSepComment(u";");
      texts.SetFullName(path);
      file = name;
      author = texts.GetData(u"AUTHOR_NAME", u"").value_or(author);
      mail = texts.GetData(u"AUTHOR_MAIL", u"").value_or(mail);
      web = texts.GetData(u"AUTHOR_WWW", u"").value_or(web);
      if (Compare(name, language->LangFile(), CompareMode::Text) != 0) language->SetLangFile(name);
    });
  }
  box0_LangInfo.SetText(shared_.Language->GetText(
      u"Misc.LangInfo", u"File: %1\\nAuthor: %2\\nE-Mail: %3\\nWWW: %4", {file, author, mail, web}));
  if (loading_ || !Loaded()) return;
  ApplyCaptions();
  FillBooks();
  FillOptions();
}

}  // namespace rowlark
