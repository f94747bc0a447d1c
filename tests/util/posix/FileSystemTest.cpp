// What holds of files where there are links, permissions and processes that fork.
#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "util/FileSystem.h"

namespace rowlark {
namespace {

namespace fs = std::filesystem;

using testing::FailureOf;

using FileSystemOnPosix = testing::FileSystem;

// Runs `work` in a process of its own, which succeeds when it comes to the end without a failure.
pid_t Start(const std::function<void()>& work) {
  const pid_t process = ::fork();
  if (process != 0) return process;
  work();
  ::_exit(::testing::Test::HasFailure() ? 1 : 0);
}
bool Succeeds(pid_t process) {
  int status = 0;
  return ::waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(FileSystemOnPosix, FullDisksAndReadOnlyFoldersKeepTheOldContent) {
  files_.StringWrite(u"R:\\cfg", u"old");
  const auto fails = [this](std::u16string_view file) {
    return !FailureOf([&] { files_.StringWrite(file, std::u16string(10'000, u'x')); }).empty();
  };
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{4096, 4096};
  EXPECT_TRUE(
      Succeeds(Start([&] { EXPECT_TRUE(::setrlimit(RLIMIT_FSIZE, &full) == 0 && fails(u"R:\\cfg")); })));
  fs::permissions(at_, fs::perms(0555));
  EXPECT_TRUE(Succeeds(Start([&] {  // as a user whom permissions stop
    EXPECT_TRUE((::geteuid() != 0 || ::setuid(65534) == 0) && fails(u"R:\\cfg") && fails(u"R:\\new"));
  })));
  fs::permissions(at_, fs::perms(0755));
  EXPECT_EQ(files_.StringRead(u"R:\\cfg"), u"old");
  EXPECT_EQ(Entries(), 1);
}

TEST_F(FileSystemOnPosix, FollowsLinksAndKeepsPermissions) {
  fs::permissions(folder_.Write("target", "old"), fs::perms(0640));
  fs::create_symlink("target", at_ / "one");
  fs::create_symlink(at_ / "one", at_ / "two");
  files_.StringWrite(u"R:\\two", u"new");
  EXPECT_EQ(files_.StringRead(u"R:\\target"), u"new");
  EXPECT_EQ(fs::status(at_ / "target").permissions(), fs::perms(0640));
  fs::remove(at_ / "target");
  files_.StringWrite(u"R:\\two", u"again");
  EXPECT_EQ(files_.StringRead(u"R:\\target"), u"again");
}

TEST_F(FileSystemOnPosix, EndingAtAnyStepLeavesOldOrNew) {
  struct Dying : mclsVTFileSystem {
    void BetweenSteps() const override { steps-- == 0 ? ::_exit(1) : void(); }
    mutable int steps = 0;
  } dying;
  for (bool done = false; !done; ++dying.steps) {
    files_.StringWrite(u"R:\\cfg", u"old");
    done = Succeeds(Start([&] { dying.StringWrite(path_ + u"/cfg", u"new"); }));
    const std::u16string content = files_.StringRead(u"R:\\cfg");
    ASSERT_TRUE(content == u"new" || (content == u"old" && !done)) << dying.steps;
  }
  EXPECT_GT(dying.steps, 5);
}

TEST_F(FileSystemOnPosix, WritersAtTheSameTimeNeverTearAFile) {
  const auto write = [this](char16_t letter, int times) {
    while (times-- > 0) files_.StringWrite(u"R:\\cfg", std::u16string(20'000, letter));
  };
  write(u'c', 1);
  const pid_t first = Start([&] { write(u'a', 50); }), second = Start([&] { write(u'b', 50); });
  for (int round = 0; round < 200; ++round) {
    const std::u16string content = files_.StringRead(u"R:\\cfg");
    ASSERT_EQ(content, std::u16string(20'000, content.front()));
  }
  EXPECT_TRUE(Succeeds(first) && Succeeds(second));
  EXPECT_EQ(Entries(), 1);
}

TEST_F(FileSystemOnPosix, RefusesDevicesAndLoopsOfLinks) {
  fs::create_symlink("loop", at_ / "loop");
  for (const std::u16string_view file : {u"/dev/null", u"R:\\loop"}) {
    const auto expected = std::u16string(u"StringWrite: FileFullName = '").append(file).append(u"': ");
    EXPECT_TRUE(FailureOf([&] { files_.StringWrite(file, u"x"); }).starts_with(expected)) << ToUtf8(file);
  }

  files_.DirsMake(u"R:\\l");
  folder_.Write("l/a", "");
  fs::create_directory_symlink(at_, at_ / "l/loop");
  mclsVTDictionary found;
  files_.DirScanFiles(u"R:\\l", found, true);
  EXPECT_EQ(std::vector(found.begin(), found.end()), std::vector<std::u16string>{u"R:\\l\\a"});
}

TEST_F(FileSystemOnPosix, NormalizesPathsWithoutDrives) {
  const fs::path before = fs::current_path();
  EXPECT_EQ(files_.NormalizePath(u"..\\a\\b", false, u"/etc/x"), u"/etc/a/b");
  EXPECT_EQ(files_.NormalizePath(u"/../a"), u"/a");
  EXPECT_EQ(files_.NormalizePath(u"", false, u"/"), u"/");
  fs::current_path(before);
}

}  // namespace
}  // namespace rowlark
