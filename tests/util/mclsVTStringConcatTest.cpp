#include "util/mclsVTStringConcat.h"

#include <gtest/gtest.h>

#include "util/AutomationError.h"

namespace rowlark {
namespace {

TEST(StringConcat, GrowsByOneBlockMoreThanTheShortfallHas) {
  struct Row {
    std::size_t add;
    int32_t used, allocated;
  };
  const Row rows[] = {{0, 0, 0},         {1, 1, 1000},       {999, 1000, 1000},
                      {1, 1001, 2000},   {1999, 3000, 4000},  // exactly one block short: two more
                      {2500, 5500, 6000}};
  mclsVTStringConcat builder;
  for (const Row& row : rows) {
    builder.Add(std::u16string(row.add, u'x'));
    EXPECT_EQ(builder.CharsUsed(), row.used);
    EXPECT_EQ(builder.CharsAllocated(), row.allocated);
  }
  EXPECT_EQ(builder.GetStr(), std::u16string(5500, u'x'));
  builder.Clear();
  EXPECT_EQ(builder.CharsAllocated(), 0);
  EXPECT_EQ(builder.GetStr(), u"");
}

TEST(StringConcat, ImpossibleGrowthIsAnErrorAndKeepsTheContent) {
  mclsVTStringConcat builder;
  builder.SetAllocSize(2);
  builder.Add(u"a");
  struct Row {
    int32_t alloc_size, error;
  };
  for (const Row& row : {Row{0, AutomationError::kDivisionByZero}, Row{INT32_MAX, AutomationError::kOverflow},
                         Row{-10, AutomationError::kInvalidCall}, Row{-2, AutomationError::kInvalidCall},
                         Row{INT32_MIN, AutomationError::kInvalidCall}}) {
    builder.SetAllocSize(row.alloc_size);
    try {
      builder.Add(u"bcd");
      ADD_FAILURE() << row.alloc_size;
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Number(), row.error);
      EXPECT_EQ(error.Source(), u"VTRLKRuntime.mclsVTStringConcat.Add");
    }
    EXPECT_EQ(builder.GetStr(), u"a");
    EXPECT_EQ(builder.CharsAllocated(), 2);
  }
  builder.Add(u"b");  // needs no growth
  EXPECT_EQ(builder.GetStr(), u"ab");
}

}  // namespace
}  // namespace rowlark
