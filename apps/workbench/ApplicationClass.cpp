#include "AutomationHost.h"
#include "Classes.h"
#include "Workbooks.h"

namespace rowlark::workbench {
namespace {

Ref<host::Worksheet> ActiveSheet(const Call& call) {
  auto sheet = call.Application().ActiveSheet();
  if (!sheet) Fail(u"Application-defined or object-defined error");
  return sheet;
}

constexpr Member kApplicationMembers[] = {
    Get(u"_Default", [](Call& call) { call.Return(u"Microsoft Excel"); }),
    Get(u"Name", [](Call& call) { call.Return(u"Microsoft Excel"); }),
    Get(u"Application", ReturnApplication),
    Get(u"Parent", ReturnApplication),
    Get(u"Version", [](Call& call) { call.Return(call.Application().Version()); }),
    Get(
        u"Hwnd", [](Call& call) { call.Return(static_cast<int32_t>(call.Application().Hwnd())); }, 10),
    Get(u"Left", [](Call& call) { call.Return(call.Application().Left()); }),
    Get(u"Top", [](Call& call) { call.Return(call.Application().Top()); }),
    Get(u"Width", [](Call& call) { call.Return(call.Application().Width()); }),
    Get(u"Height", [](Call& call) { call.Return(call.Application().Height()); }),
    GetPut(
        u"ScreenUpdating", [](Call& call) { call.Return(call.Application().ScreenUpdating()); },
        [](Call& call) { call.Application().SetScreenUpdating(call.BoolValue()); }),
    GetPut(
        u"EnableEvents", [](Call& call) { call.Return(call.Application().EnableEvents()); },
        [](Call& call) { call.Application().SetEnableEvents(call.BoolValue()); }),
    GetPut(
        u"EnableAnimations", [](Call& call) { call.Return(call.Application().EnableAnimations()); },
        [](Call& call) { call.Application().SetEnableAnimations(call.BoolValue()); }),
    Get(u"Workbooks", [](Call& call) { call.Return(kWorkbooks, &call.Application()); }),
    Get(u"CommandBars", [](Call& call) { call.Return(kCommandBars, &call.Application()); }),
    Get(u"ActiveWorkbook", [](Call& call) { call.Return(kWorkbook, call.Application().ActiveWorkbook()); }),
    Get(u"ActiveSheet", [](Call& call) { ReturnSheet(call, call.Application().ActiveSheet()); }),
    Get(u"ActiveCell", [](Call& call) { call.Return(kRange, call.Application().ActiveCell()); }),
    Get(u"Selection", [](Call& call) { call.Return(kRange, call.Application().Selection()); }),
    Get(u"Range(Cell1, [Cell2])", [](Call& call) { ReturnRange(call, *ActiveSheet(call)); }),
    Get(u"Cells", [](Call& call) { call.Return(kRange, ActiveSheet(call)->Cells()); }),
    Method(u"OnKey(Key, [Procedure])",
           [](Call& call) {
             if (call.Has(1)) {
               call.Application().OnKey(call.Text(0), call.Text(1));
             } else {
               call.Application().OnKey(call.Text(0), std::nullopt);
             }
           }),

    TestSwitch(GetPut(
        u"CountCalls", [](Call& call) { call.Return(call.Context().Counting()); },
        [](Call& call) { call.Context().SetCounting(call.BoolValue()); })),
    TestSwitch(Get(u"CallCount([Name])",
                   [](Call& call) {
                     const auto count = call.Context().CallCount(call.Has(0) ? call.Text(0) : u"");
                     call.Return(static_cast<int32_t>(count));
                   })),
    TestSwitch(Get(u"CallCounts", [](Call& call) { call.Return(call.Context().CallCounts()); })),
    TestSwitch(Method(u"RefuseCalls(Count, [Result], [After])",
                      [](Call& call) {
                        call.Context().RefuseCalls(call.Int(0), call.Int(1, RPC_E_CALL_REJECTED),
                                                   call.Int(2, 0));
                      })),
    TestSwitch(Method(u"RunKey(Key)",
                      [](Call& call) {
                        const auto& keys = call.Application().Keys();
                        const auto found = keys.find(call.Text(0));
                        call.Return(found == keys.end() ? std::u16string() : found->second);
                      })),
};

const std::vector<Ref<standalone::Workbook>>& Books(const Object& workbooks) {
  return workbooks.Context().Application().Workbooks();
}

void ItemOfWorkbooks(Call& call) {
  if (!call.IsText(0)) return ItemOfCollection(call);
  const auto book = FindWorkbook(call.Application(), call.Text(0));
  if (!book) SubscriptOutOfRange();
  call.Return(kWorkbook, book);
}

void Open(Call& call) {
  std::optional<char> separator;
  if (call.Has(8)) {
    const auto delimiter = call.Text(8);
    if (!delimiter.empty() && delimiter.front() < 0x80) separator = static_cast<char>(delimiter.front());
  }
  call.Return(kWorkbook, OpenWorkbook(call.Application(), call.Text(0), separator, call.Bool(2, false)));
}

constexpr Member kWorkbooksMembers[] = {
    Get(u"Item(Index)", ItemOfWorkbooks),
    Get(u"Count", CountOfCollection),
    Get(u"Application", ReturnApplication),
    Get(u"Parent", ReturnApplication),
    Method(u"Add([Template])", [](Call& call) { call.Return(kWorkbook, NewWorkbook(call.Application())); }),
    Method(u"Open(Filename, [UpdateLinks], [ReadOnly], [Format], [Password], [WriteResPassword], "
           u"[IgnoreReadOnlyRecommended], [Origin], [Delimiter], [Editable], [Notify], [Converter], "
           u"[AddToMru], [Local], [CorruptLoad])",
           Open),
};

}  // namespace

const Class kApplication{.name = u"Application", .members = kApplicationMembers, .identity = true};

const Class kWorkbooks{
    .name = u"Workbooks",
    .members = kWorkbooksMembers,
    .count = [](Object& workbooks) { return static_cast<int64_t>(Books(workbooks).size()); },
    .item =
        [](Call& call, int64_t index) {
          call.Return(kWorkbook, Books(call.Self())[static_cast<std::size_t>(index) - 1]);
        }};

void ReturnApplication(Call& call) { call.Return(kApplication, &call.Application()); }

automation::ComPtr<IDispatch> ExposeApplication(const Ref<standalone::Application>& application,
                                                std::shared_ptr<void> lifetime,
                                                std::function<void()> changed) {
  const auto session = MakeRef<Session>(application, std::move(lifetime), std::move(changed));
  return session->Expose(kApplication, application).get();
}

}  // namespace rowlark::workbench
