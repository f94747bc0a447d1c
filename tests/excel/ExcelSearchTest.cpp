// Searches through automation: the same results as over the sheet model itself, whichever call fails, and no
// call too many.
#include <gtest/gtest.h>

#include "Excel.h"
#include "runtime/FaultCases.h"
#include "runtime/SearchCases.h"

namespace rowlark {
namespace {

using testing::Excel;
using testing::Session;

// What Excel answers while a cell is being edited.
constexpr HRESULT kVbaIgnore = static_cast<HRESULT>(0x800AC472u);

TEST(ExcelSearch, LeavesTheMatchingRowsVisible) {
  testing::ExpectSearchCases(
      [](Session& session) { session.runtime.SetExcelApp(Excel(session.application).application); });
}

TEST(ExcelSearch, EndsInOrderWhicheverInvokeFails) {
  for (const HRESULT result : {RPC_E_CALL_REJECTED, kVbaIgnore, DISP_E_EXCEPTION, DISP_E_MEMBERNOTFOUND}) {
    SCOPED_TRACE(result);
    const auto refuse = [result](Session& session, int64_t call, bool persistent) {
      const auto excel = std::make_shared<Excel>(session.application);
      session.runtime.SetExcelApp(excel->application);
      excel->StartCounting();
      excel->Refuse(persistent ? -1 : 1, result, static_cast<int32_t>(call) - 1);
      return testing::Saboteur{[=] { return excel->CallCount() >= call ? "refused" : ""; },
                               [=] { excel->Refuse(0, S_OK); }};
    };
    testing::ExpectSearchesToEndInOrder(refuse);
    testing::ExpectShowAllToEndInOrder(refuse);
  }
}

using Calls = std::map<std::string, int>;

// Of a search that is not the first one of its adapter.
Calls CallsOfSearch(std::string_view cells, const std::function<void(Session&)>& prepare = {},
                    std::u16string_view text = u"ann") {
  Session session(cells);
  if (prepare) prepare(session);
  Excel excel(session.application);
  session.runtime.SetExcelApp(excel.application);
  const auto result = session.Search(text);
  excel.StartCounting();
  EXPECT_EQ(session.Search(text), result);
  return excel.Calls();
}

int Sum(const Calls& calls) {
  int sum = 0;
  for (const auto& [name, count] : calls) sum += count;
  return sum;
}

Calls Difference(Calls more, const Calls& less) {
  for (const auto& [name, calls] : less) more[name] -= calls;
  std::erase_if(more, [](const auto& call) { return call.second == 0; });
  return more;
}

// A search that finds every other row.
Calls CallsOfHalf(int32_t rows) {
  std::string cells = "ann|bob";
  for (int32_t row = 2; row < rows; row += 2) cells += "|ann|bob";
  return CallsOfSearch(cells);
}

TEST(ExcelSearch, CallsTheHostNoMoreThanItNeeds) {
  const auto search = CallsOfSearch("name|ann|bob|ann");
  EXPECT_EQ(Difference(CallsOfSearch("name|ann|bob|ann|bob|ann"), search),
            (Calls{{"Range.FindNext", 1}, {"Range.Row", 1}}))
      << "for a match, and for a run of rows";
  EXPECT_EQ(Difference(CallsOfHalf(200), CallsOfHalf(100)), (Calls{{"Range.FindNext", 50},
                                                                   {"Range.Row", 50},
                                                                   {"Worksheet.Range", 1},
                                                                   {"Range.EntireRow", 1},
                                                                   {"Range.Hidden=", 1}}))
      << "for runs that another address holds";
  const auto in_column = [](Session& s) { s.Profile().SearchCols = u"A"; };
  EXPECT_EQ(Difference(CallsOfSearch("name|ann|bob|ann", in_column), search),
            (Calls{{"Range.Column", 3}, {"Worksheet.Range", 1}}))
      << "for a column, and for its two matches";
  EXPECT_EQ(search, (Calls{{"Application.ActiveSheet", 1},
                           {"IDispatch.GetIDsOfNames", 1},  // a sheet is asked for its class
                           {"Application.ActiveWorkbook", 1},
                           {"Application.EnableAnimations", 1},
                           {"Application.EnableAnimations=", 2},
                           {"Application.EnableEvents", 1},
                           {"Application.EnableEvents=", 2},
                           {"Application.ScreenUpdating=", 3},
                           {"Workbook.Name", 1},
                           {"Worksheet.AutoFilterMode", 2},
                           {"Worksheet.Cells", 3},
                           {"Worksheet.ProtectScenarios", 1},
                           {"Worksheet.Range", 2},
                           {"Worksheet.UsedRange", 1},
                           {"Range.Activate", 2},
                           {"Range.Address", 2},
                           {"Range.Column", 1},
                           {"Range.Columns", 1},
                           {"Range.Count", 2},
                           {"Range.EntireRow", 2},
                           {"Range.Find", 1},
                           {"Range.FindNext", 2},
                           {"Range.Hidden=", 2},
                           {"Range.Row", 5},
                           {"Range.Rows", 1}}))
      << "for a run with two matches and two runs of rows";
  EXPECT_EQ(Sum(CallsOfSearch("name|ann|bob|ann", {}, u"zzz")), 29) << "without a match";
  const auto filter = [](Session& s) { s.Filter(u"A1:A4", 1, u"<>bob"); };
  EXPECT_EQ(Sum(CallsOfSearch("name|ann|bob|ann", filter, u"zzz")), 56) << "in an AutoFilter";
  Session session("name|ann");
  Excel excel(session.application);
  session.runtime.SetExcelApp(excel.application);
  std::u16string error;
  EXPECT_TRUE(session.runtime.Unhide(false, error));
  excel.StartCounting();
  EXPECT_TRUE(session.runtime.Unhide(false, error));
  EXPECT_EQ(Sum(excel.Calls()), 15) << "to show all rows";
}

TEST(ExcelSearch, TellsAtOnceThatTheHostIsBusyOrHasGone) {
  Session session("Name|ann");
  Excel excel(session.application);
  session.runtime.SetExcelApp(excel.application);
  for (const HRESULT result :
       {RPC_E_CALL_REJECTED, RPC_E_SERVERCALL_RETRYLATER, kVbaIgnore, RPC_E_DISCONNECTED}) {
    excel.StartCounting();
    excel.Refuse(-1, result);
    EXPECT_TRUE(session.Search(u"ann").starts_with("Error: ")) << result;
    EXPECT_LT(excel.CallCount(), 10);
    excel.Refuse(0, S_OK);
    EXPECT_EQ(session.Search(u"ann"), "found");
  }
}

TEST(ExcelSearch, SpeaksUpWithoutWorkbookOrCells) {
  Session session("Name|ann");
  Excel excel(session.application);
  session.runtime.SetExcelApp(excel.application);
  EXPECT_EQ(session.Search(u"ann"), "found");
  const auto cells = session.book->ActiveSheet();
  const auto chart = session.book->AddChartSheet();
  EXPECT_EQ(session.Search(u"ann"), "Error: Object doesn't support this property or method");
  session.book->ActivateSheet(cells);
  EXPECT_EQ(session.Search(u"ann"), "found");
  session.application->Close(session.book);
  EXPECT_EQ(session.Search(u"ann"), "Error: Object variable or With block variable not set");
}

TEST(ExcelSearch, TenThousandSearchesLeaveNothingBehind) {
  Session session("Name|ann|bob|ann");
  Excel excel(session.application);
  session.runtime.SetExcelApp(excel.application);
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(session.Search(u"ann"), "found");
  session.runtime.SetExcelApp(nullptr);
  excel.application = nullptr;
  IDispatch* object = excel.object.get();
  object->AddRef();
  EXPECT_EQ(object->Release(), 1u);
}

}  // namespace
}  // namespace rowlark
