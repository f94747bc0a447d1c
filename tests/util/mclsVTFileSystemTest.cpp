#include "util/mclsVTFileSystem.h"

#include <gtest/gtest.h>

#include <csignal>
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

// Member and description of the failure; empty when there is none.
std::u16string FailureOf(const std::function<void()>& operation) {
  constexpr std::u16string_view kSource = u"VTRLKRuntime.mclsVTFileSystem.";
  try {
    operation();
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040385));
    EXPECT_TRUE(error.Source().starts_with(kSource));
    return error.Source().substr(kSource.size()) + u": " + error.Description();
  }
  return u"";
}

// Runs `work` in a process of its own, which succeeds when it comes to the end and returns true.
pid_t Start(const std::function<bool()>& work) {
  const pid_t process = ::fork();
  if (process == 0) ::_exit(work() ? 0 : 1);
  return process;
}
bool Succeeds(pid_t process) {
  int status = 0;
  return ::waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
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
  std::ptrdiff_t Entries() const { return std::distance(fs::directory_iterator(at_), {}); }

  const TempFolder folder_;
  const fs::path at_ = folder_.Path();
  const std::u16string path_ = ToUtf16(at_.string());
  const mclsVTFileSystem files_{PathMap({{u"C:", at_}, {u"D:", at_ / "missing"}, {u"\\\\Server", at_}})};
};

TEST_F(FileSystem, MakesRenamesAndDeletes) {
  for (const std::u16string& path : {std::u16string(u"c:\\a\\b/c\\"), std::u16string(u"C:\\a\\b"),
                                     std::u16string(u"\\\\server\\share\\x"), path_ + u"/n\\m"}) {
    files_.DirsMake(path);
  }
  for (const char* made : {"a/b/c", "share/x", "n/m"}) EXPECT_TRUE(fs::is_directory(at_ / made)) << made;
  EXPECT_TRUE(files_.IsPathExists(u"C:\\A\\..\\a\\b\\c\\"));
  EXPECT_FALSE(files_.IsPathExists(u"X:\\") || files_.IsFileExists(u"C:\\a") ||
               files_.IsFileExists(u"X:\\f"));

  EXPECT_FALSE(files_.IsDirEmpty(u"C:\\a"));
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
  struct Row {
    std::u16string_view failure;  // its beginning: the system's own words follow
    std::function<void()> operation;
  };
  for (const Row& row : {
           Row{u"DirsMake: Drive is not found X:", [&] { files_.DirsMake(u"X:\\a\\b"); }},
           Row{u"DirsMake: Device D: is not ready", [&] { files_.DirsMake(u"D:\\a"); }},
           Row{u"DirsMake: DirFullPath = 'C:\\a\\x': ", [&] { files_.DirsMake(u"C:\\a\\x\\z"); }},
           Row{u"FileKill: FileFullName = 'C:\\a\\x': ", [&] { files_.FileKill(u"C:\\a\\x"); }},
           Row{u"FileKill: FileFullName = 'C:\\a': ", [&] { files_.FileKill(u"C:\\a", true); }},
           Row{u"DirKill: DirFullPath = 'C:\\a': ", [&] { files_.DirKill(u"C:\\a"); }},
           Row{u"DirKill: DirFullPath = 'C:\\a\\y': ", [&] { files_.DirKill(u"C:\\a\\y"); }},
           Row{u"BinaryRead: FileFullName = 'C:\\z': ", [&] { files_.BinaryRead(u"C:\\z"); }},
           Row{u"StringRead: FileFullName = 'C:\\a': ", [&] { files_.StringRead(u"C:\\a"); }},
           Row{u"StringWrite: FileFullName = 'C:\\a\\b': ", [&] { files_.StringWrite(u"C:\\a\\b", u"x"); }},
           Row{u"StringWrite: FileFullName = 'C:\\z\\f': ", [&] { files_.StringWrite(u"C:\\z\\f", u"x"); }},
           Row{u"StringWrite: FileFullName = '/dev/null': ", [&] { files_.StringWrite(u"/dev/null", u"x"); }},
           Row{u"StringWrite: FileFullName = 'C:\\loop': ", [&] { files_.StringWrite(u"C:\\loop", u"x"); }},
           Row{u"FileSetDateTime: FileFullName = 'C:\\z': ",
               [&] { files_.FileSetDateTime(u"C:\\z", {}, {}, {}); }},
       }) {
    const std::u16string failure = FailureOf(row.operation);
    EXPECT_TRUE(failure.starts_with(row.failure)) << ToUtf8(row.failure) << '\n' << ToUtf8(failure);
  }
  for (const std::u16string_view name : {u"y", u"", u"..", u"b\\z", u"/z"}) {
    EXPECT_NE(FailureOf([&] { files_.FileRename(u"C:\\a\\x", name); }), u"") << ToUtf8(name);
  }
  EXPECT_EQ(files_.StringRead(u"C:\\a\\x") + files_.StringRead(u"C:\\a\\y"), u"keptkept");
  EXPECT_EQ(Entries(), 2);
}

