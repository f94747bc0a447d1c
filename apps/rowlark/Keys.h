// What the keys do, for the user to read.
#pragma once

#include <cstdint>
#include <string>

#include "Program.h"
#include "host/terminal/Canvas.h"

namespace rowlark {

// All of them, a line each.
std::u16string TellKeys(const Program& program);

// Those that matter, in one line. Where they need more room, they close up.
struct KeyLine {
  bool has_form = false;    // a search form is open
  bool in_table = true;     // and the keyboard is the table's
  bool has_tables = false;  // more than one

  void Draw(const Program& program, terminal::Canvas& canvas, terminal::Point at, int32_t width) const;
};

}  // namespace rowlark
