// A set of rows of a sheet, one bit a row: setting a block of rows, the test of one row and the next row in
// or out of the set cost next to nothing, in any order of use.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "host/cells/Address.h"
#include "host/spreadsheet.h"

namespace rowlark::cells {

using host::RowRun;

class RowSet {
 public:
  bool Contains(int32_t row) const {
    const auto word = Word(row);
    return word < words_.size() && ((words_[word] >> (row & 63)) & 1) != 0;
  }

  // Adds or removes the rows first to last; true when that changed the set.
  bool Assign(int32_t first, int32_t last, bool in) {
    if (in && Word(last) >= words_.size()) words_.resize(Word(last) + 1);
    last = std::min(last, End() - 1);
    bool changed = false;
    for (auto word = Word(first); first <= last && word <= Word(last); ++word) {
      uint64_t mask = ~uint64_t{0};
      if (word == Word(first)) mask &= ~uint64_t{0} << (first & 63);
      if (word == Word(last)) mask &= ~uint64_t{0} >> (63 - (last & 63));
      const uint64_t value = in ? words_[word] | mask : words_[word] & ~mask;
      changed |= value != words_[word];
      words_[word] = value;
    }
    return changed;
  }

  // The first row from `row` to `last` that is in the set (or out of it); last + 1 when there is none.
  int32_t Next(int32_t row, int32_t last, bool in) const {
    for (auto word = Word(row); row <= last; ++word) {
      if (row >= End()) return in ? last + 1 : row;
      uint64_t bits = in ? words_[word] : ~words_[word];
      bits &= ~uint64_t{0} << (row & 63);
      row = static_cast<int32_t>(word * 64);
      if (bits != 0) return std::min(row + std::countr_zero(bits), last + 1);
      row += 64;
    }
    return last + 1;
  }

  // The first row from `row` to `last` that is in one of both sets alone; last + 1 when there is none.
  int32_t NextDifference(const RowSet& other, int32_t row, int32_t last) const {
    for (auto word = Word(row); row <= last; ++word) {
      const uint64_t bits = (Bits(word) ^ other.Bits(word)) & (~uint64_t{0} << (row & 63));
      row = static_cast<int32_t>(word * 64);
      if (bits != 0) return std::min(row + std::countr_zero(bits), last + 1);
      row += 64;
    }
    return last + 1;
  }

  // The last row from `row` back to `first` that is in the set (or out of it); first - 1 when there is none.
  int32_t Previous(int32_t row, int32_t first, bool in) const {
    if (row >= End()) {
      if (!in) return row;
      row = End() - 1;
    }
    for (auto word = Word(row); row >= first; --word) {
      uint64_t bits = in ? words_[word] : ~words_[word];
      bits &= ~uint64_t{0} >> (63 - (row & 63));
      row = static_cast<int32_t>(word * 64);
      if (bits != 0) return std::max(row + 63 - std::countl_zero(bits), first - 1);
      --row;
    }
    return first - 1;
  }

  // Calls visit(RowRun) for every run of rows from `first` to `last` that are in the set (or out of it), in
  // ascending order.
  template <class Visit>
  void ForEachRun(int32_t first, int32_t last, bool in, Visit&& visit) const {
    for (int32_t row = Next(first, last, in); row <= last;) {
      const int32_t end = Next(row, last, !in);
      visit(RowRun{row, end - 1});
      row = Next(end, last, in);
    }
  }

  // How many rows from `first` to `last` are in the set (or out of it).
  int32_t Count(int32_t first, int32_t last, bool in) const {
    int32_t count = 0;
    ForEachRun(first, last, in, [&count](RowRun run) { count += run.Rows(); });
    return count;
  }

 private:
  static std::size_t Word(int32_t row) { return static_cast<std::size_t>(row) / 64; }

  uint64_t Bits(std::size_t word) const { return word < words_.size() ? words_[word] : 0; }

  // No row from that one on is in the set.
  int32_t End() const { return static_cast<int32_t>(words_.size()) * 64; }

  std::vector<uint64_t> words_;  // of the rows from 0 on
};

}  // namespace rowlark::cells
