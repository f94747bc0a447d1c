#include "lang/mclsVTIniFile.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "TempFolder.h"
#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

// Number above the error base, member and description; empty when nothing fails.
std::u16string FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const AutomationError& error) {
    return ToText(error.Number() - static_cast<int32_t>(0x80040000)) +
           error.Source().substr(error.Source().rfind(u'.')) + u": " + error.Description();
  }
  return u"";
}

class IniFile : public testing::Test {
 protected:
  TempFolder folder_;
  std::u16string path_ = ToUtf16((folder_.Path() / "a.ini").string());
  mclsVTFileSystem files_;
  mclsVTIniFile ini_{files_};
};

TEST_F(IniFile, FindsValues) {
  ini_.SetSepComment(u";");
  ini_.SetSourceString(
      u"\r\n first = 1\r\nFirst = 2\n  [ Search ]  \rkey = a = b\n[Search] ; note\n"
      u"Title = Save; close\n; off = 1\n  text line\nEmpty =\nText = first part   _\r\n  second _\n\tthird\n"
      u"[[Other]]\nkey=\tx \nlast = y _");
  const std::array<std::u16string_view, 3> rows[] = {{u"First", u"", u"1"},
                                                     {u"KEY", u"search", u"a = b"},
                                                     {u"Title", u"Search", u"Save"},
                                                     {u"Empty", u"Search", u""},
                                                     {u"Text", u"Search", u"first part second third"},
                                                     {u"key", u"Other", u"x"},
                                                     {u"last", u"Other", u"y _"}};
  for (const auto& [key, section, value] : rows) EXPECT_EQ(ini_.GetData(key, section), value);
  EXPECT_FALSE(ini_.GetData(u"off", u"Search") || ini_.GetData(u"key", u"") || ini_.GetData(u"", u""));
  ini_.SetSepData(u"Save");
  EXPECT_EQ(ini_.GetData(u"title =", u"Search"), u"");
  ini_.SetSepComment(u"");
  EXPECT_EQ(ini_.GetData(u"title =", u"Search"), u"; close");
}

// A header with a longer name is none: the section before it goes on.
TEST_F(IniFile, NamesOfSectionsHaveALimit) {
  const std::u16string longest(255, u's');
  ini_.SetSourceString(u"[" + longest + u"]\r\na = 1\r\n[" + longest + u"s]\r\nb = 2");
  EXPECT_EQ(ini_.GetData(u"a", longest), u"1");
  EXPECT_EQ(ini_.GetData(u"b", longest), u"2");
  EXPECT_EQ(ini_.GetData(u"b", longest + u"s"), std::nullopt);
}

TEST_F(IniFile, FollowsItsSource) {
  EXPECT_EQ(FailureOf([&] { ini_.GetData(u"k", u""); }), u"1204.GetData: Error in loading INI file: ");
  EXPECT_EQ(FailureOf([&] { ini_.SetFullName(path_); }), u"1201.FullName: FullName = '" + path_ + u"'");
  EXPECT_EQ(FailureOf([&] { ini_.SetSourceString(u" \r\n\t"); }),
            u"1201.SourceString: The source string is empty");
  files_.StringWrite(path_, u"\nk = 1\rl = 2\n");
  ini_.SetFullName(path_);
  EXPECT_NE(FailureOf([&] { ini_.SetFullName(path_ + u"x"); }), u"");
  EXPECT_EQ(ini_.GetData(u"k", u""), u"1");
  EXPECT_EQ(ini_.SourceString(), u"k = 1\r\nl = 2");

  files_.StringWrite(path_, u"k = 3");
  files_.FileSetDateTime(path_, {}, {}, std::chrono::local_seconds());
  EXPECT_EQ(ini_.GetData(u"k", u""), u"3");
  files_.FileKill(path_);
  EXPECT_EQ(FailureOf([&] { ini_.GetData(u"k", u""); }),
            u"1204.GetData: Error in loading INI file: " + path_);
  ini_.SetSourceString(u"k = 4");
  EXPECT_EQ(ini_.GetData(u"k", u""), u"4");
}

TEST_F(IniFile, PutsValuesInTheirLines) {
  files_.StringWrite(path_, u"[S]\n k = a = b  ' note\ne =\nc = one _\n two\n[T]\nk = 1\n");
  ini_.SetFullName(path_);
  ini_.PutData(u"K", u" x y ", u"s");
  ini_.PutData(u"e", u"full", u"S");
  ini_.PutData(u"c", u"joined", u"S");
  ini_.PutData(u"k", u"", u"T");
  EXPECT_EQ(files_.StringRead(path_), u"[S]\r\n k =  x y   ' note\r\ne =full\r\nc = joined\r\n[T]\r\nk = ");
  EXPECT_EQ(ini_.GetData(u"k", u"S"), u"x y");

  EXPECT_EQ(FailureOf([&] { ini_.PutData(u"none", u"1", u"S"); }), u"1205.PutData: Key not found: none");
  for (const std::u16string_view value : {u"a'b", u"a\nb", u"1\rm = 2", u"a _"}) {
    EXPECT_THROW(ini_.PutData(u"e", value, u"S"), AutomationError);
  }
  EXPECT_EQ(ini_.GetData(u"e", u"S"), u"full");
  ini_.SetSourceString(u"k = 1");
  files_.FileKill(path_);
  files_.DirsMake(path_);
  EXPECT_EQ(FailureOf([&] { ini_.PutData(u"k", u"2", u""); }),
            u"1206.PutData: Error in write in INI file: " + path_);
  EXPECT_EQ(ini_.GetData(u"k", u""), u"1");
}

}  // namespace
}  // namespace rowlark
