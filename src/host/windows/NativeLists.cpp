#include "host/windows/NativeLists.h"

#include <algorithm>

#include <uxtheme.h>

#include "util/windows/WideText.h"

namespace rowlark::windows {

using controls::Property;

namespace {

constexpr int kRow = 20;  // height, at 96 pixels an inch

}  // namespace

void Pictures::Clear(const Resources& resources, int pixels) {
  resources_ = &resources;
  pixels_ = pixels;
  names_.clear();
  list_.reset(::ImageList_Create(pixels, pixels, ILC_COLOR32 | ILC_MASK, 4, 4));
}

int Pictures::Index(std::u16string_view name) {
  const auto known = std::ranges::find(names_, name);
  if (known != names_.end()) return static_cast<int>(known - names_.begin());
  const auto icon = resources_->LoadPicture(name, pixels_);
  if (!icon || ::ImageList_ReplaceIcon(list_.get(), -1, icon.get()) < 0) return -1;
  names_.emplace_back(name);
  return static_cast<int>(names_.size()) - 1;
}

NativeTreeView::NativeTreeView(controls::Control& model, FormSite& site) : NativeControl(model, site) {
  Create(WC_TREEVIEWW,
         TVS_SHOWSELALWAYS | TVS_FULLROWSELECT | TVS_DISABLEDRAGDROP | TVS_NOHSCROLL |
             (model.TabStop ? WS_TABSTOP : 0),
         WS_EX_CLIENTEDGE);
  ::SetWindowTheme(window_, L"Explorer", nullptr);
}

LRESULT NativeTreeView::Notify(const NMHDR& header) {
  auto& tree = static_cast<controls::TreeView&>(model_);
  if (header.code == NM_SETFOCUS) tree.UserFocused();
  if (header.code == TVN_SELCHANGEDW && site_.updating == 0) {
    const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
    const auto item = std::ranges::find(items_, change.itemNew.hItem);
    if (item != items_.end()) tree.UserPicked(static_cast<int32_t>(item - items_.begin()));
  }
  return 0;
}

void NativeTreeView::Apply(Property property) {
  NativeControl::Apply(property);
  const auto selected = static_cast<std::size_t>(Tree().Selected());
  if (property == Property::ListIndex && selected < items_.size()) {
    Send(TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(items_[selected]));
  }
}

void NativeTreeView::FillList() {
  const auto& nodes = Tree().Nodes();
  if (items_.size() != nodes.size()) {
    Send(TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    items_.clear();
  }
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    auto text = ToWide(nodes[i].text);
    TVITEMEXW item{};
    item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    item.pszText = text.data();
    item.iImage = item.iSelectedImage = pictures_.Index(nodes[i].key);
    if (i < items_.size()) {
      item.mask |= TVIF_HANDLE;
      item.hItem = items_[i];
      SendData(TVM_SETITEMW, 0, item);
    } else {
      TVINSERTSTRUCTW insertion{};
      insertion.hInsertAfter = TVI_LAST;
      insertion.itemex = item;
      items_.push_back(reinterpret_cast<HTREEITEM>(SendData(TVM_INSERTITEMW, 0, insertion)));
    }
  }
  Send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(pictures_.Handle()));
  Apply(Property::ListIndex);
}

void NativeTreeView::ApplyPictures() {
  pictures_.Clear(site_.resources, site_.Pixels(kPictureSize));
  Send(TVM_SETITEMHEIGHT, static_cast<WPARAM>(site_.Pixels(kRow)));
  FillList();
}

NativeListView::NativeListView(controls::Control& model, FormSite& site) : NativeControl(model, site) {
  Create(WC_LISTVIEWW,
         LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOCOLUMNHEADER | LVS_SHAREIMAGELISTS |
             (model.TabStop ? WS_TABSTOP : 0),
         WS_EX_CLIENTEDGE);
  Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
  ::SetWindowTheme(window_, L"Explorer", nullptr);
  SendData(LVM_INSERTCOLUMNW, 0, LVCOLUMNW{});
}

