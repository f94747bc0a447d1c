// Show All, with and without an AutoFilter.
#include <gtest/gtest.h>

#include "Session.h"

namespace rowlark {
namespace {

using testing::Session;

constexpr const char* kCities = "Name,City|a,x|b,y|c,x|d,y|e,z";

TEST(Unhide, ShowsEveryRowThatNoFilterHides) {
  Session plain(kCities);
  plain.sheet->Range(u"2:4")->SetEntireRowHidden(true);
  EXPECT_EQ(plain.ShowAll(), "shown");
  EXPECT_EQ(plain.VisibleRows(6), "1 2 3 4 5 6");

  Session filtered(kCities);
  filtered.Filter(u"A1:B6", 2, u"<>z");
  filtered.Filter(u"A1:B6", 1, u"<>a");
  filtered.sheet->Range(u"3:5")->SetEntireRowHidden(true);
  EXPECT_EQ(filtered.ShowAll(), "shown");
  EXPECT_EQ(filtered.VisibleRows(6), "1 3 4 5");

  Session idle(kCities);
  idle.sheet->Range(u"A1:B6")->AutoFilter({.Field = 1});
  idle.sheet->Range(u"2:4")->SetEntireRowHidden(true);
  EXPECT_EQ(idle.ShowAll(), "shown");
  EXPECT_EQ(idle.VisibleRows(6), "1 2 3 4 5 6");
}

TEST(Unhide, ShowsTheRowsAroundAFilterToo) {
  const struct {
    const char* name;
    host::AutoFilterArguments arguments;
    standalone::Protection protection;
    bool hidden;
    bool done;
    const char* visible;
  } kCases[] = {
      {"with a criterion", {.Field = 1, .Criteria1 = u"x"}, {}, true, true, "1 2 3 4 6 7 8"},
      {"idle", {.Field = 1}, {}, true, true, "1 2 3 4 5 6 7 8"},
      {"locked",
       {.Field = 1, .Criteria1 = u"x"},
       {.contents = true, .allow_filtering = true},
       true,
       false,
       ""},
      {"locked, nothing to show",
       {.Field = 1, .Criteria1 = u"x"},
       {.contents = true, .allow_filtering = true},
       false,
       true,
       "1 2 3 4 6 7 8"},
  };
  for (const auto& c : kCases) {
    Session session("a|b|City|x|y|x|c|d");
    session.sheet->Range(u"A3:A6")->AutoFilter(c.arguments);
    if (c.hidden) session.sheet->Range(u"1:8")->SetEntireRowHidden(true);
    session.sheet->Protect(c.protection);
    EXPECT_EQ(session.ShowAll() == "shown", c.done) << c.name;
    EXPECT_EQ(session.VisibleRows(8), c.visible) << c.name;
  }
}

TEST(Unhide, AppliesEveryKindOfFilterAgain) {
  using List = std::vector<std::u16string>;
  const struct {
    const char* name;
    host::AutoFilterArguments arguments;
    const char* visible;
  } kCases[] = {
      {"one criterion", {.Field = 2, .Criteria1 = u"x"}, "1 2 4"},
      {"a number", {.Field = 1, .Criteria1 = u">=20"}, "1 3 4 5"},
      {"both", {.Field = 1, .Criteria1 = u">10", .Operator = host::xlAnd, .Criteria2 = u"<40"}, "1 3 4"},
      {"either", {.Field = 2, .Criteria1 = u"y", .Operator = host::xlOr, .Criteria2 = u"="}, "1 3 6"},
      {"top", {.Field = 1, .Criteria1 = u"2", .Operator = host::xlTop10Items}, "1 4 5"},
      {"bottom percent", {.Field = 1, .Criteria1 = u"50", .Operator = host::xlBottom10Percent}, "1 2 3"},
      {"a list of values",
       {.Field = 2, .Criteria1 = List{u"z", u"X"}, .Operator = host::xlFilterValues},
       "1 2 4 5"},
  };
  for (const auto& c : kCases) {
    Session session("Name,City|10,x|20,y|30,x|40,z|no,");
    session.sheet->Range(u"A1:B6")->AutoFilter(c.arguments);
    EXPECT_EQ(session.VisibleRows(6), c.visible) << c.name;
    session.sheet->Range(u"1:6")->SetEntireRowHidden(true);
    session.sheet->Range(u"1:1")->SetEntireRowHidden(false);
    EXPECT_EQ(session.ShowAll(), "shown") << c.name;
    EXPECT_EQ(session.VisibleRows(6), c.visible) << c.name;
  }
}

// Lists of values can hold groups of dates, which their criteria do not tell.
TEST(Unhide, LeavesTheCriteriaOfListsAlone) {
  const struct {
    int32_t error;  // of ApplyFilter
    bool criteria, done;
  } kCases[] = {{0, false, true}, {438, true, true}, {1004, false, false}};
  for (const auto& c : kCases) {
    Session session(kCities);
    const std::vector<std::u16string> list{u"x"};
    session.sheet->Range(u"A1:B6")->AutoFilter(
        {.Field = 2, .Criteria1 = list, .Operator = host::xlFilterValues});
    session.sheet->Range(u"2:6")->SetEntireRowHidden(true);
    bool criteria = false;
    session.Watch([&](std::string_view operation) {
      criteria |= operation == "Range.AutoFilter";
      if (operation == "AutoFilter.ApplyFilter" && c.error != 0) throw host::Error(c.error, u"No");
    });
    EXPECT_EQ(session.ShowAll() == "shown", c.done) << c.error;
    EXPECT_EQ(criteria, c.criteria) << c.error;
    EXPECT_EQ(session.VisibleRows(6), c.done ? "1 2 4" : "1") << c.error;
  }
}

// A host may have no criteria for a filter, as Excel has none for colours, or not take them.
TEST(Unhide, AppliesTheFilterAsAWholeWhereItsCriteriaDoNotServe) {
  for (const auto* refused : {"Filter.Criteria1", "Range.AutoFilter"}) {
    for (const auto* refused_too : {"", "AutoFilter.ApplyFilter"}) {
      Session session(kCities);
      session.Filter(u"A1:B6", 2, u"x");
      session.sheet->Range(u"2:6")->SetEntireRowHidden(true);
      session.Watch([&](std::string_view operation) {
        if (operation == refused || operation == refused_too) throw host::Error(1004, u"No such thing");
      });
      const bool possible = *refused_too == '\0';
      EXPECT_EQ(session.ShowAll(), possible ? "shown" : "Error #397: Can't show/hide rows False");
      EXPECT_EQ(session.VisibleRows(6), possible ? "1 2 4" : "1");
      EXPECT_TRUE(session.FlagsRestored());
    }
  }
}

TEST(Unhide, GoesWhereTheProfileSays) {
  const struct {
    bool first_row;
    int32_t start_row, start_column, select_column;
    const char* active_cell;
  } kCases[] = {
      {true, 0, -1, 0, "B1"}, {true, 0, 0, 0, "B1"},  {true, 3, 4, 0, "D3"},
      {true, -1, 4, 5, "E1"}, {false, 3, 4, 5, "C7"},
  };
  for (const auto& c : kCases) {
    Session session("|,x,y");
    session.sheet->Select(u"C7");
    session.Profile().UnhideJumpFirstRow = c.first_row;
    session.Profile().SetStartRow(c.start_row);
    session.Profile().SetStartCol(c.start_column);
    session.Profile().SelectCol = c.select_column;
    session.runtime.Items->RowsIsGrouped = true;
    EXPECT_EQ(session.ShowAll(), "shown");
    EXPECT_EQ(session.ActiveCell(), c.active_cell);
    EXPECT_FALSE(session.runtime.Items->RowsIsGrouped);
  }
}

TEST(Unhide, MarksTheWorkbookSavedWhereTheProfileSaysSo) {
  for (const bool keep : {false, true}) {
    Session session(kCities);
    session.sheet->Range(u"2:4")->SetEntireRowHidden(true);
    session.Profile().DontSaveChanges = keep;
    EXPECT_EQ(session.ShowAll(), "shown");
    EXPECT_EQ(session.book->Saved(), keep);
  }
}

TEST(Unhide, FailsInWords) {
  Session session(kCities);
  session.sheet->Protect({.contents = true});
  EXPECT_EQ(session.ShowAll(), "Error #397: Can't show/hide rows False");
  EXPECT_TRUE(session.FlagsRestored());
  session.book->AddChartSheet();
  EXPECT_EQ(session.ShowAll(), "Error: Method 'ActiveCell' of object '_Application' failed");
  EXPECT_TRUE(session.FlagsRestored());
  session.runtime.SetExcelApp(nullptr);
  EXPECT_EQ(session.ShowAll(), "shown");
}

}  // namespace
}  // namespace rowlark
