#include "settings/clsVTRLKItem.h"

#include <vector>

#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {

void clsVTRLKItem::SetFileFullName(std::u16string_view path) {
  file_full_name_ = path;
  name_ = mclsVTString::GetRight(path, u"\\", false, false, true);
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
    const auto sheet = shared_->ExcelApp ? shared_->ExcelApp->ActiveSheet() : nullptr;
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
  auto fields = mclsVTString::ArraySalvage(strData);
  if (fields.empty()) return true;
  fields.resize(10);
  file_full_name_ = fields[0];
  name_ = fields[1];
  const auto number = [&fields](std::size_t field, int32_t present) {
    return ToInteger(fields[field]).value_or(present);
  };
  SetStartCol(number(2, start_col_));
  SetStartRow(number(3, start_row_));
  SetEndCol(number(4, end_col_));
  SetEndRow(number(5, end_row_));
  SearchCols = fields[6];
  SelectCol = number(7, SelectCol);
  UnhideJumpFirstRow = !fields[8].empty();
  DontSaveChanges = !fields[9].empty();
  return true;
}

std::shared_ptr<clsVTRLKItem> clsVTRLKItem::Clone(std::u16string_view strFileFullName) const {
  auto copy = std::make_shared<clsVTRLKItem>(*shared_);
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
