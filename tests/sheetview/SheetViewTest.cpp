// What a screen shows of a sheet, and where keys lead on it.
#include "sheetview/SheetView.h"

#include <gtest/gtest.h>

#include "host/standalone/Application.h"

namespace rowlark::sheetview {
namespace {

using standalone::kMaxColumn;
using standalone::kMaxRow;

class SheetViewTest : public ::testing::Test {
 protected:
  // 100 rows of "a", "b", nothing, "d"; rows 11 to 90 are hidden.
  void SetUp() override {
    const std::string_view cells[] = {"a", "b", "", "d"};
    for (int row = 0; row < 100; ++row) sheet_->AppendRow(cells);
    sheet_->SetHidden({11, 1, 90, kMaxColumn}, true);
    view_.Resize(500, 220,
                 {.row_height = 20,  // ten rows below the letters
                  .digit_width = 10,
                  .letters_height = 20,
                  .least_width = 40,
                  .most_width = 400,
                  .empty_width = 90,
                  .text_margin = 20,
                  .head_margin = 20});
  }

  std::u16string Selection() const { return application_->Selection()->Address(); }

  Ref<standalone::Application> application_ = MakeRef<standalone::Application>();
  Ref<standalone::Worksheet> sheet_ = application_->AddWorkbook(u"test")->Worksheets().front();
  SheetView view_{sheet_, [](std::string_view text) { return static_cast<int32_t>(text.size()) * 100; },
                  SheetView::Extent::Sheet};
  SheetCursor& cursor_ = view_.Cursor();
};

TEST_F(SheetViewTest, KeysPassHiddenRowsAndStopAtTheEdges) {
  EXPECT_EQ(Step(*sheet_, {10, 2}, Direction::Down), (Cell{91, 2}));
  EXPECT_EQ(Step(*sheet_, {91, 2}, Direction::Up), (Cell{10, 2}));
  EXPECT_EQ(Step(*sheet_, {1, 1}, Direction::Up), (Cell{1, 1}));
  EXPECT_EQ(Step(*sheet_, {kMaxRow, kMaxColumn}, Direction::Down), (Cell{kMaxRow, kMaxColumn}));
  EXPECT_EQ(StepRows(*sheet_, 8, 5), 93);
  EXPECT_EQ(StepRows(*sheet_, 93, -5), 8);
  EXPECT_EQ(StepRows(*sheet_, 3, -5), 1);
}

TEST_F(SheetViewTest, ControlAndAnArrowGoToTheEndOfABlock) {
  EXPECT_EQ(StepToEdge(*sheet_, {1, 1}, Direction::Down), (Cell{100, 1}));
  EXPECT_EQ(StepToEdge(*sheet_, {100, 1}, Direction::Down), (Cell{kMaxRow, 1}));
  EXPECT_EQ(StepToEdge(*sheet_, {kMaxRow, 1}, Direction::Up), (Cell{100, 1}));
  EXPECT_EQ(StepToEdge(*sheet_, {1, 1}, Direction::Right), (Cell{1, 2}));
  EXPECT_EQ(StepToEdge(*sheet_, {1, 2}, Direction::Right), (Cell{1, 4}));
  EXPECT_EQ(StepToEdge(*sheet_, {1, 4}, Direction::Right), (Cell{1, kMaxColumn}));
  EXPECT_EQ(StepToEdge(*sheet_, {5, 3}, Direction::Down), (Cell{kMaxRow, 3}));
  EXPECT_EQ(StepToEdge(*sheet_, {200, 9}, Direction::Left), (Cell{200, 1}));
  EXPECT_EQ(LastUsed(*sheet_), (Cell{100, 4}));
}

TEST_F(SheetViewTest, ShiftExtendsFromTheActiveCellInAnyDirection) {
  int events = 0;
  const auto connection = application_->ActiveWorkbook()->OnSheetSelectionChange(
      [&](host::Worksheet&, host::Range&) { ++events; });
  cursor_.MoveTo({5, 2});
  cursor_.ExtendTo({3, 3});
  EXPECT_EQ(Selection(), u"$B$3:$C$5");
  EXPECT_EQ(sheet_->ActiveCell(), (Block{5, 2, 5, 2}));
  EXPECT_EQ(cursor_.MovingCorner(), (Cell{3, 3}));
  cursor_.ExtendTo({7, 1});
  EXPECT_EQ(Selection(), u"$A$5:$B$7");
  EXPECT_EQ(cursor_.MovingCorner(), (Cell{7, 1}));
  EXPECT_EQ(events, 3);
  cursor_.ExtendTo({7, 1});
  EXPECT_EQ(events, 3) << "the selection has not changed";
}

TEST_F(SheetViewTest, ShowsVisibleRowsAndScrollsNoFurtherThanNeeded) {
  view_.ScrollToRow(9);
  const auto rows = view_.Rows();
  ASSERT_EQ(rows.size(), 10u);
  EXPECT_EQ(rows[1].index, 10);
  EXPECT_EQ(rows[2].index, 91);
  EXPECT_EQ(view_.HitTest(100, 65).cell.row, 91);

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

TEST_F(SheetViewTest, ColumnsAreAsWideAsTheirText) {
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

TEST_F(SheetViewTest, AreasAreAddedExtendedAndForgotten) {
  cursor_.MoveTo({2, 2});
  cursor_.MoveTo({4, 4}, Span::Cells, true);
  cursor_.ExtendTo({5, 3});
  EXPECT_EQ(Selection(), u"$B$2,$C$4:$D$5");
  EXPECT_EQ(cursor_.Active(), (Cell{4, 4}));
  EXPECT_EQ(cursor_.At(), (Cell{5, 3}));
  EXPECT_TRUE(cursor_.IsSelected({2, 2}) && cursor_.IsSelected({5, 4}) && !cursor_.IsSelected({3, 3}));
  cursor_.KeepSelection();
  cursor_.MoveTo({8, 1}, Span::Rows);
  EXPECT_EQ(Selection(), u"$B$2,$C$4:$D$5,$8:$8");
  cursor_.ExtendTo({9, 3}, Span::Rows);
  cursor_.MoveTo({7, 2}, Span::Columns);
  EXPECT_EQ(Selection(), u"$B:$B");
  cursor_.MoveTo({7, 2}, Span::Sheet);
  EXPECT_EQ(sheet_->Selection().front(), kWholeSheet);
  EXPECT_FALSE(cursor_.Follow());

  // Something else selects: that is what is extended and added to.
  sheet_->Select(u"B2:C4,D6:D7");
  EXPECT_TRUE(cursor_.Follow());
  EXPECT_FALSE(cursor_.Follow());
  EXPECT_EQ(cursor_.At(), (Cell{2, 2}));
  cursor_.ExtendTo({3, 3});
  EXPECT_EQ(Selection(), u"$D$6:$D$7,$B$2:$C$3");
  sheet_->Activate(std::vector<Block>{{2, 3, 2, 3}});
  EXPECT_TRUE(cursor_.Follow()) << "another cell of the selection is active";
}

// Only cells in use, below a head that stays: one row a line and a digit a unit, as on a terminal.
TEST_F(SheetViewTest, ATableKeepsItsHeadAndFillsThePage) {
  int32_t most = 6;
  sheet_->SetHeadRows(1);
  SheetView table(
      sheet_, [](std::string_view text) { return static_cast<int32_t>(text.size()); },
      SheetView::Extent::Table);
  const auto settle = [&](int32_t width, int32_t height) {
    table.Resize(width, height,
                 {.number_margin = 3,
                  .least_width = 3,
                  .most_width = most,
                  .empty_width = 3,
                  .text_margin = 0,
                  .gap = 2});
    table.Settle();
  };
  const auto rows = [&] {
    std::string all;
    for (const auto& row : table.Rows()) all += std::to_string(row.index) + ' ';
    return all;
  };
  settle(20, 6);
  EXPECT_EQ(rows(), "1 2 3 4 5 ");
  EXPECT_EQ(table.PageRows(), 4);
  table.Reveal({92, 1});
  EXPECT_EQ(rows(), "1 9 10 91 92 ");
  table.ScrollRows(1000);
  table.Settle();
  EXPECT_EQ(rows(), "1 97 98 99 100 ");
  table.ScrollRows(-1000);
  EXPECT_EQ(table.TopRow(), 2) << "the head does not scroll";
  table.Reveal({1, 1});
  EXPECT_EQ(rows(), "1 2 3 4 5 ");

  // Rows are hidden under it: it goes to those that are left, and fills the page with them.
  table.ScrollToRow(95);
  sheet_->SetHidden({94, 1, 99, kMaxColumn}, true);
  table.Settle();
  EXPECT_EQ(rows(), "1 91 92 93 100 ");
  sheet_->SetHidden({4, 1, 100, kMaxColumn}, true);
  table.Settle();
  EXPECT_EQ(rows(), "1 2 3 ");
  sheet_->SetHidden({2, 1, 3, kMaxColumn}, true);
  table.Settle();
  EXPECT_EQ(rows(), "1 ");

  // Columns grow with the rows that show, and not beyond what they may have.
  sheet_->SetHidden({1, 1, 100, kMaxColumn}, false);
  sheet_->SetCell(3, 2, u"four");
  table.Settle();
  EXPECT_EQ(table.ColumnWidth(2), 4);
  sheet_->SetCell(3, 2, u"x");
  sheet_->SetCell(3, 1, u"much longer");
  table.Settle();
  EXPECT_EQ(table.ColumnWidth(2), 4);
  EXPECT_EQ(table.ColumnWidth(1), 6);
  EXPECT_EQ(table.ColumnWidth(3), 3);
  EXPECT_EQ(table.Columns()[1].start, 6 + 6 + 2);
  EXPECT_FALSE(table.HitTest(13, 2).exact) << "between two columns";
  EXPECT_TRUE(table.HitTest(14, 2).exact);
  EXPECT_FALSE(table.HitTest(14, 60).exact);
  table.Reveal({2, 4});  // four columns are 6 + 4 + 3 + 3 wide, with gaps between
  EXPECT_EQ(table.LeftColumn(), 2);
  settle(28, 6);
  table.ScrollToColumn(1);
  table.Reveal({2, 4});
  EXPECT_EQ(table.LeftColumn(), 1);
}

// A sheet of which nothing is in use has one cell to be at.
TEST(SheetView, AnEmptyTableIsOneCell) {
  const auto application = MakeRef<standalone::Application>();
  const auto sheet = application->AddWorkbook(u"empty")->Worksheets().front();
  SheetView table(
      sheet, [](std::string_view) { return 1; }, SheetView::Extent::Table);
  table.Resize(20, 6, {});
  table.Settle();
  table.Reveal({1, 1});
  ASSERT_EQ(table.Rows().size(), 1u);
  EXPECT_EQ(table.HitTest(100, 100).cell, (Cell{1, 1}));
}

}  // namespace
}  // namespace rowlark::sheetview
