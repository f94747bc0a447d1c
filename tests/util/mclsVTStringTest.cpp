#include "util/mclsVTString.h"

#include <gtest/gtest.h>

#include <random>

#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using S = mclsVTString;
using List = std::vector<std::u16string>;

constexpr CompareMode kText = CompareMode::Text;

TEST(String, ChangeCase) {
  EXPECT_EQ(S::ChangeCase(u"äRGER im haus", 0, u""), u"Ärger im haus");
  EXPECT_EQ(S::ChangeCase(u"anna-MARIA  o'neil-", 0, u" -'"), u"Anna-Maria  O'Neil-");
  EXPECT_EQ(S::ChangeCase(u"Ab", 1, u"b"), u"ab");
  EXPECT_EQ(S::ChangeCase(u"Ab", 2, u""), u"AB");
  EXPECT_EQ(S::ChangeCase(u"aB", 3, u" "), u"aB");
}

TEST(String, PackedLists) {
  const List list = {u"ab", u"", u"000000009\r\nΩ"};
  EXPECT_EQ(S::ArrayJoin(List{u"ab", u""}), u"000000011ab000000009");
  EXPECT_EQ(S::ArrayJoin(List{u"ab", u""}, PackedCount::Text), u"000000002ab000000000");
  EXPECT_EQ(S::ArraySplit(u""), List());
  EXPECT_EQ(S::ArraySplit(u"000000009"), List{u""});
  EXPECT_EQ(S::ArraySplit(u"000000010x?"), List{u"x"});  // a single character left over
  for (const PackedCount count : {PackedCount::Record, PackedCount::Text}) {
    EXPECT_EQ(S::ArraySplit(S::ArrayJoin(list, count), count), list);
    EXPECT_EQ(S::ArraySalvage(S::ArrayJoin(list, count)), list);
  }
}

TEST(String, DamagedPackedListsAreTypeMismatches) {
  for (const std::u16string_view text :
       {u"00", u"00000001", u"000000008", u"000000000", u"999999999", u"000000011a", u"00000001xab",
        u"-00000011ab", u"+00000011ab", u" 00000011ab", u"00000011 ab", u"000000011ab00", u"０00000009"}) {
    try {
      S::ArraySplit(text);
      ADD_FAILURE() << ToUtf8(text);
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Number(), AutomationError::kTypeMismatch);
      EXPECT_EQ(error.Source(), u"VTRLKRuntime.mclsVTString.ArraySplit");
    }
  }
  // Of what is damaged the elements before the damage are saved, and on demand the rest of a cut one.
  EXPECT_EQ(S::ArraySalvage(u"000000001a00000000xb"), List{u"a"});
  EXPECT_EQ(S::ArraySalvage(u"000000001a000000009b"), List{u"a"});
  EXPECT_EQ(S::ArraySalvage(u"000000001a000000009b", true), (List{u"a", u"b"}));
  EXPECT_EQ(S::ArraySalvage(u"0", true), List());
}

TEST(String, InstrRight) {
  EXPECT_EQ(S::InstrRight(u"aaaa", u"aa"), 3);
  EXPECT_EQ(S::InstrRight(u"aaaa", u"aa", 3), 2);
  EXPECT_EQ(S::InstrRight(u"abc", u"c", 0), 0);
  EXPECT_EQ(S::InstrRight(u"abc", u"", 2), 2);
  EXPECT_EQ(S::InstrRight(u"abc", u"", 9), 3);
  EXPECT_EQ(S::InstrRight(u"ÄxÄ", u"ä"), 0);
  EXPECT_EQ(S::InstrRight(u"ÄxÄ", u"ä", -1, kText), 3);
}

// The rule as it is defined, rebuilding the text at every step.
std::u16string ReplaceSlowly(std::u16string text, std::u16string_view find, std::u16string_view replacement,
                             CompareMode mode) {
  const std::size_t step = Find(replacement, find, 0, mode) == find.npos ? 0 : replacement.size();
  for (std::size_t at = 0; (at = Find(text, find, at, mode)) != find.npos; at += step) {
    text.replace(at, find.size(), replacement);
  }
  return text;
}

