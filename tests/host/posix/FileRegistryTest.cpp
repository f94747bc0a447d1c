#include "host/fileregistry/FileRegistry.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TempFolder.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::host {
namespace {

constexpr Hive kUser = Hive::CurrentUser;
constexpr std::u16string_view kKey = u"SOFTWARE\\Vantrel\\Ä";

RegistryValue Number(uint8_t number) { return {RegistryType::Dword, {number, 0, 0, 0}}; }

class FileRegistryTest : public ::testing::Test {
 protected:
  std::u16string Path(const char* name) const { return ToUtf16((folder_.Path() / name).string()); }
  std::string Text(const char* name) const { return ReadBytes(folder_.Path() / name); }

  TempFolder folder_;
  FileRegistry file_{{Path("u/registry.json"), Path("m/registry.json")}};
};

TEST_F(FileRegistryTest, KeepsValuesOfEveryType) {
  const std::pair<std::u16string_view, RegistryValue> rows[] = {
      {u"Text", {RegistryType::String, {0xE4, 0, '\\', 0, '"', 0, '\n', 0, 0, 0, 0x3D, 0xD8, 0, 0xDE, 0, 0}}},
      {u"", {RegistryType::String, {0, 0}}},
      {u"Half", {RegistryType::String, {0, 0xDE, 0, 0}}},
      {u"Open", {RegistryType::String, {'a', 0}}},
      {u"Odd", {RegistryType::String, {0, 0, 0}}},
      {u"None", {RegistryType::String, {}}},
      {u"a \"b\" ß", {RegistryType::Dword, {0xF9, 0xFF, 0xFF, 0xFF}}},
      {u"Short", {RegistryType::Dword, {1, 2, 3}}},
      {u"Bytes", {RegistryType::Binary, {0, 0xFF, 0x1A}}},
      {u"Other", {static_cast<RegistryType>(7), {1}}}};
  for (const auto& [name, value] : rows) EXPECT_TRUE(file_.Write(kUser, kKey, name, value)) << ToUtf8(name);
  for (const auto& [name, value] : rows) EXPECT_EQ(file_.Read(kUser, kKey, name), value) << ToUtf8(name);
  EXPECT_EQ(file_.Read(kUser, u"\\software\\VANTREL\\ä\\", u"TEXT"), rows[0].second);
  EXPECT_TRUE(file_.Write(kUser, kKey, u"TEXT", Number(1)));
  EXPECT_EQ(file_.Read(kUser, kKey, u"Text"), Number(1));
  EXPECT_FALSE(file_.Read(Hive::LocalMachine, kKey, u"Text"));
  const std::u16string half(1, char16_t{0xDE00});
  EXPECT_FALSE(file_.Write(kUser, u"\\", u"a", Number(1)) || file_.Write(kUser, half, u"a", Number(1)));
  EXPECT_FALSE(file_.Write(kUser, kKey, half, Number(1)) ||
               FileRegistry({}).Write(kUser, kKey, u"a", Number(1)));

  EXPECT_TRUE(file_.CreateKey(kUser, u"SOFTWARE"));
  EXPECT_FALSE(file_.DeleteKey(kUser, u"software"));  // has keys below it
  EXPECT_TRUE(file_.DeleteValue(kUser, kKey, u"text"));
  EXPECT_FALSE(file_.DeleteValue(kUser, kKey, u"text"));
  EXPECT_TRUE(file_.DeleteKey(kUser, kKey));
  EXPECT_EQ(Text("u/registry.json"), "{\n  \"SOFTWARE\": {}\n}\n");
  EXPECT_FALSE(file_.DeleteKey(Hive::LocalMachine, kKey) || std::filesystem::exists(folder_.Path() / "m"));
}

TEST_F(FileRegistryTest, LosesNothingOfDamagedFiles) {
  ASSERT_TRUE(file_.CreateKey(kUser, kKey));
  const std::string odd =
      R"({"K": {"a": 4294967296, "b": {"type": 3, "bytes": [256]}, "c": [1], "d": -2147483649, "n": 2}, "k2": 5})";
  folder_.Write("u/registry.json", "\xEF\xBB\xBF" + odd);
  for (const auto* name : {u"a", u"b", u"c", u"d"})
    EXPECT_FALSE(file_.Read(kUser, u"K", name) || file_.DeleteValue(kUser, u"K", name));
  EXPECT_FALSE(file_.Write(kUser, u"K2", u"x", Number(1)));
  EXPECT_EQ(file_.Read(kUser, u"k", u"N"), Number(2));
  EXPECT_TRUE(file_.Write(kUser, u"k", u"N", Number(3)));
  for (const char* kept : {"4294967296", "256", "-2147483649", "\"k2\": 5", "\"n\": 3"}) {
    EXPECT_NE(Text("u/registry.json").find(kept), std::string::npos) << kept;
  }

  for (const std::string damaged : {"", "{\"K\": {\"n\": 2}", "[1]"}) {
    folder_.Write("u/registry.json", damaged);
    EXPECT_FALSE(file_.Read(kUser, u"K", u"n"));
    EXPECT_TRUE(file_.Write(kUser, u"K", u"n", Number(4)));
    EXPECT_EQ(file_.Read(kUser, u"K", u"n"), Number(4));
    EXPECT_EQ(Text("u/registry.json.damaged"), damaged);
  }

  std::filesystem::remove(folder_.Path() / "u/registry.json");
  std::filesystem::create_directory(folder_.Path() / "u/registry.json");  // there, but not to be read
  EXPECT_FALSE(file_.Read(kUser, u"K", u"n") || file_.Write(kUser, u"K", u"n", Number(1)));
}

TEST_F(FileRegistryTest, TakesOverWhatTheOlderFormatHolds) {
  std::filesystem::create_directory(folder_.Path() / "u");
  const std::string old =
      "\xEF\xBB\xBF; mine\n\"early\" = dword:1\n[A\\B]\r\n\"n\"=dword:99999999999\n"
      "\"n\" =  dword: 2 \r\n\"N\" = dword:3\n\"s\" = string:a\\qb\n\"x\n\"=\n\"\n[A\\B\n\"x\" = dword:3\n"
      "[a\\b]\n\"a \\\"=\\\" b\" = string:120;80 \\u00e4\r\n\"m\" = dword:-1";
  folder_.Write("u/registry", old);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(file_.Read(kUser, u"A\\B", u"n"), Number(2));
    EXPECT_EQ(file_.Read(kUser, u"A\\B", u"m")->bytes, std::vector<uint8_t>(4, 0xFF));
    const auto text = file_.Read(kUser, u"A\\B", u"a \"=\" b");
    EXPECT_TRUE(text && text->bytes.size() == 18 && text->bytes[14] == 0xE4);
    for (const auto* name : {u"s", u"x", u"early"}) EXPECT_FALSE(file_.Read(kUser, u"A\\B", name));
    // From the first change on the other file counts alone.
    EXPECT_TRUE(file_.Write(kUser, u"New", u"y", Number(5)));
    EXPECT_EQ(Text("u/registry"), round == 0 ? old : "[A\\B]\n\"n\" = dword:7\n");
    folder_.Write("u/registry", "[A\\B]\n\"n\" = dword:7\n");
  }
}

