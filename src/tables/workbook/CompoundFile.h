// The streams of a compound file, in which older programs keep whole documents and newer ones those that are
// encrypted.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark {

class CompoundFile {
 public:
  // The bytes have to stay. Throws std::runtime_error for what is damaged.
  explicit CompoundFile(std::string_view bytes);

  // The stream of that name, in whichever folder of the file; nothing without one. Throws
  // std::runtime_error.
  std::optional<std::string> Read(std::string_view name) const;

 private:
  // What a chain of sectors holds, cut to `size` bytes.
  std::string Chain(uint32_t first, std::uint64_t size) const;
  std::string_view Sector(uint32_t sector) const;

  std::string_view bytes_;
  std::size_t sector_size_ = 0;
  std::size_t small_size_ = 0;     // of the sectors in which small streams lie
  std::uint64_t small_limit_ = 0;  // streams below it are small
  std::vector<uint32_t> next_;     // of each sector
  std::vector<uint32_t> next_small_;
  std::string directory_;
  std::string small_;  // the sectors of small streams
};

}  // namespace rowlark
