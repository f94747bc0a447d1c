#include "csv/CsvFile.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "TempFolder.h"

namespace rowlark {
namespace {

using namespace std::string_literals;
using Rows = std::vector<std::vector<std::string>>;

Rows ReadRows(CsvFile& file) {
  Rows rows;
  file.ForEachRow(
      [&](std::span<const std::string_view> cells) { rows.emplace_back(cells.begin(), cells.end()); },
      [&] { rows.clear(); });
  return rows;
}

std::string OpenError(const std::filesystem::path& path) {
  try {
    CsvFile file = CsvFile::Open(path);
    file.ForEachRow([](auto) {}, [] {});
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

TEST(CsvFile, ReadsCells) {
  const std::pair<std::string, Rows> kCases[] = {
      {"", {}},
      {"a,b\nc,d", {{"a", "b"}, {"c", "d"}}},
      {"a\r\nb\nc\rd\r\n", {{"a"}, {"b"}, {"c"}, {"d"}}},
      {"\n,,\n\na,\n", {{""}, {"", "", ""}, {""}, {"a", ""}}},
      {"0123456789abcdef,01234567\n0123456,x\n", {{"0123456789abcdef", "01234567"}, {"0123456", "x"}}},
      {" a , b \n", {{" a ", " b "}}},
      {"\"a,b\",\"c\r\nd\",\"\"\n\"e\"", {{"a,b", "c\r\nd", ""}, {"e"}}},
      {"\"a\"\"b\",\"\"\"\",\"\"\"c\"\"\"\n\"\"\"d\"", {{"a\"b", "\"", "\"c\""}, {"\"d"}}},
      {"a\"b\",c\n\"a\"b\"c\",\"d\" \n", {{"a\"b\"", "c"}, {"ab\"c\"", "d "}}},  // quotes out of place
      {"a,\"b,\nc", {{"a", "b,\nc"}}},                                           // and without an end
      {"\"a\"\"", {{"a\""}}},
      {"\xEF\xBB\xBF\"ä\",Ж\n", {{"ä", "Ж"}}},
      {"\xFF\xFE\xE4\0,\0\x16\x04\n\0"s, {{"ä", "Ж"}}},
      {"\xFE\xFF\0\xE4\0,\xD8\x3D\xDE\0"s, {{"ä", "😀"}}},
      {"\xFF\xFE\x61\0\x62"s, {{"a\uFFFD"}}},
      {"a\0,\0\x16\x04\n\0"s, {{"a", "Ж"}}},  // without a mark
      {"\0a\0,\x04\x16\0\n"s, {{"a", "Ж"}}},
      {"a\0,b\0\0\n\0\n"s, {{"a\0"s, "b\0\0"s}, {"\0"s}}},
      {"M\xFCnchen,\x80\n", {{"München", "€"}}}};
  const TempFolder folder;
  for (const auto& [bytes, rows] : kCases) {
    CsvFile file = CsvFile::Open(folder.Write("table.csv", bytes), ',');
    EXPECT_EQ(ReadRows(file), rows) << bytes;
    EXPECT_EQ(file.RowCount(), rows.size()) << bytes;
  }
}

TEST(CsvFile, FindsTheSeparator) {
  const std::pair<std::string_view, char> kCases[] = {
      {"", ','},
      {"one\ntwo\n", ','},
      {"a;b\n1;2\n", ';'},
      {"item;price;net\npen;1,50;1,20\nink;12,50;10,00\n", ';'},       // decimal commas
      {"name\tnote\nx\ta, b, c, d, e\ny\tf\nz\tg, h\n", '\t'},         // more commas than tabs
      {"name,note\n\"a;b;c;d\",\"e;f\"\n\"g;h;i;j\",\"k;l\"\n", ','},  // inside quotes they do not count
      {"Report of May, June, July\n\nid;name\n1;a\n2;b, c\n3;d\n4;e\n", ';'},
      {"a|b, c|d\n1|2|3\n", '|'},
      {"a^b\n1^2\n", '^'},
      {"a\x1F"
       "b\x1F"
       "c\n",
       '\x1F'},
      {"note\none\ntwo; three\nfour\n", ','},  // a few records do not make a column
      {"a;b\nc;d;e\nf;g;h;i\n", ';'}};         // nor need all have as many
  for (const auto& [bytes, separator] : kCases) {
    EXPECT_EQ(CsvFile::Parse(std::string(bytes)).Separator(), separator) << bytes;
  }
  CsvFile given = CsvFile::Parse("a,b|c,d\n", '|');
  EXPECT_EQ(ReadRows(given), (Rows{{"a,b", "c,d"}}));
}

// What has come of a source that grows, piece by piece.
struct Growing final : ByteSource {
  explicit Growing(std::optional<std::string>& bytes) : bytes_(bytes) {}
  void Read(std::uintmax_t, std::size_t, std::string& bytes) override {
    if (bytes_) bytes += std::exchange(*bytes_, {});
  }
  std::uintmax_t Size() const override { return 0; }
  bool CanGoBack() const override { return false; }
  bool IsGrowing() const override { return bytes_.has_value(); }

  std::optional<std::string>& bytes_;  // none at the end
};

// Every row is there as soon as its end is, and what the beginning seemed to be is put right.
TEST(CsvFile, ReadsWhatComesSlowly) {
  struct Case {
    std::vector<std::pair<std::string, std::size_t>> pieces;  // and how many rows there are then
    Rows rows;
  };
  const Case kCases[] = {
      {{{"a,", 0}, {"b\n", 1}, {"c", 1}, {",\"d", 1}, {"\n\"\n", 2}, {"e", 2}},
       {{"a", "b"}, {"c", "d\n"}, {"e"}}},
      {{{"a\r", 0}, {"\nb\r", 1}, {"\nc\r\r", 3}}, {{"a"}, {"b"}, {"c"}, {""}}},
      {{{"\xEF\xBB", 0}, {"\xBF\xC3", 0}, {"\xA4\n", 1}, {"\xC3", 1}, {"\xB6\n", 2}}, {{"ä"}, {"ö"}}},
      {{{"\xFF\xFE\x16"s, 0}, {"\x04\n\0\x3D\xD8"s, 1}, {"\x00\xDE\n\0"s, 2}}, {{"Ж"}, {"😀"}}},
      {{{"Title, of it\n", 1}, {"a;b\nc;d\n", 3}}, {{"Title, of it"}, {"a", "b"}, {"c", "d"}}},
      {{{"\xC3\xA4\n", 1}, {"\xE4\n", 2}}, {{"Ã¤"}, {"ä"}}}};
  for (const auto& [pieces, expected] : kCases) {
    std::optional<std::string> bytes = "";
    CsvFile file(TextReader("", std::make_unique<Growing>(bytes), {}), std::nullopt);
    Rows rows;
    const auto read = [&] {
      const auto reading = file.ReadRows(
          [&](std::span<const std::string_view> cells) { rows.emplace_back(cells.begin(), cells.end()); });
      if (reading == CsvFile::Reading::Again) rows.clear();
      return reading;
    };
    for (const auto& [piece, count] : pieces) {
      bytes = piece;
      if (read() == CsvFile::Reading::Again) read();
      EXPECT_EQ(rows.size(), count) << piece;
    }
    bytes.reset();
    while (read() != CsvFile::Reading::Done) {
    }
    EXPECT_EQ(rows, expected) << pieces.front().first;
  }
}

TEST(CsvFile, KeepsRecordsAsWritten) {
  const TempFolder folder;
  CsvFile file =
      CsvFile::Open(folder.Write("table.csv", "\xEF\xBB\xBF\"a\r\n\"\"b\"\"\",c\r\n\r\n d ,\r\n\"e\n"));
  ReadRows(file);
  ReadRows(file);  // again from the start
  ASSERT_EQ(file.RowCount(), 4u);
  EXPECT_EQ(file.LineEnd(), "\r\n");
  EXPECT_EQ(file.RowText(0), "\"a\r\n\"\"b\"\"\",c");
  EXPECT_EQ(file.RowText(2), " d ,");
  EXPECT_EQ(file.RowText(3), "\"e");
}

TEST(CsvFile, RefusesWhatIsNoTable) {
  const TempFolder folder;
  const std::string at = folder.Path().string();
  EXPECT_EQ(OpenError(folder.Path() / "none.csv"), at + "/none.csv: No such file or directory");
  EXPECT_EQ(OpenError(folder.Path()), at + ": Is a directory");
  EXPECT_EQ(OpenError("/proc/self/mem"), "/proc/self/mem: Input/output error");
  EXPECT_EQ(OpenError(folder.Write("binary.csv",
                                   "\x7F"
                                   "ELF\2\1\1\0\0\0\3\0"s)),
            at + "/binary.csv: Not a text file");

  const std::string full(CsvFile::kMaxRows, '\n');
  EXPECT_EQ(OpenError(folder.Write("rows.csv", full)), "no error");
  EXPECT_EQ(OpenError(folder.Write("rows.csv", full + "x")), at + "/rows.csv: More than 1,048,576 rows");
  const std::string wide(CsvFile::kMaxColumns - 1, ',');
  EXPECT_EQ(OpenError(folder.Write("columns.csv", wide)), "no error");
  EXPECT_EQ(OpenError(folder.Write("columns.csv", "\n" + wide + ",")),
            at + "/columns.csv: More than 16,384 columns");
}

}  // namespace
}  // namespace rowlark
