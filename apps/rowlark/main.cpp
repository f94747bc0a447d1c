// The command line of rowlark.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Output.h"
#include "SearchCommand.h"
#include "SettingsCommands.h"
#include "TerminalProgram.h"
#include "host/Error.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"

namespace {

using rowlark::Print;
using rowlark::SearchArguments;

constexpr int kFailed = 2;  // grep's status for trouble

constexpr const char* kExamples = R"(Examples:
  rowlark customers.csv orders.xlsx
      opens the tables in the terminal: typing searches, F1 tells the keys
  rowlark search customers.csv münchen
      rows with a cell that holds the text, letter case ignored
  rowlark search customers.csv "киев praha" --words any --columns F,K
      rows with either word in column F or K
  rowlark search customers.csv open --words cell --filter G=Germany --filter "J=>=100"
      of the rows that two filters show, those with a cell that is exactly "open"
  rowlark search orders.xlsx open --sheet "Last year"
      the rows of a sheet of a workbook, as CSV
  rowlark search customers.csv smith --go-to --jump H
      the address of the cell in column H of the first match

Searched is the text that a cell shows: of a workbook the results of formulas, numbers and dates in their formats.
Columns that are hidden or too narrow for their numbers in a spreadsheet program are searched as well.
In the text * stands for any characters, ? for one, and ~ takes that meaning from the one that follows.
Exit status: 0 when rows were found, 1 when none was, 2 after an error.)";

// "tab" or one character that can stand between cells.
std::string CheckSeparator(const std::string& text) {
  const bool is_fit = text == "tab" || (text.size() == 1 && text != "\"" && text != "\n" && text != "\r" &&
                                        static_cast<unsigned char>(text[0]) < 0x80);
  return is_fit ? "" : "not a separator: " + text;
}

std::string CheckFilter(const std::string& text) {
  return text.find('=') != std::string::npos ? "" : "not COLUMN=VALUE: " + text;
}

// The table program takes the terminal only when it has found its settings.
int RunTerminal(const rowlark::TerminalArguments& arguments, const rowlark::ProgramArguments& common) {
  if (arguments.files.empty()) throw std::runtime_error("name a FILE to open, or a subcommand (see --help)");
  if (isatty(STDIN_FILENO) == 0 || isatty(STDOUT_FILENO) == 0) {
    throw std::runtime_error("no terminal to open a table on; 'rowlark search FILE TEXT' needs none");
  }
  const rowlark::terminal::Signals signals;
  rowlark::terminal::Screen screen;
  rowlark::terminal::TerminalMessagePump pump(screen, signals);
  rowlark::terminal::TerminalWindowSystem windows(
      screen, pump, {u"frmSearch", u"frmEdit", u"frmSelectRange", rowlark::CellEditor::kName});
  rowlark::KeyHelp help;
  rowlark::Program program(common, pump, windows, help);
  return rowlark::TerminalProgram(program, screen, pump, windows, help).Run(arguments);
}

