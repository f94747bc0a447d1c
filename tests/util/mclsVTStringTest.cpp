#include "util/mclsVTString.h"

#include <gtest/gtest.h>

#include <random>

#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using S = mclsVTString;
using List = std::vector<std::u16string>;

constexpr CompareMode kBinary = CompareMode::Binary;
constexpr CompareMode kText = CompareMode::Text;

TEST(String, ChangeCase) {
  EXPECT_EQ(S::ChangeCase(u"äRGER im haus", 0, u""), u"Ärger im haus");
  EXPECT_EQ(S::ChangeCase(u"anna-MARIA  o'neil-", 0, u" -'"), u"Anna-Maria  O'Neil-");
  EXPECT_EQ(S::ChangeCase(u"x", 0, u""), u"X");
  EXPECT_EQ(S::ChangeCase(u"Ab", 1, u"b"), u"ab");
  EXPECT_EQ(S::ChangeCase(u"Ab", 2, u""), u"AB");
  EXPECT_EQ(S::ChangeCase(u"aB", 3, u" "), u"aB");
  EXPECT_EQ(S::ChangeCase(u"", 0, u" "), u"");
}

TEST(String, PackedLists) {
  const List list = {u"ab", u"", u"000000009\r\nΩ"};
  EXPECT_EQ(S::ArrayJoin(List{u"ab", u""}), u"000000011ab000000009");
  EXPECT_EQ(S::ArrayJoin(List{u"ab", u""}, PackedCount::Text), u"000000002ab000000000");
  EXPECT_EQ(S::ArrayJoin({}), u"");
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
  EXPECT_EQ(S::InstrRight(u"abc", u""), 3);
  EXPECT_EQ(S::InstrRight(u"abc", u"", 2), 2);
  EXPECT_EQ(S::InstrRight(u"abc", u"", 9), 3);
  EXPECT_EQ(S::InstrRight(u"ÄxÄ", u"ä"), 0);
  EXPECT_EQ(S::InstrRight(u"ÄxÄ", u"ä", -1, kText), 3);
  EXPECT_EQ(S::InstrRight(u"", u"a"), 0);
}

TEST(String, Replace) {
  EXPECT_EQ(S::Replace(u"a::::b", u"::", u":"), u"a:b");
  EXPECT_EQ(S::Replace(u"aa", u"a", u"aa"), u"aaaa");
  EXPECT_EQ(S::Replace(u"aa", u"a", u"xA", kText), u"xAxA");
  EXPECT_EQ(S::Replace(u"Ärger ärger", u"ÄR", u"", kText), u"ger ger");
  EXPECT_EQ(S::Replace(u"abc", u"", u"x"), u"abc");
  EXPECT_EQ(S::Replace(u"", u"a", u"x"), u"");
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
  std::mt19937 random(7);
  const auto text = [&random](std::size_t least, std::size_t most) {
    std::u16string letters(least + random() % (most - least + 1), u' ');
    for (char16_t& letter : letters) letter = u"abA"[random() % 3];
    return letters;
  };
  for (int i = 0; i < 100000; ++i) {
    const std::u16string source = text(0, 14), find = text(1, 4), replacement = text(0, 4);
    const CompareMode mode = random() % 2 == 0 ? kBinary : kText;
    ASSERT_EQ(S::Replace(source, find, replacement, mode), ReplaceSlowly(source, find, replacement, mode))
        << ToUtf8(source) << " " << ToUtf8(find) << " " << ToUtf8(replacement);
  }
}

TEST(String, FilterAndTrimKeepTheCaret) {
  const auto filter = [](std::u16string_view source, std::u16string_view characters, bool keep,
                         CompareMode mode, int32_t caret) {
    const std::u16string kept = S::Filter(source, characters, keep, mode, caret);
    return ToUtf8(kept) + "|" + std::to_string(caret);
  };
  EXPECT_EQ(filter(u"12a3", u"0123456789", true, kBinary, 4), "123|3");
  EXPECT_EQ(filter(u"12a3", u"0123456789", true, kBinary, 2), "123|2");
  EXPECT_EQ(filter(u"a1b2", u"AB", false, kText, 3), "12|1");
  EXPECT_EQ(filter(u"a1b2", u"AB", false, kBinary, 3), "a1b2|3");
  EXPECT_EQ(filter(u"abc", u"", true, kText, INT32_MIN), "|-2147483648");

  const auto trim = [](std::u16string_view source, std::u16string_view characters, int32_t sides,
                       int32_t caret) {
    const std::u16string kept = S::Trim(source, characters, sides, kText, caret);
    return ToUtf8(kept) + "|" + std::to_string(caret);
  };
  EXPECT_EQ(trim(u"..ab..", u".", 3, 6), "ab|2");
  EXPECT_EQ(trim(u"..ab..", u".", 1, 1), "ab..|0");
  EXPECT_EQ(trim(u"..ab..", u".", 2, 5), "..ab|4");
  EXPECT_EQ(trim(u"..ab..", u".", 0, 5), "..ab..|5");
  EXPECT_EQ(trim(u"xAbX", u"X", 3, 3), "Ab|2");
  EXPECT_EQ(trim(u"...", u".", 3, 2), "|0");
  EXPECT_EQ(trim(u"ab", u".", 3, 9), "ab|9");
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
