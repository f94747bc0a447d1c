// What the window shows of a sheet, and where keys lead on it.
#include "GridView.h"

#include <gtest/gtest.h>

#include "host/standalone/Application.h"

namespace rowlark::workbench {
namespace {

using standalone::kMaxColumn;
using standalone::kMaxRow;

class GridViewTest : public ::testing::Test {
 protected:
  // 100 rows of "a", "b", nothing, "d"; rows 11 to 90 are hidden.
  void SetUp() override {
    const std::string_view cells[] = {"a", "b", "", "d"};
    for (int row = 0; row < 100; ++row) sheet_->AppendRow(cells);
    sheet_->SetHidden({11, 1, 90, kMaxColumn}, true);
    view_.Resize(500, 220, {20, 10});  // ten rows below the head
  }

  std::u16string Selection() const { return application_->Selection()->Address(); }

  Ref<standalone::Application> application_ = MakeRef<standalone::Application>();
  Ref<standalone::Worksheet> sheet_ = application_->AddWorkbook(u"test")->Worksheets().front();
  GridView view_{sheet_, [](std::string_view text) { return static_cast<int>(text.size()) * 100; }};
};

TEST_F(GridViewTest, KeysPassHiddenRowsAndStopAtTheEdges) {
  EXPECT_EQ(Step(*sheet_, {10, 2}, Direction::Down), (Place{91, 2}));
  EXPECT_EQ(Step(*sheet_, {91, 2}, Direction::Up), (Place{10, 2}));
  EXPECT_EQ(Step(*sheet_, {1, 1}, Direction::Up), (Place{1, 1}));
  EXPECT_EQ(Step(*sheet_, {kMaxRow, kMaxColumn}, Direction::Down), (Place{kMaxRow, kMaxColumn}));
  EXPECT_EQ(StepRows(*sheet_, 8, 5), 93);
  EXPECT_EQ(StepRows(*sheet_, 93, -5), 8);
  EXPECT_EQ(StepRows(*sheet_, 3, -5), 1);
}

TEST_F(GridViewTest, ControlAndAnArrowGoToTheEndOfABlock) {
  EXPECT_EQ(StepToEdge(*sheet_, {1, 1}, Direction::Down), (Place{100, 1}));
  EXPECT_EQ(StepToEdge(*sheet_, {100, 1}, Direction::Down), (Place{kMaxRow, 1}));
  EXPECT_EQ(StepToEdge(*sheet_, {kMaxRow, 1}, Direction::Up), (Place{100, 1}));
  EXPECT_EQ(StepToEdge(*sheet_, {1, 1}, Direction::Right), (Place{1, 2}));
  EXPECT_EQ(StepToEdge(*sheet_, {1, 2}, Direction::Right), (Place{1, 4}));
  EXPECT_EQ(StepToEdge(*sheet_, {1, 4}, Direction::Right), (Place{1, kMaxColumn}));
  EXPECT_EQ(StepToEdge(*sheet_, {5, 3}, Direction::Down), (Place{kMaxRow, 3}));
  EXPECT_EQ(StepToEdge(*sheet_, {200, 9}, Direction::Left), (Place{200, 1}));
  EXPECT_EQ(LastUsed(*sheet_), (Place{100, 4}));
}

TEST_F(GridViewTest, ShiftExtendsFromTheActiveCellInAnyDirection) {
  int events = 0;
  const auto connection = application_->ActiveWorkbook()->OnSheetSelectionChange(
      [&](host::Worksheet&, host::Range&) { ++events; });
  MoveTo(*sheet_, {5, 2});
  ExtendTo(*sheet_, {3, 3});
  EXPECT_EQ(Selection(), u"$B$3:$C$5");
  EXPECT_EQ(sheet_->ActiveCell(), (standalone::Rect{5, 2, 5, 2}));
  EXPECT_EQ(MovingCorner(*sheet_), (Place{3, 3}));
  ExtendTo(*sheet_, {7, 1});
  EXPECT_EQ(Selection(), u"$A$5:$B$7");
  EXPECT_EQ(MovingCorner(*sheet_), (Place{7, 1}));
  EXPECT_EQ(events, 3);
  ExtendTo(*sheet_, {7, 1});
  EXPECT_EQ(events, 3) << "the selection has not changed";
}

TEST_F(GridViewTest, ShowsVisibleRowsAndScrollsNoFurtherThanNeeded) {
  view_.ScrollToRow(9);
  const auto rows = view_.Rows();
  ASSERT_EQ(rows.size(), 10u);
  EXPECT_EQ(rows[1].index, 10);
  EXPECT_EQ(rows[2].index, 91);
  EXPECT_EQ(view_.HitTest(100, 65).place.row, 91);

  view_.ScrollToRow(50);
  EXPECT_EQ(view_.TopRow(), 91) << "a hidden row is none to begin with";
  view_.Reveal({10, 1});
  EXPECT_EQ(view_.TopRow(), 10);
  view_.Reveal({99, 1});
  EXPECT_EQ(view_.TopRow(), 10) << "it is on the screen";
  view_.Reveal({100, 1});
  EXPECT_EQ(view_.TopRow(), 91);
  view_.ScrollRows(-3);
  EXPECT_EQ(view_.TopRow(), 8);
}

TEST_F(GridViewTest, ColumnsAreAsWideAsTheirText) {
  EXPECT_EQ(view_.ColumnWidth(1), 140);  // with a margin of a digit at both sides and room for a button
  EXPECT_EQ(view_.ColumnWidth(3), 90);
  sheet_->SetCell(2, 1, u"ab");
  EXPECT_EQ(view_.ColumnWidth(1), 220);
  sheet_->SetCell(2, 1, u"a long text");
  EXPECT_EQ(view_.ColumnWidth(1), 400);
  view_.Reveal({1, 2});
  EXPECT_EQ(view_.LeftColumn(), 2);
  view_.Reveal({1, 4});
  EXPECT_EQ(view_.LeftColumn(), 2);
}

TEST_F(GridViewTest, TheHeadOfAFilteredColumnHasAButton) {
  EXPECT_FALSE(view_.FilterArrow(2));
  host::AutoFilterArguments arguments;
  arguments.Field = 1;
  sheet_->SetFilter({1, 1, 100, 2}, arguments);
  const auto box = view_.FilterArrow(2);
  ASSERT_TRUE(box);
  EXPECT_FALSE(view_.FilterArrow(3));
  const auto hit = view_.HitTest(box->left + 1, box->top + 1);
  EXPECT_EQ(hit.part, GridView::Part::FilterArrow);
  EXPECT_EQ(hit.place, (Place{1, 2}));
  EXPECT_EQ(view_.HitTest(box->left - 1, box->top + 1).part, GridView::Part::Cell);
}

}  // namespace
}  // namespace rowlark::workbench
