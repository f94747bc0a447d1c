// The configuration file: what is saved is there again, older and damaged files give what can be read.
#include <gtest/gtest.h>

#include <random>

#include "Settings.h"
#include "TempFolder.h"
#include "settings/Product.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

using host::Hive;
using testing::Settings;

// The example of a configuration that the format's description gives.
void FillExample(Settings& settings) {
  auto& item = *settings.items.DefaultItem;
  item.SetStartCol(-1);
  item.SetStartRow(-1);
  item.SetEndCol(-1);
  item.SetEndRow(-1);
  auto sales = item.Clone(u"C:\\Data\\Sales.xls");
  sales->SearchCols = u"C";
  settings.items.Add(sales);
  settings.items.RecentItems->Add(u"smith");
  settings.items.RecentItems->Add(u"new york");
  settings.shared.Language->SetLangFile(u"english.lng");
}

TEST(Configuration, IsWrittenToTheByte) {
  Settings settings;
  FillExample(settings);
  EXPECT_EQ(ToUtf8(settings.items.ToString(false)),
            "000000245000000100000000000000000000000000002-1000000002-1000000002-1000000002-10000000000"
            "0000000100000000011000000000"
            "000000127000000017C:\\Data\\Sales.xls000000009Sales.xls000000002-1000000002-1000000002-100"
            "0000002-1000000001C00000000100000000011000000000"
            "000000150000000001100000007000000000210000000031000000005smith000000008new york00000000110"
            "00000000000000002^f000000003+^f000000011english.lng000000000000000000");
}

TEST(Configuration, SurvivesARestart) {
  const TempFolder folder;
  const auto file = folder.Path() / "made" / "on demand" / "rowlark.cfg";
  std::mt19937 random(11);
  const auto pick = [&](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint32_t>(n)); };
  const auto text = [&] {
    const std::u16string_view kPieces[] = {u"a",  u"Ω",           u"\r\n",         u"000000002",
                                           u"\\", u"000000011ab", u"\xD83D\xDE00", u"\xD800",
                                           u" ",  u"\t",          u"\xFEFF",       u";=[]"};
    std::u16string made = u"x";
    for (int32_t i = pick(6); i > 0; --i) made += kPieces[pick(std::size(kPieces))];
    return made;
  };
  for (int round = 0; round < 200; ++round) {
    Settings before(file);
    for (int32_t i = pick(4); i > 0; --i) {
      auto item = before.Profile(u"C:\\" + text());
      item->SetStartRow(pick(100) - 50);
      item->SetEndCol(INT32_MIN);
      item->SelectCol = INT32_MAX;
      item->SearchCols = text();
      item->DontSaveChanges = pick(2) == 0;
      before.items.Add(item);
    }
    for (int32_t i = pick(4); i > 0; --i) before.items.RecentItems->Add(text());
    before.items.RecentItems->MaxItemsCount = pick(1000);
    before.items.UnhideOnEsc = pick(2) == 0;
    before.items.EditAutoClose = pick(2) == 0;
    before.items.SetHotKeySearch(text());
    before.shared.Language->SetLangFile(text());
    ASSERT_TRUE(before.items.CfgSave(false));
    Settings after(file);
    ASSERT_TRUE(after.items.CfgLoad());
    ASSERT_EQ(after.items.ToString(false), before.items.ToString(false)) << "round " << round;
  }
}

