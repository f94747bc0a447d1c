#include "util/mclsVTDictionary.h"

#include <gtest/gtest.h>

namespace rowlark {
namespace {

std::u16string Keys(const mclsVTDictionary& dictionary) {
  std::u16string keys;
  for (const std::u16string& key : dictionary) keys.append(key).append(u" ");
  return keys;
}

TEST(Dictionary, OrdersByModes) {
  struct Row {
    SortMode sort;
    CompareMode compare;
    std::u16string_view keys;
  };
  for (const Row& row : {Row{SortMode::Insertion, CompareMode::Binary, u"b A c Ä a1 3 1 2 "},
                         Row{SortMode::Ascending, CompareMode::Text, u"1 2 3 A a1 b c Ä "},
                         Row{SortMode::Descending, CompareMode::Text, u"Ä c b a1 A 3 2 1 "},
                         Row{SortMode::Ascending, CompareMode::Binary, u"1 2 3 A a1 b c Ä "}}) {
    mclsVTDictionary dictionary;
    dictionary.SetSortMode(row.sort);
    dictionary.SetCompareMode(row.compare);
    for (const std::u16string_view key : {u"b", u"A", u"c", u"Ä", u"a1", u"B", u"ä", u"A"}) {
      dictionary.Add(key, 0);
    }
    for (const int32_t key : {3, 1, 2, 3}) dictionary.Add(key, 0);
    EXPECT_EQ(Keys(dictionary), row.keys);
  }
}

TEST(Dictionary, FindsReplacesAndRemoves) {
  mclsVTDictionary dictionary;
  EXPECT_FALSE(dictionary.Exists(u"Key"));
  dictionary.Add(u"Key", u"first");
  dictionary.Add(u"key", u"second");
  dictionary.Add(u"other", 2);
  EXPECT_EQ(dictionary.Count(), 2);
  EXPECT_TRUE(dictionary.Exists(u"KEY"));
  EXPECT_EQ(std::get<std::u16string>(dictionary.Data(u"kEy")), u"first");

  dictionary.SetData(u"KEY", 1.5);
  dictionary.SetData(1, 7);
  EXPECT_EQ(std::get<double>(dictionary.Data(0)), 1.5);
  EXPECT_EQ(std::get<int32_t>(dictionary.Data(u"other")), 7);

  dictionary.SetKey(0, u"OTHER");  // taken
  EXPECT_EQ(dictionary.Key(0), u"Key");
  dictionary.SetKey(0, dictionary.Key(0).substr(1));
  EXPECT_EQ(Keys(dictionary), u"ey other ");
  EXPECT_EQ(std::get<double>(dictionary.Data(u"EY")), 1.5);

  dictionary.Remove(0);
  EXPECT_EQ(Keys(dictionary), u"other ");
  EXPECT_FALSE(dictionary.Exists(u"ey"));
  dictionary.Remove(u"OTHER");
  EXPECT_EQ(dictionary.Count(), 0);
}

TEST(Dictionary, FlagsFollowWhatWasChanged) {
  mclsVTDictionary dictionary;
  dictionary.Add(u"n", 1);
  dictionary.Add(u"o", std::make_shared<int>(1));
  EXPECT_TRUE(dictionary.HasObjects() && !dictionary.Mixed());
  dictionary.Add(u"t", u"text");
  EXPECT_TRUE(dictionary.Mixed() && dictionary.Changed());
  dictionary.Clear();
  EXPECT_FALSE(dictionary.HasObjects() || dictionary.Mixed() || dictionary.Changed());
  for (const int32_t position : {-1, 0, INT32_MAX, INT32_MIN}) {
    dictionary.Remove(position);
    dictionary.SetData(position, 1);
    dictionary.SetKey(position, u"x");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(dictionary.Data(position)));
    EXPECT_EQ(dictionary.Key(position), u"");
  }
  dictionary.Remove(u"x");
  dictionary.SetData(u"x", 1);
  EXPECT_FALSE(dictionary.Changed());
  EXPECT_EQ(dictionary.Count(), 0);
}

}  // namespace
}  // namespace rowlark
