#include "GridWindow.h"

#include <optional>
#include <stdexcept>
#include <utility>

#include <windowsx.h>

#include "FilterArrow.h"
#include "GridPainter.h"
#include "automation/Variant.h"
#include "util/Utf.h"

namespace rowlark::workbench {
namespace {

using sheetview::Cell;
using sheetview::Direction;
using sheetview::LastUsed;
using sheetview::SheetView;
using sheetview::Span;
using sheetview::StepRows;
using standalone::kMaxColumn;
using standalone::kMaxRow;
using Part = SheetView::Part;

constexpr UINT_PTR kDragTimer = 1;
constexpr UINT kDragInterval = 40;  // milliseconds between steps of scrolling beyond the edge

// What is selected by dragging there.
Span SpanOf(Part part) {
  return part == Part::RowHeader ? Span::Rows : part == Part::ColumnHeader ? Span::Columns : Span::Cells;
}

std::optional<Direction> DirectionOf(int32_t key) {
  switch (key) {
    case VK_UP:
      return Direction::Up;
    case VK_DOWN:
      return Direction::Down;
    case VK_LEFT:
      return Direction::Left;
    case VK_RIGHT:
      return Direction::Right;
    default:
      return std::nullopt;
  }
}

bool IsDown(int key) { return GetKeyState(key) < 0; }

}  // namespace

GridWindow::GridWindow(HWND parent, Callbacks callbacks) : callbacks_(std::move(callbacks)) {
  WNDCLASSEXW window_class{};
  window_class.lpszClassName = L"RowlarkGrid";
  window_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  if (Create(window_class, L"Sheet", WS_CHILD | WS_VISIBLE | WS_TABSTOP | WS_HSCROLL | WS_VSCROLL, parent) ==
      nullptr) {
    throw std::runtime_error("The window of the sheet can not be made.");
  }
}

void GridWindow::Show(SheetView* view) {
  view_ = view;
  Resize();
  Redraw();
}

void GridWindow::SetFont(HFONT font) {
  font_ = font;
  const windows::ScreenContext screen(GetDC(Hwnd()));
  const windows::SelectedObject selected(*screen, font);
  TEXTMETRICW text{};
  GetTextMetricsW(*screen, &text);
  SIZE digit{};
  GetTextExtentPoint32W(*screen, L"0", 1, &digit);
  const auto digits = [width = static_cast<int32_t>(digit.cx)](int32_t count) { return count * width; };
  const auto row = static_cast<int32_t>(text.tmHeight + text.tmHeight / 3 + 1);
  metrics_ = {.row_height = row,
              .digit_width = digits(1),
              .letters_height = row,
              .least_width = digits(4),
              .most_width = digits(40),
              .empty_width = digits(9),
              .text_margin = digits(2),
              .head_margin = row};
  Resize();
}

int GridWindow::TextWidth(std::string_view text) const {
  const auto wide = ToUtf16(text);
  const windows::ScreenContext screen(GetDC(Hwnd()));
  const windows::SelectedObject selected(*screen, font_);
  SIZE extent{};
  GetTextExtentPoint32W(*screen, windows::AsWide(wide.data()), static_cast<int>(wide.size()), &extent);
  return static_cast<int>(extent.cx);
}

void GridWindow::Redraw() {
  UpdateScrollBars();
  InvalidateRect(Hwnd(), nullptr, FALSE);
}

void GridWindow::Resize() {
  RECT client;
  GetClientRect(Hwnd(), &client);
  if (view_ != nullptr)
    view_->Resize(static_cast<int>(client.right), static_cast<int>(client.bottom), metrics_);
  UpdateScrollBars();
}

// The bars count in rows and columns; they reach one page beyond what is in use, or as far as the user went.
void GridWindow::UpdateScrollBars() {
  if (view_ == nullptr) return;
  const auto used = view_->Sheet().UsedBlock();
  const auto set = [this](int bar, int32_t used_last, int32_t first, int32_t last, int32_t most) {
    SCROLLINFO info{sizeof info, SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL, 1, 0, 0, first, 0};
    info.nPage = static_cast<UINT>(last - first + 1);
    info.nMax = std::min(std::max(used_last, first) + (last - first), most);
    SetScrollInfo(Hwnd(), bar, &info, TRUE);
  };
  set(SB_VERT, used.last_row, view_->TopRow(), view_->TopRow() + view_->PageRows() - 1, kMaxRow);
  set(SB_HORZ, used.last_column, view_->LeftColumn(), view_->Columns().back().index, kMaxColumn);
}

// While the picture is frozen, the last one is shown.
void GridWindow::Paint() {
  const windows::PaintContext screen(Hwnd());
  RECT client;
  GetClientRect(Hwnd(), &client);
  const SIZE size{client.right, client.bottom};
  const bool new_size = !picture_ || size.cx != picture_size_.cx || size.cy != picture_size_.cy;
  if (new_size) {
    picture_.reset(CreateCompatibleBitmap(*screen, size.cx, size.cy));
    picture_size_ = size;
  }
  const windows::MemoryContext picture(CreateCompatibleDC(*screen));
  const windows::SelectedObject selected(*picture, picture_.get());
  if (view_ != nullptr && (new_size || !callbacks_.frozen())) PaintGrid(*picture, size, font_, *view_);
  BitBlt(*screen, 0, 0, size.cx, size.cy, *picture, 0, 0, SRCCOPY);
}

void GridWindow::Scroll(bool vertical, WORD request) {
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SIF_ALL;
  GetScrollInfo(Hwnd(), vertical ? SB_VERT : SB_HORZ, &info);
  const auto scroll = [&](int32_t count) {
    vertical ? view_->ScrollRows(count) : view_->ScrollToColumn(view_->LeftColumn() + count);
  };
  const auto page = static_cast<int32_t>(info.nPage);
  switch (request) {
    case SB_LINEUP:
      scroll(-1);
      break;
    case SB_LINEDOWN:
      scroll(1);
      break;
    case SB_PAGEUP:
      scroll(-page);
      break;
    case SB_PAGEDOWN:
      scroll(page);
      break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
      vertical ? view_->ScrollToRow(info.nTrackPos) : view_->ScrollToColumn(info.nTrackPos);
      break;
    default:
      return;
  }
  Redraw();
}

void GridWindow::Wheel(int delta, bool horizontal) {
  wheel_ += delta;
  const int notches = wheel_ / WHEEL_DELTA;
  wheel_ %= WHEEL_DELTA;
  UINT lines = 3;
  SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
  if (lines == WHEEL_PAGESCROLL) lines = static_cast<UINT>(view_->PageRows());
  if (horizontal) {
    view_->ScrollToColumn(view_->LeftColumn() + notches);
  } else {
    view_->ScrollRows(-notches * static_cast<int>(lines));
  }
  Redraw();
}

void GridWindow::ButtonDown(int x, int y, bool shift, bool control) {
  SetFocus(Hwnd());
  auto& cursor = view_->Cursor();
  auto [part, cell, exact] = view_->HitTest(x, y);
  if (const auto arrow = FilterArrow(*view_, cell.column); arrow && Contains(*arrow, x, y)) {
    POINT where{arrow->left, arrow->bottom};
    ClientToScreen(Hwnd(), &where);
    return callbacks_.filter(cell.column, where);
  }
  if (part == Part::Corner) {
    cursor.MoveTo(cell, Span::Sheet);
    return callbacks_.selected();
  }
  mouse_ = {x, y};
  dragged_ = part;
  SetCapture(Hwnd());
  SetTimer(Hwnd(), kDragTimer, kDragInterval, nullptr);
  if (shift) return DragSelection();
  // Of a row or column the cell that shows first becomes the active one.
  if (part == Part::RowHeader) cell.column = view_->LeftColumn();
  if (part == Part::ColumnHeader) cell.row = view_->Rows().front().index;
  cursor.MoveTo(cell, SpanOf(part), control);
  if (part == Part::Cell) view_->Reveal(cell);
  callbacks_.selected();
}

void GridWindow::Drag(int x, int y) {
  mouse_ = {x, y};
  DragSelection();
}

void GridWindow::DragSelection() {
  const auto cell = view_->HitTest(static_cast<int>(mouse_.x), static_cast<int>(mouse_.y)).cell;
  if (view_->Cursor().ExtendTo(cell, SpanOf(dragged_))) callbacks_.selected();
}

// The mouse is held where the sheet goes on.
void GridWindow::DragBeyondEdge() {
  RECT client;
  GetClientRect(Hwnd(), &client);
  if (mouse_.y >= client.bottom) view_->ScrollRows(1);
  if (mouse_.y < view_->HeaderHeight() && dragged_ != Part::ColumnHeader) view_->ScrollRows(-1);
  if (mouse_.x >= client.right) view_->ScrollToColumn(view_->LeftColumn() + 1);
  if (mouse_.x < view_->HeaderWidth() && dragged_ != Part::RowHeader) {
    view_->ScrollToColumn(view_->LeftColumn() - 1);
  }
  DragSelection();
  Redraw();
}

void GridWindow::Go(Cell to, bool extend) {
  auto& cursor = view_->Cursor();
  if (extend) {
    cursor.ExtendTo(to);
  } else {
    cursor.MoveTo(to);
  }
  // Of whole rows and columns the far end is of no interest.
  const Block& area = view_->Sheet().Selection().back();
  if (area.Rows() < kMaxRow) view_->RevealRow(to.row);
  if (area.Columns() < kMaxColumn) view_->RevealColumn(to.column);
  callbacks_.selected();
}

bool GridWindow::KeyDown(int32_t key) {
  if (callbacks_.key(key)) return true;
  auto& sheet = view_->Sheet();
  const bool control = IsDown(VK_CONTROL);
  const bool shift = IsDown(VK_SHIFT);
  auto& cursor = view_->Cursor();
  const Cell cell = cursor.Active();
  const Cell from = shift ? cursor.MovingCorner() : cell;
  const auto page = [&](int32_t pages) {
    const int32_t rows = pages * std::max(view_->PageRows() - 1, 1);
    view_->ScrollRows(rows);
    Go({StepRows(sheet, from.row, rows), from.column}, shift);
    return true;
  };
  if (const auto direction = DirectionOf(key)) {
    Go(control ? StepToEdge(sheet, from, *direction) : Step(sheet, from, *direction), shift);
    return true;
  }
  switch (key) {
    case VK_PRIOR:
      return page(-1);
    case VK_NEXT:
      return page(1);
    case VK_HOME:
      Go({control ? sheet.HiddenRows().Next(1, kMaxRow, false) : from.row, 1}, shift);
      return true;
    case VK_END:
      if (!control) return false;
      Go(LastUsed(sheet), shift);
      return true;
    case VK_RETURN:
      Go(Step(sheet, cell, shift ? Direction::Up : Direction::Down), false);
      return true;
    case VK_TAB:
      Go(Step(sheet, cell, shift ? Direction::Left : Direction::Right), false);
      return true;
    case 'A':
      if (!control) return false;
      cursor.MoveTo(cell, Span::Sheet);
      callbacks_.selected();
      return true;
    case VK_F2:
      callbacks_.edit(ToUtf16(sheet.Text().Cell(cell.row, cell.column)));
      return true;
    default:
      return false;
  }
}

bool GridWindow::OnMessage(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) {
  switch (message) {
    case WM_ERASEBKGND:
      result = 1;
      return true;
    case WM_PAINT:
      Paint();
      return true;
    case WM_SIZE:
      Resize();
      return true;
    case WM_GETDLGCODE:
      result = DLGC_WANTALLKEYS;
      return true;
    default:
      return view_ != nullptr && OnInput(message, wparam, lparam);
  }
}

bool GridWindow::OnInput(UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_VSCROLL:
    case WM_HSCROLL:
      Scroll(message == WM_VSCROLL, LOWORD(wparam));
      return true;
    case WM_MOUSEWHEEL:
    case WM_MOUSEHWHEEL:
      Wheel(GET_WHEEL_DELTA_WPARAM(wparam), message == WM_MOUSEHWHEEL);
      return true;
    case WM_LBUTTONDOWN:
      ButtonDown(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam), (wparam & MK_SHIFT) != 0,
                 (wparam & MK_CONTROL) != 0);
      return true;
    case WM_MOUSEMOVE:
      if (dragged_ != Part::Corner) Drag(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam));
      return true;
    case WM_TIMER:
      DragBeyondEdge();
      return true;
    case WM_LBUTTONUP:
      if (dragged_ != Part::Corner) Drag(GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam));
      ReleaseCapture();
      return true;
    case WM_CAPTURECHANGED:
      dragged_ = Part::Corner;
      KillTimer(Hwnd(), kDragTimer);
      return true;
    case WM_KEYDOWN:
      return KeyDown(static_cast<int32_t>(wparam));
    case WM_SYSKEYDOWN:  // with Alt: hotkeys alone
      return callbacks_.key(static_cast<int32_t>(wparam));
    case WM_CHAR:
      if (wparam < ' ' || IsDown(VK_CONTROL)) return true;
      callbacks_.edit(std::u16string(1, static_cast<char16_t>(wparam)));
      return true;
    default:
      return false;
  }
}

}  // namespace rowlark::workbench
