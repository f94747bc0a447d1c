// Workbook profiles and their collection.
#include <gtest/gtest.h>

#include "Platform.h"
#include "Sheet.h"
#include "settings/clsVTRLKItems.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

using testing::SampleHost;

class Profile : public ::testing::Test {
 protected:
  std::shared_ptr<clsVTRLKItem> Make(int32_t start_col, int32_t start_row, int32_t end_col, int32_t end_row) {
    auto item = std::make_shared<clsVTRLKItem>(shared);
    item->SetBlock({start_row, start_col, end_row, end_col});
    return item;
  }
  std::shared_ptr<clsVTRLKItem> Named(std::u16string_view path) {
    auto item = std::make_shared<clsVTRLKItem>(shared);
    item->SetFileFullName(path);
    return item;
  }

  testing::TestPlatform platform;
  SharedState& shared = platform.shared;
  SampleHost sample{"x"};
};

TEST_F(Profile, NamesItsWorkbook) {
  EXPECT_EQ(Named(u"Book1")->Name(), u"Book1");
  EXPECT_EQ(Named(u"C:\\Data\\Sales.xls")->Name(), u"Sales.xls");
  EXPECT_EQ(Named(u"https://host/Docs/Sales.xls")->Name(), u"Sales.xls");
  EXPECT_EQ(Named(u"C:\\Data\\")->Name(), u"");
}

TEST_F(Profile, FormsTheAddressOfItsBlock) {
  shared.ExcelApp = sample.application;
  const auto block = Make(2, 3, 6, 200);
  EXPECT_EQ(block->SearchRange(), u"B3:F200");
  block->SetEndRow(0);  // off the sheet: the text stays
  EXPECT_EQ(block->SearchRange(), u"B3:F200");
  block->SetEndRow(2000000);
  EXPECT_EQ(block->SearchRange(), u"B3:F200");
  block->SetStartRow(-1);
  EXPECT_EQ(block->SearchRange(), u"");
  EXPECT_FALSE(block->UsingAutoRange);
  EXPECT_TRUE(Make(-1, -1, -1, -1)->UsingAutoRange);
  const auto read = Make(7, 7, 7, 7);
  EXPECT_TRUE(read->ToObject(Make(2, 3, 6, 0)->ToString()));
  EXPECT_EQ(read->SearchRange(), u"B3:F7");  // each corner by itself, the last one being off the sheet
  EXPECT_FALSE(clsVTRLKItem(shared).UsingAutoRange);

  sample.application->Close(sample.book);  // without a sheet only the flag follows
  const auto nowhere = Make(2, 3, 6, 200);
  EXPECT_EQ(nowhere->SearchRange(), u"");
  nowhere->SetStartCol(-1), nowhere->SetStartRow(-1), nowhere->SetEndCol(-1), nowhere->SetEndRow(-1);
  EXPECT_TRUE(nowhere->UsingAutoRange);
}

TEST_F(Profile, SurvivesItsTextForm) {
  auto item = Make(-1, 3, -1, 200);
  item->SetFileFullName(u"C:\\Dätä\\000000003.xls");
  item->SearchCols = u"A,C";
  item->SelectCol = -7;
  item->UnhideJumpFirstRow = false;
  item->DontSaveChanges = true;
  const auto text = item->ToString();
  EXPECT_TRUE(
      text.starts_with(u"000000021C:\\Dätä\\000000003.xls000000013000000003.xls000000002-1000000001"));
  clsVTRLKItem read(shared);
  EXPECT_TRUE(read.ToObject(text));
  EXPECT_EQ(read.ToString(), text);
  EXPECT_EQ(read.Clone()->ToString(), text);
  EXPECT_EQ(read.Clone(u"D:\\Other.xls")->Name(), u"Other.xls");
}

TEST_F(Profile, ReadsOlderAndDamagedText) {
  const auto pack = [](std::vector<std::u16string> fields, PackedCount count) {
    return mclsVTString::ArrayJoin(fields, count);
  };
  const std::vector<std::u16string> eight = {u"C:\\a.xls", u"b.xls",       u"1", u"x",
                                             u" 3 ",       u"99999999999", u"B", u"2"};
  for (const auto count : {PackedCount::Text, PackedCount::Record}) {
    auto item = Make(7, 7, 7, 7);
    EXPECT_TRUE(item->ToObject(pack(eight, count)));
    EXPECT_EQ(item->Name(), u"b.xls");  // as it was stored, not as the path says
    EXPECT_EQ(item->StartCol(), 1);
    EXPECT_EQ(item->StartRow(), 7);  // what can not be read keeps its value
    EXPECT_EQ(item->EndCol(), 3);
    EXPECT_EQ(item->EndRow(), 7);
    EXPECT_EQ(item->SelectCol, 2);
    EXPECT_FALSE(item->UnhideJumpFirstRow);
  }
  for (const auto damaged : {u"", u"abc", u"00000", u"999999999x"}) {
    auto item = Named(u"kept.xls");
    EXPECT_TRUE(item->ToObject(damaged));
    EXPECT_EQ(item->Name(), u"kept.xls");
  }
}

TEST_F(Profile, AreCollectedByNameInAnyCase) {
  clsVTRLKItems items(shared);
  EXPECT_TRUE(items.Add(Named(u"C:\\b.xls")));
  EXPECT_TRUE(items.Add(Named(u"C:\\A.xls")));
  EXPECT_FALSE(items.Add(Named(u"D:\\B.XLS")));
  EXPECT_EQ(items.count(), 2);
  EXPECT_EQ(items.ByName(u"B.xls")->FileFullName(), u"C:\\b.xls");
  EXPECT_EQ(items.Item(1)->Name(), u"A.xls");
  for (const int32_t outside : {-1, 2}) {
    EXPECT_FALSE(items.Item(outside));
    items.SetItem(outside, Named(u"x.xls"));
  }
  EXPECT_FALSE(items.ByName(u"c.xls"));
  items.SetByName(u"c.xls", Named(u"c.xls"));
  EXPECT_EQ(items.count(), 2);
  items.SetItem(0, Named(u"new.xls"));
  EXPECT_EQ(items.ByName(u"b.XLS")->Name(), u"new.xls");
  items.Remove(u"nowhere");
  items.Remove(u"B.XLS");
  EXPECT_FALSE(items.Exists(u"b.xls"));
  items.Clear();
  EXPECT_EQ(items.count(), 0);
  EXPECT_TRUE(items.DefaultItem);
}

TEST_F(Profile, HotKeysAreLowerCaseButForNamedKeys) {
  clsVTRLKItems items(shared);
  EXPECT_EQ(items.HotKeySearch(), u"^f");
  EXPECT_EQ(items.HotKeyUnhide(), u"+^f");
  items.SetHotKeySearch(u"^G");
  items.SetHotKeyUnhide(u"^{F3}");
  EXPECT_EQ(items.HotKeySearch(), u"^g");
  EXPECT_EQ(items.HotKeyUnhide(), u"^{F3}");
}

}  // namespace
}  // namespace rowlark
