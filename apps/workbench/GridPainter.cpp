#include "GridPainter.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "FilterArrow.h"
#include "automation/Variant.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::workbench {
namespace {

using sheetview::SheetView;
using sheetview::Strip;
using windows::AsWide;

// `share` percent of the one colour in the other.
COLORREF Blend(COLORREF from, COLORREF into, int share) {
  const auto mix = [share](int a, int b) { return static_cast<BYTE>((a * share + b * (100 - share)) / 100); };
  return RGB(mix(GetRValue(from), GetRValue(into)), mix(GetGValue(from), GetGValue(into)),
             mix(GetBValue(from), GetBValue(into)));
}

// Of the numbers of rows among which some are hidden.
COLORREF FilteredColour() {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof contrast;
  const bool high = SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != 0 &&
                    (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
  return high ? GetSysColor(COLOR_HOTLIGHT) : RGB(0, 60, 200);
}

struct Colours {
  COLORREF cell = GetSysColor(COLOR_WINDOW);
  COLORREF text = GetSysColor(COLOR_WINDOWTEXT);
  COLORREF selection = GetSysColor(COLOR_HIGHLIGHT);
  COLORREF selected_cell = Blend(selection, cell, 15);
  COLORREF header = GetSysColor(COLOR_BTNFACE);
  COLORREF header_text = GetSysColor(COLOR_BTNTEXT);
  COLORREF selected_header = Blend(selection, header, 30);
  COLORREF line = Blend(GetSysColor(COLOR_BTNSHADOW), cell, 40);
  COLORREF header_line = GetSysColor(COLOR_BTNSHADOW);
  COLORREF filtered = FilteredColour();
};

constexpr LONG kTextMargin = 3;

bool IsNumber(std::string_view text) {
  double number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
  return end.ec == std::errc() && end.ptr == text.data() + text.size() && text.back() <= '9';
}

class Painter {
 public:
  Painter(HDC target, SIZE size, const SheetView& view) : target_(target), size_(size), view_(view) {}

  void Paint() {
    Fill({0, 0, size_.cx, size_.cy}, colours_.header);
    SetBkMode(target_, TRANSPARENT);
    Cells();
    Selection();
    FilterArrows();
    RowHeaders();
    ColumnHeaders();
  }

 private:
  void Fill(const RECT& area, COLORREF colour) const {
    SetBkColor(target_, colour);
    ExtTextOutW(target_, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
  }
  void Frame(const RECT& area, COLORREF colour, LONG width) const {
    Fill({area.left, area.top, area.right, area.top + width}, colour);
    Fill({area.left, area.bottom - width, area.right, area.bottom}, colour);
    Fill({area.left, area.top, area.left + width, area.bottom}, colour);
    Fill({area.right - width, area.top, area.right, area.bottom}, colour);
  }
  void Text(std::u16string_view text, RECT area, COLORREF colour, UINT alignment) const {
    area.left += kTextMargin;
    area.right -= kTextMargin;
    SetTextColor(target_, colour);
    DrawTextW(target_, AsWide(text.data()), static_cast<int>(text.size()), &area,
              alignment | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
  }

  bool Selected(const Block& area) const {
    return std::ranges::any_of(sheet_.Selection(), [&](const Block& selected) {
      return selected.first_row <= area.last_row && selected.last_row >= area.first_row &&
             selected.first_column <= area.last_column && selected.last_column >= area.first_column;
    });
  }

  void Cells() const {
    const Block active = sheet_.ActiveCell();
    for (const auto& row : rows_) {
      for (const auto& column : columns_) {
        const auto cell = Block::OfCell(row.index, column.index);
        const RECT box{column.start, row.start, column.start + column.size - 1, row.start + row.size - 1};
        Fill({box.left, box.top, box.right + 1, box.bottom + 1}, colours_.line);
        Fill(box, Selected(cell) && cell != active ? colours_.selected_cell : colours_.cell);
        const auto text = sheet_.Text().Cell(row.index, column.index);
        if (text.empty()) continue;
        Text(ToUtf16(text), box, colours_.text, IsNumber(text) ? DT_RIGHT : DT_LEFT);
      }
    }
  }

  // A frame around each selected area, and one around the active cell.
  void Selection() const {
    const Block active = sheet_.ActiveCell();
    for (const auto& area : sheet_.Selection()) {
      if (const auto box = view_.BoxOf(area)) {
        Frame({box->left - 1, box->top - 1, box->right, box->bottom}, colours_.selection, 2);
      }
    }
    if (sheet_.Selection().size() == 1 && sheet_.Selection().front() == active) return;
    if (const auto box = view_.BoxOf(active)) {
      Frame({box->left, box->top, box->right - 1, box->bottom - 1}, colours_.selection, 1);
    }
  }

  void FilterArrows() const {
    if (!sheet_.AutoFilterMode()) return;
    const auto& [range, filters] = sheet_.Filter();
    for (const auto& column : columns_) {
      const auto box = FilterArrow(view_, column.index);
      if (!box) continue;
      const RECT button{box->left + 1, box->top + 1, box->right - 2, box->bottom - 2};
      Fill(button, colours_.header);
      Frame(button, colours_.header_line, 1);
      const bool on = filters[static_cast<std::size_t>(column.index - range.first_column)].on;
      Arrow(button, on ? colours_.filtered : colours_.header_text);
      if (on) {  // an underlined arrow: also seen without colours
        Fill({button.left + 3, button.bottom - 5, button.right - 3, button.bottom - 3}, colours_.filtered);
      }
    }
  }
  void Arrow(const RECT& button, COLORREF colour) const {
    const LONG half = (button.right - button.left) / 4;
    const LONG middle = (button.left + button.right) / 2;
    LONG y = (button.top + button.bottom - half) / 2;
    for (LONG width = half; width > 0; --width, ++y) {
      Fill({middle - width, y, middle + width, y + 1}, colour);
    }
  }

  void Header(const RECT& box, std::u16string_view text, bool selected, COLORREF colour) const {
    Fill({box.left, box.top, box.right - 1, box.bottom - 1},
         selected ? colours_.selected_header : colours_.header);
    Fill({box.left, box.bottom - 1, box.right, box.bottom}, colours_.header_line);
    Fill({box.right - 1, box.top, box.right, box.bottom}, colours_.header_line);
    Text(text, {box.left, box.top, box.right - 1, box.bottom - 1}, colour, DT_CENTER);
  }

  void RowHeaders() const {
    const auto& hidden = sheet_.HiddenRows();
    const auto used = sheet_.UsedBlock();
    const bool any_hidden = hidden.Next(used.first_row, used.last_row, true) <= used.last_row;
    for (const auto& row : rows_) {
      const RECT box{0, row.start, view_.HeaderWidth(), row.start + row.size};
      const bool among = any_hidden && row.index >= used.first_row && row.index <= used.last_row;
      Header(box, rowlark::ToText(row.index), Selected({row.index, 1, row.index, standalone::kMaxColumn}),
             among ? colours_.filtered : colours_.header_text);
      if (row.index > 1 && hidden.Contains(row.index - 1)) {  // a gap
        Fill({box.left, box.top - 2, box.right, box.top + 1}, colours_.filtered);
        Fill({box.left, box.top - 1, box.right, box.top}, colours_.cell);
      }
    }
  }

  void ColumnHeaders() const {
    for (const auto& column : columns_) {
      Header({column.start, 0, column.start + column.size, view_.HeaderHeight()}, ColumnLetters(column.index),
             Selected({1, column.index, standalone::kMaxRow, column.index}), colours_.header_text);
    }
    Header({0, 0, view_.HeaderWidth(), view_.HeaderHeight()}, u"", false, colours_.header_text);
  }

  HDC target_;
  SIZE size_;
  const SheetView& view_;
  const standalone::Worksheet& sheet_ = view_.Sheet();
  const std::vector<Strip> rows_ = view_.Rows();
  const std::vector<Strip> columns_ = view_.Columns();
  const Colours colours_;
};

}  // namespace

void PaintGrid(HDC target, SIZE size, HFONT font, const SheetView& view) {
  const auto old_font = SelectObject(target, font);
  Painter(target, size, view).Paint();
  SelectObject(target, old_font);
}

}  // namespace rowlark::workbench
