// The program as its users meet it: the binary itself, its output, messages and exit status.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "TempFolder.h"
#include "samples/Archive.h"

namespace rowlark {
namespace {

using namespace std::string_literals;

struct Outcome {
  int status = -1;
  std::string output;
  std::string error;
};

class CommandLine : public ::testing::Test {
 protected:
  CommandLine() {
    folder_.Write(
        "orders.csv",
        "id,city,status\n1,Köln,open\n2,Αθήνα,paid\n3,KÖLN,partly paid\n4,Киев,paid\n5,Praha,open\n");
    folder_.Write("quoted.csv", "\uFEFFa;\"x\r\ny \"\"1\"\"\"\r\nb;c\r\nlast;y");
    folder_.Write("pipes.txt", "a|b,c\n");
    folder_.Write("book.xlsx",
                  samples::Archive(samples::XlsxParts(
                      {{"One", "<row><c><v>1</v></c></row>"}, {"Zwei", "<row><c><v>2.5</v></c></row>"}})));
    folder_.Write("empty.csv", "");
    folder_.Write("utf32.csv", "\0\0\0001\0\0\0,\0\0\0K\0\0\0\xF6\0\0\0l\0\0\0n"s);
  }

  // Runs the program in the folder of the files, on demand by another one; `arguments` are a shell's.
  Outcome Run(const std::string& arguments, const std::string& runner = "") const {
    const std::string folder = folder_.Path().string();
    const std::string command = "cd '" + folder + "' && { XDG_CONFIG_HOME='" + folder + "/config' " + runner +
                                "'" ROWLARK_PROGRAM "' " + arguments + "; } >out 2>error </dev/null";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadBytes(folder_.Path() / "out"),
            ReadBytes(folder_.Path() / "error")};
  }

