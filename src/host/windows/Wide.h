// Texts for Windows, whose wchar_t is a UTF-16 unit.
#pragma once

#include <string>
#include <string_view>

namespace rowlark::windows {

inline std::wstring Wide(std::u16string_view text) { return {text.begin(), text.end()}; }

}  // namespace rowlark::windows
