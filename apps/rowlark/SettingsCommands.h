// `rowlark profiles` and `rowlark history`: what the options dialog shows and changes.
#pragma once

#include <optional>
#include <string>

#include "Output.h"
#include "Program.h"

namespace rowlark {

// What `profiles set` changes; empty: leave it as it is.
struct ProfileArguments {
  std::string workbook;  // file name, or "default" for the profile of all other workbooks
  std::string range;     // an A1 address or "auto"
  std::string columns;   // letters with commas between, or "all"
  std::string jump;      // letters, or "auto"
  std::optional<bool> jump_first_row;
  std::optional<bool> dont_save;
};

// Exit status: 0, or 1 when there is no such profile. Throw std::runtime_error for arguments that make no
// sense and for a configuration that can not be written.
int ListProfiles(Program& program, Output& output);
int ShowProfile(const std::string& workbook, Program& program, Output& output);
int SetProfile(const ProfileArguments& arguments, Program& program);
int RemoveProfile(const std::string& workbook, Program& program);

int ListHistory(Program& program, Output& output);
int ClearHistory(Program& program);

}  // namespace rowlark
