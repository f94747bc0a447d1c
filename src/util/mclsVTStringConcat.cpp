#include "util/mclsVTStringConcat.h"

#include <limits>

#include "util/AutomationError.h"

namespace rowlark {

void mclsVTStringConcat::Clear() noexcept {
  buffer_ = std::u16string();
  chars_allocated_ = 0;
}

void mclsVTStringConcat::Add(std::u16string_view text) {
  constexpr std::size_t kMaxLength = std::numeric_limits<int32_t>::max();
  const auto source = [] { return std::u16string(u"VTRLKRuntime.mclsVTStringConcat.Add"); };

  if (text.size() > kMaxLength - buffer_.size()) throw AutomationError::Overflow(source());
  const auto need = static_cast<int64_t>(buffer_.size() + text.size());
  if (need > chars_allocated_) {
    if (alloc_size_ == 0) throw AutomationError::DivisionByZero(source());
    const int64_t block = alloc_size_;
    const int64_t allocated = chars_allocated_ + ((need - chars_allocated_) / block + 1) * block;
    if (allocated < need) throw AutomationError::InvalidCall(source());
    if (allocated > static_cast<int64_t>(kMaxLength)) throw AutomationError::Overflow(source());
    buffer_.reserve(static_cast<std::size_t>(allocated));
    chars_allocated_ = static_cast<int32_t>(allocated);
  }
  buffer_ += text;
}

}  // namespace rowlark
