// Error values of cells as they travel: XlCVError numbers in the scode.
#pragma once

#include <cstdint>
#include <string_view>

#include <windows.h>

namespace rowlark::automation {

constexpr SCODE ErrorCode(int32_t number) {
  constexpr auto kControls = static_cast<SCODE>(0x800A0000u);
  return kControls + number;
}

struct ErrorValue {
  SCODE code;
  std::u16string_view text;
};

inline constexpr ErrorValue kErrorValues[] = {
    {ErrorCode(2000), u"#NULL!"}, {ErrorCode(2007), u"#DIV/0!"}, {ErrorCode(2015), u"#VALUE!"},
    {ErrorCode(2023), u"#REF!"},  {ErrorCode(2029), u"#NAME?"},  {ErrorCode(2036), u"#NUM!"},
    {ErrorCode(2042), u"#N/A"},
};

}  // namespace rowlark::automation
