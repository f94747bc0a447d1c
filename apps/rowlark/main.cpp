// The command line of rowlark.
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Output.h"
#include "SearchCommand.h"
#include "host/Error.h"
#include "util/Utf.h"

namespace {

using rowlark::Print;
using rowlark::SearchArguments;

constexpr int kFailed = 2;  // grep's status for trouble

constexpr const char* kExamples = R"(Examples:
  rowlark search customers.csv münchen
      rows with a cell that holds the text, letter case ignored
  rowlark search customers.csv "киев praha" --words any --columns F,K
      rows with either word in column F or K
  rowlark search customers.csv open --words cell --filter G=Germany --filter "J=>=100"
      of the rows that two filters show, those with a cell that is exactly "open"
  rowlark search customers.csv smith --go-to --jump H
      the address of the cell in column H of the first match

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
  app.require_subcommand(1);
  app.footer(kExamples);

  CLI::App& search = *app.add_subcommand("search", "Search a CSV file and print the rows that match");
  search.footer(kExamples);
  search.add_option("FILE", arguments.file, "CSV file: UTF-8, UTF-16 with a mark, or Windows-1252")
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
  search
      .add_option("--separator", separator, "between cells: one character, or tab (default: found by itself)")
      ->type_name("CHARACTER")
      ->check(CheckSeparator);
  search.add_option("--print", print, "csv: visible rows; rows: their numbers; json: all about the search")
      ->type_name("FORM")
      ->check(CLI::IsMember(kPrint))
      ->capture_default_str();

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
  for (const std::string& filter : filters) {
    const std::size_t at = filter.find('=');
    arguments.filters.push_back({filter.substr(0, at), filter.substr(at + 1)});
  }
  rowlark::Output output(stdout);
  const int status = rowlark::RunSearch(arguments, output);
  output.Flush();
  return status;
}

int Fail(std::string_view reason) {
  std::fprintf(stderr, "rowlark: %.*s\n", static_cast<int>(reason.size()), reason.data());
  return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is a write error like any other
  try {
    return Run(argc, argv);
  } catch (const rowlark::host::Error& error) {
    return Fail(rowlark::ToUtf8(error.Description()));
  } catch (const std::exception& error) {
    return Fail(error.what());
  }
}
