// What the AutoFilter of one column lets through.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "host/cells/CellText.h"
#include "host/cells/Pattern.h"
#include "host/spreadsheet.h"

namespace rowlark::standalone {

using namespace cells;  // what sheets are made of

// A comparison as users type it: "Berlin", "=B*n", "<>x", ">=5", "=" (empty cells), "<>" (cells with a text).
// Numbers compare as numbers where both sides are numbers, anything else as text without regard to case.
class Comparison {
 public:
  explicit Comparison(std::u16string_view criterion);
  // `folded` is the cell's case-folded text.
  bool Accepts(std::string_view folded) const;

 private:
  enum class Operation { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

  Operation operation_ = Operation::Equal;
  std::string text_;  // case-folded UTF-8
  std::optional<double> number_;
  Pattern pattern_;
};

struct ColumnFilter {
  bool on = false;
  int32_t operation = host::xlNoOperator;
  std::optional<host::Criterion> criteria1;
  std::optional<host::Criterion> criteria2;
};

// The filter that the arguments ask for; throws host::Error for what the host refuses. Without a first
// criterion the column is not filtered.
ColumnFilter MakeColumnFilter(const host::AutoFilterArguments& arguments);

// The test of a cell of the column by its case-folded text. Top and bottom filters look at the whole column:
// its rows `first_row` to `last_row`.
std::function<bool(std::string_view folded)> CompileFilter(const ColumnFilter& filter, const CellText& text,
                                                           int32_t column, int32_t first_row,
                                                           int32_t last_row);

}  // namespace rowlark::standalone
