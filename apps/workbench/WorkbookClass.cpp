#include <algorithm>

#include "Classes.h"

namespace rowlark::workbench {
namespace {

using automation::ComPtr;
using automation::Variant;

// The source interface of a workbook, and its event SheetSelectionChange(Sh, Target).
constexpr IID kWorkbookEvents = {0x00024412, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr DISPID kSheetSelectionChange = 0x616;

standalone::Workbook& Book(const Call& call) {
  auto& book = call.Core<standalone::Workbook>();
  if (std::ranges::find(call.Application().Workbooks(), Ref(&book)) == call.Application().Workbooks().end()) {
    throw host::Error(RPC_E_DISCONNECTED, u"The object invoked has disconnected from its clients.");
  }
  return book;
}

const Class& ClassOf(const host::Worksheet& sheet) {
  return dynamic_cast<const standalone::Worksheet*>(&sheet) != nullptr ? kWorksheet : kChart;
}

void Listen(Object& object) {
  auto events =
      std::make_unique<automation::EventSource>(object, kWorkbookEvents, nullptr, automation::Sinks::Named);
  auto connection = object.Core<standalone::Workbook>().OnSheetSelectionChange(
      [&object](host::Worksheet& sheet, host::Range& target) {
        const ComPtr<Object> keep(&object);
        auto& session = object.Context();
        Variant arguments[] = {session.Expose(kRange, &target).get(),
                               session.Expose(ClassOf(sheet), &sheet).get()};
        object.Events().Fire(kSheetSelectionChange, arguments, 2);
      });
  object.Raise(std::move(events), std::move(connection));
}

constexpr Member kWorkbookMembers[] = {
    Get(u"Name", [](Call& call) { call.Return(Book(call).Name()); }),
    Get(u"FullName", [](Call& call) { call.Return(Book(call).FullName()); }),
    Get(u"ReadOnly", [](Call& call) { call.Return(Book(call).ReadOnly()); }),
    GetPut(
        u"Saved", [](Call& call) { call.Return(Book(call).Saved()); },
        [](Call& call) { Book(call).SetSaved(call.BoolValue()); }),
    Get(u"ActiveSheet", [](Call& call) { ReturnSheet(call, Book(call).ActiveSheet()); }),
    Get(u"Worksheets", [](Call& call) { call.Return(kWorksheets, &Book(call)); }),
    Get(u"Charts", [](Call& call) { call.Return(kCharts, &Book(call)); }),
    Get(u"Application", ReturnApplication),
    Get(u"Parent", ReturnApplication),
    Method(u"Activate", [](Call& call) { call.Application().Activate(&Book(call)); }),
    Method(u"Close([SaveChanges], [Filename], [RouteWorkbook])",
           [](Call& call) { call.Application().Close(&Book(call)); }),
};

constexpr Member kWorksheetsMembers[] = {
    Get(u"Item(Index)", ItemOfCollection),
    Get(u"Count", CountOfCollection),
    Get(u"Application", ReturnApplication),
    Get(u"Parent", [](Call& call) { call.Return(kWorkbook, &Book(call)); }),
    Method(u"Add([Before], [After], [Count], [Type])",
           [](Call& call) { call.Return(kWorksheet, Book(call).AddWorksheet()); }),
};

constexpr Member kChartsMembers[] = {
    Method(u"Add([Before], [After], [Count], [Type])",
           [](Call& call) { call.Return(kChart, Book(call).AddChartSheet()); }),
};

}  // namespace

const Class kWorkbook{.name = u"Workbook", .members = kWorkbookMembers, .identity = true, .listen = Listen};

const Class kWorksheets{
    .name = u"Worksheets",
    .members = kWorksheetsMembers,
    .count =
        [](Object& sheets) {
          return static_cast<int64_t>(sheets.Core<standalone::Workbook>().Worksheets().size());
        },
    .item =
        [](Call& call, int64_t index) {
          call.Return(kWorksheet, Book(call).Worksheets()[static_cast<std::size_t>(index) - 1]);
        }};

const Class kCharts{.name = u"Charts", .members = kChartsMembers};

void ReturnSheet(Call& call, const Ref<host::Worksheet>& sheet) {
  call.Return(sheet ? ClassOf(*sheet) : kWorksheet, sheet);
}

}  // namespace rowlark::workbench