LRESULT NativeListView::Notify(const NMHDR& header) {
  auto& list = static_cast<controls::ListView&>(model_);
  if (header.code == NM_SETFOCUS) list.UserFocused();
  if (header.code == LVN_ITEMCHANGED && site_.updating == 0) {
    const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
    const bool is_selected = (change.uNewState & ~change.uOldState & LVIS_SELECTED) != 0;
    if (is_selected) list.UserPicked(change.iItem);
  }
  // A click beside the entries leaves the selected one.
  if ((header.code == NM_CLICK || header.code == NM_RCLICK) && Selected() < 0) Update(Property::ListIndex);
  return 0;
}

int NativeListView::Selected() const {
  return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void NativeListView::Apply(Property property) {
  NativeControl::Apply(property);
  if (property != Property::ListIndex || List().Selected() < 0) return;
  LVITEMW state{};
  state.state = state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  SendData(LVM_SETITEMSTATE, static_cast<WPARAM>(List().Selected()), state);
  Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(List().Selected()), FALSE);
}

void NativeListView::FillList() {
  Send(WM_SETREDRAW, FALSE);
  Send(LVM_DELETEALLITEMS);
  Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(pictures_.Handle()));
  for (const auto& entry : List().Items()) {
    auto text = ToWide(entry.text);
    LVITEMW item{};
    item.mask = LVIF_TEXT | LVIF_IMAGE;
    item.iItem = static_cast<int>(Send(LVM_GETITEMCOUNT));
    item.pszText = text.data();
    item.iImage = pictures_.Index(entry.small_icon);
    SendData(LVM_INSERTITEMW, 0, item);
  }
  Apply(Property::ListIndex);
  Send(WM_SETREDRAW, TRUE);
  ::InvalidateRect(window_, nullptr, TRUE);
}

void NativeListView::Placed(SIZE) {
  RECT area{};
  ::GetClientRect(window_, &area);
  Send(LVM_SETCOLUMNWIDTH, 0, area.right);
}

void NativeListView::ApplyPictures() {
  pictures_.Clear(site_.resources, site_.Pixels(kPictureSize));
  FillList();
}

// The tool bar's buttons are numbered from 0.
NativeToolBar::NativeToolBar(controls::Control& model, FormSite& site) : NativeControl(model, site) {
  Create(TOOLBARCLASSNAMEW, TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | CCS_NODIVIDER | CCS_NORESIZE |
                                CCS_NOPARENTALIGN | (model.TabStop ? WS_TABSTOP : 0));
  Send(TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON));
}

void NativeToolBar::Command(WORD, WORD number) {
  if (number >= Bar().Buttons().size()) return;
  const auto key = Bar().Buttons()[number].key;  // the buttons may change meanwhile
  static_cast<controls::ToolBar&>(model_).UserPressed(key);
}

LRESULT NativeToolBar::Notify(const NMHDR& header) {
  if (header.code != TBN_GETINFOTIPW) return 0;
  const auto& tip = reinterpret_cast<const NMTBGETINFOTIPW&>(header);
  const auto index = static_cast<std::size_t>(tip.iItem);
  if (index >= Bar().Buttons().size()) return 0;
  const auto text = ToWide(Bar().Buttons()[index].tool_tip);
  ::lstrcpynW(tip.pszText, text.c_str(), tip.cchTextMax);
  return 0;
}

void NativeToolBar::FillList() {
  while (Send(TB_DELETEBUTTON, 0) != 0) {
  }
  for (const auto& button : Bar().Buttons()) pictures_.Index(button.key);
  Send(TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(pictures_.Handle()));
  for (std::size_t i = 0; i < Bar().Buttons().size(); ++i) {
    const auto text = ToWide(Bar().Buttons()[i].caption);
    const int picture = pictures_.Index(Bar().Buttons()[i].key);
    TBBUTTON button{};
    button.iBitmap = picture < 0 ? I_IMAGENONE : picture;
    button.idCommand = static_cast<int>(i);
    button.fsState = TBSTATE_ENABLED;
    button.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
    button.iString = reinterpret_cast<INT_PTR>(text.c_str());
    SendData(TB_ADDBUTTONSW, 1, button);
  }
  RECT area{};
  ::GetClientRect(window_, &area);
  Placed({area.right, area.bottom});
}

void NativeToolBar::ApplyPictures() {
  pictures_.Clear(site_.resources, site_.Pixels(kPictureSize));
  FillList();
}

void NativeToolBar::Placed(SIZE size) { Send(TB_SETBUTTONSIZE, 0, MAKELPARAM(0, size.cy)); }

}  // namespace rowlark::windows
