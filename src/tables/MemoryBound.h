// How much memory a table may take: without a bound a few bytes that repeat a row fill that of the machine.
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace rowlark {

// Of the machine; in bytes.
std::uint64_t PhysicalMemory();

class MemoryBound {
 public:
  explicit MemoryBound(std::uint64_t bytes = PhysicalMemory() / 2) : bytes_(bytes) {}

  std::uint64_t Bytes() const noexcept { return bytes_; }
  // For the process that reads a file: it keeps texts that repeat, and one row.
  std::uint64_t OfReader() const noexcept { return bytes_ / 2; }

  // Called before a row is stored. Throws std::runtime_error with the reason when the table becomes too
  // large.
  void Add(std::span<const std::string_view> cells) {
    constexpr std::uint64_t kCopies = 2;  // one of them case-folded
    used_ += kCopies * (sizeof(std::size_t) + cells.size() + 1);
    for (const auto& cell : cells) used_ += kCopies * cell.size();
    if (used_ <= bytes_) return;
    throw std::runtime_error("Too large: the table would take more than " + std::to_string(bytes_ >> 20) +
                             " MiB of memory; the rows before are there");
  }

 private:
  std::uint64_t bytes_;
  std::uint64_t used_ = 0;
};

}  // namespace rowlark
