#include "util/Trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "TempFolder.h"
#include "util/AutomationError.h"
#include "util/Owner.h"
#include "util/Scope.h"

namespace rowlark {
namespace {

void FailEachWay(Trace* trace) {
  Attempt(trace, [] { throw AutomationError(1004, u"source", u"secret"); });
  Attempt(trace, [] { throw AutomationError(static_cast<int32_t>(0x80028018), {}, u"secret"); });
  Attempt(trace, [] { throw std::system_error(28, std::generic_category(), "secret"); });
  Attempt(trace, [] { throw std::runtime_error("secret"); });
  Attempt(trace, [] { throw "secret"; });
  TraceNumber(trace, static_cast<int32_t>(0x80004005));
}

TEST(Trace, AppendsToTheFileThatTheUserNamesAndQuotesNothing) {
  const TempFolder folder;
  const auto file = folder.Path() / "trace.txt";
  ::setenv("ROWLARK_TRACE", file.c_str(), 1);
  FailEachWay(OpenTrace().get());
  FailEachWay(OpenTrace().get());
  const auto text = ReadBytes(file);
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 12) << text;
  EXPECT_EQ(text.find("secret"), text.npos) << text;
  for (const char* part :
       {"Z FailEachWay (TraceTest.cpp:", "): automation error 1004\n", "automation error 0x80028018\n",
        "generic error 28\n", "runtime_error", "unknown error\n", "): error 0x80004005\n"}) {
    EXPECT_NE(text.find(part), text.npos) << part << " in\n" << text;
  }
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(Trace, ChangesNothingWhereItIsNotAskedForOrCanNotBeWritten) {
  const TempFolder folder;
  ::unsetenv("ROWLARK_TRACE");
  EXPECT_EQ(OpenTrace(), nullptr);
  for (const std::string& name :
       {std::string(), folder.Path().string(), (folder.Path() / "no" / "file").string()}) {
    ::setenv("ROWLARK_TRACE", name.c_str(), 1);
    EXPECT_EQ(OpenTrace(), nullptr) << name;
  }
  ::setenv("ROWLARK_TRACE", "/dev/full", 1);
  FailEachWay(OpenTrace().get());
  FailEachWay(nullptr);
  EXPECT_FALSE(Attempt(nullptr, [] { throw 1; }));
  EXPECT_TRUE(Attempt(nullptr, [] {}));
  EXPECT_EQ(AttemptOr(nullptr, 1, []() -> int { throw 2; }), 1);
}

struct ClosedTraits {
  using Handle = int;
  static Handle None() noexcept { return 0; }
  void Close(Handle handle) const noexcept { closed->push_back(handle); }
  std::vector<int>* closed = nullptr;
};

TEST(Owner, ClosesOnceWhatItOwns) {
  using Handles = Owner<ClosedTraits>;
  std::vector<int> closed;
  {
    Handles first(1, {&closed});
    Handles second(std::move(first));
    EXPECT_FALSE(first);
    EXPECT_EQ(*second, 1);
    second = Handles(2, {&closed});
    EXPECT_EQ(closed, std::vector{1});
    *second.Put() = 3;
    EXPECT_EQ(closed, (std::vector{1, 2}));
    Handles third(4, {&closed});
    EXPECT_EQ(third.release(), 4);
  }
  EXPECT_EQ(closed, (std::vector{1, 2, 3}));
}

TEST(Scope, RestoresOnEveryWayOut) {
  bool flag = false;
  int count = 1;
  bool ended = false;
  Attempt(nullptr, [&] {
    const ScopedFlag set(flag);
    const ScopedFlag again(flag);
    const ScopedCount counted(count);
    const ScopeExit end([&] { ended = flag && count == 2; });
    throw 1;
  });
  EXPECT_TRUE(ended);
  EXPECT_FALSE(flag);
  EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace rowlark
