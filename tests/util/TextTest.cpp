#include "util/Text.h"

#include <gtest/gtest.h>

#include <array>

#include "util/Utf.h"

namespace rowlark {
namespace {

TEST(Text, CaseMappingsCoverEveryPlane) {
  const std::array<std::u16string_view, 4> rows[] = {
      {u"aZ09[ 中", u"az09[ 中", u"az09[ 中", u"AZ09[ 中"},
      {u"Größe ẞ", u"größe ß", u"größe ß", u"GRÖßE ẞ"},
      {u"Σίσυφος", u"σίσυφοσ", u"σίσυφος", u"ΣΊΣΥΦΟΣ"},
      {u"Жук Ѐ", u"жук ѐ", u"жук ѐ", u"ЖУК Ѐ"},
      {u"İıſ", u"İıs", u"iıſ", u"İIS"},
      {u"Ꭰꭰ", u"ᎠᎠ", u"ꭰꭰ", u"ᎠᎠ"},
      {u"𐐀𐐨𞤀", u"𐐨𐐨𞤢", u"𐐨𐐨𞤢", u"𐐀𐐀𞤀"}};
  for (const auto& [text, folded, lower, upper] : rows) {
    EXPECT_EQ(FoldCase(text), folded);
    EXPECT_EQ(ToLower(text), lower);
    EXPECT_EQ(ToUpper(text), upper);
  }
}

TEST(Text, ComparesAndFinds) {
  EXPECT_EQ(Compare(u"a", u"B", CompareMode::Text), -1);
  EXPECT_EQ(Compare(u"a", u"B", CompareMode::Binary), 1);
  EXPECT_EQ(Compare(u"ΜΎΛΟΣ", u"μύλος", CompareMode::Text), 0);
  EXPECT_EQ(Compare(u"ab", u"AB ", CompareMode::Text), -1);
  EXPECT_EQ(Find(u"Straße Ost oST", u"OST", 8, CompareMode::Text), 11u);
  EXPECT_EQ(Find(u"Ost", u"ost", 0, CompareMode::Binary), std::u16string_view::npos);
}

TEST(Text, ReadsIntegers) {
  for (const int32_t number : {0, -12, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(ToInteger(u" " + ToText(number) + u" "), number);
  }
  EXPECT_EQ(ToInteger(u"+07"), 7);
  for (const std::u16string_view text :
       {u"", u"  ", u"+", u"+-1", u"- 1", u"1.5", u"0x1", u"１", u"12a", u"2147483648", u"-2147483649"}) {
    EXPECT_FALSE(ToInteger(text)) << ToUtf8(text);
  }
}

TEST(Utf, EveryCodePointSurvivesUtf8AndUtf16) {
  constexpr char32_t kTogether = 0x400;  // so many that no two of them make a pair
  for (char32_t first = 0; first <= 0x10FFFF; first += kTogether) {
    const bool surrogates = first >= 0xD800 && first <= 0xDFFF;
    std::string utf8;
    std::u16string text;
    for (char32_t c = first; c < first + kTogether; ++c) {
      const std::size_t begin = utf8.size();
      AppendUtf8(utf8, c);
      AppendUtf16(text, c);
      if (surrogates && IsValidUtf8(std::string_view(utf8).substr(begin))) FAIL() << static_cast<uint32_t>(c);
    }
    ASSERT_EQ(ToUtf8(text), utf8);
    ASSERT_EQ(ToUtf16(utf8), text);
    ASSERT_EQ(IsValidUtf8(utf8), !surrogates);
    std::string_view rest = utf8;
    for (char32_t c = first; c < first + kTogether; ++c) {
      if (TakeUtf8(rest) != c) FAIL() << static_cast<uint32_t>(c);
    }
    ASSERT_TRUE(rest.empty());
  }
}

TEST(Utf, MalformedBytesAreReplacedOneByOne) {
  // A stray tail, overlong forms, beyond the last code point, cut short.
  for (const std::string_view bad : {"\x80", "\xC0\xAF", "\xE0\x80\x80", "\xF0\x8F\xBF\xBF",
                                     "\xF4\x90\x80\x80", "\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98"}) {
    EXPECT_EQ(ToUtf16(bad), std::u16string(bad.size(), u'\xFFFD'));
    EXPECT_FALSE(IsValidUtf8("eight or more bytes before" + std::string(bad)));
  }
  EXPECT_EQ(ToUtf16("a\xE2\x82z"), u"a\xFFFD\xFFFDz");
  EXPECT_TRUE(IsValidUtf8("\xEF\xBF\xBD"));
  EXPECT_EQ(FromWindows1252("\x80 \x9F\xE4\x81"), u"€ Ÿä\x81");
}

}  // namespace
}  // namespace rowlark
