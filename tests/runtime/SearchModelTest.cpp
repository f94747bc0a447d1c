// Random searches in the sheet model.
#include <gtest/gtest.h>

#include "RandomSearches.h"

namespace rowlark {
namespace {

TEST(Search, AgreesWithAnObviousModel) {
  testing::random_searches::ExpectAsPredicted(
      {nullptr, [](testing::Session& session) { session.FindCellByCell(); }}, 1, 3000);
}

}  // namespace
}  // namespace rowlark
