// Operations over a host that fails.
#include <gtest/gtest.h>

#include "FaultCases.h"
#include "FaultyHost.h"

namespace rowlark {
namespace {

using testing::Session;

testing::Saboteur Sabotage(Session& session, int64_t call, bool persistent) {
  const auto faulty = std::make_shared<testing::FaultyHost>(call, persistent);
  session.runtime.SetExcelApp(faulty->Wrap(session.host));
  return {[=] { return faulty->Failed(); }, [=] { faulty->Rearm(0); }};
}

TEST(Faults, ASearchEndsInOrderWhicheverCallFails) {
  testing::ExpectSearchesToEndInOrder(Sabotage);
  testing::ExpectSearchesToEndInOrder([](Session& session, int64_t call, bool persistent) {
    session.FindCellByCell();
    return Sabotage(session, call, persistent);
  });
}

TEST(Faults, ShowAllEndsInOrderWhicheverCallFails) { testing::ExpectShowAllToEndInOrder(Sabotage); }

}  // namespace
}  // namespace rowlark
