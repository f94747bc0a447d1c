// Calc behind the spreadsheet seam: documents, sheets and cells, what changes while a search may look, and
// what stays in the user's list for undo.
#include <gtest/gtest.h>

#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <com/sun/star/util/XProtectable.hpp>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "Document.h"
#include "Session.h"
#include "host/calc/Application.h"
#include "host/calc/Query.h"

namespace rowlark::testing {
namespace {

using calc::As;
using com::sun::star::util::XProtectable;

constexpr const char* kTable = "Name,City|a,x|b,y|c,x|d,y";

// A runtime object that searches the document in front.
struct CalcSession : TestLibrary {
  CalcSession() : runtime(shared, forms) {
    runtime.SetExcelApp(application);
    runtime.SearchOptions->CompareMethod = CompareMode::Text;
    runtime.SearchOptions->UseFilter = true;
  }
  CalcSession(const CalcSession&) = delete;
  CalcSession& operator=(const CalcSession&) = delete;
  ~CalcSession() { runtime.SetExcelApp(nullptr); }

  std::string Search(std::u16string_view text) {
    std::u16string error;
    return runtime.Search(text, error) ? "found" : ToUtf8(error);
  }
  std::string ShowAll() {
    std::u16string error;
    return runtime.Unhide(false, error) ? "shown" : ToUtf8(error);
  }
  std::string ActiveCell() const { return SampleHost::Plain(*application->ActiveCell()); }

