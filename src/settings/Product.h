// What the product is called, who makes it, and where its registry values lie.
#pragma once

#include <string_view>

namespace rowlark {

inline constexpr std::u16string_view kProductTitle = u"Vantrel Rowlark";
inline constexpr std::u16string_view kCompanyName = u"Vantrel";
inline constexpr std::u16string_view kProductMail = u"info@rowlark.example.com";
inline constexpr std::u16string_view kProductWebSite = u"https://rowlark.example.com";
inline constexpr std::u16string_view kProductKey = u"SOFTWARE\\Vantrel\\Office Addins\\Rowlark\\1.0";

}  // namespace rowlark
