#include "forms/frmEdit.h"

#include <algorithm>

#include "host/Block.h"
#include "runtime/Failure.h"
#include "settings/Product.h"

namespace rowlark {
namespace {

using controls::Layout;

// Of the sheets that this form walks; those of later hosts have more.
constexpr int32_t kLastColumn = 256;

// "C7" of "[Book1.xls]Sheet1!$C$7".
std::u16string CellOf(std::u16string address) {
  address.erase(0, address.rfind(u'!') + 1);
  return WithoutDollars(address);
}

}  // namespace

frmEdit::frmEdit(SharedState& shared) : BaseForm(shared, u"frmEdit", HelpTopic::Edit) {
  Resizable = true;
  box0.MultiLine = true;  // a cell may hold line breaks
  box0.KeyDown = [this](int32_t& key, int32_t shift) { box0_KeyDown(key, shift); };
  btnOK.Click = [this] { btnOK_Click(); };
  btnOK.Default = true;
  btnClose.Click = [this] { Unload(); };
  btnClose.Cancel = true;
  Activate = [this] {
    Follow();
    box0.SetFocus();
  };
  SetLayout(Layout::Column({Layout::Stack({lblBack, Layout(lblActiveCell, {15})}),
                            Layout(box0, {50, 3}).High(), Layout::Row({Layout().Wide(), btnOK, btnClose})})
                .Apart());
}

void frmEdit::Form_Load() {
  ApplyCaptions();
  if (!RestorePosition(u"EditFormPosSize") && !RestorePosition(u"SearchFormPosSize")) CentreOverHost();
  Float();
  shared_.EditFormOpen = Loaded();
}

void frmEdit::SetObjectRLKRuntime(clsVTRLKRuntime& runtime) {
  BaseForm::SetObjectRLKRuntime(runtime);
  // The host raises no events while a search moves the active cell.
  evtRLRTM_ = runtime.SearchingEvent().Connect(Handler([this](bool searching) {
    if (!searching) Follow();
  }));
  Listen();
  ShowActiveCell();
}

void frmEdit::Listen() noexcept {
  ListenToSelection(evtBook_, [this] { ShowActiveCell(); });
}

void frmEdit::Form_Unload() {
  SetOwner(0);
  if (runtime_ != nullptr) StorePosition(u"EditFormPosSize");
  evtBook_.Release();
  evtRLRTM_.Release();
  cell_ = nullptr;
  BaseForm::Form_Unload();
  shared_.EditFormOpen = false;
}

void frmEdit::ApplyCaptions() {
  SetCaption(
      shared_.Language->GetText(u"Edit.UI.FormCaption", u"Edit mode - %1", std::u16string(kProductTitle)));
  btnOK.SetCaption(Text(u"Edit.UI.BtnOK", u"O&K"));
  btnClose.SetCaption(Text(u"Edit.UI.BtnClose", u"&Cancel"));
  Arrange();
}

void frmEdit::ShowActiveCell() {
  Attempt([this] {
    const auto cell = Require(Host()->ActiveCell());
    const auto address = cell->ExternalAddress();
    const auto value = cell->Value();
    if (!Loaded()) return;
    cell_ = cell;
    address_ = address;
    shown_ = value;
    lblActiveCell.SetCaption(CellOf(address));
    box0.SetText(value);
    box0.SelectAll();
  });
}

// A cell that is shown though another one is active is shown with its workbook and sheet.
void frmEdit::Follow() {
  Listen();
  Attempt([this] {
    const bool here = Require(Host()->ActiveCell())->ExternalAddress() == address_;
    if (!Loaded()) return;
    if (!here && !Edited()) return ShowActiveCell();
    lblActiveCell.SetCaption(here ? CellOf(address_) : WithoutDollars(address_));
  });
}

// What the host does not take is not lost: the text stays, selected, to be corrected.
void frmEdit::btnOK_Click() {
  const auto text = box0.Text();
  const auto cell = cell_;
  const bool written = !Edited() || Attempt([&] { Require(cell)->SetValue(text); });
  if (!Loaded()) return;
  if (written && cell_ == cell) shown_ = text;
  if (written && runtime_->Items->EditAutoClose) return Unload();
  box0.SetFocus();
  if (written) return;
  box0.SelectAll();
  shared_.Platform.Windows.Beep();
}

// Moving drops an edit that was not written.
void frmEdit::box0_KeyDown(int32_t& key, int32_t shift) {
  const int32_t pressed = key;
  if (shift != controls::kNoShift || pressed < controls::kKeyLeft || pressed > controls::kKeyDown) return;
  key = 0;
  Listen();
  Attempt([this, pressed] {
    const auto cell = Require(Host()->ActiveCell());
    int32_t row = cell->Row();
    int32_t column = cell->Column();
    switch (pressed) {
      case controls::kKeyLeft:
        column = std::max(column - 1, 1);
        break;
      case controls::kKeyRight:
        if (column < kLastColumn) ++column;
        break;
      default:
        row = VisibleRow(row, column, pressed == controls::kKeyUp ? -1 : 1);
    }
    if (row == 0 || (row == cell->Row() && column == cell->Column())) return;
    Require(Host()->ActiveSheet())->Cells(row, column)->Activate();
  });
  if (Loaded()) ShowActiveCell();
}

// Up to the first row of the used range, or down to the row behind it. Hidden rows are passed over in blocks,
// which grow while they are hidden and shrink where one is not, since there may be a million of them.
int32_t frmEdit::VisibleRow(int32_t row, int32_t column, int32_t direction) const {
  const auto sheet = Require(Host()->ActiveSheet());
  const auto used = sheet->UsedRange();
  const int32_t last = direction < 0 ? used->Row() : used->Row() + used->RowsCount();
  int32_t next = row + direction;
  int32_t block = 1;
  while ((last - next) * direction >= 0 && Loaded() && !shared_.Terminating) {
    block = std::min(block, (last - next) * direction + 1);
    bool hidden = false;
    const bool known = Attempt([&] {
      const int32_t end = next + (block - 1) * direction;
      hidden = sheet->Range(*sheet->Cells(next, column), *sheet->Cells(end, column))->EntireRowHidden();
    });
    if (hidden) {
      next += block * direction;
      block *= 2;
    } else if (block > 1) {
      block /= 2;
    } else {
      return known ? next : 0;  // the host knows all rows of its sheet
    }
  }
  return 0;
}

}  // namespace rowlark
