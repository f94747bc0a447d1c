#include "lang/clsVTRLKLang.h"

#include <gtest/gtest.h>

#include <vector>

#include "TempFolder.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

clsVTRLKLang::Environment NoLanguage(const mclsVTFileSystem& files) {
  return {&files, u"/nowhere", [] { return std::u16string(); }, [] { return std::u16string(u"H:\\"); }};
}

TEST(Lang, PreparesTexts) {
  struct Row {
    std::u16string_view text;
    std::vector<std::u16string> values;
    std::u16string_view result;
  };
  const Row rows[] = {
      {u"one\\ntwo\\Nthree\\T|", {}, u"one\r\ntwo\r\nthree    |"},
      {u"%1 of %2, %1, %3", {u"a", u"b"}, u"a of b, a, %3"},
      {u"Open %1\\n", {u"C:\\new\\t.xls"}, u"Open C:\\new\\t.xls\r\n"},
      {u"%1, %12", {u"x", u"y"}, u"x, x2"},
      {u"%1", {u"&100%1"}, u"&100%1"},
      {u"%1 stays", {}, u"%1 stays"},
  };
  const mclsVTFileSystem files;
  clsVTRLKLang lang(NoLanguage(files));
  for (const Row& row : rows) EXPECT_EQ(lang.GetText(u"Key", row.text, row.values), row.result);
  EXPECT_EQ(lang.GetText(u"Key", u"Error: %1 %1", u"5"), u"Error: 5 5");
  EXPECT_EQ(lang.GetText(u"Key", u"%1%2", {u"a", u"b"}), u"ab");
}

TEST(Lang, FindsTheAccelerator) {
  struct Row {
    std::u16string_view text, result, accelerator;
  };
  const mclsVTFileSystem files;
  clsVTRLKLang lang(NoLanguage(files));
  for (const Row& row : {Row{u"&Search", u"Search", u"S"}, Row{u"Show &All &rows", u"Show All rows", u"A"},
                         Row{u"Close&", u"Close", u""}, Row{u"Close", u"Close", u""}}) {
    std::u16string accelerator = u"before";
    EXPECT_EQ(lang.GetText(u"Key", row.text, {}, &accelerator), row.result);
    EXPECT_EQ(accelerator, row.accelerator);
    EXPECT_EQ(lang.GetText(u"Key", row.text), row.text);
  }
}

TEST(Lang, ReadsFilesAndTellsWhenAnotherOneIsLoaded) {
  const TempFolder folder;
  folder.Write("german.lng", "\xEF\xBB\xBFKey = Ja\nEmpty =\nHELP_FILE_NAME = de.chm\n");
  folder.Write("french.lng", "KEY = Oui ; note\n");
  const mclsVTFileSystem files;
  auto environment = NoLanguage(files);
  environment.LibraryFolder = ToUtf16(folder.Path().string());
  std::u16string setup = u"german";
  environment.SetupLanguage = [&setup] { return setup; };
  clsVTRLKLang lang(environment);
  std::string loaded;
  const auto connection =
      lang.NewLangLoaded().Connect([&](const std::u16string& file) { loaded += ToUtf8(file) + ' '; });
  EXPECT_EQ(lang.GetText(u"Key", u"Yes"), u"Ja");
  EXPECT_EQ(lang.GetText(u"Empty", u"full"), u"full");
  EXPECT_EQ(lang.HelpFile(), u"H:\\de.chm");
  lang.LoadLangFile();
  lang.SetLangFile(u"german.lng");  // unloads and no more
  EXPECT_EQ(loaded, "");
  EXPECT_EQ(lang.GetText(u"Key", u"Yes"), u"Ja");
  EXPECT_EQ(loaded, "german.lng ");
  lang.SetLangFile(u"french.lng");
  EXPECT_EQ(lang.GetText(u"Key", u"Yes"), u"Oui");
  EXPECT_EQ(lang.HelpFile(), u"");
  lang.SetLangFile(u"missing.lng");
  EXPECT_EQ(lang.GetText(u"Key", u"Yes"), u"Yes");
  EXPECT_EQ(loaded, "german.lng french.lng missing.lng ");
  lang.SetLangFile(u"German.LNG");  // whatever the file system thinks of letter case
  EXPECT_EQ(lang.GetText(u"Key", u"Yes"), u"Ja");
  EXPECT_FALSE(lang.IsDefault());
  lang.SetDefault();
  EXPECT_EQ(lang.LangFile(), u"german.lng");
  EXPECT_TRUE(lang.IsDefault());
  setup.clear();
  lang.SetLangFile(u"");
  EXPECT_EQ(lang.LangFile(), u"english.lng");
  EXPECT_TRUE(lang.IsDefault());
  lang.SetPath(lang.Path() + u"\\");
  EXPECT_FALSE(lang.Path().ends_with(u"\\\\"));
  EXPECT_EQ(lang.GetText(u"Key", u"Yes"), u"Yes");
}

}  // namespace
}  // namespace rowlark
