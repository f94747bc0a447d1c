#include "Document.h"

#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XReschedule.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/DispatchHelper.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/sheet/FilterFieldType.hpp>
#include <com/sun/star/sheet/FilterOperator2.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XDatabaseRange.hpp>
#include <com/sun/star/sheet/XSheetFilterDescriptor3.hpp>
#include <com/sun/star/sheet/XSheetFilterable.hpp>
#include <com/sun/star/sheet/XSpreadsheetView.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>
#include <com/sun/star/sheet/XUnnamedDatabaseRanges.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/util/XCloseable.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>

#include <thread>

#include "host/calc/Query.h"
#include "host/calc/Strings.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::testing {

using calc::As;
using com::sun::star::beans::PropertyValue;
using com::sun::star::beans::XPropertySet;

namespace {

rtl::OUString Ascii(std::string_view text) {
  return rtl::OUString(text.data(), static_cast<sal_Int32>(text.size()), RTL_TEXTENCODING_UTF8);
}

PropertyValue Property(const char* name, const uno::Any& value) {
  PropertyValue property;
  property.Name = rtl::OUString::createFromAscii(name);
  property.Value = value;
  return property;
}

}  // namespace

Context& TheContext() {
  static Context context;
  return context;
}

void WaitWhile(const std::function<bool()>& condition) {
  const uno::Reference<com::sun::star::awt::XReschedule> toolkit(
      com::sun::star::awt::Toolkit::create(TheContext()), uno::UNO_QUERY_THROW);
  while (condition()) {
    toolkit->reschedule();
    std::this_thread::yield();
  }
}

CalcDocument::CalcDocument(std::string_view url, bool read_only) {
  const auto desktop = com::sun::star::frame::Desktop::create(TheContext());
  uno::Sequence<PropertyValue> arguments(1);
  arguments.getArray()[0] = Property("ReadOnly", uno::Any(read_only));
  const auto component = desktop->loadComponentFromURL(Ascii(url), "_blank", 0, arguments);
  Model = As<com::sun::star::frame::XModel>(component);
  Document = As<com::sun::star::sheet::XSpreadsheetDocument>(component);
  Activate();
}

void CalcDocument::Close() {
  if (!Model.is()) return;
  As<com::sun::star::util::XModifiable>(Model)->setModified(false);
  const auto closeable = As<com::sun::star::util::XCloseable>(Model);
  Model.clear();
  Document.clear();
  closeable->close(true);
}

void CalcDocument::Activate() const { Model->getCurrentController()->getFrame()->activate(); }

void CalcDocument::StoreAs(const std::string& path) const {
  uno::Sequence<PropertyValue> arguments(1);
  arguments.getArray()[0] = Property("FilterName", uno::Any(rtl::OUString("calc8")));
  As<com::sun::star::frame::XStorable>(Model)->storeAsURL(Ascii("file://" + path), arguments);
}

uno::Reference<com::sun::star::sheet::XSpreadsheet> CalcDocument::Sheet() const {
  return As<com::sun::star::sheet::XSpreadsheetView>(Model->getCurrentController())->getActiveSheet();
}

uno::Reference<com::sun::star::sheet::XSpreadsheet> CalcDocument::AddSheet(std::string_view name,
                                                                           int16_t at) const {
  const auto sheets = Document->getSheets();
  sheets->insertNewByName(Ascii(name), at);
  return uno::Reference<com::sun::star::sheet::XSpreadsheet>(sheets->getByName(Ascii(name)),
                                                             uno::UNO_QUERY_THROW);
}

void CalcDocument::RemoveSheet(std::string_view name) const {
  Document->getSheets()->removeByName(Ascii(name));
}

void CalcDocument::ActivateSheet(int32_t index) const {
  const auto sheets = As<com::sun::star::container::XIndexAccess>(Document->getSheets());
  As<com::sun::star::sheet::XSpreadsheetView>(Model->getCurrentController())
      ->setActiveSheet(uno::Reference<com::sun::star::sheet::XSpreadsheet>(sheets->getByIndex(index),
                                                                           uno::UNO_QUERY_THROW));
}

void CalcDocument::SetText(int32_t row, int32_t column, std::u16string_view text) const {
  As<com::sun::star::text::XTextRange>(Sheet()->getCellByPosition(column - 1, row - 1))
      ->setString(calc::ToOffice(text));
}

void CalcDocument::Type(int32_t row, int32_t column, std::string_view text) const {
  As<com::sun::star::view::XSelectionSupplier>(Model->getCurrentController())
      ->select(uno::Any(Sheet()->getCellRangeByPosition(column - 1, row - 1, column - 1, row - 1)));
  uno::Sequence<PropertyValue> arguments(1);
  arguments.getArray()[0] = Property("StringName", uno::Any(Ascii(text)));
  com::sun::star::frame::DispatchHelper::create(TheContext())
      ->executeDispatch(
          As<com::sun::star::frame::XDispatchProvider>(Model->getCurrentController()->getFrame()),
          ".uno:EnterString", rtl::OUString(), 0, arguments);
}

