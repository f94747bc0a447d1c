#include "util/mclsVTFileSystem.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TempFolder.h"
#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

namespace fs = std::filesystem;

// Member and description of the failure; empty when there is none.
std::u16string FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040385));
    return error.Source().substr(error.Source().rfind(u'.') + 1) + u": " + error.Description();
  }
  return u"";
}

// Runs `work` in a process of its own, which succeeds when it comes to the end without a failure.
pid_t Start(const std::function<void()>& work) {
  const pid_t process = ::fork();
  if (process != 0) return process;
  work();
  ::_exit(testing::Test::HasFailure() ? 1 : 0);
}
bool Succeeds(pid_t process) {
  int status = 0;
  return ::waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class FileSystem : public testing::Test {
 protected:
  std::ptrdiff_t Entries() const { return std::distance(fs::directory_iterator(at_), {}); }

  const TempFolder folder_;
  const fs::path at_ = folder_.Path();
  const std::u16string path_ = ToUtf16(at_.string());
  const mclsVTFileSystem files_{PathMap({{u"C:", at_}, {u"D:", at_ / "missing"}, {u"\\\\Server", at_}})};
};

TEST_F(FileSystem, MakesRenamesAndDeletes) {
  files_.DirsMake(u"c:\\a\\b/c\\");
  files_.DirsMake(u"\\\\server\\share\\x");
  files_.DirsMake(path_ + u"/n\\m");
  for (const char* made : {"a/b/c", "share/x", "n/m"}) EXPECT_TRUE(fs::is_directory(at_ / made)) << made;
  EXPECT_TRUE(files_.IsPathExists(u"C:\\A\\..\\a\\b\\c\\"));
  EXPECT_FALSE(files_.IsPathExists(u"X:\\") || files_.IsFileExists(u"C:\\a"));

  files_.StringWrite(u"C:\\n\\m\\.keep", u"kept");
  EXPECT_TRUE(files_.IsDirEmpty(u"C:\\n\\m"));
  files_.FileRename(u"C:\\n\\m\\.keep", u"x");
  EXPECT_FALSE(files_.IsDirEmpty(u"C:\\n\\m"));
  files_.DirRename(u"C:\\n\\m\\", u"c");
  EXPECT_EQ(files_.StringRead(u"C:\\n\\c\\x"), u"kept");
  fs::permissions(at_ / "n/c/x", fs::perms::owner_read);
  files_.FileKill(u"C:\\n\\c\\x", true);
  for (const std::u16string_view directory : {u"C:\\n", u"C:\\a", u"C:\\share"}) files_.DirKill(directory);
  EXPECT_EQ(Entries(), 0);
}

TEST_F(FileSystem, FailsWithItsReasonAndChangesNothing) {
  files_.DirsMake(u"C:\\a\\b");
  for (const std::u16string_view file : {u"C:\\a\\x", u"C:\\a\\y"}) files_.StringWrite(file, u"kept");
  fs::permissions(at_ / "a/x", fs::perms::owner_read);
  fs::create_symlink("loop", at_ / "loop");
  // What each failure begins with; the system's own words follow.
  const std::pair<std::u16string_view, std::function<void()>> rows[] = {
      {u"DirsMake: Drive is not found X:", [&] { files_.DirsMake(u"X:\\a\\b"); }},
      {u"DirsMake: Device D: is not ready", [&] { files_.DirsMake(u"D:\\a"); }},
      {u"DirsMake: DirFullPath = 'C:\\a\\x': ", [&] { files_.DirsMake(u"C:\\a\\x\\z"); }},
      {u"FileKill: FileFullName = 'C:\\a\\x': ", [&] { files_.FileKill(u"C:\\a\\x"); }},
      {u"FileKill: FileFullName = 'C:\\a': ", [&] { files_.FileKill(u"C:\\a", true); }},
      {u"DirKill: DirFullPath = 'C:\\a': ", [&] { files_.DirKill(u"C:\\a"); }},
      {u"DirKill: DirFullPath = 'C:\\a\\y': ", [&] { files_.DirKill(u"C:\\a\\y"); }},
      {u"StringRead: FileFullName = 'C:\\a': ", [&] { files_.StringRead(u"C:\\a"); }},
      {u"StringWrite: FileFullName = 'C:\\a\\b': ", [&] { files_.StringWrite(u"C:\\a\\b", u"x"); }},
      {u"StringWrite: FileFullName = 'C:\\z\\f': ", [&] { files_.StringWrite(u"C:\\z\\f", u"x"); }},
      {u"StringWrite: FileFullName = '/dev/null': ", [&] { files_.StringWrite(u"/dev/null", u"x"); }},
      {u"StringWrite: FileFullName = 'C:\\loop': ", [&] { files_.StringWrite(u"C:\\loop", u"x"); }}};
  for (const auto& [expected, operation] : rows) {
    EXPECT_EQ(FailureOf(operation).substr(0, expected.size()), expected);
  }
  for (const std::u16string_view name : {u"y", u"", u"..", u"b\\z", u"/z"}) {
    EXPECT_NE(FailureOf([&] { files_.FileRename(u"C:\\a\\x", name); }), u"") << ToUtf8(name);
  }
  EXPECT_EQ(files_.StringRead(u"C:\\a\\x") + files_.StringRead(u"C:\\a\\y"), u"keptkept");
  EXPECT_EQ(Entries(), 2);
}

TEST_F(FileSystem, ListsFilesInTheFormOfTheFolder) {
  using List = std::vector<std::u16string>;
  files_.DirsMake(u"C:\\l\\sub\\deep");
  for (const char* name : {"l/b", "l/a", "l/sub/z", "l/sub/deep/y"}) folder_.Write(name, "");
  fs::create_directory_symlink(at_, at_ / "l/loop");
  const auto scan = [this](std::u16string_view directory, bool recursive) {
    mclsVTDictionary found;
    files_.DirScanFiles(directory, found, recursive);
    return List(found.begin(), found.end());
  };
  EXPECT_EQ(scan(u"C:\\l\\", false), (List{u"C:\\l\\a", u"C:\\l\\b"}));
  EXPECT_EQ(scan(u"c:\\l", true), (List{u"c:\\l\\a", u"c:\\l\\b", u"c:\\l\\sub\\z", u"c:\\l\\sub\\deep\\y"}));
  EXPECT_EQ(scan(path_ + u"/l", false), (List{path_ + u"/l/a", path_ + u"/l/b"}));
  EXPECT_EQ(scan(u"C:\\none", true), List());
}

TEST_F(FileSystem, NormalizesPaths) {
  const fs::path before = fs::current_path();
  const std::array<std::u16string_view, 3> rows[] = {
      {u"..\\cfg\\", u"C:\\app\\bin\\", u"C:\\app\\cfg"},
      {u"D:/x//y/.\\..\\..\\..\\z", u"C:\\app", u"D:\\z"},
      {u"\\x", u"C:\\app", u"C:\\x"},
      {u"\\\\server\\share\\..\\a\\..", u"", u"\\\\server\\share"},
      {u"..\\a\\b", u"/etc/x", u"/etc/a/b"},
      {u"/../a", u"", u"/a"},
      {u"", u"/", u"/"}};
  for (const auto& [path, base, normal] : rows) EXPECT_EQ(files_.NormalizePath(path, false, base), normal);
  EXPECT_EQ(files_.NormalizePath(u"..\\cfg", true, u"C:\\app\\bin"), u"C:\\app\\cfg\\");
  EXPECT_EQ(files_.NormalizePath(u"x", true, path_), path_ + u"/x/");
  EXPECT_EQ(files_.NormalizePath(u"x"), path_ + u"/x");  // the base has become the current directory
  fs::current_path(before);
}

TEST_F(FileSystem, ReadsEveryEncodingAndWritesUtf8) {
  using namespace std::string_view_literals;
  const std::pair<std::string_view, std::u16string_view> rows[] = {
      {"\xEF\xBB\xBF\xC3\xA4"sv, u"ä"}, {"\xFF\xFE\x3D\xD8\x00\xDEx"sv, u"😀"},
      {"\xFE\xFF\x00\xE4"sv, u"ä"},     {"\xC3\xA4\r\n\xEF\xBF\xBD"sv, u"ä\r\n\xFFFD"},
      {"\xC3\xA4\x80"sv, u"Ã¤€"},       {""sv, u""}};
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(files_.StringRead(ToUtf16(folder_.Write("text", bytes).string())), text);
  }
  const std::u16string any{u'ä', u'\0', 0xD83D, 0xDE00, 0xDE00, u'\n', 0xD83D};
  files_.StringWrite(u"C:\\text", any);
  files_.BinaryWrite(u"C:\\text", files_.BinaryRead(u"C:\\text"));
  EXPECT_EQ(files_.StringRead(u"C:\\text"), any);
  files_.StringWrite(u"C:\\text", u"ä");
  EXPECT_EQ(files_.BinaryRead(u"C:\\text"), (std::vector<uint8_t>{0xC3, 0xA4}));
}

