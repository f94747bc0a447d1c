#pragma once

#include <filesystem>
#include <memory>
#include <string_view>

#include "Platform.h"
#include "settings/clsVTRLKItems.h"

namespace rowlark::testing {

// A user's settings over one configuration file.
struct Settings : TestPlatform {
  explicit Settings(const std::filesystem::path& file = {}) : items(shared) {
    shared.Acquire();
    items.CfgFileName = ToUtf16(file.string());
  }
  ~Settings() { shared.Release(); }

  std::shared_ptr<clsVTRLKItem> Profile(std::u16string_view path) {
    auto item = std::make_shared<clsVTRLKItem>(shared);
    item->SetFileFullName(path);
    return item;
  }

  clsVTRLKItems items;
};

}  // namespace rowlark::testing