  const TempFolder folder_;
};

TEST_F(CommandLine, FindsAndPrints) {
  const std::pair<std::string, std::string> kCases[] = {
      {"orders.csv köln", "1,Köln,open\n3,KÖLN,partly paid\n"},
      {"orders.csv köln --match-case", ""},
      {"orders.csv KÖLN --match-case", "3,KÖLN,partly paid\n"},
      {"orders.csv ΑΘΉΝΑ --print rows", "3\n"},
      {"orders.csv PAID --words cell --print rows", "3\n5\n"},
      {"orders.csv 'киев praha' --words any --print rows", "5\n6\n"},
      {"orders.csv 'k?ln' --print rows", "2\n4\n"},
      {"orders.csv 'киев praha'", ""},
      {"orders.csv paid --columns A,B", ""},
      {"orders.csv paid --range A4:C6 --print rows", "1\n2\n3\n4\n5\n"},  // rows above the range stay
      {"orders.csv open --filter B=köln --print rows", "1\n2\n"},         // the filter's header stays
      {"orders.csv paid --filter 'A=>2' --filter C=paid --print rows", "1\n5\n"},
      {"orders.csv paid --filter B=Praha", ""},
      {"orders.csv praha --go-to", "A6\n"},
      {"orders.csv praha --go-to --jump C", "C6\n"},
      {"orders.csv praha --go-to --jump F", "F6\n"},
      {"orders.csv praha --go-to --jump Status", "C6\n"},
      {"orders.csv paid --columns city,STATUS --filter city=Αθήνα", "id,city,status\n2,Αθήνα,paid\n"},
      {"orders.csv city --header 1", ""},
      {"orders.csv köln --header 1", "id,city,status\n1,Köln,open\n3,KÖLN,partly paid\n"},
      {"orders.csv köln --header 2 --print rows", "4\n"},
      {"quoted.csv Y", "a;\"x\r\ny \"\"1\"\"\"\r\nlast;y\r\n"},
      {"book.xlsx 2 --sheet zwei", "2.5\n"},
      {"book.xlsx 2", ""},
      {"pipes.txt b,c --words cell --separator '|'", "a|b,c\n"},
      {"pipes.txt -- -x", ""},
      {"- c --words cell <pipes.txt", "a|b,c\n"},
      {"- 2 --sheet zwei <book.xlsx", "2.5\n"},
      {"- x", ""},
      {"utf32.csv köln --encoding utf-32be", "1,Köln\n"},
      {"empty.csv x", ""}};
  for (const auto& [arguments, output] : kCases) {
    const Outcome outcome = Run("search " + arguments);
    EXPECT_EQ(outcome.output, output) << arguments;
    EXPECT_EQ(outcome.error, output.empty() ? "rowlark: Text not found\n" : "") << arguments;
    EXPECT_EQ(outcome.status, output.empty() ? 1 : 0) << arguments;
  }
}

TEST_F(CommandLine, PrintsJson) {
  const std::pair<std::string, std::string> kCases[] = {
      {"orders.csv köln --jump B",
       R"({"found":true,"error":"","activeCell":"B2","visibleRows":[[2,2],[4,4]],"searchRange":"A1:C6"})"},
      {"orders.csv paid --filter 'B=<>Praha' --range A1:B2",
       R"({"found":true,"error":"","activeCell":"A3","visibleRows":[[1,1],[3,5]],"searchRange":"A2:C6"})"},
      {"orders.csv paid --go-to --range A4:B5 --columns C",
       R"({"found":false,"error":"Text not found","activeCell":"A1","visibleRows":[[1,6]],"searchRange":"A4:B5"})"}};
  for (const auto& [arguments, expected] : kCases) {
    const Outcome outcome = Run("search --print json " + arguments);
    const auto time = outcome.output.find(",\"milliseconds\":");
    ASSERT_NE(time, std::string::npos) << outcome.output << outcome.error;
    EXPECT_EQ(outcome.output.substr(0, time) + '}', expected) << arguments;
    EXPECT_EQ(outcome.output.substr(outcome.output.find_first_not_of("0123456789.e-", time + 16)), "}\n");
    EXPECT_EQ(outcome.status, expected.find("true") == expected.npos ? 1 : 0) << arguments;
  }
}

TEST_F(CommandLine, RefusesInOneLineAndHelps) {
  folder_.Write("large.csv", std::string(1 << 20, '\n'));
  folder_.Write("binary.csv", "\1\2\3\0\4"s);
  const std::pair<std::string, std::string_view> kCases[] = {
      // with a part of the message
      {"", "a subcommand"},
      {"search orders.csv", "TEXT is required"},
      {"search orders.csv x --fast", "--fast"},
      {"search orders.csv x --words some", "--words: some not in {all,any,cell}"},
      {"search orders.csv x --print xml", "--print: xml not in {csv,json,rows}"},
      {"search orders.csv x --separator ab", "not a separator: ab"},
      {"search orders.csv x --encoding klingon", "--encoding: no encoding 'klingon'"},
      {"search orders.csv x --filter B", "not COLUMN=VALUE: B"},
      {"search orders.csv x --filter D=1", "--filter: no column 'D' in the table (A to C)"},
      {"search orders.csv x --filter B=1 --filter b=2", "--filter: column b is filtered twice"},
      {"search orders.csv x --columns A,XFE", "--columns: no column 'XFE' in the table"},
      {"search orders.csv x --columns A,,C", "--columns: no column '' in the table (A to C)"},
      {"search large.csv x --memory 1",
       "large.csv: Too large: the table would take more than 1 MiB of memory"},
      {"search orders.csv x --header -1", "not a number of rows: -1"},
      {"search orders.csv x --jump 2", "--jump: no column '2' in the table"},
      {"search orders.csv x --range A0:B2", "--range: not a block of cells: A0:B2"},
      {"search orders.csv x --range A1:B2,C3", "--range: not a block of cells: A1:B2,C3"},
      {"search book.xlsx x --sheet Drei", "--sheet: no sheet 'Drei' in the file (One, Zwei)"},
      {"search none.csv x", "none.csv: No such file or directory"},
      {"search binary.csv x", "binary.csv: Not a text file"},
      {"search orders.csv köln >/dev/full", "standard output: No space left on device"}};
  for (const auto& [arguments, error] : kCases) {
    const Outcome outcome = Run(arguments);
    EXPECT_TRUE(outcome.status == 2 && outcome.output.empty()) << arguments;
    EXPECT_TRUE(outcome.error.starts_with("rowlark: ")) << outcome.error;
    EXPECT_NE(outcome.error.find(error), std::string::npos) << outcome.error;
    EXPECT_EQ(outcome.error.find('\n'), outcome.error.size() - 1) << outcome.error;
  }
  for (const char* help : {"--help", "search --help"}) {
    const Outcome outcome = Run(help);
    EXPECT_TRUE(outcome.status == 0 && outcome.output.find("Examples:") != std::string::npos)
        << outcome.output;
  }
}

TEST_F(CommandLine, RemembersSettingsAndHistory) {
  EXPECT_EQ(Run("profiles list").output, "default\tauto\tall\tauto\n");
  EXPECT_EQ(Run("search orders.csv paid").status, 0);
  EXPECT_EQ(Run("search orders.csv xyz --remember").status, 1);
  EXPECT_EQ(Run("history list").output, "");
  EXPECT_FALSE(std::filesystem::exists(folder_.Path() / "config"));  // nothing to keep so far
  EXPECT_EQ(Run("profiles set orders.csv --range A2:C500 --columns b --jump C --dont-save yes").status, 0);
  EXPECT_EQ(Run("profiles list").output, "default\tauto\tall\tauto\norders.csv\tA2:C500\tB\tC\n");
  EXPECT_EQ(Run("search orders.csv 5").status, 1);  // not in column B
  EXPECT_EQ(Run("search orders.csv praha --go-to --remember").output, "C6\n");
  EXPECT_EQ(Run("search orders.csv 5 --columns A --go-to --jump A --remember").output, "A6\n");  // for once
  EXPECT_EQ(Run("history list").output, "5\npraha\n");
  EXPECT_EQ(Run("profiles set https://example.org/data/ORDERS.csv --columns all").status,
            0);  // changes the one there is
  EXPECT_EQ(Run("profiles set ../orders.csv --jump b").status, 0);
  EXPECT_EQ(Run("profiles list").output, "default\tauto\tall\tauto\norders.csv\tA2:C500\tall\tB\n");
  EXPECT_EQ(Run("search orders.csv xyz --language German").error, "rowlark: Text nicht gefunden\n");
  EXPECT_EQ(Run("search orders.csv xyz").error, "rowlark: Text nicht gefunden\n");
  EXPECT_EQ(Run("history clear --language default").status, 0);
  EXPECT_EQ(Run("search orders.csv xyz --config other.cfg").error, "rowlark: Text not found\n");
  EXPECT_EQ(Run("search orders.csv praha --go-to --remember --config other.cfg").output, "A6\n");
  EXPECT_EQ(Run("history list").output, "");
  EXPECT_EQ(Run("history list --config other.cfg").output, "praha\n");
  EXPECT_EQ(Run("profiles remove ORDERS.csv").status, 0);
  EXPECT_EQ(Run("profiles remove orders.csv").status, 1);
  for (const auto* wrong :
       {"profiles remove default", "profiles set x --range 1", "profiles set x --columns A,,B",
        "profiles set x --jump 7", "profiles", "history list --language klingon",
        "search orders.csv --config / 5 --go-to --language polish x"}) {
    EXPECT_EQ(Run(wrong).status, 2) << wrong;
  }
  EXPECT_EQ(Run("profiles list").output, "default\tauto\tall\tauto\n");
}

TEST_F(CommandLine, BearsWhateverTheConfigurationHolds) {
  const auto pack = [](const std::vector<std::string>& list) {
    std::string text;
    for (const auto& one : list) {
      const auto size = std::to_string(one.size());
      text += std::string(9 - size.size(), '0') + size + one;
    }
    return text;
  };
  const auto profile = [&](const char* name, const char* end_row, const char* column) {
    return pack({name, name, "2", "2", "20000", end_row, "A", column, "1", ""});
  };
  folder_.Write("odd.cfg", pack({pack({profile("", "9999999", "99999"), profile("x.csv", "0", "-3")}), ""}));
  EXPECT_EQ(Run("profiles list --config odd.cfg").output,
            "default\tB2:XFD1048576\tA\tXFD\nx.csv\tpartly auto\tA\tauto\n");
  EXPECT_EQ(Run("profiles set x.csv --jump B --config odd.cfg").status, 0);
  EXPECT_TRUE(std::filesystem::exists(folder_.Path() / "odd.cfg.damaged"));  // the options were missing

  std::filesystem::create_directory(folder_.Path() / "unreadable.cfg");
  const auto outcome = Run("profiles set x.csv --jump B --config unreadable.cfg");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.error.find("unreadable.cfg"), std::string::npos) << outcome.error;
}

