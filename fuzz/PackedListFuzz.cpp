// Any text is a packed list or refused; a list that is read and packed again is the text that was read.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "util/AutomationError.h"
#include "util/Utf.h"
#include "util/mclsVTString.h"

using rowlark::mclsVTString;
using rowlark::PackedCount;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::u16string text(data, data + size);
  for (const auto count : {PackedCount::Text, PackedCount::Record}) {
    try {
      const auto list = mclsVTString::ArraySplit(text, count);
      const auto again = mclsVTString::ArrayJoin(list, count);
      // A single character at the end is passed over.
      if (again != text && again + text.back() != text) std::abort();
    } catch (const rowlark::AutomationError& error) {
      if (error.Number() != rowlark::AutomationError::kTypeMismatch) std::abort();
    }
  }
  mclsVTString::ArraySalvage(text, true);
  return 0;
}
