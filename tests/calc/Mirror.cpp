#include "Mirror.h"

#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/sheet/XDatabaseRange.hpp>
#include <com/sun/star/sheet/XSheetFilterDescriptor3.hpp>
#include <com/sun/star/util/XProtectable.hpp>

#include <cstdlib>
#include <string>

#include "host/calc/Query.h"
#include "util/Utf.h"

namespace rowlark::testing {
namespace {

// More than the tests look at.
constexpr int32_t kRows = 16;
constexpr int32_t kColumns = 6;

}  // namespace

Mirror::Mirror() : application_(MakeRef<calc::Application>(TheContext())) {
  document_.StoreAs(std::string(std::getenv("ROWLARK_TEST_FOLDER")) + "/Book1.xls");
}

void Mirror::Connect(Session& session) {
  const auto before = "Sheet" + std::to_string(sheets_);
  document_.AddSheet("Sheet" + std::to_string(++sheets_), 1);
  document_.ActivateSheet(1);
  document_.RemoveSheet(before);
  filtered_ = false;
  session.runtime.SetExcelApp(application_);
  session.host = application_;
  session.BeforeSearch = [this, &session] { Push(session); };
  session.AfterSearch = [this, &session] { Pull(session); };
}

void Mirror::Push(Session& session) {
  ++searches_;
  auto& model = *session.sheet;
  for (int32_t row = 1; row <= kRows; ++row) {
    for (int32_t column = 1; column <= kColumns; ++column) {
      const std::string text(model.Text().Cell(row, column));
      if (document_.Shown(row, column) != text) document_.SetText(row, column, ToUtf16(text));
    }
  }
  if (model.AutoFilterMode() && !filtered_) {
    filtered_ = true;
    const auto& filter = model.Filter();
    int32_t field = 0;
    std::u16string criterion;
    for (std::size_t i = 0; i < filter.columns.size(); ++i) {
      if (!filter.columns[i].on) continue;
      field = static_cast<int32_t>(i) + 1;
      criterion = std::get<std::u16string>(*filter.columns[i].criteria1);
    }
    document_.Filter(ToUtf8(filter.range.Address()), field, criterion);
  }
  for (int32_t row = 1; row <= kRows; ++row) {
    const bool hidden = model.HiddenRows().Contains(row);
    if (document_.Hidden(row) != hidden) document_.SetHidden(row, hidden);
  }
  document_.Select(ToUtf8(model.ActiveCell().Address()));
  if (model.ProtectScenarios()) calc::As<com::sun::star::util::XProtectable>(document_.Sheet())->protect({});
}

void Mirror::Pull(Session& session) {
  auto& model = *session.sheet;
  if (model.ProtectScenarios())
    calc::As<com::sun::star::util::XProtectable>(document_.Sheet())->unprotect({});
  model.Protect({});
  for (int32_t row = 1; row <= kRows; ++row) model.SetHidden({row, 1, row, 1}, document_.Hidden(row));
  const auto active = application_->ActiveCell();
  const auto cell = Block::OfCell(active->Row(), active->Column());
  model.Select({cell}, {cell.first_row, cell.first_column});
  session.application->SetScreenUpdating(application_->ScreenUpdating());
  session.application->SetEnableEvents(application_->EnableEvents());
  session.application->SetEnableAnimations(application_->EnableAnimations());
}

}  // namespace rowlark::testing
