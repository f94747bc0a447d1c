// What searches do in the sheet model they do in Calc.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "Mirror.h"
#include "RandomSearches.h"
#include "SearchCases.h"

namespace rowlark::testing {
namespace {

// ROWLARK_CALC_SEARCHES: how many random ones.
uint32_t RandomSearches() {
  const char* asked = std::getenv("ROWLARK_CALC_SEARCHES");
  return asked != nullptr ? static_cast<uint32_t>(std::strtoul(asked, nullptr, 10)) : 300;
}

TEST(CalcSearch, LeavesTheMatchingRowsVisible) {
  Mirror mirror;
  ExpectSearchCases([&](Session& session) { mirror.Connect(session); });
}

TEST(CalcSearch, AgreesWithAnObviousModel) {
  Mirror mirror;
  random_searches::ExpectAsPredicted({[&](Session& session) { mirror.Connect(session); }}, 1,
                                     RandomSearches());
  RecordProperty("searches", std::to_string(mirror.Searches()));
}

}  // namespace
}  // namespace rowlark::testing
