#include "host/windows/WindowsRegistry.h"

#include <gtest/gtest.h>

#include <string>

namespace rowlark::windows {
namespace {

using host::RegistryType;
using host::RegistryValue;

constexpr auto kUser = host::Hive::CurrentUser;

class RegistryOfWindows : public ::testing::Test {
 protected:
  static constexpr std::u16string_view kKey = u"Software\\Vantrel\\RowlarkTest";
  static constexpr std::u16string_view kBelow = u"Software\\Vantrel\\RowlarkTest\\Ключ";

  void SetUp() override { Clear(); }
  void TearDown() override {
    Clear();
    registry_.DeleteKey(kUser, u"Software\\Vantrel");  // stays where it holds more
  }
  void Clear() {
    registry_.DeleteKey(kUser, kBelow);
    registry_.DeleteKey(kUser, kKey);
  }

  WindowsRegistry registry_;
};

TEST_F(RegistryOfWindows, KeepsTypesAndSizes) {
  std::vector<uint8_t> large(100'000);
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<uint8_t>(i * 7);
  const std::pair<std::u16string_view, RegistryValue> rows[] = {
      {u"", {RegistryType::String, {'a', 0, 0x3D, 0xD8, 0x00, 0xDE, 0, 0}}},
      {u"Größe", {RegistryType::Dword, {0xF9, 0xFF, 0xFF, 0xFF}}},
      {u"short", {RegistryType::Dword, {1, 2}}},
      {u"empty", {RegistryType::String, {}}},
      {u"large", {RegistryType::Binary, large}},
      {u"other", {static_cast<RegistryType>(7), {'a', 0, 0, 0, 0, 0}}}};  // REG_MULTI_SZ
  for (const auto& [name, value] : rows) EXPECT_TRUE(registry_.Write(kUser, kBelow, name, value));
  for (const auto& [name, value] : rows) EXPECT_EQ(registry_.Read(kUser, kBelow, name), value);
  EXPECT_EQ(registry_.Read(kUser, u"SOFTWARE\\vantrel\\rowlarktest\\КЛЮЧ\\", u"GRÖSSE"), std::nullopt);
  EXPECT_EQ(registry_.Read(kUser, u"SOFTWARE\\vantrel\\rowlarktest\\КЛЮЧ\\", u"GRÖßE"), rows[1].second);

  EXPECT_TRUE(registry_.Write(kUser, kBelow, u"large", rows[1].second));
  EXPECT_EQ(registry_.Read(kUser, kBelow, u"large"), rows[1].second);
  EXPECT_TRUE(registry_.DeleteValue(kUser, kBelow, u"SHORT"));
  EXPECT_FALSE(registry_.DeleteValue(kUser, kBelow, u"short"));
  EXPECT_FALSE(registry_.Read(kUser, kBelow, u"short"));
}

TEST_F(RegistryOfWindows, DeletesNoKeyWithKeysBelowIt) {
  EXPECT_TRUE(registry_.CreateKey(kUser, kBelow));
  EXPECT_TRUE(registry_.CreateKey(kUser, kBelow));
  EXPECT_TRUE(registry_.Write(kUser, kKey, u"a", {RegistryType::Dword, {1, 0, 0, 0}}));
  EXPECT_FALSE(registry_.DeleteKey(kUser, kKey));
  EXPECT_TRUE(registry_.Read(kUser, kKey, u"a"));
  EXPECT_TRUE(registry_.DeleteKey(kUser, kBelow) && registry_.DeleteKey(kUser, kKey));
  EXPECT_FALSE(registry_.DeleteKey(kUser, kKey) || registry_.Read(kUser, kKey, u"a") ||
               registry_.DeleteValue(kUser, kKey, u"a"));
}

TEST_F(RegistryOfWindows, TouchesNothingUnderNamesThatCanNotBe) {
  EXPECT_TRUE(registry_.Write(kUser, kKey, u"a", {RegistryType::Dword, {1, 0, 0, 0}}));
  const std::u16string cut_key = std::u16string(kKey) + u'\0' + u'x', cut_name{u'a', u'\0', u'b'};
  for (const std::u16string_view key :
       {std::u16string_view(), std::u16string_view(u"\\"), std::u16string_view(cut_key)}) {
    EXPECT_FALSE(registry_.CreateKey(kUser, key) || registry_.DeleteKey(kUser, key) ||
                 registry_.Write(kUser, key, u"RowlarkTest", {RegistryType::String, {}}) ||
                 registry_.Read(kUser, key, u"a"));
  }
  EXPECT_FALSE(registry_.Read(kUser, kKey, cut_name) || registry_.DeleteValue(kUser, kKey, cut_name) ||
               registry_.Write(kUser, kKey, cut_name, {RegistryType::Dword, {2, 0, 0, 0}}));
  EXPECT_EQ(registry_.Read(kUser, kKey, u"a")->bytes[0], 1);
}

}  // namespace
}  // namespace rowlark::windows
