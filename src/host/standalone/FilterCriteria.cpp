#include "host/standalone/FilterCriteria.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>

#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::standalone {
namespace {

std::optional<double> ToNumber(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

[[noreturn]] void Refuse() { throw host::Error(1004, u"AutoFilter method of Range class failed"); }

bool IsTopOrBottom(int32_t operation) {
  return operation >= host::xlTop10Items && operation <= host::xlBottom10Percent;
}

// How many items, or how many percent, a top or bottom filter keeps.
std::optional<double> TopCount(const host::Criterion& criterion) {
  const auto* text = std::get_if<std::u16string>(&criterion);
  const auto count = text == nullptr ? std::nullopt : ToNumber(ToUtf8(*text));
  return count && *count >= 1 && *count <= 500 ? count : std::nullopt;
}

std::function<bool(std::string_view)> CompileTop(int32_t operation, double count, const CellText& text,
                                                 int32_t column, int32_t first_row, int32_t last_row) {
  std::vector<double> numbers;
  for (int32_t row = first_row; row <= last_row; ++row) {
    if (const auto number = ToNumber(text.Cell(row, column, true))) numbers.push_back(*number);
  }
  if (operation == host::xlTop10Percent || operation == host::xlBottom10Percent) {
    count = std::max(1.0, std::floor(static_cast<double>(numbers.size()) * count / 100));
  }
  const auto kept = std::min(numbers.size(), static_cast<std::size_t>(count));
  if (kept == 0) return [](std::string_view) { return false; };
  const bool top = operation == host::xlTop10Items || operation == host::xlTop10Percent;
  const auto nth = numbers.begin() + static_cast<std::ptrdiff_t>(kept - 1);
  if (top) {
    std::nth_element(numbers.begin(), nth, numbers.end(), std::greater<>());
  } else {
    std::nth_element(numbers.begin(), nth, numbers.end());
  }
  return [top, limit = *nth](std::string_view cell) {
    const auto number = ToNumber(cell);
    return number && (top ? *number >= limit : *number <= limit);
  };
}

}  // namespace

Comparison::Comparison(std::u16string_view criterion) {
  constexpr std::pair<std::u16string_view, Operation> kPrefixes[] = {
      {u"<>", Operation::NotEqual}, {u"<=", Operation::LessOrEqual}, {u">=", Operation::GreaterOrEqual},
      {u"<", Operation::Less},      {u">", Operation::Greater},      {u"=", Operation::Equal}};
  for (const auto& [prefix, operation] : kPrefixes) {
    if (criterion.starts_with(prefix)) {
      operation_ = operation;
      criterion.remove_prefix(prefix.size());
      break;
    }
  }
  text_ = ToUtf8(FoldCase(criterion));
  number_ = ToNumber(text_);
  pattern_ = Pattern(criterion, true, false);
}

bool Comparison::Accepts(std::string_view folded) const {
  const auto number = number_ ? ToNumber(folded) : std::nullopt;
  if (operation_ == Operation::Equal || operation_ == Operation::NotEqual) {
    const bool equal = (number && *number == *number_) || pattern_.Matches(folded);
    return equal == (operation_ == Operation::Equal);
  }
  int order = 0;
  if (number_) {
    if (!number) return false;
    order = *number < *number_ ? -1 : *number > *number_ ? 1 : 0;
  } else {
    if (folded.empty()) return false;
    order = folded.compare(text_);
  }
  switch (operation_) {
    case Operation::Less:
      return order < 0;
    case Operation::LessOrEqual:
      return order <= 0;
    case Operation::Greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

ColumnFilter MakeColumnFilter(const host::AutoFilterArguments& arguments) {
  ColumnFilter filter;
  if (!arguments.Criteria1) {
    if (arguments.Criteria2) Refuse();
    return filter;
  }
  filter.on = true;
  filter.criteria1 = arguments.Criteria1;
  filter.criteria2 = arguments.Criteria2;
  filter.operation = arguments.Operator.value_or(arguments.Criteria2 ? host::xlAnd : host::xlNoOperator);

  const bool is_list = std::holds_alternative<std::vector<std::u16string>>(*arguments.Criteria1);
  if (filter.operation == host::xlAnd || filter.operation == host::xlOr ||
      filter.operation == host::xlNoOperator) {
    if (is_list || (filter.criteria2 && !std::holds_alternative<std::u16string>(*filter.criteria2))) Refuse();
    if (!filter.criteria2) filter.operation = host::xlNoOperator;
  } else if (IsTopOrBottom(filter.operation)) {
    if (filter.criteria2 || !TopCount(*filter.criteria1)) Refuse();
  } else if (filter.operation == host::xlFilterValues) {
    if (filter.criteria2) Refuse();
  } else {
    Refuse();
  }
  return filter;
}

std::function<bool(std::string_view folded)> CompileFilter(const ColumnFilter& filter, const CellText& text,
                                                           int32_t column, int32_t first_row,
                                                           int32_t last_row) {
  if (IsTopOrBottom(filter.operation)) {
    return CompileTop(filter.operation, *TopCount(*filter.criteria1), text, column, first_row, last_row);
  }
  std::vector<Comparison> comparisons;
  if (const auto* list = std::get_if<std::vector<std::u16string>>(&*filter.criteria1)) {
    for (const auto& value : *list) comparisons.emplace_back(value);
  } else {
    comparisons.emplace_back(std::get<std::u16string>(*filter.criteria1));
  }
  if (filter.criteria2) comparisons.emplace_back(std::get<std::u16string>(*filter.criteria2));
  return
      [all = filter.operation == host::xlAnd, comparisons = std::move(comparisons)](std::string_view cell) {
        const auto accepts = [cell](const Comparison& c) { return c.Accepts(cell); };
        return all ? std::all_of(comparisons.begin(), comparisons.end(), accepts)
                   : std::any_of(comparisons.begin(), comparisons.end(), accepts);
      };
}

}  // namespace rowlark::standalone
