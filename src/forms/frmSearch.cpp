#include "forms/frmSearch.h"

#include <utility>

#include "runtime/Failure.h"
#include "settings/Product.h"

namespace rowlark {
namespace {

using controls::Layout;
using host::Hive;

constexpr int32_t kTypingDelay = 300;  // milliseconds
constexpr controls::TwipPoint kDesignPosition{2880, 2880};

// Values of "SearchAllWords", which number the modes in another way than xeVT_SEARCH_WORDS does.
constexpr int32_t kModeAny = 0;
constexpr int32_t kModeAll = 1;
constexpr int32_t kModeCell = 2;

}  // namespace

frmSearch::frmSearch(SharedState& shared) : BaseForm(shared, u"frmSearch", HelpTopic::Search) {
  SetCaption(kProductTitle);
  Form::KeyDown = [this](int32_t& key, int32_t shift) { Form_KeyDown(key, shift); };
  Activate = [this] {
    ShowFormCaption();
    uActivateCboText();
  };
  cboText.Change = [this] { cboText_Change(); };
  cboText.Click = [this] { cboText_Change(); };
  cboText.KeyDown = [this](int32_t& key, int32_t shift) { cboText_KeyDown(key, shift); };
  // Ctrl+Backspace types the character 127.
  cboText.KeyPress = [](char16_t& character) {
    if (character == 127) character = 0;
  };
  cboText.KeyUp = [](int32_t& key, int32_t shift) {
    if (key == controls::kKeyBack && shift == controls::kCtrl) key = 0;
  };
  for (auto* option : {&optWordsAll, &optWordsCell, &optWordsAny})
    option->Click = [this] { Options_Click(); };
  chkCase.Click = [this] { Options_Click(); };
  chkSearchAll.Click = [this] { Options_Click(); };
  chkEditMode.Click = [this] { chkEditMode_Click(); };
  btnMode.Click = [this] { btnMode_Click(); };
  btnMode.Default = true;
  btnUnhide.Click = [this] { btnUnhide_Click(); };
  btnOptions.Click = [this] { runtime_->ShowOptions(); };
  btnClose.Click = [this] { Unload(); };
  btnClose.MouseDown = [this] { btnClose.Tag = u"1"; };
  imgExclamationNormal.Click = [this] { uActivateCboText(); };
  imgExclamationErr.Click = [this] { uActivateCboText(); };
  imgExclamationErr.SetVisible(false);
  imgExclamationErr.Alert = true;
  imgExclamationErr.Sign = u"!";
  tmr0.Tick = [this] { tmr0_Timer(); };
  boxError.ReadOnly = true;
  boxError.MultiLine = true;
  boxError.Alert = true;
  boxError.TabStop = false;

  SetLayout(
      Layout::Column({Layout::Framed(fraTextCaption,
                                     Layout::Row({Layout(cboText, {45}).Wide(),
                                                  Layout::Stack({imgExclamationNormal, imgExclamationErr})})),
                      Layout::Row({Layout::Column({optWordsAll, optWordsCell, optWordsAny}).Wide(),
                                   Layout::Column({chkCase, chkSearchAll, chkEditMode}).Wide(),
                                   Layout::Grid(2, {btnMode, btnUnhide, btnOptions, btnClose})})
                          .Apart(),
                      Layout(boxError, {0, 2}).High().WhileVisible()})
          .Apart());
}

void frmSearch::Form_Load() {
  tmr0.SetEnabled(false);
  tmr0.SetInterval(kTypingDelay);
  boxError.SetVisible(false);
  ApplyCaptions();  // which make the form as large as it is
  if (!RestorePosition(u"SearchFormPosSize")) MoveOntoScreen(kDesignPosition);
  Float();
  btnClose.Tag.clear();
  shared_.SearchFormLoaded = Loaded();
}

void frmSearch::SetObjectRLKRuntime(clsVTRLKRuntime& runtime) {
  const ScopedFlag loading(loading_);
  BaseForm::SetObjectRLKRuntime(runtime);
  evtRLRTM_ =
      runtime.SearchingEvent().Connect(Handler([this](bool searching) { evtRLRTM_Searching(searching); }));
  ApplyCaptions();
  if (!Loaded()) return;

  const auto number = [this](std::u16string_view value, int32_t missing) {
    return shared_.Registry.GetLong(Hive::CurrentUser, kProductKey, value, missing);
  };
  switch (number(u"SearchAllWords", kModeAll)) {
    case kModeAll:
      optWordsAll.SetValue(true);
      break;
    case kModeCell:
      optWordsCell.SetValue(true);
      break;
    default:
      optWordsAny.SetValue(true);
  }
  const bool edit = number(u"EditMode", 0) == 1;
  chkEditMode.SetValue(edit);
  SetEditMode(edit);
  chkCase.SetValue(number(u"SearchMatchCase", 0) == 1);
  chkSearchAll.SetValue(number(u"SearchFilter", 1) == 1);
  ApplyOptions();

  std::u16string text;
  if (runtime.Items->AutoDetectSearchText) {
    Attempt([&] { text = Require(Host()->ActiveCell())->Value(); });
    if (!Loaded()) return;
  }
  cboText.SetText(text);
  FillHistory();
  typed_ = text;
}

// A form that goes before it has been filled leaves nothing behind.
void frmSearch::Form_Unload() {
  if (runtime_ != nullptr && !loading_) Finish();
  evtRLRTM_.Release();
  BaseForm::Form_Unload();
  shared_.SearchFormLoaded = false;
}

void frmSearch::Finish() {
  const auto items = runtime_->Items;
  if (runtime_->Searching()) runtime_->StopSearch();
  if (runtime_ != nullptr) runtime_->EndSearch();
  Hide();
  SetOwner(0);
  StorePosition(u"SearchFormPosSize");
  const auto store = [this](std::u16string_view value, int32_t number) {
    shared_.Registry.SetLong(Hive::CurrentUser, kProductKey, value, number);
  };
  store(u"SearchAllWords", optWordsCell.Value() ? kModeCell : optWordsAll.Value() ? kModeAll : kModeAny);
  store(u"EditMode", chkEditMode.Value() ? 1 : 0);
  store(u"SearchMatchCase", chkCase.Value() ? 1 : 0);
  store(u"SearchFilter", chkSearchAll.Value() ? 1 : 0);
  Attempt([&] {
    if (items->UnhideOnEsc && items->RowsIsGrouped) ShowAllRows();
  });
  Attempt([&] {
    const auto text = cboText.Text();
    items->RecentItems->Add(text);
    cboText.AddItem(text, 0);
    items->CfgSave(false);
  });
  Attempt([&] {
    if (ActiveProfile(*items)->DontSaveChanges) Require(Host()->ActiveWorkbook())->SetSaved(true);
  });
}

// Showing all rows goes to the place that the profile asks for; who goes to a found cell wants to stay on it.
void frmSearch::ShowAllRows() {
  Ref<host::Range> found;
  if (going_) Attempt([&] { found = Host()->ActiveCell(); });
  if (runtime_ != nullptr) Attempt([&] { runtime_->ShowAllRows(false); });
  if (found) found->Activate();
}

void frmSearch::ApplyCaptions() {
  idle_caption_ = Padded(Text(u"Search.UI.SearchBox.Caption", u"Find &what:"));
  searching_caption_ = Padded(Text(u"Search.UI.SearchBox1.Caption", u"Searching..."));
  const bool searching = runtime_ != nullptr && runtime_->Searching();
  fraTextCaption.SetCaption(searching ? searching_caption_ : idle_caption_);
  optWordsAll.SetCaption(Text(u"Search.UI.Opt.CellPart", u"Any &part of cells"));
  optWordsCell.SetCaption(Text(u"Search.UI.Opt.CellEntire", u"&Entire cells only"));
  optWordsAny.SetCaption(Text(u"Search.UI.Opt.CellAnyWord", u"&Any of words"));
  chkCase.SetCaption(Text(u"Search.UI.Chk.MatchCase", u"&Match case"));
  chkSearchAll.SetCaption(Text(u"Search.UI.Chk.UseFilter", u"Auto&Filter mode"));
  chkEditMode.SetCaption(Text(u"Search.UI.Chk.EditMode", u"E&dit mode"));
  btnUnhide.SetCaption(Text(u"Search.UI.Chk.BtnUnhide", u"&Show All"));
  btnOptions.SetCaption(Text(u"Search.UI.Chk.BtnOptions", u"&Options..."));
  btnClose.SetCaption(Text(u"Search.UI.Chk.BtnClose", u"&Close"));
  SetEditMode(edit_mode_);
  ShowFormCaption();
}

// Before the form has its runtime object, and when there is no such object any more, the caption stays.
void frmSearch::ShowFormCaption() {
  if (runtime_ == nullptr) return;
  Attempt([this] {
    const auto range = SearchedRange();
    SetCaption(shared_.Language->GetText(u"Search.UI.FormCaption", u"Search - %1", range));
  });
}

std::u16string frmSearch::SearchedRange() const {
  const auto items = runtime_->Items;
  const auto profile = ActiveProfile(*items);
  bool filtered = false;
  Attempt([&] { filtered = Require(Require(Host()->ActiveWorkbook())->ActiveSheet())->AutoFilterMode(); });
  if (filtered) return Text(u"Search.UI.FormCaption.Mode1", u"[AutoFiltered range]");
  // A copy forms its address on the sheet that is active now, and has none where a bound is open.
  const auto range = profile->UsingAutoRange ? std::u16string() : profile->Clone()->SearchRange();
  if (range.empty()) return Text(u"Search.UI.FormCaption.Mode2", u"[entire sheet]");
  return u"[" + range + u"]";
}

std::shared_ptr<clsVTRLKItem> frmSearch::ActiveProfile(const clsVTRLKItems& items) const {
  auto profile = items.DefaultItem;
  Attempt([&] { profile = items.ForWorkbook(Require(Host()->ActiveWorkbook())->Name()); });
  return profile;
}

void frmSearch::SetEditMode(bool edit) {
  edit_mode_ = edit;
  btnMode.SetCaption(edit ? Text(u"Search.UI.BtnMode.Edit", u"Edi&t")
                          : Text(u"Search.UI.BtnMode.Jump", u"Go&to"));
  Arrange();
}

// The newest text first.
void frmSearch::FillHistory() {
  if (runtime_ == nullptr) return;
  const ScopedFlag loading(loading_);
  const auto& history = *runtime_->Items->RecentItems;
  const auto text = cboText.Text();
  cboText.Clear();
  for (int32_t i = history.count() - 1; i >= 0; --i) cboText.AddItem(history.Item(i));
  cboText.SetText(text);
  cboText.SelectAll();
}

void frmSearch::ApplyOptions() {
  auto& options = *runtime_->SearchOptions;
  options.CompareMethod = chkCase.Value() ? CompareMode::Binary : CompareMode::Text;
  options.SearchWords = optWordsCell.Value()  ? xcVT_SEARCH_WORDS_CELL
                        : optWordsAny.Value() ? xcVT_SEARCH_WORDS_ANY
                                              : xcVT_SEARCH_WORDS_ALL;
  options.UseFilter = chkSearchAll.Value();
}

void frmSearch::RestartDelay() {
  tmr0.SetEnabled(false);
  tmr0.SetEnabled(true);
}

void frmSearch::tmr0_Timer() {
  tmr0.SetEnabled(false);
  if (loading_) return;
  if (editing_) {
    search_is_due_ = true;  // it would move the active cell away from the one that is edited
  } else {
    RunSearch();
  }
}

bool frmSearch::RunSearch() {
  const auto text = cboText.Text();
  return Run([&] {
    if (text.empty()) return runtime_->ShowAllRows(false);
    ApplyOptions();
    return runtime_->RunSearch(text);
  });
}

// Meanwhile messages are processed: a later search may have ended this one, and the form may be gone.
template <class Operation>
bool frmSearch::Run(Operation operation) {
  ShowError(u"");
  bool sheet = true;
  Attempt([&] { sheet = Host()->ActiveSheet() != nullptr; });
  ShowFormCaption();
  if (!sheet || !Loaded()) return false;  // all workbooks have been closed
  OperationResult result;
  try {
    result = operation();
  } catch (...) {
    TraceCaught(shared_.Platform.Trace);
    if (!Loaded()) return false;
    result.error = GenericError(*shared_.Language);
  }
  if (!Loaded()) return false;
  if (result.outcome == Outcome::Refused) RestartDelay();  // an earlier search is brought to its end
  if (!result.error.empty()) ShowError(result.error);
  return result.outcome == Outcome::Done;
}

void frmSearch::ShowError(std::u16string_view text) {
  const bool failed = !text.empty();
  const bool grows = boxError.Visible() != failed;
  boxError.SetText(text);
  boxError.SetVisible(failed);
  imgExclamationErr.SetToolTip(text);
  imgExclamationErr.SetVisible(failed);
  imgExclamationNormal.SetVisible(!failed);
  if (grows) Arrange();  // or shrinks
}

void frmSearch::uActivateCboText() {
  cboText.SetFocus();
  cboText.SelectAll();
}

void frmSearch::evtLang_NewLangLoaded() {
  ApplyCaptions();
  if (runtime_ != nullptr && !loading_) RestartDelay();
}

void frmSearch::evtRLRTM_Searching(bool searching) {
  fraTextCaption.SetCaption(searching ? searching_caption_ : idle_caption_);
}

void frmSearch::Form_KeyDown(int32_t& key, int32_t shift) {
  if (shift == controls::kCtrl && (key == u'F' || key == u'E')) {
    auto& box = key == u'F' ? chkSearchAll : chkEditMode;
    key = 0;
    box.SetValue(!box.Value());
  } else if (key == controls::kKeyEscape) {
    key = 0;
    if (runtime_->Searching()) {
      runtime_->StopSearch();
    } else {
      Unload();
    }
  }
}

void frmSearch::cboText_Change() {
  if (loading_) return;
  if (cboText.ListIndex() < 0) typed_ = cboText.Text();
  RestartDelay();
}

void frmSearch::cboText_KeyDown(int32_t& key, int32_t shift) {
  if (key == controls::kKeyDown && cboText.ListIndex() < 0) {
    typed_ = cboText.Text();
  } else if (key == controls::kKeyUp && cboText.ListIndex() < 1) {
    key = 0;
    cboText.SetListIndex(-1);
    cboText.SetText(typed_);
    cboText.SetCaret(cboText.End());
  } else if (key == controls::kKeyBack && shift == controls::kCtrl) {
    key = 0;
    DeleteLastWord();
  }
}

// A separator at the end stays.
void frmSearch::DeleteLastWord() {
  constexpr std::u16string_view kSeparators = u"\":;., -+=!@#$%^&*()_{}[]/?\\|<>~`'";
  const auto& text = cboText.Text();
  const auto separator = text.find_last_of(kSeparators);
  cboText.SetText(separator == text.npos ? std::u16string() : text.substr(0, separator + 1));
  cboText.SetCaret(cboText.End());
}

void frmSearch::chkEditMode_Click() {
  if (!loading_) SetEditMode(chkEditMode.Value());
}

void frmSearch::Options_Click() {
  if (loading_) return;
  ApplyOptions();
  RestartDelay();
}

void frmSearch::btnMode_Click() {
  while (tmr0.Enabled()) {  // what was typed last has not been searched for yet
    tmr0.SetEnabled(false);
    if (!RunSearch()) return;
  }
  if (!runtime_->FinishSearch() || !Loaded()) return;
  if (edit_mode_) return StartEdit();
  going_ = true;
  Unload();
}

void frmSearch::StartEdit() {
  if (editing_) return;
  {
    const ScopedFlag editing(editing_);
    Hide();
    if (!Loaded()) return;
    Attempt([this] { runtime_->StartEdit(); });  // which waits until the edit form is closed
    if (!Loaded()) return;
    Float();
  }
  if (!Loaded()) return;
  Show();
  uActivateCboText();
  if (std::exchange(search_is_due_, false)) RunSearch();
}

void frmSearch::btnUnhide_Click() {
  Run([this] { return runtime_->ShowAllRows(false); });
  if (Loaded()) cboText.SetFocus();
}

}  // namespace rowlark
