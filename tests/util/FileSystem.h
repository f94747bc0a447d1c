// A folder with drives, for tests of the file system.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "TempFolder.h"
#include "util/AutomationError.h"
#include "util/Utf.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark::testing {

// Member and description of the failure; empty when there is none.
inline std::u16string FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const AutomationError& error) {
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040385));
    return error.Source().substr(error.Source().rfind(u'.') + 1) + u": " + error.Description();
  }
  return u"";
}

class FileSystem : public ::testing::Test {
 protected:
  std::ptrdiff_t Entries() const { return std::distance(std::filesystem::directory_iterator(at_), {}); }

  // The drives are none that a machine has.
  const TempFolder folder_;
  const std::filesystem::path at_ = folder_.Path();
  const std::u16string path_ = ToUtf16(at_.string());
  const std::u16string slash_{std::filesystem::path::preferred_separator};
  const mclsVTFileSystem files_{PathMap({{u"R:", at_}, {u"S:", at_ / "missing"}, {u"\\\\Server", at_}})};
};

}  // namespace rowlark::testing
