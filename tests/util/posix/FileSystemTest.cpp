// What holds of files where there are links, permissions and processes that fork.
#include <gtest/gtest.h>

#include <csignal>

#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
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

// Calls a function wherever a save might end.
struct Watched : mclsVTFileSystem {
  using mclsVTFileSystem::mclsVTFileSystem;
  void BetweenSteps() const override { Step(); }
  std::function<void()> Step;
};

TEST_F(FileSystemOnPosix, MakesFilesForTheUserAloneUnlessTold) {
  const auto mode = [this](const fs::path& name) {
    return static_cast<unsigned>(fs::status(at_ / name).permissions());
  };
  const mode_t before = ::umask(0);
  files_.DirsMake(u"R:\\a\\b");
  for (const char* made : {"a", "a/b"}) EXPECT_EQ(mode(made), 0700u) << made;
  EXPECT_TRUE(platform::FileLock(at_ / "lock", platform::Access::Private).Held());
  EXPECT_EQ(mode("lock"), 0600u);
  ::umask(027);
  const mclsVTFileSystem ordinary({}, platform::Access::Ordinary);
  ordinary.DirsMake(path_ + u"/o");
  ordinary.StringWrite(path_ + u"/o/f", u"");
  EXPECT_EQ(mode("o") << 12 | mode("o/f"), 0750u << 12 | 0640u);
  ::umask(0);

  // Others see nothing of a file that is not yet in its place.
  Watched watched({}, platform::Access::Ordinary);
  watched.Step = [&] {
    for (const auto& entry : fs::directory_iterator(at_ / "a/b")) {
      const bool is_whole = entry.path().extension() == ".tmp" && entry.file_size() == 3;
      EXPECT_TRUE(is_whole || mode(entry.path()) == 0600u) << entry.path();
    }
  };
  files_.StringWrite(u"R:\\a\\b\\f", u"old");
  EXPECT_EQ(mode("a/b/f"), 0600u);
  watched.StringWrite(path_ + u"/a/b/f", u"new");
  EXPECT_EQ(mode("a/b/f"), 0600u);
  ::umask(before);
}

TEST_F(FileSystemOnPosix, KeepsTheGroupAloneAndHandsItsRightsToNoOther) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs several users";
  constexpr gid_t kGroup = 54321, kOther = 54322;
  constexpr uid_t kOwner = 54321, kWriter = 54322;
  struct stat now {};
  fs::permissions(at_, fs::perms(0777));
  // What a member of the group makes of a file, and what somebody else does.
  for (const auto& [groups, group, mode] : {std::tuple(1, kGroup, 0666u), std::tuple(0, kOther, 0606u)}) {
    const auto file = folder_.Write("shared", "old");
    ASSERT_TRUE(::chown(file.c_str(), kOwner, kGroup) == 0 && ::chmod(file.c_str(), 0666) == 0);
    EXPECT_TRUE(Succeeds(Start([&, count = groups] {
      EXPECT_TRUE(::setgroups(static_cast<std::size_t>(count), &kGroup) == 0 && ::setgid(kOther) == 0 &&
                  ::setuid(kWriter) == 0);
      files_.StringWrite(u"R:\\shared", u"new");
    })));
    EXPECT_EQ(::stat(file.c_str(), &now), 0);
    EXPECT_EQ(std::tuple(now.st_uid, now.st_gid, now.st_mode & 0777u), std::tuple(kWriter, group, mode));
  }
  // Whoever may, keeps both.
  EXPECT_EQ(::chown((at_ / "shared").c_str(), kOwner, kGroup), 0);
  files_.StringWrite(u"R:\\shared", u"new");
  EXPECT_EQ(::stat((at_ / "shared").c_str(), &now), 0);
  EXPECT_EQ(std::tuple(now.st_uid, now.st_gid), std::tuple(kOwner, kGroup));
}

TEST_F(FileSystemOnPosix, KeepsAccessLists) {
  // The group of the file has no rights, one user may read and write.
  const auto list = std::string("\2\0\0\0", 4) +
                    std::string("\1\0\6\0\xFF\xFF\xFF\xFF\2\0\6\0\x01\0\0\0\4\0\0\0\xFF\xFF\xFF\xFF", 24) +
                    std::string("\x10\0\6\0\xFF\xFF\xFF\xFF\x20\0\0\0\xFF\xFF\xFF\xFF", 16);
  const auto file = folder_.Write("cfg", "old"), plain = folder_.Write("plain", "old");
  for (const auto& [path, name] :
       {std::pair(file, "system.posix_acl_access"), std::pair(at_, "system.posix_acl_default")}) {
    if (::setxattr(path.c_str(), name, list.data(), list.size(), 0) != 0)
      GTEST_SKIP() << "no access lists here";
  }
  for (const auto* name : {u"R:\\cfg", u"R:\\plain"}) files_.StringWrite(name, u"new");
  std::string kept(list.size() + 1, ' ');
  const auto size = ::getxattr(file.c_str(), "system.posix_acl_access", kept.data(), kept.size());
  EXPECT_EQ(kept.substr(0, static_cast<std::size_t>(size < 0 ? 0 : size)), list);
  EXPECT_LT(::getxattr(plain.c_str(), "system.posix_acl_access", kept.data(), kept.size()), 0);
}

TEST_F(FileSystemOnPosix, WritesUnderExactlyTheNameOfTheFile) {
  for (const std::string name : {"a\\b", "\xFF\xE2\x82\\", "\xED\xB2\x80", "\xF0\x9F\x98\x80\xB2", "ü"}) {
    const fs::path file = "/" + (at_ / name).string();
    files_.StringWrite(platform::ToText(file), u"x");
    EXPECT_TRUE(fs::is_regular_file(at_ / name)) << name;
    EXPECT_EQ(platform::ToPath(platform::ToText(file)), file);
    mclsVTDictionary found;
    files_.DirScanFiles(u"R:", found, false);
    ASSERT_EQ(found.Count(), 1) << name;
    files_.FileKill(*found.begin());
  }
  EXPECT_EQ(platform::ToPath(u"\xDC2F\xDC00").native().find_first_of(std::string_view("/\0", 2)),
            std::string::npos);
}

TEST_F(FileSystemOnPosix, EndingAtAnyStepLeavesOldOrNew) {
  Watched dying;
  int steps = 0, left = 0;
  dying.Step = [&, at = 0]() mutable { at++ == steps ? ::_exit(1) : void(); };
  for (bool done = false; !done; ++steps) {
    files_.StringWrite(u"R:\\cfg", u"old");
    EXPECT_EQ(Entries(), 1);  // what was left before is gone
    done = Succeeds(Start([&] { dying.StringWrite(path_ + u"/cfg", u"new"); }));
    const std::u16string content = files_.StringRead(u"R:\\cfg");
    ASSERT_TRUE(content == u"new" || (content == u"old" && !done)) << steps;
    left += Entries() > 1 ? 1 : 0;
  }
  EXPECT_GT(steps, 5);
  EXPECT_GT(left, 3);
}

TEST_F(FileSystemOnPosix, LeavesAloneWhatALivingProcessWrites) {
  for (const char* name : {".rowlark-1-x.tmp", ".rowlark-.tmp.csv"}) folder_.Write(name, "the user's");
  fs::create_symlink("cfg", at_ / ".rowlark-1-1.tmp");
  Watched watched;
  watched.Step = [this] { files_.StringWrite(u"R:\\other", u"x"); };
  watched.StringWrite(path_ + u"/cfg", u"new");
  EXPECT_EQ(files_.StringRead(u"R:\\cfg"), u"new");
  EXPECT_EQ(Entries(), 5);
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
