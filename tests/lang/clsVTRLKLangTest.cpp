#include "lang/clsVTRLKLang.h"

#include <gtest/gtest.h>

#include <vector>

namespace rowlark {
namespace {

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
  clsVTRLKLang lang;
  for (const Row& row : rows) EXPECT_EQ(lang.GetText(u"Key", row.text, row.values), row.result);
  EXPECT_EQ(lang.GetText(u"Key", u"Error: %1 %1", u"5"), u"Error: 5 5");
  EXPECT_EQ(lang.GetText(u"Key", u"%1%2", {u"a", u"b"}), u"ab");
}

TEST(Lang, FindsTheAccelerator) {
  struct Row {
    std::u16string_view text, result, accelerator;
  };
  clsVTRLKLang lang;
  for (const Row& row : {Row{u"&Search", u"Search", u"S"}, Row{u"Show &All &rows", u"Show All rows", u"A"},
                         Row{u"Close&", u"Close", u""}, Row{u"Close", u"Close", u""}}) {
    std::u16string accelerator = u"before";
    EXPECT_EQ(lang.GetText(u"Key", row.text, {}, &accelerator), row.result);
    EXPECT_EQ(accelerator, row.accelerator);
    EXPECT_EQ(lang.GetText(u"Key", row.text), row.text);
  }
}

}  // namespace
}  // namespace rowlark
