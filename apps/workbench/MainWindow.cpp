#include "MainWindow.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include <commctrl.h>
#include <commdlg.h>
#include <oleauto.h>

#include "AutomationHost.h"
#include "CsvFile.h"
#include "FilterMenu.h"
#include "Resources.h"
#include "Workbooks.h"
#include "automation/Variant.h"
#include "controls/Keys.h"
#include "forms/HotKey.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::workbench {
namespace {

using automation::Narrow;
using automation::Wide;
using standalone::Rect;

constexpr UINT kRefresh = WM_APP;
constexpr wchar_t kTitle[] = L"Rowlark Workbench";
constexpr wchar_t kExampleName[] = L"customers.csv";

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
  if (TextOf(window) != text) SetWindowTextW(window, Wide(text.c_str()));
}

}  // namespace

MainWindow::MainWindow()
    : automation_(ExposeApplication(application_, nullptr, [this] { Changed(); })), add_in_(automation_) {
  WNDCLASSEXW window_class{};
  window_class.lpszClassName = L"XLMAIN";
  window_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  window_class.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  window_class.hIcon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kIcon));
  if (Create(window_class, kTitle, WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, nullptr) == nullptr) {
    throw std::runtime_error("The main window can not be made.");
  }
  RegisterActiveObject(automation_.get(), kApplicationClass, ACTIVEOBJECT_STRONG, &registration_);
}

MainWindow::~MainWindow() {
  if (registration_ != 0) RevokeActiveObject(registration_, nullptr);
}

void MainWindow::Show(int how) {
  Refresh();
  ShowWindow(Hwnd(), how);
  UpdateWindow(Hwnd());
}

void MainWindow::OpenFile(std::u16string_view path) noexcept try {
  OpenWorkbook(*application_, path);
  Changed();
} catch (...) {
  ReportFailure(Hwnd());
}

void MainWindow::OpenExample() noexcept try {
  const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(kExampleTable), RT_RCDATA);
  const auto* bytes = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
  auto table = CsvFile::Parse(std::string(bytes, SizeofResource(nullptr, found)));
  AddWorkbook(*application_, table, Narrow(kExampleName));
} catch (...) {
  ReportFailure(Hwnd());
}

void MainWindow::StartAddIn() noexcept try { add_in_.Open(); } catch (...) {
  ReportFailure(Hwnd());
}

void MainWindow::MakeChildren() {
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
                                    .frozen = [this] { return !application_->ScreenUpdating(); }});
  menu_ = std::make_unique<MenuBar>(Hwnd(), *application_);
  UseSystemFont();
}

void MainWindow::UseSystemFont() {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  GdiPtr<HFONT> font(CreateFontIndirectW(&metrics.lfMessageFont));
  for (const HWND child : {name_, value_, status_}) {
    SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
  }
  grid_->SetFont(font.get());
  font_ = std::move(font);
  Layout();
}

