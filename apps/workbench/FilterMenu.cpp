#include "FilterMenu.h"

#include <algorithm>
#include <set>
#include <string>

#include "BaseWindow.h"
#include "Resources.h"
#include "automation/Variant.h"
#include "util/Utf.h"
#include "util/windows/Handles.h"

namespace rowlark::workbench {
namespace {

using windows::AsWide;

// Values that the menu offers; of a column that has more, those met first.
constexpr std::size_t kMostValues = 20;

enum Choice : UINT { kAll = 1, kContains, kBlanks, kTexts, kFirstValue };

// The text itself, not a pattern.
std::u16string Literal(std::u16string_view text) {
  std::u16string literal;
  for (const char16_t c : text) {
    if (c == u'*' || c == u'?' || c == u'~') literal += u'~';
    literal += c;
  }
  return literal;
}

std::vector<std::u16string> ValuesOf(const standalone::Worksheet& sheet, int32_t column) {
  const auto& range = sheet.Filter().range;
  std::set<std::string_view> values;
  for (int32_t row = range.first_row + 1; row <= range.last_row && values.size() < kMostValues; ++row) {
    if (const auto text = sheet.Text().Cell(row, column); !text.empty()) values.insert(text);
  }
  std::vector<std::u16string> texts;
  texts.reserve(values.size());
  for (const auto value : values) texts.push_back(ToUtf16(value));
  return texts;
}

INT_PTR CALLBACK AskProcedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, GWLP_USERDATA, lparam);
    return TRUE;
  }
  if (message != WM_COMMAND || (LOWORD(wparam) != IDOK && LOWORD(wparam) != IDCANCEL)) return FALSE;
  wchar_t text[256] = L"";
  GetDlgItemTextW(dialog, kFilterText, text, static_cast<int>(std::size(text)));
  try {
    *reinterpret_cast<std::u16string*>(GetWindowLongPtrW(dialog, GWLP_USERDATA)) = windows::AsUtf16(text);
    EndDialog(dialog, LOWORD(wparam));
  } catch (...) {
    ReportFailure(dialog);
    EndDialog(dialog, IDCANCEL);
  }
  return TRUE;
}

// False when the user calls it off.
bool AskForText(HWND owner, std::u16string& text) {
  return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kFilterDialog), owner, AskProcedure,
                         reinterpret_cast<LPARAM>(&text)) == IDOK;
}

}  // namespace

void ShowFilterMenu(HWND owner, standalone::Worksheet& sheet, int32_t column, POINT where) {
  const auto state = sheet.Filter();
  const int32_t field = column - state.range.first_column + 1;
  const auto& filter = state.columns[static_cast<std::size_t>(field) - 1];
  const auto* criterion = filter.on ? std::get_if<std::u16string>(&*filter.criteria1) : nullptr;
  const auto values = ValuesOf(sheet, column);

  const windows::MenuHandle menu(CreatePopupMenu());
  const auto add = [&](UINT choice, const wchar_t* text, bool checked) {
    AppendMenuW(*menu, checked ? MF_STRING | MF_CHECKED : MF_STRING, choice, text);
  };
  add(kAll, L"&All", !filter.on);
  add(kContains, L"&Contains...", criterion != nullptr && criterion->starts_with(u"=*"));
  add(kBlanks, L"&Blanks", criterion != nullptr && *criterion == u"=");
  add(kTexts, L"&Non-blanks", criterion != nullptr && *criterion == u"<>");
  AppendMenuW(*menu, MF_SEPARATOR, 0, nullptr);
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::u16string caption;
    for (const char16_t c : values[i]) caption.append(c == u'&' ? 2 : 1, c);
    add(kFirstValue + static_cast<UINT>(i), AsWide(caption.c_str()),
        criterion != nullptr && *criterion == u"=" + Literal(values[i]));
  }
  const auto choice = static_cast<UINT>(TrackPopupMenu(*menu, TPM_RETURNCMD, static_cast<int>(where.x),
                                                       static_cast<int>(where.y), 0, owner, nullptr));
  if (choice == 0) return;

  host::AutoFilterArguments arguments;
  arguments.Field = field;
  if (choice == kContains) {
    std::u16string text;
    if (!AskForText(owner, text)) return;
    if (!text.empty()) arguments.Criteria1 = u"=*" + Literal(text) + u"*";
  } else if (choice == kBlanks) {
    arguments.Criteria1 = std::u16string(u"=");
  } else if (choice == kTexts) {
    arguments.Criteria1 = std::u16string(u"<>");
  } else if (choice >= kFirstValue) {
    arguments.Criteria1 = u"=" + Literal(values[choice - kFirstValue]);
  }
  sheet.SetFilter(state.range, arguments);
}

void ToggleFilter(standalone::Worksheet& sheet) {
  if (sheet.AutoFilterMode()) {
    sheet.SetFilter(sheet.Filter().range, {});
    return;
  }
  // Of one cell the model makes the table around it.
  host::AutoFilterArguments arguments;
  arguments.Field = 1;
  sheet.SetFilter(sheet.Selection().front(), arguments);
}

void ClearFilters(standalone::Worksheet& sheet) {
  if (!sheet.AutoFilterMode()) return;
  const auto state = sheet.Filter();
  for (std::size_t i = 0; i < state.columns.size(); ++i) {
    if (!state.columns[i].on) continue;
    host::AutoFilterArguments arguments;
    arguments.Field = static_cast<int32_t>(i) + 1;
    sheet.SetFilter(state.range, arguments);
  }
}

}  // namespace rowlark::workbench
