// Bytes that come chunk by chunk, one a call, with an empty one at the end.
#pragma once

#include <functional>
#include <string>

namespace rowlark {

using Chunks = std::function<std::string()>;

}  // namespace rowlark
