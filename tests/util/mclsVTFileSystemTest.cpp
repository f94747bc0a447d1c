#include "util/mclsVTFileSystem.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <functional>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "TempFolder.h"
#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

namespace fs = std::filesystem;

std::u16string Text(const fs::path& path) { return ToUtf16(path.string()); }

// What an operation fails with, without the system's own words behind the last quote.
std::u16string FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040385));
    const std::u16string where = error.Source() + u": " + error.Description();
    return where.substr(std::string_view("VTRLKRuntime.mclsVTFileSystem.").size(),
                        where.find(u"': ") - std::string_view("VTRLKRuntime.mclsVTFileSystem.").size());
  }
  return u"";
}

// Runs `work` in a process of its own; true when it ended by itself and says so.
pid_t Start(const std::function<bool()>& work) {
  const pid_t process = ::fork();
  if (process == 0) ::_exit(work() ? 0 : 1);
  return process;
}
bool Succeeds(pid_t process) {
  int status = 0;
  return ::waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::size_t EntriesOf(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

// Ends its process before the given step of replacing a file.
class DyingFileSystem : public mclsVTFileSystem {
 public:
  explicit DyingFileSystem(int step) : step_(step) {}

 private:
  void BetweenSteps() const override {
    if (step_-- == 0) ::_exit(1);
  }
  mutable int step_;
};

class FileSystem : public testing::Test {
 protected:
  TempFolder folder_;
  std::u16string path_ = Text(folder_.Path());
  mclsVTFileSystem files_{PathMap(
      {{u"C:", folder_.Path()}, {u"D:", folder_.Path() / "missing"}, {u"\\\\Server", folder_.Path()}})};
};

TEST_F(FileSystem, MakesFoldersOnDrivesThatAreThere) {
  files_.DirsMake(u"c:\\a\\b/c\\");
  EXPECT_TRUE(files_.IsPathExists(u"C:\\A\\..\\a\\b\\c\\"));
  EXPECT_TRUE(fs::is_directory(folder_.Path() / "a/b/c"));
  files_.DirsMake(u"C:\\a\\b");
  files_.DirsMake(u"\\\\server\\share\\x");
  files_.DirsMake(path_ + u"/n\\m");
  EXPECT_TRUE(fs::is_directory(folder_.Path() / "share/x"));
  EXPECT_TRUE(fs::is_directory(folder_.Path() / "n/m"));

  folder_.Write("file", "");
  EXPECT_EQ(FailureOf([&] { files_.DirsMake(u"X:\\a\\b"); }), u"DirsMake: Drive is not found X:");
  EXPECT_EQ(FailureOf([&] { files_.DirsMake(u"D:\\a"); }), u"DirsMake: Device D: is not ready");
  EXPECT_EQ(FailureOf([&] { files_.DirsMake(u"C:\\file\\a"); }), u"DirsMake: DirFullPath = 'C:\\file");
  EXPECT_FALSE(files_.IsPathExists(u"X:\\"));
  EXPECT_FALSE(files_.IsFileExists(u"C:\\a"));
  EXPECT_FALSE(files_.IsFileExists(u"X:\\file"));
}

TEST_F(FileSystem, RenamesAndDeletes) {
  files_.DirsMake(u"C:\\a\\b");
  EXPECT_FALSE(files_.IsDirEmpty(u"C:\\a"));
  files_.StringWrite(u"C:\\a\\b\\.keep", u"kept");
  EXPECT_TRUE(files_.IsDirEmpty(u"C:\\a\\b"));
  files_.FileRename(u"C:\\a\\b\\.keep", u"x");
  EXPECT_FALSE(files_.IsDirEmpty(u"C:\\a\\b"));

  files_.StringWrite(u"C:\\a\\b\\y", u"other");
  for (const std::u16string_view name : {u"y", u"", u"..", u"b\\z", u"/z"}) {
    EXPECT_EQ(FailureOf([&] { files_.FileRename(u"C:\\a\\b\\x", name); }),
              u"FileRename: FileFullName = 'C:\\a\\b\\x");
  }
  files_.DirRename(u"C:\\a\\b\\", u"c");
  EXPECT_EQ(files_.StringRead(u"C:\\a\\c\\x"), u"kept");

  fs::permissions(folder_.Path() / "a/c/x", fs::perms::owner_read);
  EXPECT_NE(FailureOf([&] { files_.FileKill(u"C:\\a\\c\\x"); }), u"");
  EXPECT_NE(FailureOf([&] { files_.DirKill(u"C:\\a"); }), u"");
  EXPECT_NE(FailureOf([&] { files_.FileKill(u"C:\\a\\c", true); }), u"");
  EXPECT_NE(FailureOf([&] { files_.DirKill(u"C:\\a\\c\\y"); }), u"");
  EXPECT_EQ(files_.StringRead(u"C:\\a\\c\\y"), u"other");
  files_.FileKill(u"C:\\a\\c\\x", true);
  files_.DirKill(u"C:\\a");
  EXPECT_EQ(EntriesOf(folder_.Path()), 0U);
}

TEST_F(FileSystem, ListsFilesInTheFormOfTheFolder) {
  files_.DirsMake(u"C:\\l\\sub\\deep");
  for (const std::u16string_view name : {u"b", u"a", u"sub\\z", u"sub\\deep\\y"}) {
    files_.StringWrite(std::u16string(u"C:\\l\\").append(name), u"");
  }
  fs::create_directory_symlink(folder_.Path(), folder_.Path() / "l/loop");
  const auto scan = [this](std::u16string_view directory, bool recursive) {
    mclsVTDictionary found;
    files_.DirScanFiles(directory, found, recursive);
    std::u16string list;
    for (const std::u16string& name : found) list += name + u"|";
    return list;
  };
  EXPECT_EQ(scan(u"C:\\l\\", false), u"C:\\l\\a|C:\\l\\b|");
  EXPECT_EQ(scan(u"c:\\l", true), u"c:\\l\\a|c:\\l\\b|c:\\l\\sub\\z|c:\\l\\sub\\deep\\y|");
  EXPECT_EQ(scan(path_ + u"/l", false), path_ + u"/l/a|" + path_ + u"/l/b|");
  EXPECT_EQ(scan(u"C:\\none", true), u"");
}

TEST_F(FileSystem, NormalizesPaths) {
  struct Row {
    std::u16string_view path, base, normal;
  };
  const fs::path before = fs::current_path();
  for (const Row& row :
       {Row{u"..\\cfg", u"C:\\app\\bin", u"C:\\app\\cfg"},
        Row{u"..\\cfg\\", u"C:\\app\\bin\\", u"C:\\app\\cfg"},
        Row{u"D:/x//y/.\\..\\..\\..\\z", u"C:\\app", u"D:\\z"}, Row{u"\\x", u"C:\\app", u"C:\\x"},
        Row{u"C:\\", u"", u"C:\\"}, Row{u"\\\\server\\share\\..\\a\\..", u"", u"\\\\server\\share"},
        Row{u"..\\a\\b", u"/etc/x", u"/etc/a/b"}, Row{u"/../a", u"", u"/a"}, Row{u"", u"/", u"/"}}) {
    EXPECT_EQ(files_.NormalizePath(row.path, false, row.base), row.normal);
  }
  EXPECT_EQ(files_.NormalizePath(u"..\\cfg", true, u"C:\\app\\bin"), u"C:\\app\\cfg\\");
  EXPECT_EQ(files_.NormalizePath(u"x", true, path_), path_ + u"/x/");
  EXPECT_EQ(files_.NormalizePath(u"x"), path_ + u"/x");  // the base has become the current directory
  fs::current_path(before);
}

TEST_F(FileSystem, ReadsEveryEncodingAndWritesUtf8) {
  struct Row {
    std::string_view bytes;
    std::u16string_view text;
  };
  using namespace std::string_view_literals;
  for (const Row& row : {Row{"\xEF\xBB\xBF\xC3\xA4"sv, u"ä"}, Row{"\xFF\xFE\x3D\xD8\x00\xDEx"sv, u"😀"},
                         Row{"\xFE\xFF\x00\xE4"sv, u"ä"}, Row{"\xC3\xA4\r\n\xEF\xBF\xBD"sv, u"ä\r\n\xFFFD"},
                         Row{"\xC3\xA4\x80"sv, u"Ã¤€"}, Row{""sv, u""}}) {
    EXPECT_EQ(files_.StringRead(Text(folder_.Write("text", row.bytes))), row.text);
  }
  const std::u16string any{u'ä', u'\0', 0xD83D, 0xDE00, 0xDE00, u'\n', 0xD83D};
  files_.StringWrite(u"C:\\text", any);
  EXPECT_EQ(files_.StringRead(u"C:\\text"), any);
  files_.StringWrite(u"C:\\text", u"ä");
  EXPECT_EQ(files_.BinaryRead(u"C:\\text"), (std::vector<uint8_t>{0xC3, 0xA4}));
  files_.BinaryWrite(u"C:\\text", std::vector<uint8_t>{0});
  EXPECT_EQ(files_.BinaryRead(u"C:\\text"), std::vector<uint8_t>{0});
  EXPECT_EQ(FailureOf([&] { files_.BinaryRead(u"C:\\none"); }), u"BinaryRead: FileFullName = 'C:\\none");
  EXPECT_EQ(FailureOf([&] { files_.StringRead(path_); }), u"StringRead: FileFullName = '" + path_);
}

TEST_F(FileSystem, SetsOnlyTheTimesGiven) {
  using namespace std::chrono;
  files_.StringWrite(u"C:\\f", u"");
  const local_seconds noon = local_days(2021y / July / 4) + 12h;
  files_.FileSetDateTime(u"C:\\f", noon, std::nullopt, noon + 1h);
  files_.FileSetDateTime(u"C:\\f", std::nullopt, noon - 1h, std::nullopt);
  struct stat found {};
  ASSERT_EQ(::stat((folder_.Path() / "f").c_str(), &found), 0);
  EXPECT_EQ(std::localtime(&found.st_mtime)->tm_hour, 13);
  EXPECT_EQ(std::localtime(&found.st_atime)->tm_hour, 11);
  EXPECT_EQ(std::localtime(&found.st_atime)->tm_year, 121);
  EXPECT_NE(FailureOf([&] { files_.FileSetDateTime(u"C:\\none", noon, noon, noon); }), u"");
}

TEST_F(FileSystem, FailedWritesKeepTheOldContent) {
  files_.StringWrite(u"C:\\cfg", u"old");
  const std::u16string big(10'000, u'x');
  std::signal(SIGXFSZ, SIG_IGN);
  EXPECT_TRUE(Succeeds(Start([&] {
    const rlimit full{4096, 4096};
    ::setrlimit(RLIMIT_FSIZE, &full);
    return FailureOf([&] { files_.StringWrite(u"C:\\cfg", big); }) == u"StringWrite: FileFullName = 'C:\\cfg";
  })));
  EXPECT_TRUE(Succeeds(Start([&] {  // as a user who may not write here
    fs::permissions(folder_.Path(), fs::perms(0555));
    if (::geteuid() == 0 && ::setuid(65534) != 0) return false;
    return !FailureOf([&] { files_.StringWrite(u"C:\\cfg", big); }).empty() &&
           !FailureOf([&] { files_.StringWrite(u"C:\\new", big); }).empty();
  })));
  fs::permissions(folder_.Path(), fs::perms(0755));
  EXPECT_EQ(files_.StringRead(u"C:\\cfg"), u"old");
  EXPECT_EQ(EntriesOf(folder_.Path()), 1U);

  files_.DirsMake(u"C:\\dir");
  EXPECT_NE(FailureOf([&] { files_.StringWrite(u"C:\\dir", u"x"); }), u"");
  EXPECT_NE(FailureOf([&] { files_.StringWrite(u"C:\\none\\cfg", u"x"); }), u"");
  EXPECT_NE(FailureOf([&] { files_.StringWrite(u"/dev/null", u"x"); }), u"");
  EXPECT_EQ(EntriesOf(folder_.Path()), 2U);
}

TEST_F(FileSystem, WritesThroughLinksAndKeepsPermissions) {
  files_.StringWrite(u"C:\\target", u"old");
  fs::permissions(folder_.Path() / "target", fs::perms(0640));
  fs::create_symlink("target", folder_.Path() / "one");
  fs::create_symlink(folder_.Path() / "one", folder_.Path() / "two");
  files_.StringWrite(u"C:\\two", u"new");
  EXPECT_EQ(files_.StringRead(u"C:\\target"), u"new");
  EXPECT_TRUE(fs::is_symlink(folder_.Path() / "one"));
  EXPECT_EQ(fs::status(folder_.Path() / "target").permissions(), fs::perms(0640));
  fs::remove(folder_.Path() / "target");
  files_.StringWrite(u"C:\\two", u"again");
  EXPECT_EQ(files_.StringRead(u"C:\\target"), u"again");
  fs::create_symlink("loop", folder_.Path() / "loop");
  EXPECT_NE(FailureOf([&] { files_.StringWrite(u"C:\\loop", u"x"); }), u"");
}

TEST_F(FileSystem, EndingAtAnyStepLeavesOldOrNew) {
  const std::u16string file = path_ + u"/cfg";
  int step = 0;
  bool done = false;
  for (; !done; ++step) {
    files_.StringWrite(file, u"old");
    done = Succeeds(Start([&] {
      DyingFileSystem(step).StringWrite(file, u"new");
      return true;
    }));
    const std::u16string content = files_.StringRead(file);
    EXPECT_TRUE(content == u"old" || content == u"new") << step;
    EXPECT_TRUE(!done || content == u"new");
  }
  EXPECT_GT(step, 5);
}

TEST_F(FileSystem, WritersAtTheSameTimeNeverTearAFile) {
  const auto writer = [this](char16_t letter) {
    return Start([this, letter] {
      for (int round = 0; round < 50; ++round) files_.StringWrite(u"C:\\cfg", std::u16string(20'000, letter));
      return true;
    });
  };
  files_.StringWrite(u"C:\\cfg", u"c");
  const pid_t first = writer(u'a'), second = writer(u'b');
  for (int round = 0; round < 200; ++round) {
    const std::u16string content = files_.StringRead(u"C:\\cfg");
    ASSERT_TRUE(content == u"c" || content == std::u16string(20'000, content.front()));
  }
  EXPECT_TRUE(Succeeds(first));
  EXPECT_TRUE(Succeeds(second));
  EXPECT_EQ(files_.StringRead(u"C:\\cfg").size(), 20'000U);
  EXPECT_EQ(EntriesOf(folder_.Path()), 1U);
}

}  // namespace
}  // namespace rowlark
