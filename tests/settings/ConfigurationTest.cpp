// The configuration file: what is saved is there again, older and damaged files give what can be read.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "Settings.h"
#include "TempFolder.h"
#include "host/standalone/Application.h"
#include "settings/Product.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

using host::Hive;
using testing::Settings;

// One of everything that a configuration holds.
void FillExample(Settings& settings) {
  auto& item = *settings.items.DefaultItem;
  item.SetBlock({-1, -1, -1, -1});
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
      auto item = before.Profile(u"C:\\" + text() + u".xls");
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

TEST(Configuration, IsLeftAloneUntilItCouldBeRead) {
  const TempFolder folder;
  const auto file = folder.Path() / "rowlark.cfg", aside = folder.Path() / "aside";
  Settings settings(file);
  FillExample(settings);
  settings.items.SetHotKeyUnhide(u"{F7}");
  ASSERT_TRUE(settings.items.CfgSave(false));
  const auto stored = ReadBytes(file);

  Settings waiting(file);
  auto& items = waiting.items;
  auto& pump = waiting.pump;
  // A folder is there, and can not be read.
  const auto hide = [&] {
    std::filesystem::rename(file, aside);
    std::filesystem::create_directory(file);
  };
  const auto show = [&] {
    std::filesystem::remove(file);
    std::filesystem::rename(aside, file);
  };
  hide();
  EXPECT_FALSE(items.CfgLoad());
  EXPECT_EQ(pump.Now, 500U);
  items.SetHotKeySearch(u"{F9}");
  EXPECT_FALSE(items.CfgSave(false));
  EXPECT_TRUE(std::filesystem::is_directory(file));
  show();
  EXPECT_TRUE(items.CfgSave(false));  // finds out now what is in the file
  Settings after(file);
  EXPECT_TRUE(after.items.CfgLoad());
  EXPECT_EQ(after.items.HotKeySearch(), u"{F9}");
  after.items.SetHotKeySearch(u"^f");
  EXPECT_EQ(ToUtf8(after.items.ToString(false)), stored);

  hide();
  pump.OnWait = [&] {
    if (pump.Now == 1200) show();
  };
  pump.Now = 1000;
  EXPECT_TRUE(items.CfgLoad());
  EXPECT_TRUE(items.Exists(u"sales.xls"));
  EXPECT_EQ(pump.Now, 1200U);
}

TEST(Configuration, OfWhichSomethingIsUnreadableIsKeptBesideTheNext) {
  const TempFolder folder;
  const auto file = folder.Path() / "rowlark.cfg";
  const auto pack = [](std::vector<std::u16string> list) {
    return mclsVTString::ArrayJoin(list, PackedCount::Text);
  };
  Settings example;
  FillExample(example);
  example.items.SetHotKeySearch(u"{F9}");
  const auto text = example.items.ToString(false);
  const auto profiles = mclsVTString::ArraySplit(text, PackedCount::Text)[0];
  const auto options = mclsVTString::ArraySplit(text, PackedCount::Text)[1];
  const auto history = mclsVTString::ArraySplit(options, PackedCount::Text)[1];
  auto longer = text;
  longer.replace(0, 9, u"000000999");  // reaches to the end of the options
  const auto nameless = pack({example.items.DefaultItem->ToString(), example.Profile(u"C:\\")->ToString()});
  const struct {
    std::u16string text;
    std::string names, hot_keys, history;
    bool damaged;
  } kCases[] = {
      {text, "Sales.xls", "{F9} +^f", "smith new york ", false},
      {text + u"\r\n", "Sales.xls", "{F9} +^f", "smith new york ", false},
      {u"", "", "^f +^f", "", false},
      {u"123456789 notes", "", "^f +^f", "", true},
      {u"000000005notes", "", "^f +^f", "", true},
      {std::u16string(100, u'\0'), "", "^f +^f", "", true},
      {longer, "Sales.xls", "^f +^f", "", true},
      {pack({profiles, u""}), "Sales.xls", "^f +^f", "", true},
      {pack({profiles, u"x" + options}), "Sales.xls", "^f +^f", "", true},
      {pack({profiles, options.substr(0, options.find(u"000000004{F9}") + 13)}), "Sales.xls", "{F9} ",
       "smith new york ", false},  // an older version's
      {pack({profiles, options.substr(0, options.find(u"000000004{F9}") + 14)}), "Sales.xls", "{F9} +^f",
       "smith new york ", true},
      {pack({profiles, pack({u"1", history.substr(0, 50), u"{F9}", u"+^f", u"", u"", u""})}), "Sales.xls",
       "{F9} +^f", "", true},
      {pack({nameless, options}), "", "{F9} +^f", "smith new york ", true},
  };
  for (const auto& [stored, names, hot_keys, texts, damaged] : kCases) {
    const auto bytes = ToUtf8(stored);
    folder.Write("rowlark.cfg", bytes);
    Settings settings(file);
    ASSERT_TRUE(settings.items.CfgLoad());
    std::string seen;
    for (int32_t i = 0; i < settings.items.count(); ++i) seen += ToUtf8(settings.items.Item(i)->Name());
    EXPECT_EQ(seen, names) << bytes;
    EXPECT_EQ(ToUtf8(settings.items.HotKeySearch() + u" " + settings.items.HotKeyUnhide()), hot_keys)
        << bytes;
    seen.clear();
    for (int32_t i = 0; i < settings.items.RecentItems->count(); ++i)
      seen += ToUtf8(settings.items.RecentItems->Item(i)) + ' ';
    EXPECT_EQ(seen, texts) << bytes;
    EXPECT_TRUE(settings.items.RecentItems->Use);
    for (int save = 0; save < 2; ++save) {  // the second one has a whole file before it
      ASSERT_TRUE(settings.items.CfgSave(false));
      EXPECT_EQ(std::filesystem::exists(folder.Path() / "rowlark.cfg.damaged"), damaged) << bytes;
      EXPECT_TRUE(!damaged || ReadBytes(folder.Path() / "rowlark.cfg.damaged") == bytes) << bytes;
      Settings again(file);
      EXPECT_TRUE(again.items.CfgLoad());
      EXPECT_EQ(again.items.ToString(false), settings.items.ToString(false)) << bytes;
    }
    std::filesystem::remove(folder.Path() / "rowlark.cfg.damaged");
  }
}

// What one instance has not touched is as the other one left it.
TEST(Configuration, IsSharedByTwoInstances) {
  const TempFolder folder;
  const auto file = folder.Path() / "rowlark.cfg";
  const auto add = [](Settings& settings, std::u16string_view name, std::u16string_view columns) {
    settings.items.Add(settings.Profile(name));
    settings.items.ByName(name)->SearchCols = columns;
  };
  const auto file_holds = [&file] {
    Settings settings(file);
    EXPECT_TRUE(settings.items.CfgLoad());
    auto& items = settings.items;
    auto text = items.DefaultItem->SearchCols + u"|";
    for (int32_t i = 0; i < items.count(); ++i)
      text += items.Item(i)->Name() + items.Item(i)->SearchCols + u" ";
    text += u"|";
    for (int32_t i = 0; i < items.RecentItems->count(); ++i) text += items.RecentItems->Item(i) + u" ";
    return ToUtf8(text + u"|" + items.HotKeySearch() + u" " + items.HotKeyUnhide() + u" " +
                  ToText(items.RecentItems->MaxItemsCount) + u" ") +
           (settings.shared.Language->IsDefault() ? "" : ToUtf8(settings.shared.Language->LangFile()));
  };
  {
    Settings both(file);  // a file that was never loaded is replaced
    for (const auto* name : {u"a", u"b", u"c", u"d"}) add(both, name, u"A");
    for (const auto* text : {u"one", u"two"}) both.items.RecentItems->Add(text);
    ASSERT_TRUE(both.items.CfgSave(false));
  }
  Settings first(file), second(file);
  ASSERT_TRUE(first.items.CfgLoad() && second.items.CfgLoad());
  first.items.ByName(u"a")->SearchCols = u"F";
  first.items.ByName(u"d")->SearchCols = u"F";
  first.items.Remove(u"b");
  add(first, u"new1", u"F");
  first.items.RecentItems->Add(u"three");
  first.items.SetHotKeySearch(u"{F1}");
  first.shared.Language->SetLangFile(u"german.lng");
  ASSERT_TRUE(first.items.CfgSave(false));
  second.items.Remove(u"c");
  second.items.ByName(u"d")->SearchCols = u"S";
  second.items.DefaultItem->SearchCols = u"S";
  add(second, u"new2", u"S");
  second.items.RecentItems->Clear();
  second.items.RecentItems->Add(u"four");
  second.items.RecentItems->MaxItemsCount = 3;
  second.items.SetHotKeyUnhide(u"{F2}");
  ASSERT_TRUE(second.items.CfgSave(false));
  const std::string merged = "S|aF dS new2S new1F |three four |{F1} {F2} 3 german.lng";
  EXPECT_EQ(file_holds(), merged);
  ASSERT_TRUE(first.items.CfgSave(false) && second.items.CfgSave(false));  // nothing has changed since
  EXPECT_EQ(file_holds(), merged);
  first.items.RecentItems->Add(u"five");
  first.items.RecentItems->Add(u"six");
  first.shared.Language->SetLangFile(u"");
  ASSERT_TRUE(first.items.CfgSave(false));
  EXPECT_EQ(file_holds(), "S|aF dS new1F new2S |four five six |{F1} {F2} 3 ");
  second.shared.Language->SetLangFile(u"polish.lng");
  ASSERT_TRUE(second.items.CfgSave(false) &&
              first.items.CfgSave(true));  // without a language, whoever named it
  EXPECT_EQ(file_holds(), "S|aF dS new1F new2S |four five six |{F1} {F2} 3 ");

  // What a damaged file lacks has not been removed by anybody.
  folder.Write("rowlark.cfg", ReadBytes(file).substr(0, 250));
  ASSERT_TRUE(first.items.CfgSave(false));
  EXPECT_EQ(file_holds(), "S|aF cA dF new1F |one two three five six |{F1} +^f 10 ");
}

TEST(Configuration, OutlivesTheProgramBehindIt) {
  const TempFolder folder;
  std::shared_ptr<clsVTRLKItems> items;
  std::shared_ptr<clsVTRLKLang> language;
  for (const bool gone : {false, true}) {
    auto settings = std::make_unique<Settings>();
    settings->shared.ExcelApp = MakeRef<standalone::Application>();
    settings->shared.Language->SetLangFile(u"german.lng");
    items = std::make_shared<clsVTRLKItems>(settings->shared);
    items->Add(settings->Profile(u"C:\\Sales.xls"));
    items->CfgFileName = ToUtf16((folder.Path() / "rowlark.cfg").string());
    language = settings->shared.Language;
    const auto before = items->ToString(false);
    settings->shared.Release();  // the last runtime object
    if (gone) {
      settings->shared.Acquire();
      settings.reset();
    }
    EXPECT_EQ(items->ToString(false), before);
    EXPECT_EQ(items->CfgSave(false), !gone);
    EXPECT_EQ(items->CfgLoad(), !gone);
    EXPECT_TRUE(items->ToObject(before));
    items->ByName(u"Sales.xls")->SetStartRow(3);
    EXPECT_EQ(items->Item(0)->Clone(u"x")->Name(), u"x");
    items->RecentItems->IsTemporary = true;
    items->RecentItems->ToObject(items->RecentItems->ToString());
    language->SetLangFile(u"polish.lng");
    language->LoadLangFile();
    EXPECT_EQ(language->GetText(u"Key", u"&Text") + language->HelpFile(), u"&Text");
    if (!gone) settings->shared.Acquire();
  }
}

TEST(Configuration, TakesTheLanguageOfTheSetUpWhereItNamesNone) {
  for (const auto* setup : {u"", u"german"}) {
    Settings settings;
    if (*setup != u'\0') {
      // The machine's comes before the user's.
      settings.shared.Registry.SetString(Hive::CurrentUser, kProductKey, u"SetupLanguage", u"polish");
      settings.shared.Registry.SetString(Hive::LocalMachine, kProductKey, u"SetupLanguage", setup);
    }
    FillExample(settings);
    settings.items.ToObject(settings.items.ToString(true));
    EXPECT_EQ(settings.shared.Language->LangFile(), *setup != u'\0' ? u"german.lng" : u"english.lng");
    // It stays the default until another one is chosen, also where an older version has stored no name.
    const auto stored = settings.items.ToString(false);
    EXPECT_EQ(stored.find(u".lng"), stored.npos);
    settings.items.ToObject(mclsVTString::ArrayJoin(
        std::vector<std::u16string>{
            u"", mclsVTString::ArrayJoin(std::vector<std::u16string>{u"1", u"", u"", u"", u".lng"},
                                         PackedCount::Text)},
        PackedCount::Text));
    EXPECT_TRUE(settings.shared.Language->IsDefault());
    settings.shared.Language->SetLangFile(settings.shared.Language->LangFile());
    EXPECT_NE(settings.items.ToString(false).find(u".lng"), stored.npos);
  }
  EXPECT_EQ(Settings().items.ToString(false).find(u".lng"), std::u16string::npos);
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
    for (const char16_t c : u"0123456789x\xFF") {
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
  EXPECT_EQ(history.MaxItemsCount, 1);
  for (const auto* unreadable : {u"", u"x", u"000000001x"}) {
    history.MaxItemsCount = 1;
    history.ToObject(unreadable);
    EXPECT_EQ(history.MaxItemsCount, 10);
  }
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
