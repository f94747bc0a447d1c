#include "settings/mclsVTRegistry.h"

#include <gtest/gtest.h>

#include "Platform.h"

namespace rowlark {
namespace {

using host::RegistryType;

TEST(Registry, KeepsTypedValues) {
  constexpr auto kUser = host::Hive::CurrentUser;
  constexpr std::u16string_view kKey = u"SOFTWARE\\Vantrel";
  testing::MemoryRegistry store;
  const mclsVTRegistry registry(store);
  const std::u16string text{u'ä', u'\0', 0xDE00, u' '};
  const std::vector<uint8_t> bytes{0, 0xFF, 0x1A};
  EXPECT_TRUE(registry.SetString(kUser, kKey, u"Text", text) && registry.SetString(kUser, kKey, u"", u""));
  EXPECT_TRUE(registry.SetLong(kUser, kKey, u"Long", -7));
  EXPECT_TRUE(registry.SetBinary(kUser, kKey, u"Bytes", bytes));
  EXPECT_TRUE(store.Write(kUser, kKey, u"None", {RegistryType::String, {}}));
  EXPECT_EQ(store.Read(kUser, kKey, u"Text")->bytes.size(), 10u);  // the zero at the end is one of its units
  EXPECT_EQ(registry.GetString(kUser, kKey, u"Text", u"x"), text);
  EXPECT_EQ(registry.GetString(kUser, kKey, u"", u"x"), u"");
  EXPECT_EQ(registry.GetLong(kUser, kKey, u"Long", 1), -7);
  EXPECT_EQ(registry.GetBinary(kUser, kKey, u"Bytes"), bytes);
  for (const auto* name : {u"None", u"Bytes"}) EXPECT_EQ(registry.GetString(kUser, kKey, name, u"x"), u"x");
  for (const auto* name : {u"Text", u"Bytes"}) EXPECT_EQ(registry.GetLong(kUser, kKey, name, 1), 1);
  // As many bytes as a number has, and never another one.
  const std::vector<uint8_t> sizes[] = {{}, {1, 2, 3}, {1, 2, 3, 4}, {1, 2, 3, 4, 5}};
  for (const auto& sized : sizes) {
    EXPECT_TRUE(store.Write(kUser, kKey, u"Sized", {RegistryType::Dword, sized}));
    EXPECT_EQ(registry.GetLong(kUser, kKey, u"Sized", 7), sized.size() == 4 ? 0x04030201 : 7) << sized.size();
  }
  EXPECT_TRUE(registry.DeleteKey(kUser, kKey, u"text"));
  EXPECT_FALSE(registry.DeleteKey(kUser, kKey, u"text"));
}

}  // namespace
}  // namespace rowlark
