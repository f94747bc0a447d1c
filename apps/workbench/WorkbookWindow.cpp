#include "WorkbookWindow.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include <commctrl.h>

#include "FilterMenu.h"
#include "Resources.h"
#include "Workbench.h"
#include "Workbooks.h"
#include "automation/Variant.h"
#include "controls/Keys.h"
#include "forms/HotKey.h"
#include "host/Block.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::workbench {
namespace {

using windows::AsUtf16;
using windows::AsWide;

constexpr UINT kUpdate = WM_APP;
constexpr wchar_t kTitle[] = L"Rowlark Workbench";

struct Shortcut {
  int32_t key;
  int32_t shift;
  Command command;
};
constexpr Shortcut kShortcuts[] = {{'N', controls::kCtrl, Command::FileNew},
                                   {'O', controls::kCtrl, Command::FileOpen},
                                   {'W', controls::kCtrl, Command::FileClose},
                                   {'L', controls::kCtrl | controls::kShift, Command::DataFilter}};

int32_t HeldModifiers() {
  int32_t held = 0;
  if (GetKeyState(VK_SHIFT) < 0) held |= controls::kShift;
  if (GetKeyState(VK_CONTROL) < 0) held |= controls::kCtrl;
  if (GetKeyState(VK_MENU) < 0) held |= controls::kAlt;
  return held;
}

bool IsModifier(int32_t key) { return key == VK_SHIFT || key == VK_CONTROL || key == VK_MENU; }

// Whether two codes of OnKey mean the same keys: the modifiers may stand in any order.
bool SameKeys(std::u16string_view a, std::u16string_view b) {
  const auto same = [&](char16_t modifier) {
    return (a.find(modifier) == a.npos) == (b.find(modifier) == b.npos);
  };
  return same(u'^') && same(u'+') && same(u'%') &&
         Compare(HotKeyName(a), HotKeyName(b), CompareMode::Text) == 0;
}

std::u16string TextOf(HWND window) {
  std::u16string text(static_cast<std::size_t>(GetWindowTextLengthW(window)), u'\0');
  const int length =
      GetWindowTextW(window, reinterpret_cast<wchar_t*>(text.data()), static_cast<int>(text.size()) + 1);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

void SetText(HWND window, const std::u16string& text) {
  if (TextOf(window) != text) SetWindowTextW(window, AsWide(text.c_str()));
}

}  // namespace

WorkbookWindow::WorkbookWindow(Workbench& workbench) : workbench_(workbench) {
  WNDCLASSEXW window_class{};
  window_class.lpszClassName = L"XLMAIN";
  window_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  window_class.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  window_class.hIcon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kIcon));
  if (Create(window_class, kTitle, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, nullptr) == nullptr) {
    throw std::runtime_error("The window of the workbook can not be made.");
  }
}

void WorkbookWindow::Use(Ref<standalone::Workbook> book) {
  if (book == book_) return;
  book_ = std::move(book);
  shown_ = nullptr;
  grid_->Show(nullptr);
  views_.clear();
}

void WorkbookWindow::Show() {
  Refresh();
  ShowWindow(Hwnd(), SW_SHOWNORMAL);
  UpdateWindow(Hwnd());
}

void WorkbookWindow::BringToFront() {
  if (IsIconic(Hwnd())) ShowWindow(Hwnd(), SW_RESTORE);
  if (IsWindowEnabled(Hwnd())) BringWindowToTop(Hwnd());
}

bool WorkbookWindow::PostUpdate() const { return PostMessageW(Hwnd(), kUpdate, 0, 0) != 0; }

void WorkbookWindow::MakeChildren() {
  const auto edit = [this](const wchar_t* name) {
    const HWND field =
        CreateWindowExW(WS_EX_CLIENTEDGE, L"EDIT", name, WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL,
                        0, 0, 0, 0, Hwnd(), nullptr, nullptr, nullptr);
    SetWindowSubclass(field, FieldProcedure, 0, reinterpret_cast<DWORD_PTR>(this));
    return field;
  };
  name_ = edit(L"");
  value_ = edit(L"");
  status_ = CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                            Hwnd(), nullptr, nullptr, nullptr);
  grid_ = std::make_unique<GridWindow>(
      Hwnd(), GridWindow::Callbacks{.selected = [this] { Refresh(); },
                                    .key = [this](int32_t key) { return KeyPressed(key); },
                                    .edit = [this](std::u16string_view text) { EditCell(text); },
                                    .filter =
                                        [this](int32_t column, POINT where) {
                                          ShowFilterMenu(Hwnd(), *Sheet(), column, where);
                                          Refresh();
                                        },
                                    .frozen = [this] { return !workbench_.Application().ScreenUpdating(); }});
  menu_ = std::make_unique<MenuBar>(Hwnd(), workbench_.Application());
  UseSystemFont();
}

