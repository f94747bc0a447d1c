// Messages that are processed in the middle of a search call the runtime again, at every point where they
// can.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "Session.h"
#include "host/Forwarding.h"

namespace rowlark {
namespace {

using testing::Session;

constexpr const char* kTable = "Name,City|ann,x|bob,y|ann,y|cid,x|bob,ann|dan,z|ann,x";

// Runs `act(session, pass)` with a new session for every message-processing point of a search for "ann".
void AtEveryPoint(const std::function<void(Session&, int64_t)>& act) {
  Session whole(kTable);
  ASSERT_EQ(whole.Search(u"ann"), "found");
  const int64_t points = whole.pump.Passes();
  ASSERT_GE(points, 8);
  for (int64_t point = 1; point <= points; ++point) {
    Session session(kTable);
    SCOPED_TRACE("at point " + std::to_string(point));
    act(session, point);
    EXPECT_FALSE(session.runtime.Searching());
    EXPECT_TRUE(session.FlagsRestored());
    // A wait that does not end would have been broken off by the pump.
    EXPECT_LT(session.pump.Passes(), 1000);
  }
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
    if (point <= 3) {  // before the second match is looked for
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
        EXPECT_LE(session.pump.Passes(), std::max<int64_t>(point, 4) + 1);
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

// A host that calls back from inside an operation.
class CallingHost final : public host::Forwarding {
 public:
  CallingHost(std::string_view operation, std::function<void()> call)
      : operation_(operation), call_(std::move(call)) {}
  void OnCall(std::string_view operation) override {
    if (operation == operation_ && call_) std::exchange(call_, nullptr)();
  }

 private:
  std::string_view operation_;
  std::function<void()> call_;
};

TEST(Reentrance, ACallFromInsideAHostOperationIsRefused) {
  Session session(kTable);
  std::u16string error = u"untouched";
  bool nested = true;
  CallingHost calling("Range.Find", [&] { nested = session.runtime.Search(u"bob", error); });
  session.runtime.SetExcelApp(calling.Wrap(Ref<host::Application>(session.application)));
  EXPECT_EQ(session.Search(u"ann"), "found");
  EXPECT_FALSE(nested);
  EXPECT_EQ(error, u"untouched");
  session.runtime.SetExcelApp(nullptr);
}

TEST(Reentrance, ARowThatIsHiddenMeanwhileDoesNotCount) {
  Session session(kTable);
  session.runtime.SearchOptions->UseFilter = false;
  CallingHost calling("Range.EntireRow.Hidden", [&] { session.sheet->SetHidden({2, 1, 2, 1}, true); });
  session.runtime.SetExcelApp(calling.Wrap(Ref<host::Application>(session.application)));
  EXPECT_EQ(session.Search(u"ann"), "Text not found");
  session.runtime.SetExcelApp(nullptr);
}

TEST(Reentrance, StopSearchOutsideASearchDoesNotStopTheNext) {
  Session session(kTable);
  EXPECT_TRUE(session.runtime.StopSearch());
  EXPECT_EQ(session.Search(u"ann"), "found");
}

}  // namespace
}  // namespace rowlark