  Ref<calc::Application> application = MakeRef<calc::Application>(TheContext());
  clsVTRLKRuntime runtime;
};

TEST(CalcHost, FollowsSheetsUntilTheyAreRemoved) {
  CalcSession session;
  CalcDocument document;
  document.Fill("a,b|c");
  const auto book = session.application->ActiveWorkbook();
  const auto sheet = session.application->ActiveSheet();
  EXPECT_EQ(session.application->ActiveWorkbook(), book);
  EXPECT_EQ(session.application->ActiveSheet(), sheet);
  EXPECT_EQ(sheet->Parent(), book);
  EXPECT_EQ(SampleHost::Plain(*sheet->UsedRange()), "A1:B2");

  document.AddSheet("Before", 0);
  EXPECT_EQ(session.application->ActiveSheet(), sheet);
  EXPECT_TRUE(ToUtf8(sheet->Cells(2, 1)->ExternalAddress()).ends_with("]Sheet1!$A$2"));
  document.ActivateSheet(0);
  EXPECT_NE(session.application->ActiveSheet(), sheet);
  EXPECT_EQ(SampleHost::Plain(*session.application->ActiveSheet()->UsedRange()), "A1");
  EXPECT_THROW(sheet->Cells(1, 1)->Activate(), host::Error);
  document.RemoveSheet("Sheet1");
  EXPECT_THROW(sheet->Cells(1, 1), host::Error);

  const auto before = session.application->ActiveSheet();
  const auto cell = before->Cells(1, 1);
  document.Close();
  EXPECT_THROW(static_cast<void>(cell->Value()), host::Error);
  EXPECT_THROW(cell->SetEntireRowHidden(true), host::Error);
  EXPECT_THROW(static_cast<void>(book->Saved()), host::Error);
  EXPECT_FALSE(session.application->ActiveWorkbook());
}

TEST(CalcHost, FindsWhatShows) {
  CalcSession session;
  CalcDocument document;
  const char* const typed[] = {"1234.5", "=1/0", "=\"lon\" & \"don\"", "3/4/2024", "stra\303\237e",
                               "'007",   "=A1*2"};
  for (int32_t row = 0; const auto* text : typed) document.Type(++row, 1, text);
  const struct {
    std::u16string_view text;
    const char* visible;
  } kCases[] = {
      {u"1234.5", "1"},
      {u"#DIV/0!", "2"},
      {u"london", "3"},
      {u"lon\" &", "1 2 3 4 5 6 7 8"},
      {u"03/04", "4"},
      {u"2024", "1 2 3 4 5 6 7 8"},
      {u"STRASSE", "1 2 3 4 5 6 7 8"},
      {u"stra?e", "5"},
      {u"007", "6"},
      {u"2469", "7"},
  };
  for (const auto& c : kCases) {
    const bool found = std::string_view(c.visible).size() < 3;
    EXPECT_EQ(session.Search(c.text), found || c.text == u"03/04" ? "found" : "Text not found")
        << ToUtf8(c.text);
    EXPECT_EQ(document.VisibleRows(8), found ? std::string(c.visible) + " 8" : c.visible) << ToUtf8(c.text);
  }
}

// Whatever the change, and whoever made it.
TEST(CalcHost, SearchesTheSheetAsItIsByNow) {
  CalcSession session;
  CalcDocument document;
  document.Fill("one|two|three|four");
  document.Type(5, 1, "=B9");
  ASSERT_EQ(session.Search(u"two"), "found");
  ASSERT_EQ(document.VisibleRows(6), "2 6");
  const struct {
    const char* name;
    std::function<void()> change;
    std::u16string_view text;
    const char* visible;
  } kSteps[] = {
      {"by the user", [&] { document.Type(3, 1, "two too"); }, u"two", "2 3 6"},
      {"by a program", [&] { document.SetText(4, 1, u"twofold"); }, u"two", "2 3 4 6"},
      {"the result of a formula", [&] { document.Type(9, 2, "two"); }, u"two", "2 3 4 5"},
      {"behind the cells in use", [&] { document.SetText(2000, 40, u"two"); }, u"two", "2 3 4 5"},
      {"rows inserted",
       [&] {
         document.Sheet();
         As<com::sun::star::table::XColumnRowRange>(document.Sheet())->getRows()->insertByIndex(2, 1);
       },
       u"two", "2 4 5 6"},
      {"rows removed",
       [&] { As<com::sun::star::table::XColumnRowRange>(document.Sheet())->getRows()->removeByIndex(0, 1); },
       u"two", "1 3 4 5"},
      {"undone", [&] { document.Dispatch(".uno:Undo"); }, u"two", "2 4 5 6"},
      {"another number", [&] { document.Type(1, 3, "12.5"); }, u"12.5", "1"},
      {"another format",
       [&] {
         document.Select("C1");
         document.Dispatch(".uno:NumberFormatPercent");
       },
       u"1250", "1"},
  };
  for (const auto& step : kSteps) {
    session.ShowAll();
    step.change();
    EXPECT_EQ(session.Search(step.text), "found") << step.name;
    EXPECT_EQ(document.VisibleRows(6), step.visible) << step.name;
  }
}

// In pieces, from the message loop; what changes is read again.
TEST(CalcHost, ReadsAhead) {
  CalcSession session;
  CalcDocument document;
  constexpr sal_Int32 kRows = 4000;
  constexpr sal_Int32 kColumns = 8;
  uno::Sequence<uno::Sequence<uno::Any>> numbers(kRows);
  for (sal_Int32 row = 0; row < kRows; ++row) {
    numbers.getArray()[row] = uno::Sequence<uno::Any>(kColumns);
    for (sal_Int32 column = 0; column < kColumns; ++column) {
      numbers.getArray()[row].getArray()[column] <<= 0.5 + row;
    }
  }
  As<com::sun::star::sheet::XCellRangeData>(
      document.Sheet()->getCellRangeByPosition(0, 0, kColumns - 1, kRows - 1))
      ->setDataArray(numbers);
  const auto sheet = session.application->ActiveSheet();
  EXPECT_FALSE(sheet->Cells()->PrepareFind()) << "more than a piece";
  session.application->StartReadingAhead();
  WaitWhile([&] { return session.application->ReadsAhead(); });
  EXPECT_TRUE(sheet->Cells()->PrepareFind());
  document.SetText(3000, 2, u"late");
  EXPECT_TRUE(session.application->ReadsAhead());
  WaitWhile([&] { return session.application->ReadsAhead(); });
  EXPECT_EQ(session.Search(u"late"), "found");
  EXPECT_EQ(session.ActiveCell(), "A3000");
}

TEST(CalcHost, LeavesOneActionToUndo) {
  CalcSession session;
  CalcDocument document;
  document.Fill(kTable);
  document.SetHidden(3, true);
  const auto before = document.UndoTitles();
  const auto with_ours = [&] {
    auto titles = before;
    titles.insert(titles.begin(), "Rowlark");
    return titles;
  }();
  for (const auto* text : {u"x", u"d", u"b", u"d"}) {
    EXPECT_EQ(session.Search(text), "found");
    EXPECT_EQ(document.UndoTitles(), with_ours);
  }
  EXPECT_EQ(document.VisibleRows(6), "5 6");
  document.Dispatch(".uno:Undo");
  EXPECT_EQ(document.VisibleRows(6), "1 2 4 5 6") << "as before the first search";
  EXPECT_EQ(document.UndoTitles(), before);

  EXPECT_EQ(session.Search(u"x"), "found");
  document.Type(5, 3, "new");
  const auto typed = document.UndoTitles();
  EXPECT_EQ(session.Search(u"d"), "found");
  EXPECT_EQ(document.UndoTitles().size(), typed.size() + 1) << "what the user did since stays";
  EXPECT_EQ(session.Search(u"c"), "found");
  EXPECT_EQ(document.UndoTitles().size(), typed.size() + 1);
  document.Dispatch(".uno:Undo");
  document.Dispatch(".uno:Undo");
  EXPECT_EQ(document.Shown(5, 3), "");
}

// Rows are handed over in pieces, and messages are processed in between; the last one who asks gets what was
// asked for, and the list for undo leads back to the beginning.
TEST(CalcHost, EndsAsAskedWhateverHappensWhileRowsAreHidden) {
  constexpr int32_t kRows = 20000;
  const struct {
    const char* name;
    std::function<void(CalcSession&, CalcDocument&)> act;
    const char* result;
    const char* visible;  // of the first four rows
    std::size_t actions;  // more to undo than before
  } kCases[] = {
      {"nothing", [](auto&, auto&) {}, "found", "1 3", 1},
      {"another search", [](auto& session, auto&) { EXPECT_EQ(session.Search(u"even"), "found"); }, "", "2 4",
       1},
      {"a search that finds nothing",
       [](auto& session, auto&) { EXPECT_EQ(session.Search(u"none"), "Text not found"); }, "", "1 2 3 4", 0},
      {"Show All", [](auto& session, auto&) { EXPECT_EQ(session.ShowAll(), "shown"); }, "", "1 2 3 4", 0},
      {"stopped", [](auto& session, auto&) { session.runtime.StopSearch(); }, "found", "1 3", 1},
      {"undone", [](auto&, auto& document) { document.Dispatch(".uno:Undo"); }, "found", "1 3", 1},
      {"a cell was typed", [](auto&, auto& document) { document.Type(1, 5, "new"); }, "found", "1 3", 3},
      {"another sheet",
       [](auto&, auto& document) {
         document.AddSheet("Other", 1);
         document.ActivateSheet(1);
       },
       "Error", "1 3", 3},
      {"protected", [](auto&, auto& document) { As<XProtectable>(document.Sheet())->protect({}); }, "Error",
       nullptr, 1},
      {"closed", [](auto&, auto& document) { document.Close(); }, "Error", nullptr, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    CalcSession session;
    CalcDocument document;
    uno::Sequence<uno::Sequence<uno::Any>> texts(kRows);
    for (sal_Int32 row = 0; row < kRows; ++row) {
      texts.getArray()[row] = uno::Sequence<uno::Any>(1);
      texts.getArray()[row].getArray()[0] <<= rtl::OUString::createFromAscii(row % 2 == 0 ? "odd" : "even");
    }
    As<com::sun::star::sheet::XCellRangeData>(document.Sheet()->getCellRangeByPosition(0, 0, 0, kRows - 1))
        ->setDataArray(texts);
    const auto before = document.UndoTitles().size();
    bool acted = false;
    session.pump.OnPass = [&](int64_t) {
      if (acted || !document.Hidden(2) || document.Hidden(kRows)) return;
      acted = true;
      c.act(session, document);
    };
    const auto result = session.Search(u"odd");
    EXPECT_TRUE(acted);
    EXPECT_TRUE(result == c.result || (c.result == std::string_view("Error") && result.starts_with(c.result)))
        << result;
    EXPECT_TRUE(session.application->ScreenUpdating());
    if (!document.Model.is()) continue;
    document.ActivateSheet(0);
    if (c.visible != nullptr) {
      EXPECT_EQ(document.VisibleRows(4), c.visible);
      EXPECT_EQ(document.Hidden(kRows - 1), document.Hidden(1));
      EXPECT_EQ(document.Hidden(kRows), document.Hidden(2));
      EXPECT_EQ(document.UndoTitles().size(), before + c.actions);
    } else {
      As<XProtectable>(document.Sheet())->unprotect({});
    }
    while (document.UndoTitles().size() > before) document.Dispatch(".uno:Undo");
    EXPECT_EQ(document.VisibleRows(4), "1 2 3 4");
    EXPECT_FALSE(document.Hidden(kRows));
  }
}

// Filtered in place, without arrows: a search shows these rows, and formulas count them.
TEST(CalcHost, ShowsWhatWasFilteredOutUntilItIsUndone) {
  CalcSession session;
  CalcDocument document;
  document.Fill("1,x|1,y|1,x|1,y");
  document.Type(1, 4, "=SUBTOTAL(3;A1:A4)");
  document.FilterInPlace("A1:B4", 2, u"x");
  ASSERT_EQ(document.VisibleRows(5), "1 3 5");
  ASSERT_EQ(document.Shown(1, 4), "2");
  EXPECT_EQ(session.Search(u"y"), "found");
  EXPECT_EQ(document.VisibleRows(5), "2 4 5");
  EXPECT_EQ(session.ShowAll(), "shown");
  EXPECT_EQ(document.VisibleRows(5), "1 2 3 4 5");
  EXPECT_EQ(document.Shown(1, 4), "4");
  document.Dispatch(".uno:Undo");
  EXPECT_EQ(document.VisibleRows(5), "1 3 5");
  EXPECT_EQ(document.Shown(1, 4), "2");
  document.Dispatch(".uno:Redo");
  EXPECT_EQ(document.VisibleRows(5), "1 2 3 4 5");
  EXPECT_EQ(document.Shown(1, 4), "4");
}

TEST(CalcHost, ShowAllLeavesNothingBehind) {
  CalcSession session;
  CalcDocument document;
  document.Fill(kTable);
  const auto before = document.UndoTitles();
  document.Select("B4");
  EXPECT_EQ(session.Search(u"x"), "found");
  EXPECT_EQ(session.ActiveCell(), "A2");
  EXPECT_EQ(session.ShowAll(), "shown");
  EXPECT_EQ(document.VisibleRows(6), "1 2 3 4 5 6");
  EXPECT_EQ(document.UndoTitles(), before);
}

TEST(CalcHost, AppliesTheFilterAgain) {
  CalcSession session;
  CalcDocument document;
  document.Fill("Name,City|c,x|b,y|a,x|d,y");
  document.Filter("A1:B5", 2, u"x");
  const auto before = document.UndoTitles();
  EXPECT_EQ(document.VisibleRows(6), "1 2 4 6");
  EXPECT_EQ(session.Search(u"a"), "found");
  EXPECT_EQ(document.VisibleRows(6), "1 4 6");
  EXPECT_EQ(document.UndoTitles().size(), before.size() + 1);
  EXPECT_EQ(session.ShowAll(), "shown");
  EXPECT_EQ(document.VisibleRows(6), "1 2 4 6");
  EXPECT_EQ(document.Shown(2, 1), "c") << "nothing is sorted";
  const auto filters = session.application->ActiveSheet()->AutoFilter();
  EXPECT_EQ(filters->FiltersCount(), 2);
  EXPECT_FALSE(filters->Filters(1)->On());
  EXPECT_TRUE(filters->Filters(2)->On());
}

TEST(CalcHost, ChangesNothingThatIsProtected) {
  CalcSession session;
  CalcDocument document;
  document.Fill(kTable);
  document.SetHidden(3, true);
  As<XProtectable>(document.Sheet())->protect({});
  const auto sheet = session.application->ActiveSheet();
  EXPECT_THROW(sheet->Cells(2, 1)->SetEntireRowHidden(true), host::Error);
  EXPECT_THROW(sheet->Cells(2, 1)->SetValue(u"new"), host::Error);
  EXPECT_TRUE(session.ShowAll().starts_with("Error #397"));
  EXPECT_EQ(session.Search(u"d"), "found");
  EXPECT_EQ(session.ActiveCell(), "A5");
  EXPECT_EQ(document.VisibleRows(6), "1 2 4 5 6");
  EXPECT_EQ(document.Shown(2, 1), "a");
  As<XProtectable>(document.Sheet())->unprotect({});

  const auto file = std::string(std::getenv("ROWLARK_TEST_FOLDER")) + "/read only.ods";
  document.StoreAs(file);
  document.Close();
  CalcDocument locked("file://" + file, true);
  const auto book = session.application->ActiveWorkbook();
  EXPECT_TRUE(book->ReadOnly());
  EXPECT_EQ(ToUtf8(book->Name()), "read only.ods");
  EXPECT_EQ(session.Search(u"d"), "found");
  EXPECT_EQ(locked.VisibleRows(6), "1 2 4 5 6");
  EXPECT_THROW(session.application->ActiveSheet()->Cells(2, 1)->SetValue(u"new"), host::Error);
}

TEST(CalcHost, WritesWhatIsTyped) {
  CalcSession session;
  CalcDocument document;
  const auto sheet = session.application->ActiveSheet();
  for (const auto* text : {"3/4/2024", "12.5", "TRUE", "=1+1", "text", "", "1e3"}) {
    document.Type(1, 1, text);
    document.Select("B1");
    sheet->Cells(1, 2)->SetValue(ToUtf16(text));
    EXPECT_EQ(ToUtf8(sheet->Cells(1, 2)->Value()), document.Shown(1, 1)) << text;
    document.Type(3, 1, text);
    sheet->Cells(3, 2)->SetValue(ToUtf16(text));
    EXPECT_EQ(document.Shown(3, 2), document.Shown(3, 1)) << text << ", into another cell";
    document.Dispatch(".uno:Undo");
    document.Dispatch(".uno:Undo");
  }
}

TEST(CalcHost, TellsOfSelections) {
  CalcSession session;
  CalcDocument document;
  std::vector<std::string> told;
  const auto book = session.application->ActiveWorkbook();
  const auto listening = book->OnSheetSelectionChange(
      [&](host::Worksheet&, host::Range& target) { told.push_back(SampleHost::Plain(target)); });
  document.Select("B2");
  document.Select("B2:C4");
  session.application->SetEnableEvents(false);
  document.Select("A1");
  session.application->SetEnableEvents(true);
  document.Fill(kTable);
  EXPECT_EQ(session.Search(u"x"), "found");
  EXPECT_EQ(told, (std::vector<std::string>{"B2", "B2:C4"}));
  document.Select("D5:E6");
  EXPECT_EQ(SampleHost::Plain(*session.application->Selection()), "D5:E6");
  EXPECT_EQ(told.back(), "D5:E6");
}

TEST(CalcHost, CollectsWhatChangesWhileTheScreenIsNotUpdated) {
  CalcSession session;
  CalcDocument document;
  document.Fill(kTable);
  document.Select("C9");
  const auto sheet = session.application->ActiveSheet();
  session.application->SetScreenUpdating(false);
  sheet->Range(u"2:3")->SetEntireRowHidden(true);
  sheet->Cells(4, 2)->Activate();
  EXPECT_TRUE(sheet->Range(u"2:3")->EntireRowHidden());
  EXPECT_EQ(session.ActiveCell(), "B4");
  EXPECT_EQ(document.VisibleRows(5), "1 2 3 4 5");
  session.application->SetScreenUpdating(true);
  EXPECT_EQ(document.VisibleRows(5), "1 4 5");
  EXPECT_EQ(session.ActiveCell(), "B4");
  sheet->Range(u"5:5")->SetEntireRowHidden(true);
  EXPECT_EQ(document.VisibleRows(5), "1 4");
  EXPECT_EQ(session.ActiveCell(), "B4");
}

// The office may end in the middle of anything; a search then has hidden rows and nothing else.
TEST(CalcHost, ASearchChangesNothingButHiddenRows) {
  CalcSession session;
  CalcDocument document;
  document.Fill(kTable);
  document.Type(6, 1, "=A2 & \"!\"");
  As<com::sun::star::util::XModifiable>(document.Model)->setModified(false);
  session.runtime.Items->DefaultItem->DontSaveChanges = true;
  std::string before;
  for (int32_t row = 1; row <= 6; ++row) before += document.Shown(row, 1) + document.Shown(row, 2);
  EXPECT_EQ(session.Search(u"x"), "found");
  EXPECT_EQ(session.ShowAll(), "shown");
  std::string after;
  for (int32_t row = 1; row <= 6; ++row) after += document.Shown(row, 1) + document.Shown(row, 2);
  EXPECT_EQ(after, before);
  EXPECT_TRUE(session.application->ActiveWorkbook()->Saved());
}

// Searches until the office is killed (kill.py).
TEST(CalcKill, DISABLED_SearchesForEver) {
  const std::string folder = std::getenv("ROWLARK_TEST_FOLDER");
  CalcSession session;
  CalcDocument document("file://" + folder + "/table.csv");
  for (int search = 0;; ++search) {
    ASSERT_EQ(session.Search(search % 2 == 0 ? u"odd" : u"even"), "found");
    if (search == 1) std::ofstream(folder + "/searching") << "yes";
  }
}

}  // namespace
}  // namespace rowlark::testing