void MainWindow::Layout() {
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

void MainWindow::TellPlace() {
  if (IsIconic(Hwnd())) return;
  RECT place;
  GetWindowRect(Hwnd(), &place);
  const HDC screen = GetDC(nullptr);
  const double points = 72.0 / GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  application_->SetWindow({reinterpret_cast<intptr_t>(Hwnd()), points * place.left, points * place.top,
                           points * (place.right - place.left), points * (place.bottom - place.top)});
}

void MainWindow::Close() {
  add_in_.Close();
  DestroyWindow(Hwnd());
}

void MainWindow::Changed() {
  if (refresh_pending_ || !application_->ScreenUpdating()) return;
  refresh_pending_ = PostMessageW(Hwnd(), kRefresh, 0, 0) != 0;
}

standalone::Workbook* MainWindow::Book() const {
  const auto& books = application_->Workbooks();
  return books.empty() ? nullptr : books.back().get();
}

standalone::Worksheet* MainWindow::Sheet() const {
  return dynamic_cast<standalone::Worksheet*>(application_->ActiveSheet().get());
}

GridView& MainWindow::ViewOf(standalone::Worksheet& sheet) {
  const auto measure = [this](std::string_view text) { return grid_->TextWidth(text); };
  return views_.try_emplace(&sheet, Ref(&sheet), measure).first->second;
}

void MainWindow::Refresh() {
  menu_->Update();
  RefreshTitle();
  auto* sheet = Sheet();
  if (sheet != shown_) {
    shown_ = sheet;
    grid_->Show(sheet == nullptr ? nullptr : &ViewOf(*sheet));
    shown_cell_ = sheet == nullptr ? Rect{} : sheet->ActiveCell();
  }
  if (sheet == nullptr) {
    for (const HWND field : {name_, value_, status_}) SetText(field, u"");
    return;
  }
  if (const Rect cell = sheet->ActiveCell(); cell != shown_cell_) {
    shown_cell_ = cell;
    ViewOf(*sheet).Reveal({cell.first_row, cell.first_column});
  }
  RefreshFields(*sheet);
  RefreshStatus(*sheet);
  grid_->Redraw();
}

// A field that the user is typing into stays as it is.
void MainWindow::RefreshFields(const standalone::Worksheet& sheet) {
  const Rect cell = sheet.ActiveCell();
  if (GetFocus() != name_) {
    std::u16string address;
    AppendAddress(address, cell);
    std::erase(address, u'$');
    SetText(name_, address);
  }
  if (GetFocus() != value_) SetText(value_, ToUtf16(sheet.Text().Cell(cell.first_row, cell.first_column)));
}

void MainWindow::RefreshStatus(const standalone::Worksheet& sheet) {
  std::u16string text;
  if (const auto& used = sheet.Text().Used()) {
    int32_t visible = 0;
    const auto& hidden = sheet.HiddenRows();
    for (int32_t row = hidden.Next(used->first_row, used->last_row, false); row <= used->last_row;) {
      const int32_t end = hidden.Next(row, used->last_row, true);
      visible += end - row;
      row = hidden.Next(end, used->last_row, false);
    }
    text = rowlark::ToText(visible) + u" of " + rowlark::ToText(used->Rows()) + u" rows visible";
  }
  if (TextOf(status_) != text) {
    SendMessageW(status_, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
  }
}

void MainWindow::RefreshTitle() {
  std::u16string title;
  if (const auto* book = Book()) {
    title = book->Name();
    if (book->ReadOnly()) title += u"  [Read-Only]";
    if (const auto* sheet = Sheet(); sheet != nullptr && sheet->ProtectScenarios()) title += u"  [Protected]";
    title += u" - ";
  }
  SetText(Hwnd(), title + Narrow(kTitle));
}

void MainWindow::Execute(UINT command) {
  auto* sheet = Sheet();
  auto* book = Book();
  switch (static_cast<Command>(command)) {
    case Command::FileNew:
      NewWorkbook(*application_);
      break;
    case Command::FileOpen:
      ChooseFile();
      break;
    case Command::FileClose:
      CloseWorkbook();
      break;
    case Command::FileExit:
      PostMessageW(Hwnd(), WM_CLOSE, 0, 0);
      return;
    case Command::ViewProtected:
      if (sheet == nullptr) return;
      sheet->Protect({.contents = !sheet->ProtectScenarios(), .scenarios = !sheet->ProtectScenarios()});
      break;
    case Command::ViewReadOnly:
      if (book == nullptr) return;
      book->SetReadOnly(!book->ReadOnly());
      break;
    case Command::DataFilter:
      ToggleFilter();
      break;
    case Command::DataShowAll:
      ClearFilters();
      break;
    default:
      if (const auto macro = menu_->Macro(command); !macro.empty()) {
        add_in_.Run(macro);
      } else if (const auto chosen = FindWorkbook(*application_, menu_->WorkbookName(command))) {
        application_->Activate(chosen);
      }
  }
  Refresh();
}

void MainWindow::ChooseFile() {
  std::wstring path(32768, L'\0');
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = Hwnd();
  dialog.lpstrFilter = L"Tables (*.csv;*.txt;*.tsv)\0*.csv;*.txt;*.tsv\0All files\0*.*\0";
  dialog.lpstrFile = path.data();
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  dialog.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
  if (!GetOpenFileNameW(&dialog)) return;
  const std::u16string file = Narrow(path.c_str());
  if (const auto open = FindWorkbook(*application_, file.substr(file.find_last_of(u'\\') + 1))) {
    application_->Activate(open);  // as the host, no two workbooks of one name
  } else {
    OpenWorkbook(*application_, file);
  }
}

void MainWindow::CloseWorkbook() {
  const Ref<standalone::Workbook> book = Book();
  if (!book) return;
  application_->Close(book);
  shown_ = nullptr;
  grid_->Show(nullptr);
  for (const auto& sheet : book->Worksheets()) views_.erase(sheet.get());
}

void MainWindow::ToggleFilter() {
  auto* sheet = Sheet();
  if (sheet == nullptr) return;
  if (sheet->AutoFilterMode()) {
    sheet->SetFilter(sheet->Filter().range, {});
    return;
  }
  // Of one cell the model makes the table around it.
  host::AutoFilterArguments arguments;
  arguments.Field = 1;
  sheet->SetFilter(sheet->Selection().front(), arguments);
}

void MainWindow::ClearFilters() {
  auto* sheet = Sheet();
  if (sheet == nullptr || !sheet->AutoFilterMode()) return;
  const auto state = sheet->Filter();
  for (std::size_t i = 0; i < state.columns.size(); ++i) {
    if (!state.columns[i].on) continue;
    host::AutoFilterArguments arguments;
    arguments.Field = static_cast<int32_t>(i) + 1;
    sheet->SetFilter(state.range, arguments);
  }
}

bool MainWindow::KeyPressed(int32_t key) {
  if (IsModifier(key)) return false;
  const int32_t held = HeldModifiers();
  const auto pressed = CaptureHotKey(key, held).code;
  std::u16string macro;
  for (const auto& [code, name] : application_->Keys()) {
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
    add_in_.Run(macro);
  }
  return true;
}

void MainWindow::EditCell(std::u16string_view text) {
  SetFocus(value_);
  SetText(value_, std::u16string(text));
  SendMessageW(value_, EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
}

bool MainWindow::FieldKey(HWND field, WPARAM key) {
  auto* sheet = Sheet();
  if (key != VK_RETURN && key != VK_ESCAPE) return false;
  const auto text = TextOf(field);
  SetFocus(grid_->Hwnd());
  if (key == VK_RETURN && sheet != nullptr) {
    const Rect cell = sheet->ActiveCell();
    if (field == name_) {
      sheet->Select(text);
    } else {
      sheet->SetCell(cell.first_row, cell.first_column, text);
      MoveTo(*sheet, Step(*sheet, {cell.first_row, cell.first_column}, Direction::Down));
    }
  }
  Refresh();
  return true;
}

LRESULT CALLBACK MainWindow::FieldProcedure(HWND field, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR,
                                            DWORD_PTR window) noexcept {
  auto* self = reinterpret_cast<MainWindow*>(window);
  try {
    if (message == WM_KEYDOWN && self->FieldKey(field, wparam)) return 0;
  } catch (...) {
    ReportFailure(field);
    self->Changed();
    return 0;
  }
  // Enter and Escape would sound the system's warning.
  if (message == WM_CHAR && (wparam == VK_RETURN || wparam == VK_ESCAPE)) return 0;
  const LRESULT result = DefSubclassProc(field, message, wparam, lparam);
  if (message == WM_SETFOCUS) SendMessageW(field, EM_SETSEL, 0, -1);
  if (message == WM_KILLFOCUS) self->Changed();
  return result;
}

bool MainWindow::OnMessage(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
  switch (message) {
    case WM_CREATE:
      MakeChildren();
      TellPlace();
      return true;
    case WM_SIZE:
      if (wparam != SIZE_MINIMIZED) Layout();
      TellPlace();
      return true;
    case WM_MOVE:
      TellPlace();
      return true;
    case WM_SETFOCUS:
      SetFocus(grid_->Hwnd());
      return true;
    case WM_SETTINGCHANGE:
    case WM_SYSCOLORCHANGE:
      UseSystemFont();
      Refresh();
      return false;
    case kRefresh:
      refresh_pending_ = false;
      if (application_->ScreenUpdating()) Refresh();
      return true;
    case WM_INITMENUPOPUP:
      if (const auto* sheet = Sheet()) {
        menu_->UpdateMarks(sheet->ProtectScenarios(), Book()->ReadOnly(), sheet->AutoFilterMode());
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
      Close();
      return true;
    case WM_DESTROY:
      PostQuitMessage(0);
      return true;
    default:
      return false;
  }
}

}  // namespace rowlark::workbench
