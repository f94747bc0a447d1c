#include "host/standalone/Application.h"

#include <algorithm>

#include "util/Text.h"

namespace rowlark::standalone {

Application::~Application() {
  for (const auto& workbook : workbooks_) workbook->Close();
}

Ref<host::Workbook> Application::ActiveWorkbook() const {
  if (workbooks_.empty()) return nullptr;
  return workbooks_.back();
}

Ref<host::Worksheet> Application::ActiveSheet() const {
  return workbooks_.empty() ? nullptr : workbooks_.back()->ActiveSheet();
}

Ref<Worksheet> Application::ActiveCells() const {
  const auto sheet = ActiveSheet();
  if (!sheet) return nullptr;
  auto* cells = dynamic_cast<Worksheet*>(sheet.get());
  if (cells == nullptr) throw host::Error(1004, u"Method 'ActiveCell' of object '_Application' failed");
  return cells;
}

Ref<host::Range> Application::ActiveCell() const {
  const auto sheet = ActiveCells();
  return sheet ? sheet->MakeRange(sheet->ActiveCell()) : nullptr;
}

Ref<host::Range> Application::Selection() const {
  const auto* sheet = dynamic_cast<Worksheet*>(ActiveSheet().get());
  return sheet != nullptr ? sheet->MakeRange(sheet->Selection()) : nullptr;
}

Ref<host::CommandBar> Application::CommandBars(std::u16string_view name) const {
  if (Compare(name, menu_bar_->Name(), CompareMode::Text) != 0) {
    throw host::Error(5, u"Invalid procedure call or argument");
  }
  return menu_bar_;
}

void Application::OnKey(std::u16string_view key, std::optional<std::u16string_view> macro) {
  if (key.empty()) throw host::Error(1004, u"Method 'OnKey' of object '_Application' failed");
  if (macro) {
    keys_.insert_or_assign(std::u16string(key), std::u16string(*macro));
  } else {
    keys_.erase(std::u16string(key));
  }
}

Ref<Workbook> Application::AddWorkbook(std::u16string_view full_name, bool read_only) {
  workbooks_.push_back(MakeRef<Workbook>(*this, full_name, read_only));
  workbooks_.back()->AddWorksheet();
  return workbooks_.back();
}

void Application::Activate(const Ref<Workbook>& workbook) {
  const auto at = std::ranges::find(workbooks_, workbook);
  std::rotate(at, at + 1, workbooks_.end());
}

void Application::Close(const Ref<Workbook>& workbook) {
  workbook->Close();
  std::erase(workbooks_, workbook);
  finder_.Forget();
}

}  // namespace rowlark::standalone
