#include "settings/mclsVTRegistry.h"

#include <gtest/gtest.h>

#include <fstream>

#include "TempFolder.h"
#include "host/standalone/FileRegistry.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using host::Hive;
using host::RegistryType;

constexpr Hive kUser = Hive::CurrentUser;
constexpr Hive kMachine = Hive::LocalMachine;
constexpr std::u16string_view kKey = u"SOFTWARE\\Vantrel\\Ä";

class RegistryStore : public ::testing::Test {
 protected:
  std::string FileText() const {
    std::ifstream file(folder_.Path() / "user", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  TempFolder folder_;
  // The machine's file cannot be written: its folder is a file.
  standalone::RegistryPaths paths_{ToUtf16((folder_.Path() / "user").string()),
                                   ToUtf16((folder_.Write("file", "") / "registry").string())};
  standalone::FileRegistry file_{paths_};
  mclsVTRegistry registry_{file_};
};

TEST_F(RegistryStore, KeepsTypedValues) {
  const std::u16string text{u'ä', u'\\', u'"', u'\r', u'\n', u'\t', u'\0', 0xDE00, 0xD83D, 0xDE00, u' '};
  const std::vector<uint8_t> bytes{0, 0xFF, 0x1A};
  EXPECT_TRUE(registry_.SetString(kUser, kKey, u"Text", text) && registry_.SetString(kUser, kKey, u"", u""));
  EXPECT_TRUE(registry_.SetLong(kUser, kKey, u"a \"=\" b", -7));
  EXPECT_TRUE(registry_.SetBinary(kUser, kKey, u"Bytes", bytes));
  EXPECT_TRUE(file_.Write(kUser, kKey, u"Odd", {RegistryType::String, {1}}));
  EXPECT_TRUE(file_.Write(kUser, kKey, u"None", {RegistryType::String, {}}));
  // As many bytes as a number has, and never another one.
  const std::vector<uint8_t> sizes[] = {{}, {1, 2, 3}, {1, 2, 3, 4}, {1, 2, 3, 4, 5}};
  for (const auto& sized : sizes) {
    EXPECT_TRUE(file_.Write(kUser, kKey, u"Sized", {RegistryType::Dword, sized}));
    EXPECT_EQ(file_.Read(kUser, kKey, u"Sized")->bytes, sized);
    EXPECT_EQ(registry_.GetLong(kUser, kKey, u"Sized", 7), sized.size() == 4 ? 0x04030201 : 7)
        << sized.size();
  }

  EXPECT_EQ(registry_.GetString(kUser, u"software\\VANTREL\\ä\\", u"TEXT", u"x"), text);
  EXPECT_EQ(registry_.GetString(kUser, kKey, u"", u"x"), u"");
  EXPECT_EQ(registry_.GetLong(kUser, kKey, u"a \"=\" b", 1), -7);
  EXPECT_EQ(registry_.GetBinary(kUser, kKey, u"Bytes"), bytes);
  EXPECT_EQ(file_.Read(kUser, kKey, u"Odd")->bytes, std::vector<uint8_t>{1});
  for (const auto* name : {u"None", u"Bytes"}) EXPECT_EQ(registry_.GetString(kUser, kKey, name, u"x"), u"x");
  for (const auto* name : {u"Text", u"Bytes"}) EXPECT_EQ(registry_.GetLong(kUser, kKey, name, 1), 1);
  EXPECT_FALSE(registry_.SetLong(kMachine, kKey, u"a", 1));
  for (const auto* key : {u"a\nb", u"\\"}) EXPECT_FALSE(registry_.SetLong(kUser, key, u"a", 1));

  EXPECT_TRUE(registry_.CreateSubKey(kUser, u"SOFTWARE"));
  EXPECT_FALSE(registry_.DeleteKey(kUser, u"SOFTWARE", u""));  // has keys below it
  EXPECT_TRUE(registry_.DeleteKey(kUser, kKey, u"text"));
  EXPECT_FALSE(registry_.DeleteKey(kUser, kKey, u"text"));
  EXPECT_TRUE(registry_.DeleteKey(kUser, kKey, u""));
  EXPECT_EQ(FileText(), "\n[SOFTWARE]\n");
}

TEST_F(RegistryStore, SkipsAndKeepsDamagedLines) {
  const std::string damaged =
      "\xEF\xBB\xBF; mine\n\"early\" = dword:1\n[A\\B]\r\n\"n\"=dword:99999999999\n\"n\" =  dword: 2 \r\n"
      "\"s\" = string:a\\qb\n\"u\" = string:\xFF\n\"h\" = hex:0\n\"t\" = string:\\u12\n"
      "[A\\B\n\"x\" = dword:3\n[a\\b]\n\"y\" = dword:";
  folder_.Write("user", damaged + "4");
  EXPECT_EQ(registry_.GetLong(kUser, u"A\\B", u"N", 0), 2);
  EXPECT_EQ(registry_.GetLong(kUser, u"A\\B", u"y", 0), 4);
  for (const auto* name : {u"s", u"u", u"h", u"t", u"x", u"early"}) {
    EXPECT_FALSE(file_.Read(kUser, u"A\\B", name));
  }
  EXPECT_TRUE(registry_.SetLong(kUser, u"a\\b", u"y", 5));
  EXPECT_EQ(FileText(), damaged + "5\n");

  std::filesystem::remove(folder_.Path() / "user");
  std::filesystem::create_directory(folder_.Path() / "user");  // there, but not to be read
  EXPECT_EQ(registry_.GetLong(kUser, u"A\\B", u"y", 1), 1);
  EXPECT_FALSE(registry_.SetLong(kUser, u"A\\B", u"y", 1));
}

}  // namespace
}  // namespace rowlark