void WorkbookWindow::UseSystemFont() {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  windows::GdiObject<HFONT> font(CreateFontIndirectW(&metrics.lfMessageFont));
  for (const HWND child : {name_, value_, status_}) {
    SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
  }
  grid_->SetFont(font.get());
  font_ = std::move(font);
  Layout();
}

void WorkbookWindow::Layout() {
  RECT client;
  GetClientRect(Hwnd(), &client);
  SendMessageW(status_, WM_SIZE, 0, 0);
  RECT status;
  GetWindowRect(status_, &status);
  const auto& metrics = grid_->Metrics();
  const int width = static_cast<int>(client.right);
  const int margin = metrics.digit_width / 2;
  const int field_height = metrics.row_height + 4;
  const int name_width = 16 * metrics.digit_width;
  const int top = field_height + 2 * margin;
  const int height = static_cast<int>(client.bottom - (status.bottom - status.top)) - top;
  const int value_left = name_width + 2 * margin;
  MoveWindow(name_, margin, margin, name_width, field_height, TRUE);
  MoveWindow(value_, value_left, margin, std::max(width - value_left - margin, 0), field_height, TRUE);
  MoveWindow(grid_->Hwnd(), 0, top, width, std::max(height, 0), TRUE);
}

void WorkbookWindow::TellPlace() const {
  if (IsIconic(Hwnd())) return;
  RECT place;
  GetWindowRect(Hwnd(), &place);
  const double points = 72.0 / GetDeviceCaps(*windows::ScreenContext(GetDC(nullptr)), LOGPIXELSX);
  workbench_.Application().SetWindow({reinterpret_cast<intptr_t>(Hwnd()), points * place.left,
                                      points * place.top, points * (place.right - place.left),
                                      points * (place.bottom - place.top)});
}

standalone::Worksheet* WorkbookWindow::Sheet() const {
  return book_ ? dynamic_cast<standalone::Worksheet*>(book_->ActiveSheet().get()) : nullptr;
}

sheetview::SheetView& WorkbookWindow::ViewOf(standalone::Worksheet& sheet) {
  const auto measure = [this](std::string_view text) { return grid_->TextWidth(text); };
  return views_.try_emplace(&sheet, Ref(&sheet), measure, sheetview::SheetView::Extent::Sheet).first->second;
}

void WorkbookWindow::Refresh() {
  if (Hwnd() == nullptr) return;
  menu_->Update(book_ ? book_->Name() : std::u16string());
  RefreshTitle();
  auto* sheet = Sheet();
  if (sheet != shown_) {
    shown_ = sheet;
    grid_->Show(sheet == nullptr ? nullptr : &ViewOf(*sheet));
  }
  if (sheet == nullptr) {
    for (const HWND field : {name_, value_, status_}) SetText(field, u"");
    return;
  }
  if (auto& view = ViewOf(*sheet); view.Cursor().Follow()) view.Reveal(view.Cursor().Active());
  RefreshFields(*sheet);
  RefreshStatus(*sheet);
  grid_->Redraw();
}

// A field that the user is typing into stays as it is.
void WorkbookWindow::RefreshFields(const standalone::Worksheet& sheet) {
  const Block cell = sheet.ActiveCell();
  if (GetFocus() != name_) {
    std::u16string address;
    standalone::AppendAddress(address, cell);
    SetText(name_, WithoutDollars(address));
  }
  if (GetFocus() != value_) SetText(value_, ToUtf16(sheet.Text().Cell(cell.first_row, cell.first_column)));
}

