// Messages that are processed in the middle of a search call the runtime again, at every point where they
// can.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Session.h"

namespace rowlark {
namespace {

using testing::Session;

constexpr const char* kTable = "Name,City|ann,x|bob,y|ann,y|cid,x|bob,ann|dan,z|ann,x";

// Finds one match after the other.
struct Stepwise : Session {
  Stepwise() : Session(kTable) { FindCellByCell(); }
};

// Finds rows in bulk, with a row so long that it is a piece of its own.
struct Piecewise : Session {
  Piecewise() : Session(Cells()) {}
  static std::string Cells() {
    std::string cells;
    for (const auto row : Pieces(std::string_view(kTable), std::string_view("|"))) {
      cells.append(cells.empty() ? "" : "|").append(row).append(",").append(263000, '-');
    }
    return cells;
  }
};

// Runs `act(session, pass)` with a new session for every message-processing point of a search for "ann".
template <class AnySession>
void AtEveryPointOf(const std::function<void(Session&, int64_t)>& act) {
  AnySession whole;
  ASSERT_EQ(whole.Search(u"ann"), "found");
  const int64_t points = whole.pump.Passes();
  ASSERT_GE(points, 8);
  for (int64_t point = 1; point <= points; ++point) {
    AnySession session;
    SCOPED_TRACE("at point " + std::to_string(point));
    act(session, point);
    EXPECT_FALSE(session.runtime.Searching());
    EXPECT_TRUE(session.FlagsRestored());
    // A wait that does not end would have been broken off by the pump.
    EXPECT_LT(session.pump.Passes(), 1000);
  }
}

void AtEveryPoint(const std::function<void(Session&, int64_t)>& act) {
  AtEveryPointOf<Stepwise>(act);
  AtEveryPointOf<Piecewise>(act);
}

// Processes messages: `script` at a pass, and the end of the library should a wait not end by itself.
void Script(Session& session, std::function<void(int64_t)> script) {
  session.pump.OnPass = [&session, script = std::move(script)](int64_t pass) {
    if (pass >= 1000) session.runtime.DoStop();
    script(pass);
  };
}

TEST(Reentrance, ANewTextStopsTheSearchUnderWayAndAThirdCallIsRefusedMeanwhile) {
  AtEveryPoint([](Session& session, int64_t point) {
    bool second = false;
    bool third = true;
    std::u16string second_error = u"untouched";
    std::u16string third_error = u"untouched";
    Script(session, [&](int64_t pass) {
      if (pass == point) second = session.runtime.Search(u"bob", second_error);
      if (pass == point + 1) third = session.runtime.Search(u"cid", third_error);
    });
    EXPECT_EQ(session.Search(u"ann"), "");
    EXPECT_TRUE(second);
    EXPECT_EQ(second_error, u"");
    EXPECT_FALSE(third);
    EXPECT_EQ(third_error, u"untouched");
    EXPECT_EQ(session.VisibleRows(8), "3 6");
    EXPECT_EQ(session.events, "TFTF");
  });
}

TEST(Reentrance, TheLastOfManyTextsWins) {
  AtEveryPoint([](Session& session, int64_t point) {
    // Two passes farther the second search has begun; it is stopped in its turn.
    std::u16string error;
    bool second = true;
    bool third = false;
    Script(session, [&](int64_t pass) {
      if (pass == point) second = session.runtime.Search(u"bob", error);
      if (session.events == "TFT" && !third) third = session.runtime.Search(u"dan", error);
    });
    EXPECT_EQ(session.Search(u"ann"), "");
    EXPECT_FALSE(second);
    EXPECT_TRUE(third);
    EXPECT_EQ(session.VisibleRows(8), "7");
    EXPECT_EQ(session.events, "TFTFTF");
  });
}

TEST(Reentrance, AStoppedSearchHidesNothingOrGoesOnWithWhatItHasFound) {
  AtEveryPoint([](Session& session, int64_t point) {
    Script(session, [&](int64_t pass) {
      if (pass == point) {
        EXPECT_TRUE(session.runtime.StopSearch());
      }
    });
    const auto result = session.Search(u"ann");
    const bool piecewise = session.host == Ref<host::Application>(session.application);
    if (point <= (piecewise ? 4 : 3)) {  // before anything behind the first match is looked at
      EXPECT_EQ(result, "");
      EXPECT_EQ(session.VisibleRows(8), "1 2 3 4 5 6 7 8");
    } else {
      EXPECT_EQ(result, "found");
      EXPECT_EQ(session.ActiveCell(), "A2");
      EXPECT_NE(session.VisibleRows(8), "1 2 3 4 5 6 7 8");
    }
    EXPECT_EQ(session.events, "TF");
  });
}

TEST(Reentrance, DoStopEndsEveryWait) {
  // In the first search, in the wait of the second one, and in the second search.
  for (const int64_t later : {0, 1, 2, 4}) {
    AtEveryPoint([later](Session& session, int64_t point) {
      std::u16string error;
      bool second_ended = later == 0;
      Script(session, [&](int64_t pass) {
        if (pass == point + later) session.runtime.DoStop();
        if (pass == point && later > 0) {
          session.runtime.Search(u"bob", error);
          second_ended = true;
        }
      });
      session.Search(u"ann");
      EXPECT_TRUE(second_ended);
      EXPECT_EQ(session.events.size() % 2, 0U) << session.events;
      if (later < 2) {
        EXPECT_EQ(session.events, "TF");
      }
      if (later == 0) {  // no loop goes on
        EXPECT_LE(session.pump.Passes(), std::max<int64_t>(point, 5) + 1);
      }
    });
  }
}

TEST(Reentrance, ListenersOfTheEventMaySearch) {
  for (const bool at_start : {true, false}) {
    Session session(kTable);
    std::u16string error;
    bool nested = false;
    const auto connection = session.runtime.SearchingEvent().Connect([&](bool& on) {
      if (on == at_start && session.events.size() <= 2) nested = session.runtime.Search(u"bob", error);
    });
    EXPECT_EQ(session.Search(u"ann"), at_start ? "" : "found");
    EXPECT_TRUE(nested);
    EXPECT_EQ(session.VisibleRows(8), "3 6");
    EXPECT_EQ(session.events, "TFTF");
  }
}

// A host may call back from inside an operation.
TEST(Reentrance, ACallFromInsideAHostOperationIsRefused) {
  for (const std::string_view operation : {"Range.Find", "Range.FindRows", "RowSearch.Next"}) {
    Session session(kTable);
    if (operation == "Range.Find") session.FindCellByCell();
    std::string nested;
    session.Watch([&](std::string_view called) {
      if (called == operation && nested.empty()) nested = session.Search(u"bob");
    });
    EXPECT_EQ(session.Search(u"ann"), "found");
    EXPECT_EQ(nested, "untouched") << operation;
  }
}

TEST(Reentrance, ARowThatIsHiddenMeanwhileDoesNotCount) {
  Session session(kTable);
  session.runtime.SearchOptions->UseFilter = false;
  session.Watch([&](std::string_view operation) {
    if (operation == "Range.EntireRow.Hidden") session.sheet->SetHidden({2, 1, 2, 1}, true);
  });
  EXPECT_EQ(session.Search(u"ann"), "Text not found");
}

TEST(Reentrance, ASupersededSearchHidesNothingMore) {
  AtEveryPoint([](Session& session, int64_t point) {
    int hidden = 0;  // blocks, by the first search, and whether it has shown what it has come to
    bool asked = false;
    session.Watch([&](std::string_view operation) {
      hidden += asked && session.events == "T" &&
                        (operation == "Worksheet.HideRows" || operation == "Application.ScreenUpdating=")
                    ? 1
                    : 0;
    });
    Script(session, [&](int64_t pass) {
      if (pass != point) return;
      asked = true;
      std::u16string error;
      session.runtime.SearchOptions->UseFilter = false;  // which hides none itself
      EXPECT_TRUE(session.runtime.Search(u"bob", error));
    });
    EXPECT_EQ(session.Search(u"ann"), "");
    EXPECT_EQ(hidden, 0);
    // The closing form knows whether there is something to show again.
    if (session.VisibleRows(8) != "1 2 3 4 5 6 7 8") {
      EXPECT_TRUE(session.runtime.Items->RowsIsGrouped);
    }
    session.watched.Hear = nullptr;
  });
}

// The search looks for "ann"; cells are changed while it goes on.
TEST(Reentrance, ASearchEndsThoughItsFirstMatchDoesNotMatchAnyMore) {
  const struct {
    const char* name;
    const char* cells;
    const char* filter;  // of column A
    const char* gone;    // the first match
    const char* visible;
  } kCases[] = {
      {"several rows", "bob|ann|bob|ann|ann", "", "A2", "2 4 5"},
      {"one other row", "bob|ann|bob|ann", "", "A2", "2 4"},
      {"one other row, matched twice", "bob,x|ann,x|bob,x|ann,ann", "", "A2", "2 4"},
      {"in one row", "bob,ann,ann,ann|bob,x,x,x", "", "B1", "1"},
      {"areas", "Name|ann|no|ann|no|ann|ann", "<>no", "A4", "1 2 4 6 7"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    Session session(c.cells);
    session.FindCellByCell();
    if (*c.filter != '\0') session.Filter(u"A1:A7", 1, ToUtf16(c.filter));
    Script(session, [&](int64_t pass) {
      if (pass == 4) session.sheet->Range(ToUtf16(c.gone))->SetValue(u"bob");
    });
    EXPECT_EQ(session.Search(u"ann"), "found");
    EXPECT_EQ(session.VisibleRows(session.sheet->UsedRange()->RowsCount()), c.visible);
    EXPECT_LT(session.pump.Passes(), 100);
  }
}

// A runtime object over a sheet, the only one of its library, that can be destroyed.
struct Mortal {
  Mortal() { Connect(host.application); }
  void Connect(const Ref<host::Application>& application) {
    runtime->SetExcelApp(application);
    runtime->SearchOptions->UseFilter = true;
  }
  testing::SampleHost host{kTable};
  testing::TestLibrary library;
  std::unique_ptr<clsVTRLKRuntime> runtime = std::make_unique<clsVTRLKRuntime>(library.shared, library.forms);
};

void CloseTheHost(Mortal& mortal) {
  mortal.runtime->MenuRemove();
  mortal.runtime->DoStop();
  mortal.runtime->SetExcelApp(nullptr);
}
void DestroyTheRuntime(Mortal& mortal) { mortal.runtime.reset(); }
void CloseTheBook(Mortal& mortal) { mortal.host.application->Close(mortal.host.book); }

bool Search(clsVTRLKRuntime& runtime, std::u16string& error) { return runtime.Search(u"ann", error); }
bool Unhide(clsVTRLKRuntime& runtime, std::u16string& error) { return runtime.Unhide(false, error); }
bool MakeMenu(clsVTRLKRuntime& runtime, std::u16string&) { return runtime.MenuCreate(), true; }
bool RemoveMenu(clsVTRLKRuntime& runtime, std::u16string&) { return runtime.MenuRemove(), true; }
bool ReadProfile(clsVTRLKRuntime& runtime, std::u16string&) {
  const auto profile = runtime.Items->DefaultItem;
  profile->SetStartRow(2), profile->SetStartCol(1), profile->SetEndRow(4), profile->SetEndCol(1);
  return profile->ToObject(profile->Clone()->ToString());
}

TEST(Reentrance, TheHostOrTheRuntimeMayGoInTheMiddle) {
  for (const auto end : {CloseTheHost, DestroyTheRuntime, CloseTheBook}) {
    for (int64_t point = 1; point <= 10; ++point) {
      for (const bool nested : {false, true}) {
        Mortal mortal;
        mortal.host.application->SetEnableAnimations(false);
        std::u16string error;
        mortal.library.pump.OnPass = [&](int64_t pass) {
          if (nested && pass == point - 1) mortal.runtime->Search(u"bob", error);
          if (pass == point) end(mortal);
        };
        mortal.runtime->Search(u"ann", error);
        EXPECT_TRUE(mortal.host.application->ScreenUpdating() && mortal.host.application->EnableEvents() &&
                    !mortal.host.application->EnableAnimations())
            << point;
      }
    }
  }
}

TEST(Reentrance, TheHostOrTheRuntimeMayGoInsideOfAnOperationOfTheHost) {
  for (const auto end : {CloseTheHost, DestroyTheRuntime, CloseTheBook}) {
    for (const auto operation : {Search, Unhide, MakeMenu, RemoveMenu, ReadProfile}) {
      bool called = true;
      for (int64_t number = 1; called; ++number) {
        Mortal mortal;
        mortal.runtime->Items->DefaultItem->DontSaveChanges = true;
        int64_t left = number;
        testing::WatchedHost calling;
        calling.Hear = [&](std::string_view) {
          if (--left == 0) end(mortal);
        };
        mortal.Connect(calling.Wrap(Ref<host::Application>(mortal.host.application)));
        std::u16string error;
        try {
          operation(*mortal.runtime, error);
        } catch (const host::Error&) {  // NOLINT(bugprone-empty-catch): of a host that has gone
        }
        EXPECT_TRUE(mortal.host.application->ScreenUpdating() && mortal.host.application->EnableEvents())
            << number;
        called = left <= 0;
        if (mortal.runtime) mortal.runtime->SetExcelApp(nullptr);
      }
    }
  }
}

TEST(Reentrance, FlagsThatTheHostWouldNotTakeBackAreGivenBackLater) {
  const std::function<void(Session&)> kOccasions[] = {
      [](Session& s) { s.Search(u"ann"); },
      [](Session& s) { s.ShowAll(); },
      [](Session& s) { s.runtime.StopSearch(); },
      [](Session& s) { s.runtime.Wait([passes = 0]() mutable { return ++passes < 2; }); },
      [](Session& s) { s.runtime.DoStop(); },
      [](Session& s) { s.runtime.SetExcelApp(nullptr); },
  };
  for (const bool user : {true, false}) {  // what the user has
    for (std::size_t i = 0; i < std::size(kOccasions); ++i) {
      AtEveryPointOf<Stepwise>([&](Session& session, int64_t point) {
        SCOPED_TRACE("occasion " + std::to_string(i));
        session.application->SetEnableEvents(user);
        session.application->SetEnableAnimations(!user);
        bool refuses = false;
        session.Watch([&](std::string_view operation) {
          if (!refuses || !operation.ends_with('=') || !operation.starts_with("Application.")) return;
          throw host::Error(1004, u"The host is busy");
        });
        Script(session, [&](int64_t pass) { refuses |= pass == point; });
        session.Search(u"ann");
        EXPECT_FALSE(session.application->EnableEvents());
        EXPECT_FALSE(session.application->EnableAnimations());
        session.Search(u"ann");  // which does not take them for the user's
        session.pump.OnPass = nullptr;
        refuses = false;
        kOccasions[i](session);
        EXPECT_TRUE(session.application->ScreenUpdating());
        EXPECT_EQ(session.application->EnableEvents(), user);
        EXPECT_EQ(session.application->EnableAnimations(), !user);
        session.watched.Hear = nullptr;
        session.application->SetEnableEvents(true);
        session.application->SetEnableAnimations(true);
      });
    }
  }
}

TEST(Reentrance, StopSearchOutsideASearchDoesNotStopTheNext) {
  Session session(kTable);
  EXPECT_TRUE(session.runtime.StopSearch());
  EXPECT_EQ(session.Search(u"ann"), "found");
}

}  // namespace
}  // namespace rowlark