void CalcDocument::Fill(std::string_view cells) {
  int32_t row = 0;
  for (const auto line : Pieces(cells, "|")) {
    ++row;
    int32_t column = 0;
    for (const auto cell : Pieces(line, ",")) {
      ++column;
      if (!cell.empty()) SetText(row, column, ToUtf16(cell));
    }
  }
}

std::string CalcDocument::Shown(int32_t row, int32_t column) const {
  const auto cell = As<com::sun::star::text::XTextRange>(Sheet()->getCellByPosition(column - 1, row - 1));
  return ToUtf8(calc::ViewOf(cell->getString()));
}

void CalcDocument::Select(std::string_view address) const {
  As<com::sun::star::view::XSelectionSupplier>(Model->getCurrentController())
      ->select(uno::Any(Sheet()->getCellRangeByName(Ascii(address))));
}

void CalcDocument::Dispatch(std::string_view command) const {
  com::sun::star::frame::DispatchHelper::create(TheContext())
      ->executeDispatch(
          As<com::sun::star::frame::XDispatchProvider>(Model->getCurrentController()->getFrame()),
          Ascii(command), rtl::OUString(), 0, {});
}

namespace {

uno::Reference<XPropertySet> RowOf(const CalcDocument& document, int32_t row) {
  const auto rows = As<com::sun::star::table::XColumnRowRange>(document.Sheet())->getRows();
  return uno::Reference<XPropertySet>(rows->getByIndex(row - 1), uno::UNO_QUERY_THROW);
}

}  // namespace

bool CalcDocument::Hidden(int32_t row) const {
  bool visible = true;
  RowOf(*this, row)->getPropertyValue("IsVisible") >>= visible;
  return !visible;
}

void CalcDocument::SetHidden(int32_t row, bool hidden) const {
  RowOf(*this, row)->setPropertyValue("IsVisible", uno::Any(!hidden));
}

std::string CalcDocument::VisibleRows(int32_t last) const {
  std::string rows;
  for (int32_t row = 1; row <= last; ++row) {
    if (Hidden(row)) continue;
    if (!rows.empty()) rows += ' ';
    rows += std::to_string(row);
  }
  return rows;
}

std::vector<std::string> CalcDocument::UndoTitles() const {
  const auto undo = As<com::sun::star::document::XUndoManagerSupplier>(Model)->getUndoManager();
  std::vector<std::string> titles;
  for (const auto& title : undo->getAllUndoActionTitles()) titles.push_back(ToUtf8(calc::ViewOf(title)));
  return titles;
}

namespace {

void Describe(const uno::Reference<com::sun::star::sheet::XSheetFilterDescriptor>& made, bool header,
              int32_t column, std::u16string_view criterion) {
  const auto descriptor = As<com::sun::star::sheet::XSheetFilterDescriptor3>(made);
  As<XPropertySet>(descriptor)->setPropertyValue("ContainsHeader", uno::Any(header));
  uno::Sequence<com::sun::star::sheet::TableFilterField3> fields(column == 0 ? 0 : 1);
  if (column != 0) {
    auto& field = fields.getArray()[0];
    field.Field = column - 1;
    const bool begins = criterion.ends_with(u'*');
    if (begins) criterion.remove_suffix(1);
    field.Operator = begins ? com::sun::star::sheet::FilterOperator2::BEGINS_WITH
                            : com::sun::star::sheet::FilterOperator2::EQUAL;
    field.Values.realloc(1);
    auto& value = field.Values.getArray()[0];
    value.FilterType = com::sun::star::sheet::FilterFieldType::STRING;
    value.StringValue = calc::ToOffice(criterion);
  }
  descriptor->setFilterFields3(fields);
}

}  // namespace

void CalcDocument::FilterInPlace(std::string_view address, int32_t column,
                                 std::u16string_view criterion) const {
  const auto range = As<com::sun::star::sheet::XSheetFilterable>(Sheet()->getCellRangeByName(Ascii(address)));
  const auto descriptor = range->createFilterDescriptor(true);
  Describe(descriptor, false, column, criterion);
  range->filter(descriptor);
}

void CalcDocument::Filter(std::string_view address, int32_t column, std::u16string_view criterion) const {
  const auto area =
      As<com::sun::star::sheet::XCellRangeAddressable>(Sheet()->getCellRangeByName(Ascii(address)))
          ->getRangeAddress();
  const uno::Reference<com::sun::star::sheet::XUnnamedDatabaseRanges> ranges(
      As<XPropertySet>(Document)->getPropertyValue("UnnamedDatabaseRanges"), uno::UNO_QUERY_THROW);
  ranges->setByTable(area);
  const uno::Reference<com::sun::star::sheet::XDatabaseRange> range(ranges->getByTable(area.Sheet),
                                                                    uno::UNO_QUERY_THROW);
  As<XPropertySet>(range)->setPropertyValue("AutoFilter", uno::Any(true));
  Describe(range->getFilterDescriptor(), true, column, criterion);
  range->refresh();
}

}  // namespace rowlark::testing
