// What a search leaves visible, case by case, whatever stands between the runtime and the sheet.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string_view>

#include "Session.h"

namespace rowlark::testing {

//   A      B       C
inline constexpr const char* kOrders =
    "Name,City,Note|"      // 1
    "Smith,Berlin,paid|"   // 2
    "Jones,Paris,unpaid|"  // 3
    "smithers,Bern,open|"  // 4
    "Brown,Berlin,Paris|"  // 5
    "Doe,Rome,open";       // 6

struct SearchCase {
  const char* name;
  std::function<void(Session&)> prepare;
  std::u16string_view text;
  const char* result;
  const char* visible;      // of the rows 1 to 8
  const char* active_cell;  // nullptr: not looked at
};

namespace search_cases {

inline void Cell(Session& s) { s.runtime.SearchOptions->SearchWords = xcVT_SEARCH_WORDS_CELL; }
inline void Any(Session& s) { s.runtime.SearchOptions->SearchWords = xcVT_SEARCH_WORDS_ANY; }
inline void AnyBehindTheTable(Session& s) {
  Any(s);
  s.Profile().SetEndRow(100);
}
inline void GoTo(Session& s) { s.runtime.SearchOptions->UseFilter = false; }
inline void Auto(Session& s) { s.Profile().SetBlock({-1, -1, -1, -1}); }

}  // namespace search_cases

// Searches each sheet of the table; `connect` may put another host between the session and its runtime.
inline void ExpectSearchCases(const std::function<void(Session&)>& connect) {
  using namespace search_cases;
  const SearchCase kCases[] = {
      {"part of a cell, in any case", Auto, u"SMITH", "found", "2 4 7 8", "A2"},
      {"a profile of zeros is automatic as well", [](Session&) {}, u"smith", "found", "2 4 7 8", "A2"},
      {"every row with a match", Auto, u"berlin", "found", "2 5 7 8", "A2"},
      {"rows above the first match go", Auto, u"rome", "found", "6 7 8", "A6"},
      {"match case", [](Session& s) { s.runtime.SearchOptions->CompareMethod = CompareMode::Binary; },
       u"smith", "found", "4 7 8", "A4"},
      {"whole cell", Cell, u"Paid", "found", "2 7 8", "A2"},
      {"any of the words, each row once", Any, u"rome  jones bern", "found", "3 4 6 7 8", "A3"},
      {"words of no letters find empty cells", AnyBehindTheTable, u"   ", "found", "7 8", nullptr},
      {"wildcards", Cell, u"b*n", "found", "2 4 5 7 8", "A2"},
      {"nothing found shows all rows", Auto, u"xyzzy", "Text not found", "1 2 3 4 5 6 7 8", nullptr},
      {"matches outside the searched columns do not count",
       [](Session& s) { s.Profile().SearchCols = u"C,A"; }, u"paris", "found", "5 7 8", "A5"},
      {"only outside", [](Session& s) { s.Profile().SearchCols = u"A"; }, u"paris", "Text not found",
       "1 2 3 4 5 6 7 8", nullptr},
      {"an empty piece is no column", [](Session& s) { s.Profile().SearchCols = u"C,,A"; }, u"paris",
       "Error: Method 'Range' of object '_Worksheet' failed", "1 2 3 4 5 6 7 8", nullptr},
      {"go-to column", [](Session& s) { s.Profile().SelectCol = 3; }, u"jones", "found", "3 7 8", "C3"},
      {"a fixed first row leaves what stands above it", [](Session& s) { s.Profile().SetStartRow(4); },
       u"berlin", "found", "1 2 3 5 7 8", "A5"},
      {"a fixed block",
       [](Session& s) {
         s.Profile().SetBlock({2, 2, 4, 2});
       },
       u"paris", "found", "1 3 5 6 7 8", "B3"},
      {"the row behind the used range is searched when the block reaches it",
       [](Session& s) { s.Profile().SetEndRow(100); }, u"doe", "found", "6 8", nullptr},
      {"go to the first match, hide nothing", GoTo, u"berlin", "found", "1 2 3 4 5 6 7 8", "A2"},
      {"go to: rows that are hidden already are passed over",
       [](Session& s) {
         GoTo(s);
         s.sheet->Range(u"2:3")->SetEntireRowHidden(true);
       },
       u"berlin", "found", "1 4 5 6 7 8", nullptr},
      {"a protected sheet is searched without hiding",
       [](Session& s) { s.sheet->Protect({.scenarios = true}); }, u"doe", "found", "1 2 3 4 5 6 7 8", "A6"},
      {"nor are its rows shown",
       [](Session& s) {
         s.sheet->Range(u"2:3")->SetEntireRowHidden(true);
         s.sheet->Protect({.contents = true, .scenarios = true});
       },
       u"berlin", "found", "1 4 5 6 7 8", "A5"},
      {"a filter of one row and one column", [](Session& s) { s.Filter(u"C5:C6", 1, u"o*"); }, u"open",
       "found", "1 2 3 4 5 6 7 8", "C6"},
      {"a filter of one row and one column, hidden", [](Session& s) { s.Filter(u"C5:C6", 1, u"x"); }, u"open",
       "Text not found", "1 2 3 4 5 7 8", nullptr},
      {"the workbook's own profile",
       [](Session& s) {
         const auto profile = s.Profile().Clone(u"C:\\Elsewhere\\BOOK1.XLS");
         profile->SearchCols = u"B";
         s.runtime.Items->Add(profile);
       },
       u"paris", "found", "3 7 8", "A3"},
      {"with an AutoFilter its rows only, and none above", [](Session& s) { s.Filter(u"A1:C6", 2, u"B*"); },
       u"open", "found", "1 4 7 8", "A4"},
      {"an AutoFilter that lets nothing through", [](Session& s) { s.Filter(u"A1:C6", 2, u"x"); }, u"open",
       "Error: No cells were found.", "1 7 8", nullptr},
  };
  for (const auto& c : kCases) {
    Session session(kOrders);
    connect(session);
    c.prepare(session);
    EXPECT_EQ(session.Search(c.text), c.result) << c.name;
    EXPECT_EQ(session.VisibleRows(8), c.visible) << c.name;
    if (c.active_cell != nullptr) {
      EXPECT_EQ(session.ActiveCell(), c.active_cell) << c.name;
    }
    EXPECT_TRUE(session.FlagsRestored()) << c.name;
    EXPECT_EQ(session.events, "TF") << c.name;
  }
}

}  // namespace rowlark::testing
