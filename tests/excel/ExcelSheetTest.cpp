// The whole seam over the sheet model as an automation host.
#include <gtest/gtest.h>

#include "Excel.h"
#include "Sheet.h"
#include "host/Error.h"

namespace rowlark {
namespace {

using testing::Excel;
using testing::SampleHost;

TEST(ExcelSheet, AnswersAsTheModelDoes) {
  SampleHost host("Name,City|ann,x|bob,y|ann,#N/A");
  const Excel excel(host.application);
  const auto& application = *excel.application;
  const auto sheet = application.ActiveSheet();

  EXPECT_EQ(application.Version(), u"16.0");
  EXPECT_EQ(application.Hwnd(), 1);
  EXPECT_EQ(application.Width(), 960);
  EXPECT_EQ(application.ActiveWorkbook()->FullName(), u"C:\\Data\\Book1.xls");
  EXPECT_EQ(sheet->Parent()->Name(), u"Book1.xls");
  EXPECT_FALSE(sheet->Parent()->ReadOnly());
  EXPECT_EQ(sheet->UsedRange()->Address(), u"$A$1:$B$4");
  EXPECT_EQ(sheet->UsedRange()->RowsCount(), 4);
  EXPECT_EQ(sheet->UsedRange()->ColumnsCount(), 2);
  EXPECT_EQ(sheet->Cells()->RowsCount(), 1048576);

  const auto areas = sheet->Range(u"B2,A3:B4");
  EXPECT_EQ(areas->AreasCount(), 2);
  EXPECT_EQ(areas->Areas(2)->AddressLocal(), u"$A$3:$B$4");
  EXPECT_EQ(areas->Offset(1, 0)->Address(), u"$B$3,$A$4:$B$5");
  EXPECT_THROW(areas->Areas(3), host::Error);
  EXPECT_EQ(sheet->Range(*sheet->Cells(2, 1), *sheet->Cells(3, 2))->Address(), u"$A$2:$B$3");
  EXPECT_THROW(sheet->Range(*host.sheet->Cells(2, 1), *sheet->Cells(3, 2)), host::Error) << "of another host";

  const auto cell = sheet->Cells(4, 2);
  EXPECT_EQ(cell->Value(), u"#N/A");
  EXPECT_EQ(sheet->UsedRange()->Value(), u"Name") << "of the first cell";
  cell->SetValue(u"12");
  EXPECT_EQ(host.sheet->Cells(4, 2)->Value(), u"12");
  EXPECT_EQ(cell->Value(), u"12");
  cell->Activate();
  EXPECT_EQ(host.ActiveCell(), "B4");
  EXPECT_EQ(application.Selection()->Address(), u"$B$4");

  host.book->SetSaved(false);
  application.ActiveWorkbook()->SetSaved(true);
  EXPECT_TRUE(host.book->Saved());
}

TEST(ExcelSheet, FiltersAsTheModelDoes) {
  SampleHost host("Name,City|ann,x|bob,y|cid,z");
  const Excel excel(host.application);
  const auto sheet = excel.application->ActiveSheet();
  EXPECT_FALSE(sheet->AutoFilterMode());
  EXPECT_FALSE(sheet->AutoFilter());

  const std::vector<std::u16string> cities{u"x", u"z"};
  const auto range = sheet->Range(u"A1:B4");
  range->AutoFilter({.Field = 2, .Criteria1 = cities, .Operator = host::xlFilterValues});
  EXPECT_EQ(host.VisibleRows(4), "1 2 4");
  const auto filters = sheet->AutoFilter();
  EXPECT_EQ(filters->Range()->Address(), u"$A$1:$B$4");
  EXPECT_EQ(filters->FiltersCount(), 2);
  EXPECT_FALSE(filters->Filters(1)->On());
  EXPECT_TRUE(filters->Filters(2)->On());
  EXPECT_EQ(filters->Filters(2)->Operator(), host::xlFilterValues);
  EXPECT_TRUE(std::holds_alternative<std::vector<std::u16string>>(filters->Filters(2)->Criteria1()));
  EXPECT_THROW(filters->Filters(2)->Criteria2(), host::Error);
  EXPECT_EQ(range->SpecialCells(host::xlCellTypeVisible)->Address(), u"$A$1:$B$2,$A$4:$B$4");

  host.sheet->Range(u"2:4")->SetEntireRowHidden(true);
  filters->ApplyFilter();
  EXPECT_EQ(host.VisibleRows(4), "1 2 4");
}

TEST(ExcelSheet, HidesRunsOfRowsTogetherOrOneByOne) {
  SampleHost host("x");
  Excel excel(host.application);
  const auto sheet = excel.application->ActiveSheet();
  std::vector<host::RowRun> runs;
  for (int32_t row = 2; row <= 200; row += 2) runs.push_back({row, row});
  EXPECT_EQ(sheet->HideRows(runs), 61) << "as many as 255 characters name";

  const host::RowRun two[] = {{2, 3}, {5, 5}};
  for (int32_t call = 0; call < 3; ++call) {  // of the address, its rows, their being hidden
    host.sheet->Cells()->SetEntireRowHidden(false);
    excel.StartCounting();
    excel.Refuse(1, RPC_E_CALL_REJECTED, call);
    EXPECT_EQ(sheet->HideRows(two), 2);
    EXPECT_EQ(host.VisibleRows(6), "1 4 6");
  }
  host.sheet->Cells()->SetEntireRowHidden(false);
  const host::RowRun beyond[] = {{2, 2}, {4, 4}, {standalone::kMaxRow + 1, standalone::kMaxRow + 1}, {6, 6}};
  EXPECT_THROW(sheet->HideRows(beyond), host::Error);
  EXPECT_EQ(host.VisibleRows(7), "1 3 5 6 7");
}

TEST(ExcelMenu, IsBuiltFoundAndRemoved) {
  SampleHost host("x");
  const Excel excel(host.application);
  const auto bar = excel.application->CommandBars(u"Worksheet Menu Bar");
  EXPECT_FALSE(bar->FindControl(std::nullopt, u"ours"));
  const auto menu = bar->AddControl(host::msoControlPopup, true);
  menu->SetTag(u"ours");
  menu->SetCaption(u"&Menu");
  const auto button = menu->AddControl(host::msoControlButton);
  button->SetCaption(u"&Go");
  button->SetOnAction(u"Go");
  button->SetBeginGroup(true);
  EXPECT_EQ(button->OnAction(), u"Go");
  EXPECT_TRUE(button->BeginGroup());
  EXPECT_THROW(button->AddControl(host::msoControlButton), host::Error);
  const auto found = bar->FindControl(menu->Id(), u"ours");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->Caption(), u"&Menu");
  found->Delete();
  EXPECT_FALSE(bar->FindControl(std::nullopt, u"ours"));
  EXPECT_THROW(excel.application->CommandBars(u"Ribbon"), host::Error);

