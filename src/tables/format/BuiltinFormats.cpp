#include "tables/format/NumberFormat.h"

namespace rowlark {

std::string_view BuiltinFormat(int id) {
  switch (id) {
    case 1:
      return "0";
    case 2:
      return "0.00";
    case 3:
      return "#,##0";
    case 4:
      return "#,##0.00";
    case 5:
    case 6:
      return "$#,##0_);($#,##0)";
    case 7:
    case 8:
      return "$#,##0.00_);($#,##0.00)";
    case 9:
      return "0%";
    case 10:
      return "0.00%";
    case 11:
      return "0.00E+00";
    case 12:
      return "# ?/?";
    case 13:
      return "# ?\?/?\?";
    case 14:
      return "yyyy-mm-dd";
    case 15:
      return "d-mmm-yy";
    case 16:
      return "d-mmm";
    case 17:
      return "mmm-yy";
    case 18:
      return "h:mm AM/PM";
    case 19:
      return "h:mm:ss AM/PM";
    case 20:
      return "h:mm";
    case 21:
      return "h:mm:ss";
    case 22:
      return "yyyy-mm-dd h:mm";
    case 37:
    case 38:
      return "#,##0_);(#,##0)";
    case 39:
    case 40:
      return "#,##0.00_);(#,##0.00)";
    case 41:
      return R"(_(* #,##0_);_(* (#,##0);_(* "-"_);_(@_))";
    case 42:
      return R"(_($* #,##0_);_($* (#,##0);_($* "-"_);_(@_))";
    case 43:
      return R"(_(* #,##0.00_);_(* (#,##0.00);_(* "-"??_);_(@_))";
    case 44:
      return R"(_($* #,##0.00_);_($* (#,##0.00);_($* "-"??_);_(@_))";
    case 45:
      return "mm:ss";
    case 46:
      return "[h]:mm:ss";
    case 47:
      return "mm:ss.0";
    case 48:
      return "##0.0E+0";
    case 49:
      return "@";
    default:
      return "General";
  }
}

}  // namespace rowlark