TEST(String, ReplaceResumesAtThePlaceOfTheReplacement) {
  EXPECT_EQ(S::Replace(u"Ärger a::::b ärger", u"::", u":"), u"Ärger a:b ärger");
  EXPECT_EQ(S::Replace(u"Ärger ärger", u"ÄR", u"", kText), u"ger ger");
  EXPECT_EQ(S::Replace(u"abc", u"", u"x"), u"abc");
  std::mt19937 random(7);
  const auto text = [&random](std::size_t least, std::size_t most) {
    std::u16string letters(least + random() % (most - least + 1), u' ');
    for (char16_t& letter : letters) letter = u"abA"[random() % 3];
    return letters;
  };
  for (int i = 0; i < 100000; ++i) {
    const std::u16string source = text(0, 14), find = text(1, 4), replacement = text(0, 4);
    const CompareMode mode = i % 2 == 0 ? CompareMode::Binary : kText;
    ASSERT_EQ(S::Replace(source, find, replacement, mode), ReplaceSlowly(source, find, replacement, mode))
        << ToUtf8(source) << " " << ToUtf8(find) << " " << ToUtf8(replacement);
  }
}

TEST(String, FilterAndTrimKeepTheCaret) {
  const auto filter = [](std::u16string_view source, std::u16string_view characters, bool keep,
                         int32_t caret) {
    return std::pair(S::Filter(source, characters, keep, kText, caret), caret);
  };
  const auto trim = [](std::u16string_view source, int32_t sides, int32_t caret) {
    return std::pair(S::Trim(source, u".x", sides, kText, caret), caret);
  };
  using Result = std::pair<std::u16string, int32_t>;
  EXPECT_EQ(filter(u"12a3", u"0123456789", true, 4), Result(u"123", 3));
  EXPECT_EQ(filter(u"12a3", u"0123456789", true, 2), Result(u"123", 2));
  EXPECT_EQ(filter(u"a1b2", u"AB", false, 3), Result(u"12", 1));
  EXPECT_EQ(filter(u"abc", u"", true, INT32_MIN), Result(u"", INT32_MIN));
  EXPECT_EQ(trim(u"..ab..", 3, 6), Result(u"ab", 2));
  EXPECT_EQ(trim(u"..ab..", 1, 1), Result(u"ab..", 0));
  EXPECT_EQ(trim(u"..ab..", 2, 5), Result(u"..ab", 4));
  EXPECT_EQ(trim(u"..ab..", 0, 5), Result(u"..ab..", 5));
  EXPECT_EQ(trim(u"xAbX", 3, 3), Result(u"Ab", 2));
  EXPECT_EQ(trim(u"...", 3, 2), Result(u"", 0));
  EXPECT_EQ(trim(u"ab", 3, 9), Result(u"ab", 9));
}

TEST(String, GetLeftAndGetRight) {
  constexpr std::u16string_view kPath = u"C:\\x\\y.lng";
  EXPECT_EQ(S::GetLeft(kPath, u"\\"), u"C:");
  EXPECT_EQ(S::GetLeft(kPath, u"\\", true), u"C:\\x");
  EXPECT_EQ(S::GetLeft(kPath, u"\\", true, true), u"C:\\x\\");
  EXPECT_EQ(S::GetRight(kPath, u"\\"), u"y.lng");
  EXPECT_EQ(S::GetRight(kPath, u"\\", true), u"x\\y.lng");
  EXPECT_EQ(S::GetRight(kPath, u"\\", false, true), u"\\y.lng");
  for (const std::u16string_view separator : {u"", u"X"}) {
    EXPECT_EQ(S::GetLeft(kPath, separator), u"");
    EXPECT_EQ(S::GetRight(kPath, separator, true, true), u"");
    EXPECT_EQ(S::GetLeft(kPath, separator, true, false, true), kPath);
    EXPECT_EQ(S::GetRight(kPath, separator, false, false, true), kPath);
  }
}

}  // namespace
}  // namespace rowlark
