// Operations over a host that fails.
#include <gtest/gtest.h>

#include "FaultCases.h"
#include "FaultyHost.h"

namespace rowlark {
namespace {

using testing::Session;

class ForwardingSaboteur final : public testing::Saboteur {
 public:
  ForwardingSaboteur(Session& session, int64_t call, bool persistent) : faulty_(call, persistent) {
    session.runtime.SetExcelApp(faulty_.Wrap(session.host));
  }
  std::string Failed() const override { return faulty_.Failed(); }
  void Relent() override { faulty_.Rearm(0); }

 private:
  testing::FaultyHost faulty_;
};

std::unique_ptr<testing::Saboteur> Sabotage(Session& session, int64_t call, bool persistent) {
  return std::make_unique<ForwardingSaboteur>(session, call, persistent);
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
