// Settings of processes that run at the same time, and where their environment puts them.
#include <gtest/gtest.h>

#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TempFolder.h"
#include "host/standalone/FileRegistry.h"
#include "settings/Settings.h"
#include "settings/mclsVTRegistry.h"
#include "util/Text.h"

namespace rowlark {
namespace {

using host::Hive;
using testing::Settings;

TEST(FileRegistry, ProcessesLoseNoValueOfOneAnother) {
  const TempFolder folder;
  standalone::FileRegistry file({ToUtf16((folder.Path() / "user").string()), u""});
  const mclsVTRegistry registry(file);
  const pid_t child = ::fork();
  const std::u16string prefix = child == 0 ? u"a" : u"b";
  for (int32_t i = 0; i < 20; ++i) registry.SetLong(Hive::CurrentUser, u"Key", prefix + ToText(i), i);
  if (child == 0) ::_exit(0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  for (int32_t i = 0; i < 40; ++i) {
    EXPECT_EQ(registry.GetLong(Hive::CurrentUser, u"Key", (i < 20 ? u"a" : u"b") + ToText(i % 20), -1),
              i % 20);
  }
}

TEST(FileRegistry, LiesWhereTheEnvironmentSays) {
  ::setenv("HOME", "/home/u", 1);
  ::setenv("XDG_CONFIG_HOME", "relative", 1);
  ::setenv("XDG_CONFIG_DIRS", "relative::/b:/c", 1);
  EXPECT_EQ(standalone::DefaultRegistryPaths().user, u"/home/u/.config/vantrel/rowlark/registry");
  EXPECT_EQ(standalone::DefaultRegistryPaths().machine, u"/b/vantrel/rowlark/registry");
  ::setenv("XDG_CONFIG_HOME", "/x", 1);
  ::unsetenv("XDG_CONFIG_DIRS");
  EXPECT_EQ(standalone::DefaultRegistryPaths().user, u"/x/vantrel/rowlark/registry");
  EXPECT_EQ(standalone::DefaultRegistryPaths().machine, u"/etc/xdg/vantrel/rowlark/registry");

  // Without a home in the environment it is the account's, and some have none.
  ::unsetenv("XDG_CONFIG_HOME");
  const std::string home = ::getpwuid(::geteuid())->pw_dir;
  for (const char* unfit : {"", "relative", "./x"}) {
    ::setenv("HOME", unfit, 1);
    EXPECT_EQ(ToUtf8(standalone::DefaultRegistryPaths().user), home + "/.config/vantrel/rowlark/registry");
  }
  const pid_t child = ::fork();
  if (child == 0) ::_exit(::setuid(54321) == 0 && !standalone::DefaultRegistryPaths().user.empty() ? 1 : 0);
  int status = 1;
  EXPECT_TRUE(::waitpid(child, &status, 0) == child && status == 0);
}

TEST(FileRegistry, KeepsTheUsersValuesPrivateAndLetsAllReadTheMachines) {
  const TempFolder folder;
  const auto path = [&folder](const char* name) { return ToUtf16((folder.Path() / name).string()); };
  standalone::FileRegistry file({path("u/registry"), path("m/registry")});
  const mode_t before = ::umask(022);
  for (const Hive hive : {Hive::CurrentUser, Hive::LocalMachine}) EXPECT_TRUE(file.CreateKey(hive, u"Key"));
  ::umask(before);
  for (const auto& [name, mode] :
       {std::pair("u", 0700u), std::pair("u/registry", 0600u), std::pair("u/registry.lock", 0600u),
        std::pair("m", 0755u), std::pair("m/registry", 0644u)}) {
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(folder.Path() / name).permissions()), mode)
        << name;
  }
}

TEST(Configuration, ProcessesThatSaveAtOnceLoseNothingOfOneAnother) {
  const TempFolder folder;
  const auto file = folder.Path() / "rowlark.cfg";
  const auto save = [&file](const std::u16string& name) {
    Settings settings(file);
    settings.items.CfgLoad();
    for (int32_t i = 0; i < 20; ++i) {
      settings.items.Add(settings.Profile(name + ToText(i)));
      settings.items.CfgSave(false);
    }
  };
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    save(u"child");
    _exit(0);
  }
  save(u"parent");
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  Settings settings(file);
  EXPECT_TRUE(settings.items.CfgLoad());
  EXPECT_EQ(settings.items.count(), 40);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 2);  // one is the lock
}

}  // namespace
}  // namespace rowlark
