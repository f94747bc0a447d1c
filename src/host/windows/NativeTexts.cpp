#include "host/windows/NativeTexts.h"

#include <algorithm>
#include <array>

#include "util/windows/WideText.h"

namespace rowlark::windows {

using controls::Property;

namespace {

std::wstring WithReturns(std::u16string_view text) {
  std::wstring native;
  for (const char16_t c : text) {
    if (c == u'\n') native += L'\r';
    native += static_cast<wchar_t>(c);
  }
  return native;
}

std::u16string WithoutReturns(std::wstring_view native) {
  std::u16string text;
  for (std::size_t i = 0; i < native.size(); ++i) {
    const bool is_pair = native[i] == L'\r' && i + 1 < native.size() && native[i + 1] == L'\n';
    if (!is_pair) text += static_cast<char16_t>(native[i]);
  }
  return text;
}

}  // namespace

NativeText::Selection NativeText::SelectionIn(std::wstring_view text) const {
  DWORD start = 0;
  DWORD end = 0;
  ::SendMessageW(Editor(), EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  const auto offset = [&](std::size_t native) {
    native = std::min(native, text.size());
    return static_cast<int32_t>(ConvertsLines() ? WithoutReturns(text.substr(0, native)).size() : native);
  };
  return {offset(start), offset(end)};
}

// The native window tells what is selected; in which direction is seen from where the caret stands. The
// character at the start is asked for since there is always one there.
void NativeText::Report() {
  if (Editor() == nullptr || ::GetFocus() != Editor()) return;
  const Dpi::Scope dpi(site_.dpi_of);
  const auto [start, end] = SelectionIn(TextOf(Editor()));
  DWORD first = 0;
  POINT caret{};
  ::SendMessageW(Editor(), EM_GETSEL, reinterpret_cast<WPARAM>(&first), 0);
  const auto place = static_cast<DWORD>(::SendMessageW(Editor(), EM_POSFROMCHAR, first, 0));
  const bool is_back = start != end && ::GetCaretPos(&caret) != 0 &&
                       caret.x == static_cast<SHORT>(LOWORD(place)) &&
                       caret.y == static_cast<SHORT>(HIWORD(place));
  Input().UserSelected(is_back ? end : start, is_back ? start : end);
}

std::optional<int> NativeText::TextOffset() const {
  RECT text{};
  RECT window{};
  ::SendMessageW(Editor(), EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
  ::MapWindowPoints(Editor(), nullptr, reinterpret_cast<POINT*>(&text), 2);
  ::GetWindowRect(window_, &window);
  return static_cast<int>(text.top - window.top);
}

void NativeText::Typed() {
  const auto native = TextOf(Editor());
  Input().UserTyped(ConvertsLines() ? WithoutReturns(native) : std::u16string(native.begin(), native.end()),
                    SelectionIn(native).end);
}

void NativeText::Apply(Property property) {
  const std::u16string_view text = Input().Text();
  if (property == Property::Text) {
    const auto native = ConvertsLines() ? WithReturns(text) : ToWide(text);
    if (native != TextOf(window_)) ::SetWindowTextW(window_, native.c_str());
  } else if (property == Property::Selection) {
    const auto offset = [&](int32_t units) {
      const auto before = text.substr(0, static_cast<std::size_t>(units));
      return ConvertsLines() ? WithReturns(before).size() : before.size();
    };
    if (Editor() == nullptr) return;
    ::SendMessageW(Editor(), EM_SETSEL, offset(Input().Anchor()),
                   static_cast<LPARAM>(offset(Input().Caret())));
    ::SendMessageW(Editor(), EM_SCROLLCARET, 0, 0);
  } else {
    NativeControl::Apply(property);
  }
}

NativeTextBox::NativeTextBox(controls::Control& model, FormSite& site) : NativeText(model, site) {
  DWORD style = Box().MultiLine ? ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL : ES_AUTOHSCROLL;
  if (Box().ReadOnly) style |= ES_READONLY;
  if (Box().TabStop) style |= WS_TABSTOP;
  Create(WC_EDITW, style, WS_EX_CLIENTEDGE);
  Send(EM_SETLIMITTEXT, 0);
}

void NativeTextBox::Command(WORD code, WORD) {
  if (code == EN_SETFOCUS) Box().UserFocused();
  if (code == EN_CHANGE && site_.updating == 0) {
    Typed();
    if (::IsWindow(window_) != 0) ShowScrollBar();
  }
}

bool NativeTextBox::ConvertsLines() const {
  return Box().MultiLine && Box().Text().find(u"\r\n") == std::u16string::npos;
}

void NativeTextBox::Apply(Property property) {
  NativeText::Apply(property);
  if (property == Property::Text) ShowScrollBar();
}

HBRUSH NativeTextBox::Colour(HDC context) const {
  if (!Box().Alert) return nullptr;
  ::SetTextColor(context, ::GetSysColor(COLOR_INFOTEXT));
  ::SetBkColor(context, ::GetSysColor(COLOR_INFOBK));
  return ::GetSysColorBrush(COLOR_INFOBK);
}

// Only where there is something to scroll.
void NativeTextBox::ShowScrollBar() {
  if (!Box().MultiLine) return;
  RECT area{};
  Send(EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
  const auto lines = static_cast<int>(Send(EM_GETLINECOUNT));
  ::ShowScrollBar(window_, SB_VERT, lines * site_.scale->PixelsHigh(8) > area.bottom - area.top);
}

void NativeCue::Apply(Property property) {
  if (property != Property::Text) return;
  const auto& cue = static_cast<const controls::TextBox&>(model_);
  const NativeControl* field = site_.Find(*cue.CueFor);
  if (field == nullptr) return;
  ::SendMessageW(field->Window(), EM_SETCUEBANNER, TRUE,
                 reinterpret_cast<LPARAM>(ToWide(cue.Text()).c_str()));
}

NativeComboBox::NativeComboBox(controls::Control& model, FormSite& site) : NativeText(model, site) {
  Create(WC_COMBOBOXW, (Box().DropDownList ? CBS_DROPDOWNLIST : CBS_DROPDOWN) | CBS_AUTOHSCROLL |
                           CBS_HASSTRINGS | WS_VSCROLL | (Box().TabStop ? WS_TABSTOP : 0));
  Send(CB_LIMITTEXT, 0);
  COMBOBOXINFO info{};
  info.cbSize = sizeof info;
  ::GetComboBoxInfo(window_, &info);
  if (!Box().DropDownList) editor_ = info.hwndItem;
  list_ = info.hwndList;
}

// An entry that can not be edited stands in the middle of its box.
std::optional<int> NativeComboBox::TextOffset() const {
  if (editor_ != nullptr) return NativeText::TextOffset();
  RECT area{};
  ::GetWindowRect(window_, &area);
  return (static_cast<int>(area.bottom - area.top) - site_.scale->PixelsHigh(8)) / 2;
}

void NativeComboBox::Command(WORD code, WORD) {
  switch (code) {
    case CBN_SETFOCUS:
      Box().UserFocused();
      break;
    case CBN_EDITCHANGE:
      if (site_.updating > 0) break;
      Typed();
      if (::IsWindow(window_) != 0) MarkEntry(Box().ListIndex());
      break;
    case CBN_SELCHANGE:
      // In the open list it may still go on.
      if (site_.updating == 0 && !ListIsOpen()) Box().UserPicked(static_cast<int32_t>(Send(CB_GETCURSEL)));
      break;
    case CBN_SELENDOK:
    case CBN_SELENDCANCEL:
      is_chosen_ = code == CBN_SELENDOK;
      break;
    case CBN_CLOSEUP:
      if (site_.updating == 0) ListClosed();
      break;
    default:
      break;
  }
}

void NativeComboBox::ListClosed() {
  const auto index = static_cast<int32_t>(Send(CB_GETCURSEL));
  if (is_chosen_ && index >= 0) {
    Box().UserPicked(index);
  } else if (is_chosen_ && Editor() != nullptr) {
    Typed();
  } else {
    // The window follows what the user goes through.
    for (const auto property : {Property::ListIndex, Property::Text, Property::Selection}) Update(property);
  }
}

// In the open list these move and end the choice, whatever they mean to the form.
bool NativeComboBox::TakesKey(WPARAM key) const {
  constexpr std::array<WPARAM, 7> kKeys = {VK_RETURN, VK_ESCAPE, VK_PRIOR, VK_NEXT, VK_UP, VK_DOWN, VK_F4};
  return std::ranges::count(kKeys, key) != 0 && ListIsOpen();
}

void NativeComboBox::MarkEntry(int32_t index) const {
  ::SendMessageW(list_, LB_SETCURSEL, static_cast<WPARAM>(static_cast<INT_PTR>(index)), 0);
}

void NativeComboBox::Apply(Property property) {
  if (property == Property::ListIndex) {
    if (Box().ListIndex() < 0) {
      MarkEntry(-1);
    } else {
      Send(CB_SETCURSEL, static_cast<WPARAM>(Box().ListIndex()));
    }
    return;
  }
  if (property == Property::Text && Editor() == nullptr) return;  // it is that of the entry
  NativeText::Apply(property);
  if (property == Property::Text) MarkEntry(Box().ListIndex());
}

void NativeComboBox::FillList() {
  Send(WM_SETREDRAW, FALSE);
  Send(CB_RESETCONTENT);
  for (int32_t i = 0; i < Box().ListCount(); ++i) {
    Send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(Box().List(i)).c_str()));
  }
  Send(WM_SETREDRAW, TRUE);
  ::InvalidateRect(window_, nullptr, TRUE);
  Apply(Property::ListIndex);
  Apply(Property::Text);
  Apply(Property::Selection);
}

// A combo box is as high as its text wants it, and is given the height that it has with its list.
void NativeComboBox::Placed(SIZE size) {
  constexpr int kEntries = 12;
  constexpr auto kText = static_cast<WPARAM>(-1);
  RECT area{};
  ::GetWindowRect(window_, &area);
  const int frame = area.bottom - area.top - static_cast<int>(Send(CB_GETITEMHEIGHT, kText));
  Send(CB_SETITEMHEIGHT, kText, size.cy - frame);
  ::SetWindowPos(window_, nullptr, 0, 0, size.cx,
                 size.cy + kEntries * static_cast<int>(Send(CB_GETITEMHEIGHT, 0)),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace rowlark::windows
