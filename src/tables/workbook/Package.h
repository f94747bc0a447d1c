// The parts of a ZIP archive.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace rowlark {

class Package {
 public:
  // Throws std::exception for what is no archive. The bytes have to stay.
  explicit Package(std::string_view bytes);
  ~Package();

  bool Has(const std::string& name) const;
  // Nothing when there is no such part. Throws std::exception for one that is damaged.
  std::optional<std::string> Read(const std::string& name) const;

 private:
  struct Archive;
  std::unique_ptr<Archive> archive_;
};

}  // namespace rowlark