void WorkbookWindow::RefreshStatus(const standalone::Worksheet& sheet) {
  std::u16string text;
  if (const auto& used = sheet.Text().Used()) {
    const int32_t visible = sheet.HiddenRows().Count(used->first_row, used->last_row, false);
    text = rowlark::ToText(visible) + u" of " + rowlark::ToText(used->Rows()) + u" rows visible";
  }
  if (TextOf(status_) != text) {
    SendMessageW(status_, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
  }
}

void WorkbookWindow::RefreshTitle() {
  std::u16string title;
  if (book_) {
    title = book_->Name();
    if (book_->ReadOnly()) title += u"  [Read-Only]";
    if (const auto* sheet = Sheet(); sheet != nullptr && sheet->ProtectScenarios()) title += u"  [Protected]";
    title += u" - ";
  }
  SetText(Hwnd(), title + AsUtf16(kTitle));
}

void WorkbookWindow::Execute(UINT command) {
  auto* sheet = Sheet();
  auto& application = workbench_.Application();
  switch (static_cast<Command>(command)) {
    case Command::FileNew:
      NewWorkbook(application);
      break;
    case Command::FileOpen:
      workbench_.ChooseFile(Hwnd());
      break;
    case Command::FileClose:
      return workbench_.CloseWorkbook(*this);
    case Command::FileExit:
      return workbench_.Exit();
    case Command::ViewProtected:
      if (sheet == nullptr) return;
      sheet->Protect({.contents = !sheet->ProtectScenarios(), .scenarios = !sheet->ProtectScenarios()});
      break;
    case Command::ViewReadOnly:
      if (!book_) return;
      book_->SetReadOnly(!book_->ReadOnly());
      break;
    case Command::DataFilter:
      if (sheet != nullptr) ToggleFilter(*sheet);
      break;
    case Command::DataShowAll:
      if (sheet != nullptr) ClearFilters(*sheet);
      break;
    default:
      if (const auto macro = menu_->Macro(command); !macro.empty()) {
        workbench_.RunMacro(macro);
      } else if (const auto chosen = FindWorkbook(application, menu_->WorkbookName(command))) {
        application.Activate(chosen);
      }
  }
  workbench_.Update();
}

bool WorkbookWindow::KeyPressed(int32_t key) {
  if (IsModifier(key)) return false;
  const int32_t held = HeldModifiers();
  const auto pressed = CaptureHotKey(key, held).code;
  std::u16string macro;
  for (const auto& [code, name] : workbench_.Application().Keys()) {
    if (SameKeys(code, pressed)) macro = name;
  }
  const auto shortcut = std::ranges::find_if(
      kShortcuts, [&](const Shortcut& each) { return each.key == key && each.shift == held; });
  if (macro.empty() && shortcut == std::end(kShortcuts)) return false;
  MSG character;  // the key means nothing more
  PeekMessageW(&character, grid_->Hwnd(), WM_CHAR, WM_CHAR, PM_REMOVE);
  PeekMessageW(&character, grid_->Hwnd(), WM_SYSCHAR, WM_SYSCHAR, PM_REMOVE);
  if (macro.empty()) {
    Execute(static_cast<UINT>(shortcut->command));
  } else {
    workbench_.RunMacro(macro);
  }
  return true;
}

void WorkbookWindow::EditCell(std::u16string_view text) {
  SetFocus(value_);
  SetText(value_, std::u16string(text));
  SendMessageW(value_, EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
}

bool WorkbookWindow::FieldKey(HWND field, WPARAM key) {
  auto* sheet = Sheet();
  if (key != VK_RETURN && key != VK_ESCAPE) return false;
  const auto text = TextOf(field);
  SetFocus(grid_->Hwnd());
  if (key == VK_RETURN && sheet != nullptr) {
    const Block cell = sheet->ActiveCell();
    if (field == name_) {
      sheet->Select(text);
    } else {
      sheet->SetCell(cell.first_row, cell.first_column, text);
      auto& view = ViewOf(*sheet);
      view.Cursor().MoveTo(Step(*sheet, view.Cursor().Active(), sheetview::Direction::Down));
      view.Reveal(view.Cursor().Active());
    }
  }
  Refresh();
  return true;
}

LRESULT CALLBACK WorkbookWindow::FieldProcedure(HWND field, UINT message, WPARAM wparam, LPARAM lparam,
                                                UINT_PTR, DWORD_PTR window) noexcept {
  auto* self = reinterpret_cast<WorkbookWindow*>(window);
  try {
    if (message == WM_KEYDOWN && self->FieldKey(field, wparam)) return 0;
  } catch (...) {
    ReportFailure(field);
    self->workbench_.Changed();
    return 0;
  }
  // Enter and Escape would sound the system's warning.
  if (message == WM_CHAR && (wparam == VK_RETURN || wparam == VK_ESCAPE)) return 0;
  const LRESULT result = DefSubclassProc(field, message, wparam, lparam);
  if (message == WM_SETFOCUS) SendMessageW(field, EM_SETSEL, 0, -1);
  if (message == WM_KILLFOCUS) self->workbench_.Changed();
  return result;
}

bool WorkbookWindow::OnMessage(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
  switch (message) {
    case WM_CREATE:
      MakeChildren();
      return true;
    case WM_ACTIVATE:
      if (LOWORD(wparam) != WA_INACTIVE) workbench_.Activated(*this);
      return false;
    case WM_SIZE:
      if (wparam != SIZE_MINIMIZED) Layout();
      if (workbench_.IsActive(*this)) TellPlace();
      return true;
    case WM_MOVE:
      if (workbench_.IsActive(*this)) TellPlace();
      return true;
    case WM_SETFOCUS:
      SetFocus(grid_->Hwnd());
      return true;
    case WM_SETTINGCHANGE:
    case WM_SYSCOLORCHANGE:
      UseSystemFont();
      Refresh();
      return false;
    case kUpdate:
      workbench_.FollowChanges();
      return true;
    case WM_INITMENUPOPUP:
      if (const auto* sheet = Sheet()) {
        menu_->UpdateMarks(sheet->ProtectScenarios(), book_->ReadOnly(), sheet->AutoFilterMode());
      }
      return true;
    case WM_COMMAND:
      if (lparam != 0) return false;
      Execute(LOWORD(wparam));
      return true;
    case WM_MOUSEWHEEL:
      result = SendMessageW(grid_->Hwnd(), message, wparam, lparam);
      return true;
    case WM_CLOSE:
      workbench_.CloseWindow(*this);
      return true;
    default:
      return false;
  }
}

}  // namespace rowlark::workbench
