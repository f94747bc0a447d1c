// What a search does to the sheet, and what it leaves alone.
#include <gtest/gtest.h>

#include "SearchCases.h"
#include "Session.h"

namespace rowlark {
namespace {

using testing::kOrders;
using testing::Session;

TEST(Search, LeavesTheMatchingRowsVisible) {
  testing::ExpectSearchCases([](Session&) {});
  testing::ExpectSearchCases([](Session& session) { session.FindCellByCell(); });
}

TEST(Search, ReadOnlyWorkbooksOfVersion8AreSearchedWithoutHiding) {
  Session old(kOrders, u"8.0", true);
  EXPECT_EQ(old.Search(u"doe"), "found");
  EXPECT_EQ(old.VisibleRows(6), "1 2 3 4 5 6");
  EXPECT_FALSE(old.runtime.Items->RowsIsGrouped);
  Session later(kOrders, u"16.0", true);
  EXPECT_EQ(later.Search(u"doe"), "found");
  EXPECT_EQ(later.VisibleRows(6), "6");
  EXPECT_TRUE(later.runtime.Items->RowsIsGrouped);
}

TEST(Search, HidesWhatStandsAboveAnAutomaticRangeButForASingleRow) {
  for (const auto& [cells, visible] :
       {std::pair("|x|y", "1 2 4 5"), std::pair("||x|y", "3 5"), std::pair("|y|x", "3 4 5")}) {
    Session session(cells);
    EXPECT_EQ(session.Search(u"x"), "found");
    EXPECT_EQ(session.VisibleRows(5), visible) << cells;
  }
}

TEST(Search, AsksTheHostForNoMoreThanItNeeds) {
  Session session(kOrders);
  session.FindCellByCell();
  int all = 0, addresses = 0;
  session.Watch([&](std::string_view operation) {
    ++all;
    addresses += operation.starts_with("Range.Address") || operation == "Range.Offset" ? 1 : 0;
  });
  for (const Block& block : {Block(), Block{1, 1, 6, 3}}) {
    session.Profile().SetBlock(block);
    all = addresses = 0;
    EXPECT_EQ(session.Search(u"zzz"), "Text not found");
    EXPECT_EQ(addresses, 0);
    EXPECT_EQ(all, block.IsClosed() ? 26 : 28);
  }
}

TEST(Search, LeavesTheStoredProfileAlone) {
  Session session(kOrders);
  const auto before = session.Profile().ToString();
  EXPECT_EQ(session.Search(u"doe"), "found");
  EXPECT_EQ(session.Profile().ToString(), before);
}

TEST(Search, MovesWhatAProfileNamesBeyondTheSheetOntoIt) {
  for (const auto& size : {standalone::SheetSize{}, standalone::kSmallSheet}) {
    SCOPED_TRACE(size.rows);
    Session session("");
    session.sheet->SetSize(size);
    session.sheet->Cells(size.rows, 2)->SetValue(u"doe");
    auto& profile = session.Profile();
    profile.SetBlock({size.rows - 1, 1, size.rows + 9, size.columns + 9});
    profile.SelectCol = size.columns + 1;
    profile.SearchCols = u"B,XFD";
    const auto stored = profile.ToString();
    EXPECT_EQ(session.Search(u"doe"), "found");
    EXPECT_EQ(session.application->ActiveCell()->Row(), size.rows);
    EXPECT_EQ(session.application->ActiveCell()->Column(), size.columns);
    EXPECT_TRUE(session.sheet->Cells(size.rows - 1, 1)->EntireRowHidden());
    EXPECT_FALSE(session.sheet->Cells(size.rows, 1)->EntireRowHidden());

    profile.SetStartRow(size.rows + 1);
    profile.SetStartCol(size.columns + 1);
    EXPECT_EQ(session.Search(u"doe"), "Text not found");
    EXPECT_EQ(session.ShowAll(), "shown");
    EXPECT_EQ(session.application->ActiveCell()->Row(), size.rows);

    profile.ToObject(stored);
    profile.SearchCols = u"XFE";
    EXPECT_EQ(session.Search(u"doe"), "Text not found");
    profile.SearchCols = u"Ä";
    EXPECT_EQ(session.Search(u"doe"), "Error: Method 'Range' of object '_Worksheet' failed");
  }
}

TEST(Search, TellsOfRowsThatAreHiddenWhenTheHostRefusesABlock) {
  Session session("x|y|x|y|x");
  session.FindCellByCell();
  session.pump.OnPass = [&](int64_t pass) {
    if (pass == 6) session.sheet->Protect({.contents = true});  // while rows are being hidden
  };
  EXPECT_TRUE(session.Search(u"x").starts_with("Error #397: Can not hide/unhide rows "))
      << session.pump.Passes();
  EXPECT_EQ(session.VisibleRows(5), "1 3 4 5");
  EXPECT_TRUE(session.runtime.Items->RowsIsGrouped);
  EXPECT_TRUE(session.FlagsRestored());
}

TEST(Search, SpeaksUpWithoutHostOrSheet) {
  Session session(kOrders);
  session.sheet->Select(u"B2");
  session.book->AddChartSheet();
  EXPECT_EQ(session.Search(u"doe"), "Error: Object doesn't support this property or method");
  session.application->Close(session.book);
  EXPECT_EQ(session.Search(u"doe"), "Error: Object variable or With block variable not set");
  session.runtime.SetExcelApp(nullptr);
  EXPECT_EQ(session.Search(u"doe"), "Error: Object variable or With block variable not set");
}

TEST(DetectSearchRange, CompletesOpenBoundsOrTakesTheFilter) {
  const struct {
    const char* name;
    int32_t bounds[4];  // StartRow, StartCol, EndRow, EndCol
    const char* filter;
    int32_t detected[4];
    bool automatic;
  } kCases[] = {
      {"all open", {-1, -1, -1, -1}, "", {3, 2, 5, 4}, true},
      {"zeros", {0, 0, 0, 0}, "", {3, 2, 5, 4}, true},
      {"one fixed", {7, -1, -1, -1}, "", {7, 2, 5, 4}, false},
      {"all fixed", {1, 1, 2, 2}, "", {1, 1, 2, 2}, false},
      {"a filter overrides", {1, 1, 2, 2}, "B3:D5", {4, 2, 5, 4}, false},
      {"a filter with its header only", {-1, -1, -1, -1}, "A5:D5", {6, 1, 7, 4}, false},
  };
  for (const auto& c : kCases) {
    Session session("||,a,b,c|,d,e,f|,g,h,i");
    if (*c.filter != '\0') session.sheet->Range(ToUtf16(c.filter))->AutoFilter({.Field = 1});
    auto& profile = session.Profile();
    profile.SetBlock({c.bounds[0], c.bounds[1], c.bounds[2], c.bounds[3]});
    session.runtime.DetectSearchRange(*session.sheet, profile);
    EXPECT_EQ(std::vector({profile.StartRow(), profile.StartCol(), profile.EndRow(), profile.EndCol()}),
              std::vector(std::begin(c.detected), std::end(c.detected)))
        << c.name;
    EXPECT_EQ(profile.UsingAutoRange, c.automatic) << c.name;
  }
}

TEST(Runtime, InstancesShareTheStateAndTheLastOneReleasesIt) {
  testing::TestLibrary platform;
  SharedState& shared = platform.shared;
  {
    clsVTRLKRuntime first(shared, platform.forms);
    first.SetExcelApp(testing::SampleHost("x").application);
    { const clsVTRLKRuntime second(shared, platform.forms); }
    EXPECT_TRUE(shared.ExcelApp && shared.Language && !shared.Terminating);
    first.DoStop();
  }
  EXPECT_TRUE(!shared.ExcelApp && !shared.Language && shared.Terminating);
  const clsVTRLKRuntime next(shared, platform.forms);
  EXPECT_FALSE(shared.Terminating);
}

}  // namespace
}  // namespace rowlark
