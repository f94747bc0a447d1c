// The command line of rowlark.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Output.h"
#include "SearchCommand.h"
#include "SettingsCommands.h"
#include "TerminalProgram.h"
#include "host/Error.h"
#include "tables/Charsets.h"
#include "util/FileSystemPlatform.h"
#include "util/Text.h"
#include "util/Utf.h"
#include "util/posix/Descriptor.h"

namespace {

using rowlark::Print;
using rowlark::SearchArguments;

constexpr int kFailed = 2;  // grep's status for trouble
constexpr const char* kStandardInput = rowlark::TerminalArguments::kStandardInput;

const std::map<std::string, rowlark::xeVT_SEARCH_WORDS>& Words() {
  static const std::map<std::string, rowlark::xeVT_SEARCH_WORDS> kWords = {
      {"all", rowlark::xcVT_SEARCH_WORDS_ALL},
      {"any", rowlark::xcVT_SEARCH_WORDS_ANY},
      {"cell", rowlark::xcVT_SEARCH_WORDS_CELL}};
  return kWords;
}

const std::map<std::string, Print>& Forms() {
  static const std::map<std::string, Print> kForms = {
      {"csv", Print::Csv}, {"rows", Print::Rows}, {"json", Print::Json}};
  return kForms;
}

constexpr const char* kExamples = R"(Examples:
  rowlark customers.csv orders.xlsx
      opens the tables in the terminal: typing searches, F1 tells the keys
  rowlark search customers.csv münchen
      rows with a cell that holds the text, letter case ignored
  rowlark search customers.csv "киев praha" --words any --columns F,K
      rows with either word in column F or K
  rowlark search customers.csv open --words cell --filter G=Germany --filter "J=>=100"
      of the rows that two filters show, those with a cell that is exactly "open"
  zcat log.csv.gz | rowlark -
      a table from standard input; keys come from the terminal
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

// How many rows are a table's head: a number, or "no" for none.
std::string CheckHeader(const std::string& text) {
  constexpr int32_t kMost = 1000;
  const auto rows = rowlark::ToInteger(rowlark::ToUtf16(text));
  return text == "no" || (rows && *rows >= 0 && *rows <= kMost) ? "" : "not a number of rows: " + text;
}

std::string CheckEncoding(const std::string& name) {
  try {
    const rowlark::NamedEncoding encoding(name);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

std::string CheckFilter(const std::string& text) {
  return text.find('=') != std::string::npos ? "" : "not COLUMN=VALUE: " + text;
}

// Where standard input is no terminal, keys come from the one that the program runs in. Returns what standard
// input was.
rowlark::Descriptor TakeTerminal() {
  rowlark::Descriptor input;
  const bool has_keys = isatty(STDIN_FILENO) != 0;
  const rowlark::Descriptor terminal(has_keys ? -1 : open("/dev/tty", O_RDWR | O_CLOEXEC));
  if (isatty(STDOUT_FILENO) == 0 || (!has_keys && !terminal)) {
    throw std::runtime_error("no terminal to open a table on; 'rowlark search FILE TEXT' needs none");
  }
  if (has_keys) return input;
  input.reset(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  dup2(*terminal, STDIN_FILENO);
  return input;
}

// The table program takes the terminal only when it has found its settings.
int RunTerminal(rowlark::TerminalArguments arguments, const rowlark::ProgramArguments& common) {
  auto& files = arguments.files;
  const bool has_input = isatty(STDIN_FILENO) == 0;
  if (files.empty() && has_input && isatty(STDOUT_FILENO) != 0) files.emplace_back(kStandardInput);
  if (files.empty()) throw std::runtime_error("name a FILE to open, or a subcommand (see --help)");
  const auto inputs = std::ranges::count(files, kStandardInput);
  if (inputs > 1) throw std::runtime_error("standard input (-) can be read once only");
  if (inputs > 0 && !has_input)
    throw std::runtime_error("standard input (-) is the terminal: nothing to read");
  const auto input = TakeTerminal();
  arguments.standard_input = input.get();
  std::vector<std::u16string> farewell;
  int status = 0;
  {
    const rowlark::terminal::Signals signals;
    rowlark::terminal::Screen screen;
    rowlark::terminal::TerminalMessagePump pump(screen, signals, common.trace);
    rowlark::terminal::TerminalWindowSystem windows(
        screen, pump, {u"frmSearch", u"frmEdit", u"frmSelectRange", rowlark::CellEditor::kName});
    rowlark::TerminalHelp help;
    rowlark::Program program(common, pump, windows, help);
    rowlark::TerminalProgram table(program, screen, pump, windows, help);
    status = table.Run(arguments);
    farewell = table.Farewell();
  }
  for (const auto& line : farewell) std::fprintf(stderr, "rowlark: %s\n", rowlark::ToUtf8(line).c_str());
  return status;
}

// The commands and what each of them was given.
class CommandLine {
 public:
  CommandLine() : app_("Rowlark leaves visible only the rows of a table that match.", "rowlark") {
    app_.set_version_flag("--version", "rowlark " ROWLARK_VERSION);
    app_.require_subcommand(0, 1);
    app_.footer(kExamples);
    app_.add_option("FILE", table_.files,
                    "tables to open in the terminal: CSV, TSV, .xlsx, .ods and others; - is standard input")
        ->type_name("");
    AddHeader(app_, "rows that are the table's head: always shown, never searched (default: 1)");
    AddInput(app_);
    app_.add_flag("--follow", table_.follow, "keep to the end of files that grow");
    AddCommon(app_);
    AddSearch();
    AddProfiles();
    AddHistory();
  }

  // The exit status.
  int Run(int argc, char** argv) {
    try {
      app_.parse(argc, argv);
    } catch (const CLI::Success& help_or_version) {
      return app_.exit(help_or_version);
    } catch (const CLI::ParseError& error) {
      throw std::runtime_error(error.what());
    }
    Take();
    const auto trace = rowlark::OpenTrace();
    common_.trace = trace.get();
    if (common_.config.empty() && rowlark::platform::ConfigurationFolder().empty()) {
      std::fputs("rowlark: there is no home folder: settings are not kept\n", stderr);
    }
    if (app_.get_subcommands().empty()) return RunTerminal(table_, common_);
    rowlark::Console console;
    rowlark::Program program(common_, console.messages, console.windows, console.help);
    rowlark::Output output(stdout);
    const int status =
        search_->parsed() ? rowlark::RunSearch(arguments_, program, output) : ChangeSettings(program, output);
    output.Flush();
    return status;
  }

 private:
  using Settings = std::function<int(rowlark::Program& program, rowlark::Output& output)>;

  void AddCommon(CLI::App& command) {
    command.add_option("--config", common_.config, "configuration file (default: the user's)")
        ->type_name("FILE");
    command
        .add_option("--language", common_.language,
                    "language of the messages, like german, or default; remembered with the settings")
        ->type_name("NAME");
  }

  void AddInput(CLI::App& command) {
    command
        .add_option("--separator", separator_,
                    "between cells: one character, or tab (default: found by itself)")
        ->type_name("CHARACTER")
        ->check(CheckSeparator);
    command
        .add_option("--encoding", encoding_,
                    "of the text, by a name that iconv has (default: found by itself)")
        ->type_name("NAME")
        ->check(CheckEncoding);
    command
        .add_option("--memory", memory_,
                    "most that a table may take, in MiB (default: half of the machine's)")
        ->type_name("MIB");
  }

  void AddHeader(CLI::App& command, const char* description) {
    command.add_option("--header", header_, description)->type_name("ROWS|no")->check(CheckHeader);
  }

  void AddSearch() {
    CLI::App& search = *app_.add_subcommand("search", "Search a table and print the rows that match");
    search_ = &search;
    search.footer(kExamples);
    search
        .add_option(
            "FILE", arguments_.file,
            "CSV; .xlsx, .ods, .fods, XML Spreadsheet 2003; any of them compressed; - is standard input")
        ->required()
        ->type_name("");
    search.add_option("TEXT", arguments_.text, "what to look for")->required()->type_name("");
    search
        .add_option("--words", words_,
                    "all: the text inside a cell; any: any of its words; cell: the whole cell")
        ->type_name("MODE")
        ->check(CLI::IsMember(Words()))
        ->capture_default_str();
    search.add_flag("--match-case", arguments_.match_case, "tell apart upper and lower case");
    search.add_flag("--go-to", arguments_.go_to, "hide nothing, print the address of the cell found");
    search.add_option("--range", arguments_.range, "cells to search, like A2:D500 (a filter brings its own)")
        ->type_name("CELLS");
    search
        .add_option("--columns", arguments_.columns,
                    "columns to search, like A,C or by the names in the first row")
        ->type_name("COLUMNS");
    search.add_option("--jump", arguments_.jump, "column of the cell to go to, like C")->type_name("COLUMN");
    AddHeader(search, "rows that are the table's head: printed first, and not searched (default: no)");
    search.add_option("--filter", filters_, "filter the table first; row 1 is its header (repeatable)")
        ->type_name("COLUMN=VALUE")
        ->check(CheckFilter)
        ->allow_extra_args(false);
    AddInput(search);
    search
        .add_option("--sheet", arguments_.sheet, "sheet of a workbook, by its name (default: the first one)")
        ->type_name("NAME");
    search
        .add_option("--print", print_, "csv: visible rows; rows: their numbers; json: all about the search")
        ->type_name("FORM")
        ->check(CLI::IsMember(Forms()))
        ->capture_default_str();
    search.add_flag("--remember", arguments_.remember, "add a text that is found to the history");
    AddCommon(search);
  }

  void AddProfiles() {
    CLI::App& profiles = *app_.add_subcommand("profiles", "Settings for the tables of a name");
    profiles.require_subcommand(1);
    AddSettings(profiles, "list", "Name, range, columns and jump column of every profile",
                rowlark::ListProfiles);
    AddWorkbook(AddSettings(profiles, "show", "Print a profile",
                            [this](rowlark::Program& program, rowlark::Output& output) {
                              return rowlark::ShowProfile(profile_.workbook, program, output);
                            }));
    CLI::App& set = AddSettings(profiles, "set", "Change a profile, or make one",
                                [this](rowlark::Program& program, rowlark::Output&) {
                                  return rowlark::SetProfile(profile_, program);
                                });
    AddWorkbook(set);
    set.add_option("--range", profile_.range, "cells to search, like A2:D500, or auto")->type_name("CELLS");
    set.add_option("--columns", profile_.columns, "columns to search, like A,C, or all")
        ->type_name("LETTERS");
    set.add_option("--jump", profile_.jump, "column of the cell to go to, like C, or auto")
        ->type_name("LETTER");
    set.add_option("--jump-first-row", profile_.jump_first_row, "show all rows: go to the first one")
        ->type_name("yes|no");
    set.add_option("--dont-save", profile_.dont_save, "hidden rows do not count as changes")
        ->type_name("yes|no");
    AddWorkbook(AddSettings(profiles, "remove", "Remove a profile",
                            [this](rowlark::Program& program, rowlark::Output&) {
                              return rowlark::RemoveProfile(profile_.workbook, program);
                            }));
  }

  void AddHistory() {
    CLI::App& history = *app_.add_subcommand("history", "The texts searched for");
    history.require_subcommand(1);
    AddSettings(history, "list", "Print them, the newest first", rowlark::ListHistory);
    AddSettings(history, "clear", "Forget them",
                [](rowlark::Program& program, rowlark::Output&) { return rowlark::ClearHistory(program); });
  }

  // A command that works on the settings, with no table.
  CLI::App& AddSettings(CLI::App& parent, const char* name, const char* description, Settings work) {
    CLI::App& command = *parent.add_subcommand(name, description);
    AddCommon(command);
    settings_.emplace_back(&command, std::move(work));
    return command;
  }

  void AddWorkbook(CLI::App& command) {
    command.add_option("NAME", profile_.workbook, "name of the file, or default for all others")
        ->required()
        ->type_name("");
  }

  // What takes more than the parser to read.
  void Take() {
    arguments_.words = Words().at(words_);
    arguments_.print = Forms().at(print_);
    rowlark::InputOptions& input = table_.input;
    if (!separator_.empty()) input.separator = separator_ == "tab" ? '\t' : separator_[0];
    input.encoding = encoding_;
    constexpr uint64_t kMost = uint64_t{1} << 40;
    if (memory_ > 0) input.memory = rowlark::MemoryBound(std::min(memory_, kMost) << 20);
    arguments_.input = input;
    if (arguments_.file == kStandardInput) arguments_.input.descriptor = STDIN_FILENO;
    if (!header_.empty()) {
      arguments_.head_rows = rowlark::ToInteger(rowlark::ToUtf16(header_)).value_or(0);
      table_.head_rows = arguments_.head_rows;
    }
    for (const std::string& filter : filters_) {
      const std::size_t at = filter.find('=');
      arguments_.filters.push_back({filter.substr(0, at), filter.substr(at + 1)});
    }
  }

  int ChangeSettings(rowlark::Program& program, rowlark::Output& output) const {
    program.OpenWorkbook("settings");  // addresses need a sheet
    int status = 0;
    for (const auto& [command, work] : settings_) {
      if (command->parsed()) status = work(program, output);
    }
    return program.Save() ? status : kFailed;  // a new language, if nothing else
  }

  CLI::App app_;
  CLI::App* search_ = nullptr;
  std::vector<std::pair<CLI::App*, Settings>> settings_;
  rowlark::ProgramArguments common_;
  rowlark::TerminalArguments table_;
  SearchArguments arguments_;
  rowlark::ProfileArguments profile_;
  std::string words_ = "all";
  std::string print_ = "csv";
  std::string separator_;
  uint64_t memory_ = 0;
  std::string header_;
  std::string encoding_;
  std::vector<std::string> filters_;
};

int Fail(std::string_view reason) {
  std::fprintf(stderr, "rowlark: %.*s\n", static_cast<int>(reason.size()), reason.data());
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  // A file that may not grow any further is an error like others.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return CommandLine().Run(argc, argv);
  } catch (const rowlark::host::Error& error) {
    return Fail(rowlark::ToUtf8(error.Description()));
  } catch (const std::exception& error) {
    return Fail(error.what());
  }
}
