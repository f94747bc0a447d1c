// Numbers as a spreadsheet shows them, by the codes of number formats ("0.00", "dd.mm.yyyy",
// "#,##0;[Red]-#,##0").
#pragma once

#include <string>
#include <string_view>

namespace rowlark {

// The code of a built-in format of Office Open XML; "General" for those that have none. Dates whose format
// depends on the user's country are shown as year-month-day.
std::string_view BuiltinFormat(int id);

// Digits, grouping, percent, exponents, dates, times and texts around them, with the names of months and days
// in English. Fractions, alignment, conditions and anything unknown is shown as General: up to 15 digits.
// Dates are days since 1899-12-30, or since 1904-01-01.
std::string FormatNumber(double value, std::string_view code, bool since_1904 = false);

}  // namespace rowlark
