// The page of the workbook profiles.
#include <string>

#include "forms/TextRule.h"
#include "forms/frmOptions.h"
#include "host/Block.h"
#include "runtime/Failure.h"
#include "settings/Product.h"
#include "util/Text.h"

namespace rowlark {
namespace {

constexpr int32_t kDefaultProfile = -1;  // tag of the entry for all workbooks

// What is left of an address without row numbers and dollar signs.
std::u16string ColumnsOf(std::u16string_view address) {
  auto columns = WithoutDollars(std::u16string(address));
  std::erase_if(columns, [](char16_t c) { return c >= u'0' && c <= u'9'; });
  return columns;
}

// The text before the first separator, which goes with it.
std::u16string_view TakePiece(std::u16string_view& text, char16_t separator) {
  const auto end = std::min(text.find(separator), text.size());
  const auto piece = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return piece;
}

}  // namespace

void frmOptions::ConnectBooksPage() {
  lvw0.ItemClick = [this] { lvw0_ItemClick(); };
  tbr1_0.ButtonClick = [this](std::u16string_view key) {
    if (key == u"ADD") {
      AddBook();
    } else if (key == u"DEL") {
      DeleteBook();
    } else if (key == u"RESET") {
      ResetBook();
    }
  };
  ConnectField(box1_Range, box1_RangeAuto, kRangeRule, &frmOptions::WriteRange);
  ConnectField(box1_SearchCols, box1_SearchColsAuto, kColumnsRule, &frmOptions::WriteSearchCols);
  ConnectField(box1_Col, box1_ColAuto, kColumnRule, &frmOptions::WriteCol);
  for (auto* button : {&btn1_SelRange, &btn1_SelSearchCols, &btn1_SelCol}) {
    button->SetCaption(u"...");
    button->Picture = u"pick";
  }
  btn1_SelRange.Click = [this] { Pick(box1_Range, false, &frmOptions::PickedRange); };
  btn1_SelSearchCols.Click = [this] { Pick(box1_SearchCols, true, &frmOptions::PickedSearchCols); };
  btn1_SelCol.Click = [this] { Pick(box1_Col, false, &frmOptions::PickedCol); };
  chk1_JumpFirstRow.Click = [this] {
    if (!loading_ && profile_) profile_->UnhideJumpFirstRow = chk1_JumpFirstRow.Value();
  };
  chk1_DontSaveChanges.Click = [this] {
    if (!loading_ && profile_) profile_->DontSaveChanges = chk1_DontSaveChanges.Value();
  };
}

void frmOptions::ConnectField(controls::TextBox& field, controls::TextBox& automatic, const TextRule& rule,
                              void (frmOptions::*write)()) {
  field.Change = [this, &field, &automatic, &rule, write] {
    if (!ApplyRule(field, rule)) return;
    automatic.SetVisible(field.Text().empty());
    if (!loading_ && profile_) (this->*write)();
  };
  automatic.ReadOnly = true;
  automatic.TabStop = false;
  automatic.CueFor = &field;
  automatic.Click = [&field] {
    field.SetText(u"");
    field.SetFocus();
  };
}

void frmOptions::FillBooks() {
  lvw0.Tag = u"1";
  lvw0.Clear();
  const auto add = [this](const std::u16string& text, int32_t tag) { lvw0.AddItem({text, u"EXCEL", tag}); };
  add(Text(u"Options.UI.Book.DefItem", u"<All workbooks>"), kDefaultProfile);
  const auto items = SharedItems();
  for (int32_t i = 0; i < items->count(); ++i) add(items->Item(i)->Name(), i);
  lvw0.Tag.clear();
  lvw0.Select(0);
}

void frmOptions::lvw0_ItemClick() {
  const auto* entry = lvw0.SelectedItem();
  if (!lvw0.Tag.empty() || entry == nullptr) return;
  const auto items = SharedItems();
  if (entry->tag == kDefaultProfile) {
    profile_ = items->DefaultItem;
  } else {
    profile_ = items->Item(entry->tag);
    // Others may have removed profiles since the list was filled.
    if (!profile_ || profile_->Name() != entry->text) profile_ = items->ByName(entry->text);
  }
  ShowProfile();
}

void frmOptions::ShowProfile() {
  const ScopedFlag loading(loading_);
  for (auto* box : {&box1_Range, &box1_SearchCols, &box1_Col}) box->SetEnabled(profile_ != nullptr);
  for (auto* check : {&chk1_JumpFirstRow, &chk1_DontSaveChanges}) check->SetEnabled(profile_ != nullptr);
  const auto profile = profile_;
  if (!profile) return;
  std::u16string range;
  std::u16string column;
  if (profile->StartRow() > 0) {
    range = profile->SearchRange();
    Attempt([&] {
      const auto sheet = Require(Host()->ActiveSheet());
      const auto block = profile->Block();
      range = PlainAddress(*sheet->Range(*sheet->Cells(block.first_row, block.first_column),
                                         *sheet->Cells(block.last_row, block.last_column)));
    });
  }
  if (profile->SelectCol > 0) {
    // Empty when it is off this sheet.
    Attempt(
        [&] { column = ColumnsOf(Require(Host()->ActiveSheet())->Cells(1, profile->SelectCol)->Address()); });
  }
  box1_SearchCols.SetText(profile->SearchCols);
  box1_Range.SetText(range);
  box1_Col.SetText(column);
  chk1_JumpFirstRow.SetValue(profile->UnhideJumpFirstRow);
  chk1_DontSaveChanges.SetValue(profile->DontSaveChanges);
  // Also where the text has stayed the same.
  for (auto* box : {&box1_Range, &box1_SearchCols, &box1_Col}) box->Change.Raise();
}

// A text that is no range means an automatic one.
void frmOptions::WriteRange() {
  const auto profile = profile_;
  const auto text = box1_Range.Text();
  Block block;
  if (!text.empty()) {
    Attempt([&] { block = Block::Of(*Require(Host()->ActiveSheet())->Range(text)); });
  }
  profile->SetBlock(block);
  ProfileChanged.Raise();
}

void frmOptions::WriteSearchCols() { profile_->SearchCols = box1_SearchCols.Text(); }

void frmOptions::WriteCol() {
  const auto profile = profile_;
  const auto letters = box1_Col.Text();
  profile->SelectCol = 0;
  if (letters.empty()) return;
  Attempt([&] { profile->SelectCol = ColumnNumber(letters); });
}

void frmOptions::AddBook() {
  const auto book = Require(Host()->ActiveWorkbook());
  const auto name = book->Name();
  const auto full_name = book->FullName();
  auto& windows = shared_.Platform.Windows;
  if (Items().Exists(name)) {
    windows.MsgBox(
        shared_.Language->GetText(u"Options.UI.Book.AddExist", u"Workbook '%1' already exists !", name),
        host::MsgBoxIcon::Exclamation, kProductTitle);
    return;
  }
  const bool agreed =
      windows.Ask(shared_.Language->GetText(u"Options.UI.Book.AddQuestion",
                                            u"Do you want to add workbook [%1] in this list ?", name),
                  kProductTitle);
  if (!agreed || !Loaded()) return;
  const auto items = SharedItems();
  const auto default_item = items->DefaultItem;
  items->Add(default_item->Clone(full_name));
  FillBooks();
  ProfileChanged.Raise();
}

void frmOptions::DeleteBook() {
  const auto* entry = lvw0.SelectedItem();
  if (entry == nullptr || entry->tag == kDefaultProfile) return;
  const auto name = entry->text;
  const bool agreed =
      shared_.Platform.Windows.Ask(shared_.Language->GetText(u"Options.UI.Book.DelQuestion",
                                                             u"Do you want to remove [%1] from list ?", name),
                                   kProductTitle);
  if (!agreed || !Loaded()) return;
  Items().Remove(name);
  FillBooks();
  ProfileChanged.Raise();
}

void frmOptions::ResetBook() {
  if (lvw0.SelectedItem() == nullptr) return;
  for (auto* box : {&box1_Col, &box1_Range, &box1_SearchCols}) box->SetText(u"");
}

// The user selects on the sheet meanwhile. One pick at a time, and for the profile that was shown when it
// began.
void frmOptions::Pick(controls::TextBox& field, bool multiple, PickedText text) {
  if (picker_) return;
  const auto picker = picker_ = MakeRef<frmSelectRange>(shared_);
  if (!picker->Open()) {
    picker_ = nullptr;
    return;
  }
  const auto let_change = [this](bool enabled) {
    for (auto* control : std::initializer_list<controls::Control*>{&tvw0, &lvw0, &tbr1_0}) {
      control->SetEnabled(enabled);
    }
  };
  let_change(false);
  picker->SetAllowMultipleSelection(multiple);
  picker->Show();
  if (Loaded()) runtime_->Wait([&picker] { return picker->uVisible(); });
  const auto address = ToUpper(picker->box0.Text());
  picker->Unload();
  picker_ = nullptr;
  let_change(true);
  if (!Loaded() || !picker->Accepted() || address.empty()) return;
  Attempt([&] {
    const auto picked = (this->*text)(address);
    if (!Loaded()) return;
    field.SetText(picked);
    field.SetFocus();
  });
}

std::u16string frmOptions::PickedCol(std::u16string_view address) const {
  return ColumnsOf(TakePiece(address, u':'));
}

// The columns of all areas, ordered as texts.
std::u16string frmOptions::PickedSearchCols(std::u16string_view address) const {
  mclsVTDictionary columns;
  columns.SetCompareMode(CompareMode::Text);
  columns.SetSortMode(SortMode::Ascending);
  const auto letters = ColumnsOf(address);
  std::u16string_view areas = letters;
  while (!areas.empty()) {
    auto area = TakePiece(areas, u';');
    const int32_t first = ColumnNumber(TakePiece(area, u':'));
    const int32_t last = area.empty() ? first : ColumnNumber(area);
    for (int32_t column = first; column <= last; ++column) columns.Add(ColumnLetters(column), {});
  }
  std::u16string text;
  for (const auto& column : columns) {
    if (!text.empty()) text += u',';
    text += column;
  }
  return text;
}

int32_t frmOptions::ColumnNumber(std::u16string_view letters) const {
  return Require(Host()->ActiveSheet())->Range(std::u16string(letters) + u"1")->Column();
}

}  // namespace rowlark
