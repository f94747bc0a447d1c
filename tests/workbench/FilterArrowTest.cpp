#include "FilterArrow.h"

#include <gtest/gtest.h>

#include "Sheet.h"

namespace rowlark::workbench {
namespace {

TEST(FilterArrow, StandsInTheHeadOfAFilteredColumn) {
  const testing::SampleHost host("a,b,c|d,e,f");
  sheetview::SheetView view(
      host.sheet, [](std::string_view) { return 100; }, sheetview::SheetView::Extent::Sheet);
  view.Resize(
      500, 220,
      {.row_height = 20, .digit_width = 10, .letters_height = 20, .least_width = 40, .most_width = 400});
  EXPECT_FALSE(FilterArrow(view, 2));
  host::AutoFilterArguments arguments;
  arguments.Field = 1;
  host.sheet->SetFilter({1, 1, 2, 2}, arguments);
  const auto box = FilterArrow(view, 2);
  ASSERT_TRUE(box);
  EXPECT_FALSE(FilterArrow(view, 3));
  EXPECT_TRUE(Contains(*box, box->left, box->top));
  EXPECT_FALSE(Contains(*box, box->right, box->top));
  const auto under = view.HitTest(box->left, box->top).cell;
  EXPECT_EQ(under, (sheetview::Cell{1, 2}));
  EXPECT_EQ(view.HitTest(box->left - 1, box->top).cell, under) << "the cell shows beside it";
}

}  // namespace
}  // namespace rowlark::workbench
