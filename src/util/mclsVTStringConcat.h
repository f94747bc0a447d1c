// A string builder whose buffer grows in whole blocks. Lengths count UTF-16 units.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace rowlark {

class mclsVTStringConcat {
 public:
  int32_t CharsAllocated() const noexcept { return chars_allocated_; }
  int32_t CharsUsed() const noexcept { return static_cast<int32_t>(buffer_.size()); }

  // Growth block in characters. Any value is taken; `Add` fails with those that leave no room for its text.
  int32_t AllocSize() const noexcept { return alloc_size_; }
  void SetAllocSize(int32_t characters) noexcept { alloc_size_ = characters; }

  void Clear() noexcept;

  // Appends `text`. A full buffer grows by one block more than the shortfall has whole blocks. Raises
  // AutomationError: division by zero when a growth is needed and the block is 0, overflow beyond the 32-bit
  // range, invalid call when a negative block makes too little room. The content is unchanged then.
  void Add(std::u16string_view text);

  const std::u16string& GetStr() const noexcept { return buffer_; }

 private:
  std::u16string buffer_;
  int32_t chars_allocated_ = 0;
  int32_t alloc_size_ = 1000;
};

}  // namespace rowlark