TEST(Configuration, LoadsOntoWhatIsThere) {
  Settings settings;
  FillExample(settings);
  const auto text = settings.items.ToString(false);
  EXPECT_TRUE(settings.items.ToObject(u""));
  EXPECT_EQ(settings.items.ToString(false), text);

  Settings other;
  const auto mine = other.Profile(u"D:\\SALES.XLS");
  other.items.Add(mine);
  other.items.ToObject(text);
  EXPECT_EQ(other.items.count(), 1);
  EXPECT_EQ(other.items.ByName(u"sales.xls"), mine);

  EXPECT_FALSE(Settings().items.CfgSave(false));  // no file name
  const TempFolder folder;
  Settings missing(folder.Path() / "none.cfg");
  EXPECT_TRUE(missing.items.CfgLoad());
  EXPECT_EQ(missing.items.HotKeySearch(), u"^f");
  Settings edited(folder.Write("edited.cfg", ToUtf8(text) + "\r\n"));
  EXPECT_TRUE(edited.items.CfgLoad());
  EXPECT_EQ(edited.items.ToString(false), text);
  Settings directory(folder.Path());
  EXPECT_FALSE(directory.items.CfgSave(false));
}

TEST(Configuration, TakesTheLanguageOfTheSetUpWhereItNamesNone) {
  for (const auto* setup : {u"", u"german"}) {
    Settings settings;
    if (*setup != u'\0') {
      settings.shared.Registry.SetString(Hive::LocalMachine, kProductKey, u"SetupLanguage", setup);
    }
    FillExample(settings);
    settings.items.ToObject(settings.items.ToString(true));
    EXPECT_EQ(settings.shared.Language->LangFile(), *setup != u'\0' ? u"german.lng" : u"english.lng");
  }
}

// No truncation and no changed byte of a real file crashes, hangs or takes more than what stands behind it.
TEST(Configuration, KeepsWhatDamageLeaves) {
  Settings settings;
  FillExample(settings);
  const auto text = settings.items.ToString(false);
  const auto cells_end = text.find(u"-1") + 2;
  for (std::size_t size = 0; size < text.size(); ++size) {
    Settings cut;
    EXPECT_TRUE(cut.items.ToObject(text.substr(0, size)));
    EXPECT_EQ(cut.items.Exists(u"Sales.xls"), size >= text.find(u"Sales.xls000000002") + 9) << size;
    EXPECT_EQ(cut.items.DefaultItem->StartCol(), size >= cells_end ? -1 : 0) << size;
  }
  Settings damaged;
  for (std::size_t at = 0; at < text.size(); ++at) {
    for (char16_t c = 0; c < 256; ++c) {
      auto changed = text;
      changed[at] = c;
      clsVTRLKItems items(damaged.shared);
      EXPECT_TRUE(items.ToObject(changed));
      EXPECT_LE(items.ToString(false).size(), 2 * text.size());
    }
  }
}

TEST(History, KeepsNewTextsAndDropsTheOldest) {
  Settings settings;
  auto& history = *settings.items.RecentItems;
  for (const auto* text : {u"Smith", u"smith", u"  ", u"", u" smith "}) history.Add(text);
  EXPECT_EQ(history.count(), 2);
  EXPECT_EQ(history.Item(1), u" smith ");
  EXPECT_EQ(history.Item(-1) + history.Item(2), u"");
  EXPECT_TRUE(history.Exists(u"SMITH"));
  history.MaxItemsCount = 1;
  history.Add(u"jones");  // one goes at a time
  EXPECT_EQ(history.count(), 2);
  EXPECT_EQ(history.Item(1), u"jones");
  const auto stored = history.ToString();
  history.Use = false;
  history.Add(u"brown");
  EXPECT_EQ(history.count(), 2);
  history.ToObject(history.ToString());  // a history that is not used is not read
  EXPECT_EQ(history.count(), 0);
  history.ToObject(stored);
  EXPECT_TRUE(history.Use);
  EXPECT_EQ(history.count(), 2);
}

TEST(History, ThatIsTemporaryIsEmptiedByTheFirstLoadOfARun) {
  Settings settings;
  auto& history = *settings.items.RecentItems;
  history.IsTemporary = true;
  history.Add(u"smith");
  const auto stored = history.ToString();
  history.ToObject(stored);
  EXPECT_EQ(history.count(), 0);
  clsVTRLKRecentItems second(settings.shared);
  second.ToObject(stored);
  EXPECT_EQ(second.count(), 1);
}

}  // namespace
}  // namespace rowlark