TEST_F(FileRegistryTest, ProcessesLoseNoValueOfOneAnother) {
  const pid_t child = ::fork();
  const std::u16string prefix = child == 0 ? u"a" : u"b";
  for (uint8_t i = 0; i < 20; ++i) file_.Write(kUser, u"Key", prefix + ToText(i), Number(i));
  if (child == 0) ::_exit(0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  for (uint8_t i = 0; i < 20; ++i) {
    for (const auto* other : {u"a", u"b"}) EXPECT_EQ(file_.Read(kUser, u"Key", other + ToText(i)), Number(i));
  }
}

TEST_F(FileRegistryTest, KeepsTheUsersValuesPrivateAndLetsAllReadTheMachines) {
  const mode_t before = ::umask(022);
  for (const Hive hive : {kUser, Hive::LocalMachine}) EXPECT_TRUE(file_.CreateKey(hive, u"Key"));
  ::umask(before);
  for (const auto& [name, mode] :
       {std::pair("u", 0700u), std::pair("u/registry.json", 0600u), std::pair("u/registry.json.lock", 0600u),
        std::pair("m", 0755u), std::pair("m/registry.json", 0644u)}) {
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(folder_.Path() / name).permissions()), mode)
        << name;
  }
}

TEST(FileRegistryPaths, LieWhereTheEnvironmentSays) {
  ::setenv("HOME", "/home/u", 1);
  ::setenv("XDG_CONFIG_HOME", "relative", 1);
  ::setenv("XDG_CONFIG_DIRS", "relative::/b:/c", 1);
  EXPECT_EQ(DefaultRegistryPaths().user, u"/home/u/.config/vantrel/rowlark/registry.json");
  EXPECT_EQ(DefaultRegistryPaths().machine, u"/b/vantrel/rowlark/registry.json");
  ::setenv("XDG_CONFIG_HOME", "/x", 1);
  ::unsetenv("XDG_CONFIG_DIRS");
  EXPECT_EQ(DefaultRegistryPaths().user, u"/x/vantrel/rowlark/registry.json");
  EXPECT_EQ(DefaultRegistryPaths().machine, u"/etc/xdg/vantrel/rowlark/registry.json");

  // Without a home in the environment it is the account's, and some have none.
  ::unsetenv("XDG_CONFIG_HOME");
  const std::string home = ::getpwuid(::geteuid())->pw_dir;
  for (const char* unfit : {"", "relative", "./x"}) {
    ::setenv("HOME", unfit, 1);
    EXPECT_EQ(ToUtf8(DefaultRegistryPaths().user), home + "/.config/vantrel/rowlark/registry.json");
  }
  const pid_t child = ::fork();
  if (child == 0) ::_exit(::setuid(54321) == 0 && !DefaultRegistryPaths().user.empty() ? 1 : 0);
  int status = 1;
  EXPECT_TRUE(::waitpid(child, &status, 0) == child && status == 0);
}

}  // namespace
}  // namespace rowlark::host
