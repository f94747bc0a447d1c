// Workbooks read by our readers, without the process around them.
#include "tables/workbook/WorkbookReader.h"

#include <gtest/gtest.h>

#include <exception>

#include "samples/Archive.h"
#include "samples/Encrypted.h"
#include "tables/format/NumberFormat.h"

namespace rowlark {
namespace {

using samples::Archive;
using samples::OdsContent;
using samples::XlsxParts;

// "[Sheet]1:a|b 3:c"
class Written final : public SheetSink {
 public:
  void Sheet(std::string_view name) override { ((text += '[') += name) += ']'; }
  void Row(int32_t row, std::span<const std::string> cells) override {
    text += ' ' + std::to_string(row) + ':';
    for (std::size_t i = 0; i < cells.size(); ++i) (text += i == 0 ? "" : "|") += cells[i];
  }
  void Cut() override { text += " cut"; }
  std::string text;
};

std::string Read(const std::string& bytes) {
  Written written;
  try {
    ReadWorkbook(bytes, written);
  } catch (const std::exception& error) {
    return std::string("error: ") + error.what();
  }
  return written.text;
}

std::string Xlsx(const std::string& rows, const std::string& strings = {},
                 const std::vector<std::string>& formats = {}) {
  return Read(Archive(XlsxParts({{"S", rows}}, strings, formats)));
}

std::string Ods(const std::string& rows) {
  return Read(
      Archive({{"content.xml", OdsContent("<table:table table:name=\"S\">" + rows + "</table:table>")}}));
}

TEST(WorkbookReader, ReadsOfficeOpenXml) {
  const std::string strings =
      "<si><t>Name</t></si><si><r><t>Ri</t></r><r><rPr/><t>ch &lt;ä&gt;</t></r><rPh><t>x</t></rPh></si>"
      "<si><t>a_x000D_b</t></si>";
  const std::vector<std::string> formats = {"dd.mm.yyyy", "0.0%"};
  const std::pair<std::string, std::string> kCases[] = {
      {"<row r='1'><c r='B1' t='s'><v>1</v></c><c r='A1' t='s'><v>0</v></c><c r='C1' "
       "t='s'><v>2</v></c></row>",
       "[S] 1:Name|Rich <ä>|a\rb"},
      {"<row><c><v>1.5</v></c><c t='n'><v>0.1</v></c></row><row/><row r='4'><c "
       "r='B4'/><c><v>1E3</v></c></row>",
       "[S] 1:1.5|0.1 4:||1000"},
      {"<row><c s='1'><v>45000.75</v></c><c s='2'><v>0.125</v></c><c s='9'><v>7</v></c></row>",
       "[S] 1:15.03.2023|12.5%|7"},
      {"<row><c t='b'><v>1</v></c><c t='e'><v>#N/A</v></c><c "
       "t='inlineStr'><is><t>in</t><rPh><t>x</t></rPh></is></c>"
       "<c t='str'><f>A1</f><v>res</v></c><c><f>1+1</f><v>2</v></c><c t='d'><v>2024-01-02</v></c></row>",
       "[S] 1:TRUE|#N/A|in|res|2|2024-01-02"},
      // a formula without a result, and one whose result is empty
      {"<row><c><f>A1*2</f><v/></c><c t='str'><f>T(A1)</f><v></v></c><c><v> 3 </v></c></row>",
       "[S] 1:=A1*2||3"},
      {"<row r='2'/><row r='1'/>", "error: Rows out of order"},
      {"<row><c t='s'><v>3</v></c></row>", "error: A cell without its text"},
      {"<row r='1048576'><c r='XFD1048576'><v>1</v></c></row>",
       "[S] 1048576:" + std::string(16383, '|') + "1"},
      {"<row r='1048577'><c><v>1</v></c></row>", "error: More than 1,048,576 rows"},
      {"<row><c r='XFE1'><v>1</v></c></row>", "error: More than 16,384 columns"},
      {"<row><c r='1'><v>1</v></c></row>", "error: More than 16,384 columns"},
      {"<row><c></row>", "error: Damaged XML: mismatched tag"}};
  for (const auto& [rows, expected] : kCases) EXPECT_EQ(Xlsx(rows, strings, formats), expected) << rows;
  EXPECT_EQ(Read(Archive(XlsxParts({{"A &amp; B", "<row><c><v>1</v></c></row>"}, {"Zwei", ""}}))),
            "[A & B] 1:1[Zwei]");
  // A cell holds 32,767 characters, and what is cut off is told.
  EXPECT_EQ(Xlsx("<row><c t='str'><v>" + std::string(40'000, 'x') + "</v></c></row>").size(), 10 + 32'767u);
  // What stands in other namespaces, or in another place, is something else.
  auto parts = XlsxParts({{"S", "<row><c s='1'><v>0.5</v></c></row>"}}, {}, {"yyyy"});
  const auto insert = [&](std::string_view part, std::string_view before, const std::string& text) {
    for (auto& [name, content] : parts) {
      if (name == part) content.insert(content.find(before), text);
    }
  };
  insert("xl/workbook.xml", "</workbook>", "<x14:workbookPr xmlns:x14='urn:x' date1904='1'/>");
  insert("xl/workbook.xml", "<sheet ", "<sheet name='Module' r:id=''/>");
  insert("xl/styles.xml", "</styleSheet>", "<dxfs><dxf><numFmt numFmtId='200' formatCode='0'/></dxf></dxfs>");
  EXPECT_EQ(Read(Archive(parts)), "[S] 1:1900");
}

TEST(WorkbookReader, ReadsOpenDocument) {
  const std::pair<std::string, std::string> kCases[] = {
      {"<table:table-row><table:table-cell office:value-type='float' office:value='1.5'><text:p>1,50 "
       "€</text:p>"
       "</table:table-cell><table:table-cell table:number-columns-repeated='2'/><table:covered-table-cell/>"
       "<table:table-cell "
       "table:number-columns-repeated='2'><text:p>r</text:p></table:table-cell></table:table-row>",
       "[S] 1:1,50 €||||r|r"},
      {"<table:table-row "
       "table:number-rows-repeated='2'><table:table-cell><text:p>x</text:p></table:table-cell>"
       "</table:table-row><table:table-row "
       "table:number-rows-repeated='1048570'><table:table-cell/></table:table-row>",
       "[S] 1:x 2:x"},
      {"<table:table-row><table:table-cell><office:annotation><text:p>note</text:p></office:annotation>"
       "<text:p>a<text:s text:c='2'/>b<text:tab/>c<text:line-break/>\n "
       "<text:span>d</text:span></text:p><text:p>e</text:p>"
       "</table:table-cell></table:table-row>",
       "[S] 1:a  b\tc\n d\ne"},
      {"<table:table-row><table:table-cell office:value-type='boolean' office:boolean-value='true'/>"
       "<table:table-cell office:value-type='date' office:date-value='2024-01-02'/></table:table-row>",
       "[S] 1:TRUE|2024-01-02"},
      {"<table:table-row><table:table-cell table:number-columns-repeated='99999999999'><text:p>x</text:p>"
       "</table:table-cell></table:table-row>",
       "error: More than 16,384 columns"},
      {"<table:table-row><table:table-cell><draw:rect><text:p>shape</text:p></draw:rect><text:p>x</text:p>"
       "</table:table-cell><table:table-cell table:formula='of:=A1'/></table:table-row>",
       "[S] 1:x|=A1"},
      {"<table:table-row "
       "table:number-rows-repeated='1048577'><table:table-cell/></table:table-row><table:table-row>"
       "<table:table-cell><text:p>x</text:p></table:table-cell></table:table-row>",
       "error: More than 1,048,576 rows"}};
  for (const auto& [rows, expected] : kCases) EXPECT_EQ(Ods(rows), expected) << rows;
  EXPECT_EQ(Read("\xEF\xBB\xBF" + OdsContent("<table:table table:name='F'/>")), "[F]");
}

TEST(WorkbookReader, ReadsXmlSpreadsheet) {
  const std::string styles =
      "<Styles><Style ss:ID='Default'/><Style ss:ID='d'><NumberFormat ss:Format='Short Date'/></Style>"
      "<Style ss:ID='c' ss:Parent='d'/><Style ss:ID='f'><NumberFormat ss:Format='Fixed'/></Style></Styles>";
  const auto data = [](const std::string& type, const std::string& value) {
    return "<Data ss:Type='" + type + "'>" + value + "</Data>";
  };
  const std::pair<std::string, std::string> kCases[] = {
      {"<Table><Row ss:Index='2'><Cell>" + data("String", "a") + "<Comment>" + data("String", "x") +
           "</Comment></Cell><Cell ss:Index='4'>" + data("Boolean", "1") + "</Cell><Cell>" +
           data("DateTime", "2024-01-02T00:00:00.000") + "</Cell><Cell>" +
           data("DateTime", "2024-01-02T10:20:00.000") + "</Cell></Row></Table>",
       "[S] 2:a|||TRUE|2024-01-02|2024-01-02 10:20:00"},
      // where the table begins, cells that were merged, formats of columns, rows and cells
      {"<Table ss:TopCell='3' ss:LeftCell='2'><Column/><Column ss:Span='1' ss:StyleID='f'/><Row><Cell "
       "ss:MergeAcross='1'>" +
           data("String", "m") + "</Cell><Cell>" + data("Number", " 3 ") +
           "</Cell></Row><Row ss:StyleID='c'><Cell>" + data("Number", "45000") +
           "</Cell><Cell ss:StyleID='f'>" + data("Number", "1.1000000000000001") +
           "</Cell><Cell ss:Formula='=RC[-1]'/></Row></Table>",
       "[S] 3:|m||3.00 4:|2023-03-15|1.10|=RC[-1]"}};
  for (const auto& [table, expected] : kCases) {
    EXPECT_EQ(Read("\xEF\xBB\xBF <?xml version='1.0'?><Workbook "
                   "xmlns='urn:schemas-microsoft-com:office:spreadsheet' "
                   "xmlns:ss='urn:schemas-microsoft-com:office:spreadsheet'>" +
                   styles + "<Worksheet ss:Name='S'>" + table + "</Worksheet></Workbook>"),
              expected);
  }
  EXPECT_EQ(
      Read(
          "<?xml version='1.0' encoding='windows-1251'?><s:Workbook "
          "xmlns:s='urn:schemas-microsoft-com:office:spreadsheet'><s:Worksheet s:Name='\xCB'/></s:Workbook>"),
      "[Л]");
}

TEST(WorkbookReader, RefusesWhatIsDamaged) {
  EXPECT_EQ(Read(Archive({{"a", "b"}})), "error: No workbook is in this archive");
  const std::string encrypted = "error: The workbook is encrypted; save it without a password";
  const auto archive = Archive(XlsxParts({{"S", "<row><c><v>1</v></c></row>"}}));
  EXPECT_EQ(Read(samples::Encrypted(archive)), "[S] 1:1");
  EXPECT_EQ(Read(samples::Encrypted(archive, "another one")), encrypted);
  EXPECT_EQ(Read("\xD0\xCF\x11\xE0"), "error: Damaged compound file");
  auto parts = XlsxParts({{"S", "<row><c><v>1</v></c></row>"}});
  for (auto& [name, content] : parts) {  // every part cut off
    auto whole = content;
    content.resize(content.size() - 5);
    EXPECT_TRUE(Read(Archive(parts)).starts_with("error: ")) << name;
    content = std::move(whole);
  }
  parts.erase(parts.begin());
  EXPECT_EQ(Read(Archive(parts)), "error: The sheet 'S' is missing");
  EXPECT_EQ(
      Read(Archive({{"content.xml", "?"},
                    {"META-INF/manifest.xml",
                     "<m:manifest xmlns:m='urn:oasis:names:tc:opendocument:xmlns:manifest:1.0'><m:file-entry "
                     "m:full-path='content.xml'><m:encryption-data/></m:file-entry></m:manifest>"}})),
      "error: The workbook is encrypted; save it without a password");
}

TEST(NumberFormat, ShowsNumbers) {
  struct Case {
    double value;
    std::string_view code;
    std::string_view shown;
  };
  constexpr Case kCases[] = {// General
                             {0.1 + 0.2, "General", "0.3"},
                             {1234567890123, "GENERAL", "1234567890123"},
                             {-1.5, "", "-1.5"},
                             {-3, "0;-GENERAL", "-3"},
                             {3, "General\" kg\"", "3 kg"},
                             {1e20, "General", "1E+20"},
                             {1e-9, "General", "0.000000001"},
                             {1.234567e-5, "General", "1.234567E-05"},
                             {5, "@", "5"},
                             {5, "\"open", "5"},
                             // 15 digits, halves up
                             {1234.5, "0", "1235"},
                             {1.005, "0.00", "1.01"},
                             {13000000000000, "#,##0.00", "13,000,000,000,000.00"},
                             {999999999999999, "0", "999999999999999"},
                             {0.999, "0.0", "1.0"},
                             {0.05, "0.0", "0.1"},
                             {-0.4, "0", "0"},
                             // places
                             {5, "000", "005"},
                             {1.5, "0.00", "1.50"},
                             {1.5, "0.##", "1.5"},
                             {1, "0.##", "1."},
                             {1.5, "0.0??", "1.5  "},
                             {0.5, "#.0", ".5"},
                             {1234567.891, "#,##0.00", "1,234,567.89"},
                             {12, "0,000", "0,012"},
                             {1234567, "#,##0,", "1,235"},
                             {12, "#,##0", "12"},
                             {0.125, "0.0%", "12.5%"},
                             {123456789, "000-00-0000", "123-45-6789"},
                             {5551234567, "(###) ###-####", "(555) 123-4567"},
                             {1234, "00:00", "12:34"},
                             // exponents
                             {12345, "0.00E+00", "1.23E+04"},
                             {0.00012, "0.0E-0", "1.2E-4"},
                             {9.99, "0.0E+0", "1.0E+1"},
                             {12345, "##0.0E+0", "12.3E+3"},
                             {0.00012, "##0.0E+0", "120.0E-6"},
                             // fractions
                             {0.5, "# ?/?", " 1/2"},
                             {5.25,
                              "# ?"
                              "?/?"
                              "?",
                              "5  1/4 "},
                             {3, "# ?/?", "3    "},
                             {3.14159, "?/?", "22/7"},
                             {0.3, "# ?/8", " 2/8"},
                             {2.99, "0 0/0", "3    "},
                             // texts around
                             {1234.5, "#,##0.00 [$€-407]", "1,234.50 €"},
                             {3, "\"n=\"0\\ kg", "n=3 kg"},
                             {3, "0_)", "3 "},
                             {3, "* 0", "3"},
                             {-3, "$0", "-$3"},
                             // sections
                             {-5, "0;(0)", "(5)"},
                             {-5, "#,##0;[Red]-#,##0", "-5"},
                             {0, "0;-0;\"-\"", "-"},
                             {5, "0;;", "5"},
                             {-5, "0;;", ""},
                             {0, "0;-0;;@", ""},
                             {5, ";;;", ""},
                             {-5, "\"x\"", "-x"},
                             {2, "[>3]0;0.0", "2.0"},
                             {-2, "[<0]\"under \"0;0", "under 2"},
                             {-2, "[<9]0;0.0", "-2"},
                             {5, "[<1]0;[<2]0.0;0.00", "5.00"},
                             {0, "[=0]?", " "},
                             {5, "[=0]?", "5"},
                             // dates
                             {45000, "yyyy-mm-dd", "2023-03-15"},
                             {45000, "d/m/yy", "15/3/23"},
                             {45000, "dddd, d mmmm yyyy", "Wednesday, 15 March 2023"},
                             {45000, "ddd d-mmm-yy mmmmm", "Wed 15-Mar-23 M"},
                             {45000, "[$-407]dddd, d. mmmm", "Mittwoch, 15. März"},
                             {45000, "[$-pl-PL]d mmmm;@", "15 marca"},
                             {45000, "[$-F800]dddd", "Wednesday"},
                             {45000, "bbbb", "2566"},
                             {45000.5, "yyyy-mm-dd\\Thh:mm", "2023-03-15T12:00"},
                             {0, "yyyy-mm-dd", "1900-01-00"},
                             {1, "ddd yyyy-mm-dd", "Sun 1900-01-01"},
                             {59, "yyyy-mm-dd", "1900-02-28"},
                             {60, "ddd yyyy-mm-dd", "Wed 1900-02-29"},
                             {61, "ddd yyyy-mm-dd", "Thu 1900-03-01"},
                             {-1, "yyyy", "-1"},
                             {1e300, "yyyy", "1E+300"},
                             // times
                             {0.43055555555, "hh:mm", "10:20"},
                             {0.999999, "h:mm:ss", "0:00:00"},
                             {1.5, "[h]:mm", "36:00"},
                             {0.125, "[hh]:mm", "03:00"},
                             {0.125, "[mm]", "180"},
                             {-0.0625, "[h]:mm", "-1:30"},
                             {0.75, "h:mm AM/PM", "6:00 PM"},
                             {0.75, "h a/p", "6 p"},
                             {0, "h AM/PM", "12 AM"},
                             {0.00001157407 * 61.25, "mm:ss.00", "01:01.25"}};
  for (const auto& [value, code, shown] : kCases)
    EXPECT_EQ(NumberFormat(code).Number(value), shown) << value << ' ' << code;
  EXPECT_EQ(NumberFormat("yyyy-mm-dd").Number(0, Calendar::Since1904), "1904-01-01");
  EXPECT_EQ(NumberFormat("0;0;0;\"<\"@\">\"").Text("a"), "<a>");
  EXPECT_EQ(NumberFormat(";;;").Text("a"), "");
}

}  // namespace
}  // namespace rowlark
