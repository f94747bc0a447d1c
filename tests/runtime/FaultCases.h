// Every host call of an operation fails once: whatever the call, the operation ends in order.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Session.h"

namespace rowlark::testing {

// Stands between a session's runtime and its sheet and fails a call, or that and all that follow.
struct Saboteur {
  std::function<std::string()> Failed;  // the call that failed; empty when none did
  std::function<void()> Relent;         // fails no call from now on
};
// `call` counts from 1.
using Sabotage = std::function<Saboteur(Session& session, int64_t call, bool persistent)>;

namespace fault_cases {

inline void FailEveryCall(const Sabotage& sabotage, const std::function<void(Session&)>& prepare,
                          const std::function<bool(Session&, std::u16string&)>& run,
                          const std::string& events) {
  for (const bool persistent : {false, true}) {
    for (int64_t n = 1;; ++n) {
      ASSERT_LT(n, 1000);
      Session session("Name,City|ann,x|bob,y|ann,y|cid,x|ann,x");
      prepare(session);
      session.application->SetEnableAnimations(false);  // as the user has it
      const auto saboteur = sabotage(session, n, persistent);
      std::u16string error = u"untouched";
      const bool done = run(session, error);
      const std::string where = "call " + std::to_string(n) + (persistent ? " and all that follow: " : ": ");
      EXPECT_FALSE(session.runtime.Searching()) << where << saboteur.Failed();
      EXPECT_EQ(session.events, events) << where << saboteur.Failed();
      EXPECT_NE(error, u"untouched") << where << saboteur.Failed();
      if (done) {
        EXPECT_EQ(error, u"") << where << saboteur.Failed();
      }
      const auto failed = saboteur.Failed();
      // A host that refuses everything can only be put right later.
      if (persistent) {
        saboteur.Relent();
        session.runtime.StopSearch();
      }
      EXPECT_TRUE(session.application->ScreenUpdating() && session.application->EnableEvents() &&
                  !session.application->EnableAnimations())
          << where << failed;
      session.runtime.SetExcelApp(nullptr);
      if (failed.empty()) {
        EXPECT_TRUE(done);
        break;
      }
    }
  }
}

}  // namespace fault_cases

inline void ExpectSearchesToEndInOrder(const Sabotage& sabotage) {
  using fault_cases::FailEveryCall;
  const auto search = [](std::u16string_view text) {
    return [text](Session& session, std::u16string& error) { return session.runtime.Search(text, error); };
  };
  FailEveryCall(
      sabotage, [](Session&) {}, search(u"ann"), "TF");
  FailEveryCall(
      sabotage, [](Session& s) { s.runtime.SearchOptions->UseFilter = false; }, search(u"ann"), "TF");
  FailEveryCall(
      sabotage,
      [](Session& s) {
        s.Filter(u"A1:B6", 2, u"x");
        s.Profile().SearchCols = u"A,B";
        s.Profile().DontSaveChanges = true;
        s.runtime.SearchOptions->SearchWords = xcVT_SEARCH_WORDS_ANY;
      },
      search(u"cid ann"), "TF");
}

inline void ExpectShowAllToEndInOrder(const Sabotage& sabotage) {
  using fault_cases::FailEveryCall;
  const auto show = [](Session& session, std::u16string& error) {
    return session.runtime.Unhide(false, error);
  };
  FailEveryCall(
      sabotage, [](Session& s) { s.sheet->Range(u"2:4")->SetEntireRowHidden(true); }, show, "");
  FailEveryCall(
      sabotage,
      [](Session& s) {
        s.Filter(u"A1:B6", 2, u"x");
        s.Profile().UnhideJumpFirstRow = false;
      },
      show, "");
}

}  // namespace rowlark::testing
