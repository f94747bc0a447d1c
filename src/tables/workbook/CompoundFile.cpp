#include "tables/workbook/CompoundFile.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace rowlark {
namespace {

constexpr uint32_t kMaxSector = 0xFFFFFFFA;  // further on there are marks: the end of a chain, a free sector
constexpr std::size_t kEntry = 128;          // bytes of an entry of the directory

[[noreturn]] void Damaged() { throw std::runtime_error("Damaged compound file"); }

// Numbers are little-endian.
std::uint64_t Number(std::string_view bytes, std::size_t at, std::size_t size) {
  if (at + size > bytes.size()) Damaged();
  std::uint64_t number = 0;
  for (std::size_t i = size; i-- > 0;) number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
  return number;
}
uint32_t Number32(std::string_view bytes, std::size_t at) {
  return static_cast<uint32_t>(Number(bytes, at, 4));
}

void AppendNumbers(std::vector<uint32_t>& numbers, std::string_view bytes) {
  for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) numbers.push_back(Number32(bytes, at));
}

}  // namespace

CompoundFile::CompoundFile(std::string_view bytes) : bytes_(bytes) {
  constexpr std::size_t kInHeader = 109;  // places of sectors of the table
  const auto shift = Number(bytes, 30, 2);
  const auto small_shift = Number(bytes, 32, 2);
  if ((shift != 9 && shift != 12) || small_shift != 6) Damaged();
  sector_size_ = std::size_t{1} << shift;
  small_size_ = std::size_t{1} << small_shift;
  small_limit_ = Number32(bytes, 56);

  // Where the table of sectors lies: in the header, and in sectors of which each names the next one.
  std::vector<uint32_t> table;
  AppendNumbers(table, bytes.substr(0, 76 + kInHeader * 4).substr(76));
  auto more = Number32(bytes, 68);
  for (auto left = bytes.size() / sector_size_; more < kMaxSector; --left) {
    if (left == 0) Damaged();
    AppendNumbers(table, Sector(more));
    more = table.back();
    table.pop_back();
  }
  for (const auto sector : table) {
    if (sector < kMaxSector) AppendNumbers(next_, Sector(sector));
    if (next_.size() > bytes.size()) Damaged();
  }

  constexpr auto kAll = std::numeric_limits<std::uint64_t>::max();
  directory_ = Chain(Number32(bytes, 48), kAll);
  if (const auto first = Number32(bytes, 60); first < kMaxSector) {
    AppendNumbers(next_small_, Chain(first, kAll));
    small_ = Chain(Number32(directory_, 116), kAll);  // that of the root, the first entry
  }
}

std::string_view CompoundFile::Sector(uint32_t sector) const {
  const auto at = (std::uint64_t{sector} + 1) * sector_size_;  // behind the header
  if (at >= bytes_.size()) Damaged();
  return bytes_.substr(at, sector_size_);
}

std::string CompoundFile::Chain(uint32_t first, std::uint64_t size) const {
  std::string content;
  for (auto sector = first; sector < kMaxSector && content.size() < size; sector = next_[sector]) {
    if (sector >= next_.size() || content.size() > bytes_.size()) Damaged();
    content += Sector(sector);
  }
  if (content.size() > size) content.resize(size);
  return content;
}

std::optional<std::string> CompoundFile::Read(std::string_view name) const {
  for (std::size_t at = 0; at + kEntry <= directory_.size(); at += kEntry) {
    const auto entry = std::string_view(directory_).substr(at, kEntry);
    std::string of_entry;  // the names that are looked for are ASCII
    for (std::size_t i = 0; i < 64 && Number(entry, i, 2) != 0; i += 2) of_entry += entry[i];
    if (of_entry != name) continue;
    auto sector = Number32(entry, 116);
    const auto size = Number(entry, 120, sector_size_ == 512 ? 4 : 8);
    if (size >= small_limit_) return Chain(sector, size);
    std::string content;
    for (; sector < kMaxSector && content.size() < size; sector = next_small_[sector]) {
      if (sector >= next_small_.size() || (sector + std::size_t{1}) * small_size_ > small_.size() ||
          content.size() > small_.size()) {
        Damaged();
      }
      content += std::string_view(small_).substr(sector * small_size_, small_size_);
    }
    content.resize(std::min<std::uint64_t>(content.size(), size));
    return content;
  }
  return std::nullopt;
}

}  // namespace rowlark
