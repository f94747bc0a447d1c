// Numbers as a spreadsheet shows them, by the codes of number formats ("0.00", "dd.mm.yyyy",
// "#,##0;[Red]-#,##0").
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tables/format/Calendar.h"
#include "tables/format/DateNames.h"
#include "tables/format/FormatCode.h"

namespace rowlark {

// The code of a built-in format of Office Open XML; "General" for those that have none. Dates whose format
// depends on the user's country are shown as year-month-day.
std::string_view BuiltinFormat(int id);

class NumberFormat {
 public:
  // A code that makes no sense is that of General.
  explicit NumberFormat(std::string_view code = {});

  // Shown as General, with up to 15 digits, where no section is for this number and where it is no date
  // though the format is one of dates.
  std::string Number(double value, Calendar calendar = Calendar::Since1900) const;
  std::string Text(std::string_view text) const;
  // Whether numbers above 0 are shown as dates.
  bool IsDate() const;

 private:
  std::vector<FormatSection> sections_;  // for numbers
  FormatSection text_;
  DateNames names_;
};

}  // namespace rowlark
