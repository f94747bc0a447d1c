#include "host/Block.h"

#include <algorithm>

#include "host/Error.h"
#include "util/Text.h"

namespace rowlark {
namespace {

// Of up to three letters; 0 for anything else.
int32_t ColumnNumber(std::u16string_view letters) {
  int32_t number = 0;
  if (letters.size() > 3) return 0;
  for (const char16_t letter : letters) {
    const char32_t upper = ToUpper(char32_t{letter});
    if (upper < U'A' || upper > U'Z') return 0;
    number = number * 26 + static_cast<int32_t>(upper - U'A') + 1;
  }
  return number;
}

}  // namespace

Block Block::Of(const host::Range& range) {
  const int32_t row = range.Row();
  const int32_t column = range.Column();
  const int32_t rows = range.RowsCount();
  const int32_t columns = range.ColumnsCount();
  return {row, column, row + rows - 1, column + columns - 1};
}

std::u16string Block::Address() const {
  const auto cell = [](int32_t row, int32_t column) { return ColumnLetters(column) + ToText(row); };
  return cell(first_row, first_column) + u":" + cell(last_row, last_column);
}

Columns::Columns(std::u16string_view text) {
  if (text.empty()) return;
  const auto names = Pieces(text, u",");
  names_.assign(names.begin(), names.end());
}

std::vector<int32_t> Columns::On(const host::Worksheet& sheet) const {
  std::vector<int32_t> numbers;
  for (const auto& name : names_) {
    try {
      numbers.push_back(sheet.Range(name + u"1")->Column());
    } catch (const host::Error&) {
      if (ColumnNumber(name) <= sheet.Cells()->ColumnsCount()) throw;
    }
  }
  std::ranges::sort(numbers);
  return numbers;
}

std::u16string ColumnLetters(int32_t column) {
  std::u16string letters;
  for (; column > 0; column = (column - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char16_t>(u'A' + (column - 1) % 26));
  }
  return letters;
}

std::u16string WithoutDollars(std::u16string address) {
  std::erase(address, u'$');
  return address;
}

std::u16string PlainAddress(const host::Range& range) { return WithoutDollars(range.Address()); }

}  // namespace rowlark
