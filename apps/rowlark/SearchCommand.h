// `rowlark search`: opens a table as a sheet, searches it and prints what is left visible.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Output.h"
#include "Program.h"
#include "runtime/clsVTRLKOptions.h"

namespace rowlark {

enum class Print { Csv, Rows, Json };

// A filter's column and its criterion.
struct ColumnFilter {
  std::string column;
  std::string criterion;
};

struct SearchArguments {
  std::filesystem::path file;
  std::string text;
  InputOptions input;
  std::string sheet;  // by its name; empty: the one the file opens with
  xeVT_SEARCH_WORDS words = xcVT_SEARCH_WORDS_ALL;
  bool match_case = false;
  bool go_to = false;  // move to the first match and hide nothing
  // Empty: as the profile says.
  std::string range;    // an A1 address
  std::string columns;  // letters or names, with commas between
  std::string jump;
  int32_t head_rows = 0;  // that are not searched, and printed before the rows found
  std::vector<ColumnFilter> filters;
  Print print = Print::Csv;
  bool remember = false;  // a text that was found goes into the history
};

// A column goes by its letters or, where the table has none of these, by the text in the first row.
//
// Searches with the profile of the file's name or the default profile, unless arguments say otherwise.
// Returns the exit status: 0 when a row was found, 1 when none
// was, 2 after an error of the host. The reason for 1 and 2 goes to standard error. Throws std::runtime_error
// for arguments that do not fit the table, for a file that can not be read and for output that can not be
// written.
int RunSearch(const SearchArguments& arguments, Program& program, Output& output);

}  // namespace rowlark
