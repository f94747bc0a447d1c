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

void clsVTRLKItem::UpdateSearchRange() {
  UsingAutoRange = end_col_ < 0 && end_row_ < 0 && start_col_ < 0 && start_row_ < 0;
  // Most profiles have no block: no need to ask the host, when there is no address to take away, or when a
  // corner at 0 lies off any sheet.
  const bool on_sheet = start_row_ > 0 && start_col_ > 0 && end_row_ > 0 && end_col_ > 0;
  if (!on_sheet && (start_row_ >= 0 || search_range_.empty())) return;
  try {
    const auto application = foundation_->ExcelApp;
    const auto sheet = application ? application->ActiveSheet() : nullptr;
    if (!sheet) return;
    if (start_row_ < 0) {
      search_range_.clear();
      return;
    }
    const auto origin = sheet->Range(u"A1");
    auto address = origin->Offset(start_row_ - 1, start_col_ - 1)->AddressLocal() + u":" +
                   origin->Offset(end_row_ - 1, end_col_ - 1)->Address();
    std::erase(address, u'$');
    search_range_ = std::move(address);
  } catch (const host::Error&) {  // NOLINT(bugprone-empty-catch): off the sheet, or no cells; the text stays
  }
}

std::u16string clsVTRLKItem::ToString() const {
  const auto flag = [](bool on) { return std::u16string(on ? u"1" : u""); };
  const std::vector<std::u16string> fields = {
      file_full_name_,  name_,      ToText(start_col_), ToText(start_row_),       ToText(end_col_),
      ToText(end_row_), SearchCols, ToText(SelectCol),  flag(UnhideJumpFirstRow), flag(DontSaveChanges)};
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
  SetStartCol(number(2, start_col_));
  SetStartRow(number(3, start_row_));
  SetEndCol(number(4, end_col_));
  SetEndRow(number(5, end_row_));
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
  copy->start_col_ = start_col_;
  copy->start_row_ = start_row_;
  copy->end_col_ = end_col_;
  copy->end_row_ = end_row_;
  copy->UpdateSearchRange();
  copy->UnhideJumpFirstRow = UnhideJumpFirstRow;
  copy->DontSaveChanges = DontSaveChanges;
  return copy;
}

}  // namespace rowlark
