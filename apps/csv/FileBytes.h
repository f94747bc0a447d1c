// The content of a file, mapped where the platform can.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace rowlark {

struct Bytes {
  std::shared_ptr<const void> storage;  // keeps alive what `view` looks at
  std::string_view view;
};

inline Bytes Own(std::string text) {
  auto owned = std::make_shared<const std::string>(std::move(text));
  const std::string_view view = *owned;
  return {std::move(owned), view};
}

// Throws std::runtime_error("path: reason").
Bytes ReadBytes(const std::filesystem::path& path);

}  // namespace rowlark