int Run(int argc, char** argv) {
  static const std::map<std::string, rowlark::xeVT_SEARCH_WORDS> kWords = {
      {"all", rowlark::xcVT_SEARCH_WORDS_ALL},
      {"any", rowlark::xcVT_SEARCH_WORDS_ANY},
      {"cell", rowlark::xcVT_SEARCH_WORDS_CELL}};
  static const std::map<std::string, Print> kPrint = {
      {"csv", Print::Csv}, {"rows", Print::Rows}, {"json", Print::Json}};

  SearchArguments arguments;
  std::string words = "all";
  std::string print = "csv";
  std::string separator;
  std::vector<std::string> filters;

  CLI::App app("Rowlark leaves visible only the rows of a table that match.", "rowlark");
  app.set_version_flag("--version", "rowlark " ROWLARK_VERSION);
  app.require_subcommand(0, 1);
  app.footer(kExamples);

  rowlark::ProgramArguments common;
  rowlark::TerminalArguments table;
  app.add_option("FILE", table.files, "tables to open in the terminal: CSV, TSV, .xlsx, .ods and others")
      ->type_name("");
  const auto add_common = [&common](CLI::App& command) {
    command.add_option("--config", common.config, "configuration file (default: the user's)")
        ->type_name("FILE");
    command
        .add_option("--language", common.language,
                    "language of the messages, like german, or default; remembered with the settings")
        ->type_name("NAME");
  };

  const auto add_separator = [&separator](CLI::App& command) {
    command
        .add_option("--separator", separator,
                    "between cells: one character, or tab (default: found by itself)")
        ->type_name("CHARACTER")
        ->check(CheckSeparator);
  };
  add_separator(app);
  add_common(app);

  CLI::App& search = *app.add_subcommand("search", "Search a table and print the rows that match");
  search.footer(kExamples);
  search
      .add_option(
          "FILE", arguments.file,
          "CSV in UTF-8, UTF-16 with a mark or Windows-1252; .xlsx, .ods, .fods, XML Spreadsheet 2003")
      ->required()
      ->type_name("");
  search.add_option("TEXT", arguments.text, "what to look for")->required()->type_name("");
  search
      .add_option("--words", words,
                  "all: the text inside a cell; any: any of its words; cell: the whole cell")
      ->type_name("MODE")
      ->check(CLI::IsMember(kWords))
      ->capture_default_str();
  search.add_flag("--match-case", arguments.match_case, "tell apart upper and lower case");
  search.add_flag("--go-to", arguments.go_to, "hide nothing, print the address of the cell found");
  search.add_option("--range", arguments.range, "cells to search, like A2:D500 (a filter brings its own)")
      ->type_name("CELLS");
  search.add_option("--columns", arguments.columns, "columns to search, like A,C")->type_name("LETTERS");
  search.add_option("--jump", arguments.jump, "column of the cell to go to, like C")->type_name("LETTER");
  search.add_option("--filter", filters, "filter the table first; row 1 is its header (repeatable)")
      ->type_name("COLUMN=VALUE")
      ->check(CheckFilter)
      ->allow_extra_args(false);
  add_separator(search);
  search.add_option("--sheet", arguments.sheet, "sheet of a workbook, by its name (default: the first one)")
      ->type_name("NAME");
  search.add_option("--print", print, "csv: visible rows; rows: their numbers; json: all about the search")
      ->type_name("FORM")
      ->check(CLI::IsMember(kPrint))
      ->capture_default_str();

  add_common(search);

  CLI::App& profiles = *app.add_subcommand("profiles", "Settings for the tables of a name");
  profiles.require_subcommand(1);
  rowlark::ProfileArguments profile;
  const auto add_profile_command = [&](const char* name, const char* description) {
    CLI::App* const command = profiles.add_subcommand(name, description);
    add_common(*command);
    return command;
  };
  const auto add_workbook = [&profile](CLI::App& command) {
    command.add_option("NAME", profile.workbook, "name of the file, or default for all others")
        ->required()
        ->type_name("");
  };
  CLI::App& list = *add_profile_command("list", "Name, range, columns and jump column of every profile");
  CLI::App& show = *add_profile_command("show", "Print a profile");
  add_workbook(show);
  CLI::App& set = *add_profile_command("set", "Change a profile, or make one");
  add_workbook(set);
  set.add_option("--range", profile.range, "cells to search, like A2:D500, or auto")->type_name("CELLS");
  set.add_option("--columns", profile.columns, "columns to search, like A,C, or all")->type_name("LETTERS");
  set.add_option("--jump", profile.jump, "column of the cell to go to, like C, or auto")->type_name("LETTER");
  set.add_option("--jump-first-row", profile.jump_first_row, "show all rows: go to the first one")
      ->type_name("yes|no");
  set.add_option("--dont-save", profile.dont_save, "hidden rows do not count as changes")
      ->type_name("yes|no");
  CLI::App& remove = *add_profile_command("remove", "Remove a profile");
  add_workbook(remove);

  CLI::App& history = *app.add_subcommand("history", "The texts searched for");
  history.require_subcommand(1);
  CLI::App& list_history = *history.add_subcommand("list", "Print them, the newest first");
  add_common(list_history);
  CLI::App& clear_history = *history.add_subcommand("clear", "Forget them");
  add_common(clear_history);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& help_or_version) {
    return app.exit(help_or_version);
  } catch (const CLI::ParseError& error) {
    throw std::runtime_error(error.what());
  }
  arguments.words = kWords.at(words);
  arguments.print = kPrint.at(print);
  if (!separator.empty()) arguments.separator = separator == "tab" ? '\t' : separator[0];
  table.separator = arguments.separator;
  for (const std::string& filter : filters) {
    const std::size_t at = filter.find('=');
    arguments.filters.push_back({filter.substr(0, at), filter.substr(at + 1)});
  }
  if (common.config.empty() && rowlark::platform::ConfigurationFolder().empty()) {
    std::fputs("rowlark: there is no home folder: settings are not kept\n", stderr);
  }
  if (app.get_subcommands().empty()) return RunTerminal(table, common);
  rowlark::Console console;
  rowlark::Program program(common, console.messages, console.windows, console.help);
  rowlark::Output output(stdout);
  int status = 0;
  if (search.parsed()) {
    status = rowlark::RunSearch(arguments, program, output);
  } else {
    program.OpenWorkbook("settings");  // addresses need a sheet
    if (list.parsed()) status = rowlark::ListProfiles(program, output);
    if (show.parsed()) status = rowlark::ShowProfile(profile.workbook, program, output);
    if (set.parsed()) status = rowlark::SetProfile(profile, program);
    if (remove.parsed()) status = rowlark::RemoveProfile(profile.workbook, program);
    if (list_history.parsed()) status = rowlark::ListHistory(program, output);
    if (clear_history.parsed()) status = rowlark::ClearHistory(program);
    if (!program.Save()) status = kFailed;  // a new language, if nothing else
  }
  output.Flush();
  return status;
}

int Fail(std::string_view reason) {
  std::fprintf(stderr, "rowlark: %.*s\n", static_cast<int>(reason.size()), reason.data());
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const rowlark::host::Error& error) {
    return Fail(rowlark::ToUtf8(error.Description()));
  } catch (const std::exception& error) {
    return Fail(error.what());
  }
}
