// The line below the table: from the left the table and its active cell, from the right what is known of the
// search, as far as there is room.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Program.h"
#include "SearchMarks.h"
#include "Tables.h"
#include "host/terminal/Canvas.h"

namespace rowlark {

class StatusLine {
 public:
  StatusLine(Program& program, Tables& tables, const SearchMarks& marks)
      : program_(program), tables_(tables), marks_(marks) {}

  // What was done last; it shows until it is cleared.
  void Tell(std::u16string message) { message_ = std::move(message); }
  void Clear() { message_.clear(); }

  void Draw(terminal::Canvas& canvas, terminal::Point at, int32_t width);

 private:
  std::u16string Left(const std::u16string& notices);
  std::u16string Notices() const;
  // What may stand on the right, the most important first; parts may be empty.
  std::vector<std::u16string> Parts();
  // How much of the table has come, while it does; empty otherwise.
  std::u16string Loading();
  std::u16string Rows();
  std::u16string Matches();
  std::u16string Mode() const;

  Program& program_;
  Tables& tables_;
  const SearchMarks& marks_;
  std::u16string message_;

  struct RowCount {
    const standalone::Worksheet* sheet = nullptr;
    uint64_t layout = 0;
    int32_t all = 0;
    int32_t visible = 0;
  };
  RowCount count_;
};

}  // namespace rowlark
