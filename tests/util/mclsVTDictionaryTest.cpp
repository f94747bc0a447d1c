#include "util/mclsVTDictionary.h"

#include <gtest/gtest.h>

#include <tuple>

namespace rowlark {
namespace {

std::u16string Keys(const mclsVTDictionary& dictionary) {
  std::u16string keys;
  for (const std::u16string& key : dictionary) keys.append(key).append(u" ");
  return keys;
}

TEST(Dictionary, OrdersByModes) {
  const std::tuple<SortMode, CompareMode, std::u16string_view> rows[] = {
      {SortMode::Insertion, CompareMode::Binary, u"b A c Ä a1 3 1 2 "},
      {SortMode::Ascending, CompareMode::Text, u"1 2 3 A a1 b c Ä "},
      {SortMode::Descending, CompareMode::Text, u"Ä c b a1 A 3 2 1 "},
      {SortMode::Ascending, CompareMode::Binary, u"1 2 3 A a1 b c Ä "}};
  for (const auto& [sort, compare, keys] : rows) {
    mclsVTDictionary dictionary;
    dictionary.SetSortMode(sort);
    dictionary.SetCompareMode(compare);
    for (const auto* key : {u"b", u"A", u"c", u"Ä", u"a1", u"B", u"ä", u"A"}) dictionary.Add(key, 0);
    for (const int32_t key : {3, 1, 2, 3}) dictionary.Add(key, 0);
    EXPECT_EQ(Keys(dictionary), keys);
  }
}

TEST(Dictionary, FindsReplacesAndRemoves) {
  mclsVTDictionary dictionary;
  dictionary.Add(u"Key", u"first");
  dictionary.Add(u"key", u"second");
  dictionary.Add(u"other", 2);
  EXPECT_EQ(std::get<std::u16string>(dictionary.Data(u"kEy")), u"first");
  dictionary.SetData(u"KEY", 1.5);
  dictionary.SetData(1, 7);
  EXPECT_EQ(dictionary.Data(u"other"), mclsVTDictionary::Value(7));
  dictionary.SetKey(0, u"OTHER");  // taken
  EXPECT_EQ(Keys(dictionary), u"Key other ");
  dictionary.SetKey(0, dictionary.Key(0).substr(1));
  EXPECT_EQ(Keys(dictionary), u"ey other ");
  EXPECT_EQ(dictionary.Data(u"EY"), mclsVTDictionary::Value(1.5));
  dictionary.Remove(0);
  EXPECT_TRUE(!dictionary.Exists(u"ey") && dictionary.Exists(u"OTHER"));
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
  for (const int32_t position : {-1, 0, INT32_MAX, INT32_MIN}) {
    dictionary.Remove(position);
    dictionary.SetData(position, 1);
    dictionary.SetKey(position, u"x");
    EXPECT_TRUE(std::holds_alternative<std::monostate>(dictionary.Data(position)));
  }
  dictionary.Remove(u"x");
  dictionary.SetData(u"x", 1);
  EXPECT_FALSE(dictionary.HasObjects() || dictionary.Mixed() || dictionary.Changed());
}

}  // namespace
}  // namespace rowlark
