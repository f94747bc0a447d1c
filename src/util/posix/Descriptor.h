// An open file, by its number.
#pragma once

#include <unistd.h>

#include "util/Owner.h"

namespace rowlark {

struct DescriptorTraits {
  using Handle = int;
  static Handle None() noexcept { return -1; }
  static void Close(Handle number) noexcept { ::close(number); }
};
using Descriptor = Owner<DescriptorTraits>;

}  // namespace rowlark