TEST_F(CommandLine, TakesNamesAsTheyAre) {
  for (const std::string name : {"b\\s", "n\xFF"}) {
    const std::string there = "/" + folder_.Path().string() + "/" + name;
    EXPECT_EQ(Run("search orders.csv paid --remember --config '" + name + ".cfg'").status, 0);
    EXPECT_EQ(Run("search orders.csv open --remember --config '" + there + ".cfg'").status, 0);
    EXPECT_EQ(Run("history list --config '" + name + ".cfg'").output, "open\npaid\n");
    EXPECT_TRUE(std::filesystem::is_regular_file(there + ".cfg"));
    // A profile belongs to the file of exactly that name.
    std::filesystem::copy(folder_.Path() / "orders.csv", there + ".csv");
    EXPECT_EQ(Run("profiles set '" + name + ".csv' --columns C").status, 0);
    EXPECT_EQ(Run("profiles list").output, "default\tauto\tall\tauto\n" + name + ".csv\tauto\tC\tauto\n");
    EXPECT_EQ(Run("search '" + there + ".csv' 5").status, 1);
    EXPECT_EQ(Run("profiles remove '" + name + ".csv'").status, 0);
  }
}

TEST_F(CommandLine, KeepsNoSettingsWithoutAHome) {
  // A user whom no account names.
  const std::string nobody = "env -u XDG_CONFIG_HOME HOME=home setpriv --reuid=54321 --clear-groups ";
  if (Run("--version", nobody).status != 0) GTEST_SKIP() << "needs another user who may run the program";
  std::filesystem::permissions(folder_.Path(), std::filesystem::perms(0777));
  const std::string said = "rowlark: there is no home folder: settings are not kept\n";
  EXPECT_EQ(Run("search orders.csv paid", nobody).error, said);
  EXPECT_EQ(Run("profiles list", nobody).status, 0);
  const auto refused = Run("profiles set orders.csv --columns A", nobody);
  EXPECT_EQ(refused.error, said + "rowlark: the settings were not saved\n");
  EXPECT_EQ(refused.status, 2);
  for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
    EXPECT_FALSE(entry.is_directory()) << entry.path();
    EXPECT_NE(entry.path().extension(), ".cfg") << entry.path();
  }
  EXPECT_EQ(Run("search orders.csv paid --config own.cfg", nobody).error, "");
}

}  // namespace
}  // namespace rowlark
