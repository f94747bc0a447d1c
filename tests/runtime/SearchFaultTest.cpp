// Every host call of an operation fails once: whatever the call, the operation ends in order.
#include <gtest/gtest.h>

#include <functional>

#include "Session.h"
#include "host/Forwarding.h"

namespace rowlark {
namespace {

using testing::Session;

void FailEveryCall(const std::function<void(Session&)>& prepare,
                   const std::function<bool(Session&, std::u16string&)>& run, const std::string& events) {
  for (const bool persistent : {false, true}) {
    for (int64_t n = 1;; ++n) {
      ASSERT_LT(n, 1000);
      Session session("Name,City|ann,x|bob,y|ann,y|cid,x|ann,x");
      prepare(session);
      host::FaultyHost faulty(n, persistent);
      session.runtime.SetExcelApp(faulty.Wrap(Ref<host::Application>(session.application)));
      std::u16string error = u"untouched";
      const bool done = run(session, error);
      const std::string where = "call " + std::to_string(n) + (persistent ? " and all that follow: " : ": ");
      EXPECT_FALSE(session.runtime.Searching()) << where << faulty.Failed();
      EXPECT_EQ(session.events, events) << where << faulty.Failed();
      EXPECT_NE(error, u"untouched") << where << faulty.Failed();
      if (done) {
        EXPECT_EQ(error, u"") << where << faulty.Failed();
      }
      // A host that refuses everything can not be put right.
      if (!persistent) {
        EXPECT_TRUE(session.FlagsRestored()) << where << faulty.Failed();
      }
      session.runtime.SetExcelApp(nullptr);
      if (faulty.Failed().empty()) {
        EXPECT_TRUE(done);
        break;
      }
    }
  }
}

TEST(Faults, ASearchEndsInOrderWhicheverCallFails) {
  const auto search = [](std::u16string_view text) {
    return [text](Session& session, std::u16string& error) { return session.runtime.Search(text, error); };
  };
  FailEveryCall([](Session&) {}, search(u"ann"), "TF");
  FailEveryCall([](Session& s) { s.runtime.SearchOptions->UseFilter = false; }, search(u"ann"), "TF");
  FailEveryCall(
      [](Session& s) {
        s.Filter(u"A1:B6", 2, u"x");
        s.Profile().SearchCols = u"A,B";
        s.Profile().DontSaveChanges = true;
        s.runtime.SearchOptions->SearchWords = xcVT_SEARCH_WORDS_ANY;
      },
      search(u"cid ann"), "TF");
}

TEST(Faults, ShowAllEndsInOrderWhicheverCallFails) {
  const auto show = [](Session& session, std::u16string& error) {
    return session.runtime.Unhide(false, error);
  };
  FailEveryCall([](Session& s) { s.sheet->Range(u"2:4")->SetEntireRowHidden(true); }, show, "");
  FailEveryCall(
      [](Session& s) {
        s.Filter(u"A1:B6", 2, u"x");
        s.Profile().UnhideJumpFirstRow = false;
      },
      show, "");
}

}  // namespace
}  // namespace rowlark
