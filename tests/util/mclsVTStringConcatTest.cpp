#include "util/mclsVTStringConcat.h"

#include <gtest/gtest.h>

#include "util/AutomationError.h"

namespace rowlark {
namespace {

TEST(StringConcat, GrowsByOneBlockMoreThanTheShortfallHas) {
  mclsVTStringConcat builder;
  const std::pair<std::size_t, int32_t> rows[] = {
      // exactly one block short makes two more
      {0, 0}, {1, 1000}, {999, 1000}, {1, 2000}, {1999, 4000}, {2500, 6000}};
  for (const auto& [add, allocated] : rows) {
    builder.Add(std::u16string(add, u'x'));
    EXPECT_EQ(builder.CharsAllocated(), allocated);
  }
  EXPECT_EQ(builder.GetStr(), std::u16string(5500, u'x'));
  builder.Clear();
  EXPECT_EQ(builder.CharsAllocated() + builder.CharsUsed(), 0);
}

TEST(StringConcat, ImpossibleGrowthIsAnErrorAndKeepsTheContent) {
  mclsVTStringConcat builder;
  builder.SetAllocSize(2);
  builder.Add(u"a");
  const std::pair<int32_t, int32_t> rows[] = {{0, AutomationError::kDivisionByZero},
                                              {INT32_MAX, AutomationError::kOverflow},
                                              {-2, AutomationError::kInvalidCall},
                                              {INT32_MIN, AutomationError::kInvalidCall}};
  for (const auto& [alloc_size, number] : rows) {
    builder.SetAllocSize(alloc_size);
    try {
      builder.Add(u"bcd");
      ADD_FAILURE() << alloc_size;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Number(), number);
    }
  }
  builder.Add(u"b");  // needs no growth
  EXPECT_EQ(builder.GetStr(), u"ab");
  EXPECT_EQ(builder.CharsAllocated(), 2);
}

}  // namespace
}  // namespace rowlark
