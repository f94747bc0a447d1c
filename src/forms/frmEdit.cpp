#include "forms/frmEdit.h"

#include <algorithm>

#include "runtime/Failure.h"
#include "settings/Product.h"

namespace rowlark {
namespace {

using controls::Layout;

// Of the sheets that this form walks; those of later hosts have more.
constexpr int32_t kLastColumn = 256;

}  // namespace

frmEdit::frmEdit(SharedState& shared) : BaseForm(shared, u"frmEdit") {
  box0.MultiLine = true;  // a cell may hold line breaks
  box0.KeyDown = [this](int32_t& key, int32_t shift) { box0_KeyDown(key, shift); };
  btnOK.Click = [this] { btnOK_Click(); };
  btnOK.Default = true;
  btnClose.Click = [this] { Unload(); };
  btnClose.Cancel = true;
  Activate = [this] { box0.SetFocus(); };
  SetLayout(Layout::Column({Layout::Stack({lblBack, Layout(lblActiveCell, {60, 8})}),
                            Layout(box0, {200, 30}).High(), Layout::Row({Layout().Wide(), btnOK, btnClose})})
                .Apart());
}

void frmEdit::Form_Load() {
  ApplyCaptions();
  if (!RestorePosition(u"EditFormPosSize") && !RestorePosition(u"SearchFormPosSize")) CentreOverHost();
  Float();
  shared_.EditFormOpen = true;
}

void frmEdit::SetObjectRLKRuntime(clsVTRLKRuntime& runtime) {
  BaseForm::SetObjectRLKRuntime(runtime);
  Attempt([this] {
    evtBook_ =
        Require(Host().ActiveWorkbook())->OnSheetSelectionChange([this](host::Worksheet&, host::Range&) {
          ShowActiveCell();
        });
  });
  ShowActiveCell();
}

void frmEdit::Form_Unload() {
  SetOwner(0);
  StorePosition(u"EditFormPosSize");
  evtBook_.Release();
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
    const auto cell = Require(Host().ActiveCell());
    auto address = cell->Address();
    auto value = cell->Value();
    std::erase(address, u'$');
    lblActiveCell.SetCaption(address);
    box0.SetText(value);
    box0.SelectAll();
  });
}

// What the host does not take is not lost: the text stays, selected, to be corrected.
void frmEdit::btnOK_Click() {
  const bool written = Attempt([this] { Require(Host().ActiveCell())->SetValue(box0.Text()); });
  if (!Loaded()) return;
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
  Attempt([this, pressed] {
    const auto cell = Require(Host().ActiveCell());
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
    Require(Host().ActiveSheet())->Cells(row, column)->Activate();
  });
  if (Loaded()) ShowActiveCell();
}

// Up to the first row of the used range, or down to the row behind it. Hidden rows are passed over in blocks,
// which grow while they are hidden and shrink where one is not, since there may be a million of them.
int32_t frmEdit::VisibleRow(int32_t row, int32_t column, int32_t direction) const {
  const auto sheet = Require(Host().ActiveSheet());
  const auto used = sheet->UsedRange();
  const int32_t last = direction < 0 ? used->Row() : used->Row() + used->RowsCount();
  int32_t next = row + direction;
  int32_t block = 1;
  while ((last - next) * direction >= 0 && !shared_.Terminating) {
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
