#include "host/windows/ExcelRange.h"

#include <typeinfo>
#include <utility>

#include "host/Error.h"
#include "host/windows/ExcelValues.h"

namespace rowlark::windows {
namespace {

std::optional<int32_t> Number(const auto& enumerator) {
  return enumerator ? std::optional<int32_t>(*enumerator) : std::nullopt;
}

}  // namespace

IDispatch* ObjectOf(const host::Range& range) {
  if (typeid(range) != typeid(ExcelRange)) ThrowError(DISP_E_TYPEMISMATCH);
  return static_cast<const ExcelRange&>(range).Object();
}

void ExcelRange::Dispose() noexcept {
  object_ = Dispatch();
  const Ref<ExcelSession> session = std::move(session_);
  session->Recycle(this);
}

int32_t ExcelRange::Row() const { return object_.Long(session_->Range.Row); }

int32_t ExcelRange::Column() const { return object_.Long(session_->Range.Column); }

int32_t ExcelRange::RowsCount() const {
  return object_.Object(session_->Range.Rows).Long(session_->Rows.Count);
}

int32_t ExcelRange::ColumnsCount() const {
  return object_.Object(session_->Range.Columns).Long(session_->Columns.Count);
}

int32_t ExcelRange::AreasCount() const {
  return object_.Object(session_->Range.Areas).Long(session_->Areas.Count);
}

Ref<host::Range> ExcelRange::Areas(int32_t index) const {
  return session_->NeedRange(object_.Object(session_->Range.Areas).Object(session_->Areas.Item, index));
}

std::u16string ExcelRange::Address() const { return object_.Text(session_->Range.Address); }

std::u16string ExcelRange::AddressLocal() const { return object_.Text(session_->Range.AddressLocal); }

std::u16string ExcelRange::ExternalAddress() const {
  const auto address = object_.Get(session_->Range.Address, std::nullopt, std::nullopt, std::nullopt, true);
  return std::u16string(automation::View(Converted(address, VT_BSTR).bstrVal));
}

Ref<host::Range> ExcelRange::Offset(int32_t rows, int32_t columns) const {
  return session_->NeedRange(object_.Object(session_->Range.Offset, rows, columns));
}

std::u16string ExcelRange::Value() const {
  auto value = object_.Get(session_->Range.Value);
  Dispatch cell = object_;
  if ((value.vt & VT_ARRAY) != 0) {  // several cells
    cell = object_.Object(session_->Range.Cells, 1, 1);
    value = cell.Get(session_->Range.Value);
  }
  return CellText(value, [&] { return cell.Text(session_->Range.Text); });
}

// What the user has typed is read as the user writes numbers and dates. A host that speaks another language
// than the system knows no such locale.
void ExcelRange::SetValue(std::u16string_view text) {
  try {
    object_.Put(session_->Range.Value, text, LOCALE_USER_DEFAULT);
  } catch (const host::Error& error) {
    if (error.Number() != TYPE_E_INVDATAREAD) throw;
    object_.Put(session_->Range.Value, text);
  }
}

bool ExcelRange::EntireRowHidden() const {
  return object_.Object(session_->Range.EntireRow).Bool(session_->EntireRow.Hidden);
}

void ExcelRange::SetEntireRowHidden(bool hidden) {
  object_.Object(session_->Range.EntireRow).Put(session_->EntireRow.Hidden, hidden);
}

void ExcelRange::Activate() { object_.Call(session_->Range.Activate); }

Ref<host::Range> ExcelRange::Find(const host::FindArguments& arguments) {
  const auto after = arguments.After != nullptr ? std::optional(ObjectOf(*arguments.After)) : std::nullopt;
  return session_->MakeRange(object_.ObjectOrNothing(
      session_->Range.Find, arguments.What, after, Number(arguments.LookIn), Number(arguments.LookAt),
      Number(arguments.SearchOrder), Number(arguments.SearchDirection), arguments.MatchCase));
}

Ref<host::Range> ExcelRange::FindNext(const host::Range& after) {
  return session_->MakeRange(object_.ObjectOrNothing(session_->Range.FindNext, ObjectOf(after)));
}

Ref<host::Range> ExcelRange::SpecialCells(host::XlCellType type) const {
  return session_->NeedRange(object_.Object(session_->Range.SpecialCells, static_cast<int32_t>(type)));
}

void ExcelRange::AutoFilter(const host::AutoFilterArguments& arguments) {
  object_.Call(session_->Range.AutoFilter, arguments.Field, CriterionValue(arguments.Criteria1),
               Number(arguments.Operator), CriterionValue(arguments.Criteria2));
}

}  // namespace rowlark::windows
