// What holds of files that can not be replaced while somebody has them open.
#include <thread>

#include "util/FileSystem.h"

namespace rowlark {
namespace {

using FileSystemOnWindows = testing::FileSystem;

TEST_F(FileSystemOnWindows, WritersAtTheSameTimeWaitForOneAnother) {
  const auto write = [this](char16_t letter) {
    for (int i = 0; i < 50; ++i) files_.StringWrite(u"R:\\cfg", std::u16string(20'000, letter));
  };
  std::thread other([&] { EXPECT_EQ(testing::FailureOf([&] { write(u'a'); }), u""); });
  EXPECT_EQ(testing::FailureOf([&] { write(u'b'); }), u"");
  other.join();
  const std::u16string content = files_.StringRead(u"R:\\cfg");
  EXPECT_EQ(content, std::u16string(20'000, content.front()));
  for (const auto& entry : std::filesystem::directory_iterator(at_)) {
    EXPECT_FALSE(entry.path().filename().string().starts_with(".rowlark")) << entry.path();
  }
}

}  // namespace
}  // namespace rowlark
