// Texts as Windows has them: wchar_t is a UTF-16 unit there.
#pragma once

#include <string>
#include <string_view>

namespace rowlark::windows {

inline std::wstring ToWide(std::u16string_view text) { return {text.begin(), text.end()}; }

// The same text in place.
inline const wchar_t* AsWide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
inline const char16_t* AsUtf16(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

}  // namespace rowlark::windows
