// The stand-alone sheet answers as Excel does where the logic can tell.
#include <gtest/gtest.h>

#include "Sheet.h"

namespace rowlark {
namespace {

using testing::SampleHost;

TEST(Sheet, ReadsAndWritesAddresses) {
  const SampleHost sample("");
  const auto normal = [&](std::u16string_view text) { return sample.sheet->Range(text)->Address(); };
  EXPECT_EQ(normal(u"f200:$B$3"), u"$B$3:$F$200");
  EXPECT_EQ(normal(u"5:1"), u"$1:$5");
  EXPECT_EQ(normal(u"C:a"), u"$A:$C");
  EXPECT_EQ(normal(u"A1:B2,D4"), u"$A$1:$B$2,$D$4");
  EXPECT_EQ(normal(u"XFD1048576"), u"$XFD$1048576");
  for (const auto* wrong : {u"XFE1", u"A1048577", u"A0", u"", u"1", u"A", u"A1:", u"A1:B", u"1A", u"A1,,B1",
                            u"A-1", u"AAAAAAAAAAAA1"}) {
    EXPECT_THROW(sample.sheet->Range(wrong), host::Error) << ToUtf8(wrong);
  }
}

TEST(Sheet, RefusesWhatLiesOffIt) {
  const SampleHost sample("x");
  const auto& sheet = *sample.sheet;
  EXPECT_THROW(sheet.Cells(0, 1), host::Error);
  EXPECT_THROW(sheet.Cells(1, 16385), host::Error);
  EXPECT_THROW(sheet.Range(u"B2")->Offset(-2, 0), host::Error);
  EXPECT_THROW(sheet.Range(u"XFD1")->Offset(0, 1), host::Error);
  EXPECT_THROW(sheet.Range(u"A1")->Offset(INT32_MAX, 0), host::Error);
  EXPECT_EQ(SampleHost::Plain(*sheet.Range(u"A1:B2,D4")->Offset(1, 2)), "C2:D3,F5");
  EXPECT_EQ(SampleHost::Plain(*sheet.Range(*sheet.Cells(5, 3), *sheet.Cells(2, 4))), "C2:D5");

  sample.sheet->SetSize(standalone::kSmallSheet);
  EXPECT_EQ(SampleHost::Plain(*sheet.Cells()), "A:IV");
  EXPECT_EQ(SampleHost::Plain(*sheet.Range(u"2:3")), "2:3");
  EXPECT_EQ(SampleHost::Plain(*sheet.Cells(65536, 256)), "IV65536");
  EXPECT_THROW(sheet.Cells(65537, 1), host::Error);
  EXPECT_THROW(sheet.Range(u"IW1"), host::Error);
  EXPECT_THROW(sheet.Range(u"IV65536")->Offset(1, 0), host::Error);
}

TEST(Sheet, KeepsTextAndTheUsedRange) {
  const SampleHost sample("|,,b,|,c");
  EXPECT_EQ(SampleHost::Plain(*sample.sheet->UsedRange()), "B2:C3");
  EXPECT_EQ(SampleHost::Plain(*SampleHost("").sheet->UsedRange()), "A1");
  const auto cell = sample.sheet->Range(u"E70000");
  cell->SetValue(u"Ω\xD800");  // an unpaired surrogate is text as well
  EXPECT_EQ(cell->Value(), u"Ω\xD800");
  sample.sheet->Range(u"C2:C3")->SetValue(u"longer than before");
  EXPECT_EQ(sample.sheet->Range(u"C3")->Value(), u"longer than before");
  EXPECT_EQ(sample.sheet->Range(u"B3")->Value(), u"c");
  EXPECT_EQ(sample.sheet->Range(u"A9")->Value(), u"");
  EXPECT_EQ(SampleHost::Plain(*sample.sheet->UsedRange()), "B2:E70000");
  EXPECT_FALSE(sample.book->Saved());
}

TEST(Sheet, VisibleCellsAreWhatHiddenRowsLeave) {
  const SampleHost sample("");
  sample.sheet->Range(u"A3:A5,C40:D64,A66")->SetEntireRowHidden(true);
  const auto range = sample.sheet->Range(u"B2:C70");
  EXPECT_EQ(SampleHost::Plain(*range->SpecialCells(host::xlCellTypeVisible)), "B2:C2,B6:C39,B65:C65,B67:C70");
  EXPECT_THROW(sample.sheet->Range(u"A4:A5")->SpecialCells(host::xlCellTypeVisible), host::Error);
  EXPECT_TRUE(sample.sheet->Range(u"3:5")->EntireRowHidden());
  EXPECT_FALSE(sample.sheet->Range(u"3:6")->EntireRowHidden());
  sample.sheet->Range(u"C90")->SetValue(u"x");
  sample.sheet->Range(u"A1")->SetValue(u"x");
  EXPECT_EQ(SampleHost::Plain(*sample.sheet->Range(u"A4")->SpecialCells(host::xlCellTypeVisible)),
            "A1:C2,A6:C39,A65:C65,A67:C90")
      << "of the used range";
  sample.sheet->Cells()->SetEntireRowHidden(false);
  EXPECT_EQ(SampleHost::Plain(*range->SpecialCells(host::xlCellTypeVisible)), "B2:C70");
}

TEST(Sheet, FiltersAskForWhatTheyCanDo) {
  const SampleHost sample("Name,City|a,x|b,y");
  const auto range = sample.sheet->Range(u"A1:B3");
  EXPECT_FALSE(sample.sheet->AutoFilterMode());
  EXPECT_THROW(range->AutoFilter({.Field = 3, .Criteria1 = u"x"}), host::Error);
  EXPECT_THROW(range->AutoFilter(
                   {.Field = 2, .Criteria1 = u"x", .Operator = static_cast<host::XlAutoFilterOperator>(8)}),
               host::Error);
  EXPECT_THROW(range->AutoFilter({.Field = 2, .Criteria1 = u"no number", .Operator = host::xlTop10Items}),
               host::Error);
  EXPECT_FALSE(sample.sheet->AutoFilterMode());
  range->AutoFilter({.Field = 2, .Criteria1 = u"x"});
  EXPECT_EQ(sample.VisibleRows(3), "1 2");
  const auto filters = sample.sheet->AutoFilter();
  EXPECT_EQ(SampleHost::Plain(*filters->Range()), "A1:B3");
  EXPECT_EQ(filters->FiltersCount(), 2);
  EXPECT_FALSE(filters->Filters(1)->On());
  EXPECT_TRUE(filters->Filters(2)->On());
  EXPECT_EQ(std::get<std::u16string>(filters->Filters(2)->Criteria1()), u"x");
  EXPECT_THROW(filters->Filters(2)->Criteria2(), host::Error);
  EXPECT_THROW(filters->Filters(1)->Criteria1(), host::Error);
  sample.sheet->Range(u"B3")->SetValue(u"X");
  filters->ApplyFilter();
  EXPECT_EQ(sample.VisibleRows(3), "1 2 3");
  range->AutoFilter({});
  EXPECT_FALSE(sample.sheet->AutoFilterMode());
}

TEST(Sheet, ProtectionRefusesWhatExcelRefuses) {
  const SampleHost sample("Name|a|b");
  const auto range = sample.sheet->Range(u"A1:A3");
  sample.sheet->Protect({.contents = true, .scenarios = true});
  EXPECT_TRUE(sample.sheet->ProtectScenarios());
  EXPECT_THROW(range->SetEntireRowHidden(true), host::Error);
  EXPECT_THROW(range->SetValue(u"x"), host::Error);
  EXPECT_THROW(range->AutoFilter({.Field = 1, .Criteria1 = u"a"}), host::Error);
  sample.sheet->Protect({.contents = true, .allow_formatting_rows = true, .allow_filtering = true});
  range->SetEntireRowHidden(true);
  range->AutoFilter({.Field = 1, .Criteria1 = u"a"});
  EXPECT_EQ(sample.VisibleRows(3), "2");
}

TEST(Host, SelectionActiveCellAndTheirEvent) {
  const SampleHost sample("x");
  std::string selected;
  const auto connection = sample.book->OnSheetSelectionChange(
      [&](host::Worksheet&, host::Range& target) { selected += SampleHost::Plain(target) + ' '; });
  sample.sheet->Select(u"B2:C3,E5");
  EXPECT_EQ(sample.application->Selection()->AreasCount(), 2);
  sample.sheet->Range(u"C3")->Activate();  // within the selection
  EXPECT_EQ(sample.ActiveCell(), "C3");
  sample.sheet->Range(u"D4")->Activate();
  sample.application->SetEnableEvents(false);
  sample.sheet->Range(u"D5")->Activate();
  EXPECT_EQ(selected, "B2:C3,E5 D4 ");
  EXPECT_EQ(sample.ActiveCell(), "D5");

  const auto other = sample.application->AddWorkbook(u"C:\\Data\\Other.xls");
  EXPECT_EQ(other->Name(), u"Other.xls");
  EXPECT_THROW(sample.sheet->Range(u"A1")->Activate(), host::Error);
  sample.application->Activate(sample.book);
  sample.sheet->Range(u"A1")->Activate();
  const auto range = sample.sheet->Range(u"A1");
  sample.application->Close(sample.book);
  EXPECT_THROW(range->Activate(), host::Error);
  EXPECT_EQ(sample.application->ActiveWorkbook()->Name(), u"Other.xls");
}

}  // namespace
}  // namespace rowlark