  excel.application->OnKey(u"^f", u"Go");
  EXPECT_EQ(host.application->Keys().at(u"^f"), u"Go");
  excel.application->OnKey(u"^f", std::nullopt);
  EXPECT_TRUE(host.application->Keys().empty());
}

TEST(ExcelEvents, TellOfSelectionsUntilTheConnectionGoes) {
  SampleHost host("a,b|c,d");
  Excel excel(host.application);
  std::string heard;
  Connection connection;
  const auto select = [&](std::u16string_view address) {
    heard.clear();
    host.sheet->Select(address);
    return heard;
  };
  const auto book = excel.application->ActiveWorkbook();
  connection = book->OnSheetSelectionChange([&](host::Worksheet& sheet, host::Range& target) {
    heard += SampleHost::Plain(*sheet.UsedRange()) + " " + SampleHost::Plain(target);
    if (target.Row() == 2) connection.Release();  // while the event is on the stack
    throw host::Error(5, u"goes nowhere");
  });
  Connection second = book->OnSheetSelectionChange([&](host::Worksheet&, host::Range&) { heard += "!"; });
  EXPECT_EQ(select(u"B1"), "A1:B2 B1!");
  EXPECT_EQ(select(u"A2:B2,A1"), "A1:B2 A2:B2,A1!");
  EXPECT_EQ(select(u"B1"), "!");
  second.Release();
  EXPECT_EQ(select(u"A1"), "");
}

TEST(ExcelApplication, GivesNothingWithoutAWorkbook) {
  SampleHost host("x");
  const Excel excel(host.application);
  host.application->Close(host.book);
  EXPECT_FALSE(excel.application->ActiveWorkbook());
  EXPECT_FALSE(excel.application->ActiveSheet());
  EXPECT_FALSE(excel.application->ActiveCell());
  EXPECT_FALSE(excel.application->Selection());
  EXPECT_FALSE(windows::WrapExcel(nullptr));
}

}  // namespace
}  // namespace rowlark
