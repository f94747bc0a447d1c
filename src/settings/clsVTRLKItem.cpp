#include "settings/clsVTRLKItem.h"

#include <vector>

#include "settings/Configuration.h"
#include "util/PathMap.h"
#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {

std::u16string_view clsVTRLKItem::NameOf(std::u16string_view path) {
  return path.substr(path.find_last_of(PathMap::kSeparators) + 1);
}

void clsVTRLKItem::SetFileFullName(std::u16string_view path) {
  file_full_name_ = path;
  name_ = NameOf(path);
}

void clsVTRLKItem::SetCoordinate(int32_t& coordinate, int32_t value) {
  coordinate = value;
  UpdateSearchRange();
}

void clsVTRLKItem::SetBlock(const rowlark::Block& block) {
  block_ = block;
  UpdateSearchRange();
}

void clsVTRLKItem::UpdateSearchRange() {
  UsingAutoRange =
      block_.first_row < 0 && block_.first_column < 0 && block_.last_row < 0 && block_.last_column < 0;
  // Most profiles have no block: no need to ask the host, when there is no address to take away, or when a
  // corner at 0 lies off any sheet.
  if (!block_.IsClosed() && (block_.first_row >= 0 || search_range_.empty())) return;
  // Off the sheet, or without cells, the text stays.
  Attempt(foundation_->Trace(), [this] {
    const auto application = foundation_->ExcelApp;
    const auto sheet = application ? application->ActiveSheet() : nullptr;
    if (!sheet) return;
    if (block_.first_row < 0) {
      search_range_.clear();
      return;
    }
    const auto origin = sheet->Range(u"A1");
    const auto first = origin->Offset(block_.first_row - 1, block_.first_column - 1)->AddressLocal();
    const auto last = origin->Offset(block_.last_row - 1, block_.last_column - 1)->Address();
    search_range_ = WithoutDollars(first + u":" + last);
  });
}

std::u16string clsVTRLKItem::ToString() const {
  const auto flag = [](bool on) { return std::u16string(on ? u"1" : u""); };
  const std::vector<std::u16string> fields = {
      file_full_name_,  name_,      ToText(StartCol()), ToText(StartRow()),       ToText(EndCol()),
      ToText(EndRow()), SearchCols, ToText(SelectCol),  flag(UnhideJumpFirstRow), flag(DontSaveChanges)};
  return mclsVTString::ArrayJoin(fields, PackedCount::Text);
}

bool clsVTRLKItem::ToObject(std::u16string_view strData) {
  if (strData.empty()) return true;
  const auto fields = StoredList(strData, 10);
  const auto text = [&fields](std::size_t field, std::u16string& present) {
    if (fields[field]) present = *fields[field];
  };
  const auto number = [&fields](std::size_t field, int32_t present) {
    return ToInteger(fields[field].value_or(u"")).value_or(present);
  };
  const auto flag = [&fields](std::size_t field, bool& present) {
    if (fields[field]) present = !fields[field]->empty();
  };
  text(0, file_full_name_);
  text(1, name_);
  SetStartCol(number(2, StartCol()));
  SetStartRow(number(3, StartRow()));
  SetEndCol(number(4, EndCol()));
  SetEndRow(number(5, EndRow()));
  text(6, SearchCols);
  SelectCol = number(7, SelectCol);
  flag(8, UnhideJumpFirstRow);
  flag(9, DontSaveChanges);
  return true;
}

std::shared_ptr<clsVTRLKItem> clsVTRLKItem::Clone(std::u16string_view strFileFullName) const {
  auto copy = std::make_shared<clsVTRLKItem>(foundation_);
  copy->SetFileFullName(strFileFullName.empty() ? std::u16string_view(file_full_name_) : strFileFullName);
  copy->SearchCols = SearchCols;
  copy->SelectCol = SelectCol;
  copy->SetBlock(block_);
  copy->UnhideJumpFirstRow = UnhideJumpFirstRow;
  copy->DontSaveChanges = DontSaveChanges;
  return copy;
}

}  // namespace rowlark