TEST_F(FileSystem, FullDisksAndReadOnlyFoldersKeepTheOldContent) {
  files_.StringWrite(u"C:\\cfg", u"old");
  const auto fails = [this](std::u16string_view file) {
    return !FailureOf([&] { files_.StringWrite(file, std::u16string(10'000, u'x')); }).empty();
  };
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{4096, 4096};
  EXPECT_TRUE(
      Succeeds(Start([&] { EXPECT_TRUE(::setrlimit(RLIMIT_FSIZE, &full) == 0 && fails(u"C:\\cfg")); })));
  fs::permissions(at_, fs::perms(0555));
  EXPECT_TRUE(Succeeds(Start([&] {  // as a user whom permissions stop
    EXPECT_TRUE((::geteuid() != 0 || ::setuid(65534) == 0) && fails(u"C:\\cfg") && fails(u"C:\\new"));
  })));
  fs::permissions(at_, fs::perms(0755));
  EXPECT_EQ(files_.StringRead(u"C:\\cfg"), u"old");
  EXPECT_EQ(Entries(), 1);
}

TEST_F(FileSystem, FollowsLinksAndKeepsPermissionsAndTimes) {
  fs::permissions(folder_.Write("target", "old"), fs::perms(0640));
  fs::create_symlink("target", at_ / "one");
  fs::create_symlink(at_ / "one", at_ / "two");
  files_.StringWrite(u"C:\\two", u"new");
  EXPECT_EQ(files_.StringRead(u"C:\\target"), u"new");
  EXPECT_EQ(fs::status(at_ / "target").permissions(), fs::perms(0640));
  fs::remove(at_ / "target");
  files_.StringWrite(u"C:\\two", u"again");
  EXPECT_EQ(files_.StringRead(u"C:\\target"), u"again");

  using std::chrono::local_days, std::chrono::year;
  files_.FileSetDateTime(u"C:\\two", {}, {}, local_days(year(2021) / 7 / 4));
  const auto modified = files_.FileModified(u"C:\\target");
  EXPECT_LT(modified, fs::last_write_time(at_));
  files_.FileSetDateTime(u"C:\\two", {}, local_days(year(2022) / 7 / 4), {});
  EXPECT_EQ(files_.FileModified(u"C:\\target"), modified);
}

TEST_F(FileSystem, EndingAtAnyStepLeavesOldOrNew) {
  struct Dying : mclsVTFileSystem {
    void BetweenSteps() const override { steps-- == 0 ? ::_exit(1) : void(); }
    mutable int steps = 0;
  } dying;
  for (bool done = false; !done; ++dying.steps) {
    files_.StringWrite(u"C:\\cfg", u"old");
    done = Succeeds(Start([&] { dying.StringWrite(path_ + u"/cfg", u"new"); }));
    const std::u16string content = files_.StringRead(u"C:\\cfg");
    ASSERT_TRUE(content == u"new" || (content == u"old" && !done)) << dying.steps;
  }
  EXPECT_GT(dying.steps, 5);
}

TEST_F(FileSystem, WritersAtTheSameTimeNeverTearAFile) {
  const auto write = [this](char16_t letter, int times) {
    while (times-- > 0) files_.StringWrite(u"C:\\cfg", std::u16string(20'000, letter));
  };
  write(u'c', 1);
  const pid_t first = Start([&] { write(u'a', 50); }), second = Start([&] { write(u'b', 50); });
  for (int round = 0; round < 200; ++round) {
    const std::u16string content = files_.StringRead(u"C:\\cfg");
    ASSERT_EQ(content, std::u16string(20'000, content.front()));
  }
  EXPECT_TRUE(Succeeds(first) && Succeeds(second));
  EXPECT_EQ(Entries(), 1);
}

}  // namespace
}  // namespace rowlark
