#include "Keys.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace rowlark {
namespace {

using terminal::Style;

// Where F6 leads, of a text that names both: "Form/Table".
std::u16string OtherSide(const std::u16string& both, bool in_table) {
  const auto slash = std::min(both.find(u'/'), both.size());
  return in_table || slash == both.size() ? both.substr(0, slash) : both.substr(slash + 1);
}

}  // namespace

std::u16string TellKeys(const Program& program) {
  return program.Text(u"Terminal.Keys.All",
                      u"Type - search for it\\n"
                      u"Arrows, PgUp, PgDn, Home, End - move (Ctrl: to the end, Shift: select)\\n"
                      u"Insert - select one more block\\n"
                      u"F2, Enter - edit the cell\\n"
                      u"F3, Shift+F3, n, N - next match, previous match\\n"
                      u"F4 - open a list in a form\\n"
                      u"F6 - from the table to the form and back\\n"
                      u"F7, Ctrl+PgDn, Ctrl+PgUp - another table\\n"
                      u"F8, Ctrl+G - show the whole cell, go to a row or cell\\n"
                      u"F10 - menu\\n"
                      u"Ctrl+F, / - search form\\n"
                      u"Ctrl+Shift+F - show all rows\\n"
                      u"Alt+Left, Right, H, U - narrower, wider, hide a column, show all\\n"
                      u"Alt+F, Alt+C, Ctrl+Insert - freeze columns, copy as..., copy\\n"
                      u"Ctrl+S, F12, F5 - save, save as, read anew\\n"
                      u"Ctrl+Z, Ctrl+Y - undo, redo\\n"
                      u"Ctrl+Q, Ctrl+C - quit");
}

void KeyLine::Draw(const Program& program, terminal::Canvas& canvas, terminal::Point at,
                   int32_t width) const {
  struct Entry {
    std::u16string_view key;
    std::u16string text;
    int32_t Width() const { return terminal::WidthOf(key) + 1 + terminal::WidthOf(text); }
  };
  std::vector<Entry> entries{{u"F1", program.Text(u"Terminal.Keys.Help", u"Help")},
                             {u"F2", program.Text(u"Terminal.Keys.Edit", u"Edit")}};
  if (has_form)
    entries.push_back({u"F6", OtherSide(program.Text(u"Terminal.Keys.Form", u"Form/Table"), in_table)});
  if (has_tables) entries.push_back({u"F7", program.Text(u"Terminal.Keys.NextTable", u"Next table")});
  entries.push_back({u"F10", program.Text(u"Terminal.Keys.Menu", u"Menu")});
  if (!has_form) entries.push_back({u"^F", program.Text(u"Terminal.Keys.Search", u"Search")});
  entries.push_back({u"^S", program.Text(u"Terminal.Keys.Save", u"Save")});
  entries.push_back({u"^Q", program.Text(u"Terminal.Keys.Quit", u"Quit")});

  int32_t apart = 1;
  for (const auto& entry : entries) apart += entry.Width() + 2;
  const int32_t gap = apart - 2 <= width ? 2 : 1;
  int32_t x = at.x + gap - 1;
  for (const auto& entry : entries) {
    if (x + entry.Width() > at.x + width) continue;
    x += canvas.Write({x, at.y}, entry.key, Style::Bold) + 1;
    x += canvas.Write({x, at.y}, entry.text, Style::Dim) + gap;
  }
}

}  // namespace rowlark
