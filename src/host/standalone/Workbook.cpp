#include "host/standalone/Workbook.h"

#include <string>

#include "host/standalone/Application.h"
#include "util/Utf.h"

namespace rowlark::standalone {

std::u16string Workbook::Name() const { return full_name_.substr(full_name_.find_last_of(u"\\/") + 1); }

Ref<Worksheet> Workbook::AddWorksheet(std::u16string_view name) {
  const auto next = u"Sheet" + ToUtf16(std::to_string(sheets_.size() + 1));
  sheets_.push_back(MakeRef<Worksheet>(*this, name.empty() ? next : name));
  active_sheet_ = sheets_.back();
  return sheets_.back();
}

Ref<ChartSheet> Workbook::AddChartSheet() {
  auto sheet = MakeRef<ChartSheet>(Ref<host::Workbook>(this));
  active_sheet_ = sheet;
  return sheet;
}

void Workbook::RaiseSelectionChange(host::Worksheet& sheet, host::Range& target) {
  if (host_->EnableEvents()) selection_change_.Raise(sheet, target);
}

void Workbook::Close() {
  active_sheet_ = nullptr;
  for (const auto& sheet : sheets_) sheet->Close();
}

}  // namespace rowlark::standalone
