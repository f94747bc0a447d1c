#include "MenuBar.h"

#include <algorithm>
#include <span>
#include <utility>

#include "automation/Variant.h"
#include "util/Text.h"
#include "util/windows/Handles.h"

namespace rowlark::workbench {
namespace {

using windows::AsWide;

struct OwnItem {
  Command command;
  const wchar_t* text;  // null: a line between groups
};

constexpr OwnItem kFile[] = {{Command::FileNew, L"&New\tCtrl+N"},
                             {Command::FileOpen, L"&Open...\tCtrl+O"},
                             {Command::FileClose, L"&Close\tCtrl+W"},
                             {Command::FileExit, nullptr},
                             {Command::FileExit, L"E&xit\tAlt+F4"}};
constexpr OwnItem kView[] = {{Command::ViewProtected, L"&Protected sheet"},
                             {Command::ViewReadOnly, L"&Read-only workbook"}};
constexpr OwnItem kData[] = {{Command::DataFilter, L"Auto&Filter\tCtrl+Shift+L"},
                             {Command::DataShowAll, L"&Clear filters"}};

UINT Id(Command command) { return static_cast<UINT>(command); }

// A menu inside another one belongs to that, once it is there.
void AppendPopup(HMENU menu, windows::MenuHandle popup, const wchar_t* caption) {
  if (AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(*popup), caption) != 0) {
    static_cast<void>(popup.release());
  }
}

void AppendOwn(HMENU bar, std::span<const OwnItem> items, const wchar_t* caption) {
  windows::MenuHandle menu(CreatePopupMenu());
  for (const auto& item : items) {
    AppendMenuW(*menu, item.text == nullptr ? MF_SEPARATOR : MF_STRING, Id(item.command), item.text);
  }
  AppendPopup(bar, std::move(menu), caption);
}

}  // namespace

void MenuBar::AddItems(std::vector<Item>& items,
                       const std::vector<Ref<standalone::CommandBarControl>>& controls, std::size_t depth) {
  for (const auto& control : controls) {
    if (control->Deleted()) continue;
    const bool popup = control->Type() == host::msoControlPopup;
    items.push_back({control->Caption(), control->OnAction(), control->BeginGroup(), popup, depth});
    if (popup) AddItems(items, control->Controls(), depth + 1);
  }
}

void MenuBar::AppendItems(HMENU menu, std::size_t& i, std::size_t depth) const {
  while (i < content_.items.size() && content_.items[i].depth == depth) {
    const std::size_t here = i++;
    const auto& item = content_.items[here];
    if (item.begin_group && depth > 0) AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    if (item.popup) {
      windows::MenuHandle popup(CreatePopupMenu());
      AppendItems(*popup, i, depth + 1);
      AppendPopup(menu, std::move(popup), AsWide(item.caption.c_str()));
    } else {
      AppendMenuW(menu, MF_STRING, Id(Command::FirstMacro) + here, AsWide(item.caption.c_str()));
    }
  }
}

void MenuBar::Update(std::u16string_view active) {
  Content content;
  AddItems(content.items, application_.WorksheetMenuBar()->Controls(), 0);
  for (const auto& book : application_.Workbooks()) content.books.push_back(book->Name());
  content.active = active;
  std::ranges::sort(content.books);
  if (GetMenu(window_) != nullptr && content == content_) return;
  content_ = std::move(content);

  windows::MenuHandle bar(CreateMenu());
  AppendOwn(*bar, kFile, L"&File");
  AppendOwn(*bar, kView, L"&View");
  AppendOwn(*bar, kData, L"&Data");
  AppendBooks(*bar);
  std::size_t i = 0;
  AppendItems(*bar, i, 0);
  windows::MenuHandle before(GetMenu(window_));
  if (SetMenu(window_, *bar) == 0) {
    static_cast<void>(before.release());
    return;
  }
  static_cast<void>(bar.release());  // the window owns its menu
  DrawMenuBar(window_);
}

void MenuBar::AppendBooks(HMENU bar) const {
  windows::MenuHandle menu(CreatePopupMenu());
  AppendMenuW(*menu, MF_STRING, Id(Command::FileNew), L"&New Window\tCtrl+N");
  if (!content_.books.empty()) AppendMenuW(*menu, MF_SEPARATOR, 0, nullptr);
  for (std::size_t i = 0; i < content_.books.size(); ++i) {
    std::u16string caption = i < 9 ? u"&" : u"";
    caption += ToText(static_cast<int32_t>(i) + 1) + u' ' + content_.books[i];
    AppendMenuW(*menu, content_.books[i] == content_.active ? MF_STRING | MF_CHECKED : MF_STRING,
                Id(Command::FirstWorkbook) + i, AsWide(caption.c_str()));
  }
  AppendPopup(bar, std::move(menu), L"&Window");
}

void MenuBar::UpdateMarks(bool is_protected, bool is_read_only, bool is_filtered) const {
  const auto mark = [this](Command command, bool on) {
    CheckMenuItem(GetMenu(window_), Id(command),
                  on ? MF_BYCOMMAND | MF_CHECKED : MF_BYCOMMAND | MF_UNCHECKED);
  };
  mark(Command::ViewProtected, is_protected);
  mark(Command::ViewReadOnly, is_read_only);
  mark(Command::DataFilter, is_filtered);
}

std::u16string MenuBar::Macro(UINT command) const {
  const std::size_t i = command - Id(Command::FirstMacro);
  return command >= Id(Command::FirstMacro) && i < content_.items.size() ? content_.items[i].macro
                                                                         : std::u16string();
}

std::u16string MenuBar::WorkbookName(UINT command) const {
  const std::size_t i = command - Id(Command::FirstWorkbook);
  return command >= Id(Command::FirstWorkbook) && i < content_.books.size() ? content_.books[i]
                                                                            : std::u16string();
}

}  // namespace rowlark::workbench
