#include "util/mclsVTFileSystem.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "FileSystem.h"

namespace rowlark {
namespace {

namespace fs = std::filesystem;

using testing::FailureOf;
using testing::FileSystem;

TEST_F(FileSystem, MakesRenamesAndDeletes) {
  files_.DirsMake(u"r:\\a\\b/c\\");
  files_.DirsMake(u"\\\\server\\share\\x");
  files_.DirsMake(path_ + u"/n\\m");
  for (const char* made : {"a/b/c", "share/x", "n/m"}) EXPECT_TRUE(fs::is_directory(at_ / made)) << made;
  EXPECT_TRUE(files_.IsPathExists(u"R:\\A\\..\\a\\b\\c\\"));
  EXPECT_FALSE(files_.IsPathExists(u"X:\\") || files_.IsFileExists(u"R:\\a"));

  files_.StringWrite(u"R:\\n\\m\\.keep", u"kept");
  EXPECT_TRUE(files_.IsDirEmpty(u"R:\\n\\m"));
  files_.FileRename(u"R:\\n\\m\\.keep", u"x");
  EXPECT_FALSE(files_.IsDirEmpty(u"R:\\n\\m"));
  files_.DirRename(u"R:\\n\\m\\", u"c");
  EXPECT_EQ(files_.StringRead(u"R:\\n\\c\\x"), u"kept");
  fs::permissions(at_ / "n/c/x", fs::perms::owner_read);
  files_.FileKill(u"R:\\n\\c\\x", true);
  for (const std::u16string_view directory : {u"R:\\n", u"R:\\a", u"R:\\share"}) files_.DirKill(directory);
  EXPECT_EQ(Entries(), 0);
}

TEST_F(FileSystem, FailsWithItsReasonAndChangesNothing) {
  files_.DirsMake(u"R:\\a\\b");
  for (const std::u16string_view file : {u"R:\\a\\x", u"R:\\a\\y"}) files_.StringWrite(file, u"kept");
  fs::permissions(at_ / "a/x", fs::perms::owner_read);
  // What each failure begins with; the system's own words follow.
  const std::pair<std::u16string_view, std::function<void()>> rows[] = {
      {u"DirsMake: Drive is not found X:", [&] { files_.DirsMake(u"X:\\a\\b"); }},
      {u"DirsMake: Device S: is not ready", [&] { files_.DirsMake(u"S:\\a"); }},
      {u"DirsMake: DirFullPath = 'R:\\a\\x': ", [&] { files_.DirsMake(u"R:\\a\\x\\z"); }},
      {u"FileKill: FileFullName = 'R:\\a\\x': ", [&] { files_.FileKill(u"R:\\a\\x"); }},
      {u"FileKill: FileFullName = 'R:\\a': ", [&] { files_.FileKill(u"R:\\a", true); }},
      {u"DirKill: DirFullPath = 'R:\\a': ", [&] { files_.DirKill(u"R:\\a"); }},
      {u"DirKill: DirFullPath = 'R:\\a\\y': ", [&] { files_.DirKill(u"R:\\a\\y"); }},
      {u"Lock: FileFullName = 'R:\\a\\z': ",
       [&] { const auto first = files_.Lock(u"R:\\a\\z"), second = files_.Lock(u"R:\\a\\z", {}); }},
      {u"StringRead: FileFullName = 'R:\\a': ", [&] { files_.StringRead(u"R:\\a"); }},
      {u"StringWrite: FileFullName = 'R:\\a\\b': ", [&] { files_.StringWrite(u"R:\\a\\b", u"x"); }},
      {u"StringWrite: FileFullName = 'R:\\z\\f': ", [&] { files_.StringWrite(u"R:\\z\\f", u"x"); }}};
  for (const auto& [expected, operation] : rows) {
    EXPECT_EQ(FailureOf(operation).substr(0, expected.size()), expected);
  }
  for (const std::u16string_view name : {u"y", u"", u"..", u"b\\z", u"/z"}) {
    EXPECT_NE(FailureOf([&] { files_.FileRename(u"R:\\a\\x", name); }), u"") << ToUtf8(name);
  }
  EXPECT_EQ(files_.StringRead(u"R:\\a\\x") + files_.StringRead(u"R:\\a\\y"), u"keptkept");
  EXPECT_EQ(Entries(), 1);
  files_.DirKill(u"R:\\a", true);
}

TEST_F(FileSystem, ListsFilesInTheFormOfTheFolder) {
  using List = std::vector<std::u16string>;
  files_.DirsMake(u"R:\\l\\sub\\deep");
  for (const char* name : {"l/b", "l/a", "l/sub/z", "l/sub/deep/y"}) folder_.Write(name, "");
  const auto scan = [this](std::u16string_view directory, bool recursive) {
    mclsVTDictionary found;
    files_.DirScanFiles(directory, found, recursive);
    return List(found.begin(), found.end());
  };
  EXPECT_EQ(scan(u"R:\\l\\", false), (List{u"R:\\l\\a", u"R:\\l\\b"}));
  EXPECT_EQ(scan(u"r:\\l", true), (List{u"r:\\l\\a", u"r:\\l\\b", u"r:\\l\\sub\\z", u"r:\\l\\sub\\deep\\y"}));
  EXPECT_EQ(scan(path_ + u"/l", false),
            (List{path_ + slash_ + u"l" + slash_ + u"a", path_ + slash_ + u"l" + slash_ + u"b"}));
  EXPECT_EQ(scan(u"R:\\none", true), List());
}

TEST_F(FileSystem, NormalizesPaths) {
  const fs::path before = fs::current_path();
  const std::array<std::u16string_view, 3> rows[] = {
      {u"..\\cfg\\", u"R:\\app\\bin\\", u"R:\\app\\cfg"},
      {u"S:/x//y/.\\..\\..\\..\\z", u"R:\\app", u"S:\\z"},
      {u"\\x", u"R:\\app", u"R:\\x"},
      {u"\\\\server\\share\\..\\a\\..", u"", u"\\\\server\\share"}};
  for (const auto& [path, base, normal] : rows) EXPECT_EQ(files_.NormalizePath(path, false, base), normal);
  EXPECT_EQ(files_.NormalizePath(u"..\\cfg", true, u"R:\\app\\bin"), u"R:\\app\\cfg\\");
  EXPECT_EQ(files_.NormalizePath(u"x", true, path_), path_ + slash_ + u"x" + slash_);
  EXPECT_EQ(files_.NormalizePath(u"x"), path_ + slash_ + u"x");  // the base has become the current directory
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
  files_.StringWrite(u"R:\\text", any);
  files_.BinaryWrite(u"R:\\text", files_.BinaryRead(u"R:\\text"));
  EXPECT_EQ(files_.StringRead(u"R:\\text"), any);
  files_.StringWrite(u"R:\\text", u"ä");
  EXPECT_EQ(files_.BinaryRead(u"R:\\text"), (std::vector<uint8_t>{0xC3, 0xA4}));
}

// Some systems replace no file that somebody has open: then they wait for one another.
TEST_F(FileSystem, WritersAtTheSameTimeNeverTearAFile) {
  const auto write = [this](char16_t letter) {
    for (int i = 0; i < 50; ++i) files_.StringWrite(u"R:\\cfg", std::u16string(20'000, letter));
  };
  std::thread other([&] { EXPECT_EQ(FailureOf([&] { write(u'a'); }), u""); });
  EXPECT_EQ(FailureOf([&] { write(u'b'); }), u"");
  other.join();
  const std::u16string content = files_.StringRead(u"R:\\cfg");
  EXPECT_EQ(content, std::u16string(20'000, content.front()));
  // A system that replaces files may leave some of its own.
  for (const auto& entry : std::filesystem::directory_iterator(at_))
    EXPECT_FALSE(entry.path().filename().string().starts_with(".rowlark")) << entry.path();
}

TEST_F(FileSystem, SetsTimes) {
  using std::chrono::local_days, std::chrono::year;
  files_.StringWrite(u"R:\\x", u"");
  files_.FileSetDateTime(u"R:\\x", {}, {}, local_days(year(2021) / 7 / 4));
  const auto modified = files_.FileModified(u"R:\\x");
  EXPECT_LT(modified, fs::last_write_time(at_));
  files_.FileSetDateTime(u"R:\\x", local_days(year(2020) / 7 / 4), local_days(year(2022) / 7 / 4), {});
  EXPECT_EQ(files_.FileModified(u"R:\\x"), modified);
}

}  // namespace
}  // namespace rowlark