TEST_F(FileSystem, ListsFilesInTheFormOfTheFolder) {
  files_.DirsMake(u"C:\\l\\sub\\deep");
  for (const char* name : {"l/b", "l/a", "l/sub/z", "l/sub/deep/y"}) folder_.Write(name, "");
  fs::create_directory_symlink(at_, at_ / "l/loop");
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
    folder_.Write("text", row.bytes);
    EXPECT_EQ(files_.StringRead(u"C:\\text"), row.text);
  }
  const std::u16string any{u'ä', u'\0', 0xD83D, 0xDE00, 0xDE00, u'\n', 0xD83D};
  files_.StringWrite(u"C:\\text", any);
  EXPECT_EQ(files_.StringRead(u"C:\\text"), any);
  files_.StringWrite(u"C:\\text", u"ä");
  EXPECT_EQ(files_.BinaryRead(u"C:\\text"), (std::vector<uint8_t>{0xC3, 0xA4}));
  files_.BinaryWrite(u"C:\\text", std::vector<uint8_t>{0});
  EXPECT_EQ(files_.BinaryRead(u"C:\\text"), std::vector<uint8_t>{0});
}

TEST_F(FileSystem, SetsOnlyTheTimesGiven) {
  using namespace std::chrono;
  struct stat found {};
  const local_seconds noon = local_days(2021y / July / 4) + 12h;
  files_.FileSetDateTime(ToUtf16(folder_.Write("f", "").string()), noon, std::nullopt, noon + 1h);
  files_.FileSetDateTime(u"C:\\f", std::nullopt, noon - 1h, std::nullopt);
  ASSERT_EQ(::stat((at_ / "f").c_str(), &found), 0);
  EXPECT_EQ(std::localtime(&found.st_mtime)->tm_hour, 13);
  EXPECT_EQ(std::localtime(&found.st_atime)->tm_hour, 11);
  EXPECT_EQ(std::localtime(&found.st_atime)->tm_year, 121);
}

TEST_F(FileSystem, FullDisksAndReadOnlyFoldersKeepTheOldContent) {
  files_.StringWrite(u"C:\\cfg", u"old");
  const auto fails = [this](const std::u16string& file) {
    const std::u16string failure = FailureOf([&] { files_.StringWrite(file, std::u16string(10'000, u'x')); });
    return failure.starts_with(u"StringWrite: FileFullName = '" + file + u"': ");
  };
  std::signal(SIGXFSZ, SIG_IGN);
  EXPECT_TRUE(Succeeds(Start([&] {
    const rlimit full{4096, 4096};
    return ::setrlimit(RLIMIT_FSIZE, &full) == 0 && fails(u"C:\\cfg");
  })));
  fs::permissions(at_, fs::perms(0555));
  EXPECT_TRUE(Succeeds(Start([&] {  // as a user whom permissions stop
    return (::geteuid() != 0 || ::setuid(65534) == 0) && fails(u"C:\\cfg") && fails(u"C:\\new");
  })));
  fs::permissions(at_, fs::perms(0755));
  EXPECT_EQ(files_.StringRead(u"C:\\cfg"), u"old");
  EXPECT_EQ(Entries(), 1);
}

TEST_F(FileSystem, WritesThroughLinksAndKeepsPermissions) {
  fs::permissions(folder_.Write("target", "old"), fs::perms(0640));
  fs::create_symlink("target", at_ / "one");
  fs::create_symlink(at_ / "one", at_ / "two");
  files_.StringWrite(u"C:\\two", u"new");
  EXPECT_EQ(files_.StringRead(u"C:\\target"), u"new");
  EXPECT_EQ(fs::status(at_ / "target").permissions(), fs::perms(0640));
  fs::remove(at_ / "target");
  files_.StringWrite(u"C:\\two", u"again");
  EXPECT_EQ(files_.StringRead(u"C:\\target"), u"again");
  EXPECT_TRUE(fs::is_symlink(at_ / "one"));
}

TEST_F(FileSystem, EndingAtAnyStepLeavesOldOrNew) {
  int step = 0;
  for (bool done = false; !done; ++step) {
    files_.StringWrite(u"C:\\cfg", u"old");
    done = Succeeds(Start([&] { return DyingFileSystem(step).StringWrite(path_ + u"/cfg", u"new"), true; }));
    const std::u16string content = files_.StringRead(u"C:\\cfg");
    EXPECT_TRUE(content == u"new" || (content == u"old" && !done)) << step;
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
  files_.StringWrite(u"C:\\cfg", std::u16string(20'000, u'c'));
  const pid_t first = writer(u'a'), second = writer(u'b');
  for (int round = 0; round < 200; ++round) {
    const std::u16string content = files_.StringRead(u"C:\\cfg");
    ASSERT_EQ(content, std::u16string(20'000, content.front()));
  }
  EXPECT_TRUE(Succeeds(first));
  EXPECT_TRUE(Succeeds(second));
  EXPECT_EQ(Entries(), 1);
}

}  // namespace
}  // namespace rowlark
