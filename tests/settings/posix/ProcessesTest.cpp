// Settings of processes that run at the same time.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include "TempFolder.h"
#include "settings/Settings.h"
#include "util/Text.h"

namespace rowlark {
namespace {

using testing::Settings;

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
