// The options form, page by page.
#include <gtest/gtest.h>

#include "Desk.h"
#include "forms/HotKey.h"
#include "forms/TextRule.h"

namespace rowlark {
namespace {

using controls::kAlt;
using controls::kCtrl;
using controls::kNoShift;
using controls::kShift;
using controls::PressKey;
using testing::Desk;
using testing::Type;
using testing::WatchedHost;

enum Page : int32_t { kCommonPage, kBooksPage, kKeyboardPage, kEditPage };

TEST(HotKeys, EveryKeyHasItsNameOrNone) {
  std::string names;
  for (int32_t key = -1; key <= 256; ++key) {
    const auto name = ToUtf8(KeyName(key));
    if (!name.empty()) names += std::to_string(key) + name + ' ';
  }
  EXPECT_EQ(
      names,
      "8{BACKSPACE} 13~ 27{ESCAPE} 32  33{PGUP} 34{PGDN} 35{END} 36{HOME} 37{LEFT} 38{UP} 39{RIGHT} "
      "40{DOWN} 45{INSERT} 46{DEL} 480 491 502 513 524 535 546 557 568 579 65a 66b 67c 68d 69e 70f 71g "
      "72h 73i 74j 75k 76l 77m 78n 79o 80p 81q 82r 83s 84t 85u 86v 87w 88x 89y 90z 960 971 982 993 1004 "
      "1015 1026 1037 1048 1059 106\\ 107{+} 108\\ 109- 110. 111/ 112{F1} 113{F2} 114{F3} 115{F4} "
      "116{F5} 117{F6} 118{F7} 119{F8} 120{F9} 121{F10} 122{F11} 123{F12} 124{F13} 125{F14} 126{F15} "
      "127{F16} 144{NUMLOCK} 145{SCROLLLOCK} ");
  for (const auto& [code, text] :
       {std::pair(u"", u""), std::pair(u"+^f", u"Ctrl + Shift + f"), std::pair(u"{F5}", u"{F5}"),
        std::pair(u"%{DEL}", u"Alt + {DEL}"), std::pair(u"{+}", u"Shift + {}")}) {
    EXPECT_EQ(HotKeyText(code), text);
  }
}

TEST(OptionsForm, CapturesHotkeysAndRegistersThemWhenItCloses) {
  Desk desk;
  desk.application->OnKey(u"^f", u"VantrelRLK_ShowSearch");
  desk.application->OnKey(u"+^f", u"VantrelRLK_Unhide");
  auto form = desk.Options(kKeyboardPage);
  auto& items = *desk.runtime->Items;
  EXPECT_EQ(form->box0_HKS.Text(), u"Ctrl + f");
  EXPECT_EQ(form->box0_HKU.Text(), u"Ctrl + Shift + f");
  form->box0_HKS.SetFocus();
  for (const auto& [key, shift, text, stored] :
       {std::tuple(17, kCtrl | kShift, u"Ctrl + Shift + ", u"^f"),  // no key yet
        {120, kCtrl | kNoShift, u"Ctrl + {F9}", u"^{F9}"},
        {106, kCtrl | kNoShift, u"Ctrl + \\", u"^\\"},
        {107, kAlt | kShift, u"Shift + Alt + {+}", u"+%{+}"},
        {186, kCtrl | kNoShift, u"Ctrl + ", u"+%{+}"},  // a key without a name
        {27, kNoShift, u"", u"+%{+}"},
        {27, kCtrl | kNoShift, u"Ctrl + {ESCAPE}", u"^{ESCAPE}"},
        {'G', kCtrl | kShift, u"Ctrl + Shift + g", u"^+g"}}) {
    PressKey(*form, key, shift, u'x');
    EXPECT_EQ(form->box0_HKS.Text(), text);
    EXPECT_EQ(items.HotKeySearch(), stored);
  }
  PressKey(*form, controls::kKeyTab);  // as in any dialog
  EXPECT_EQ(form->ActiveControl(), &form->chk0_HotKeyUnhide);
  EXPECT_EQ(items.HotKeySearch(), u"^+g");

  form->chk0_HotKeyUnhide.UserClicked();
  EXPECT_FALSE(form->box0_HKU.Enabled());
  EXPECT_EQ(form->box0_HKU.Text(), u"");
  EXPECT_EQ(items.HotKeyUnhide(), u"");
  form->chk0_HotKeyUnhide.UserClicked();
  EXPECT_TRUE(form->box0_HKU.Enabled());
  // Refilling does not forget what was in force when the form was opened.
  form->cbo0_LangFile.UserPicked(form->cbo0_LangFile.ListCount() - 1);
  form->btnClose.UserClicked();
  EXPECT_EQ(desk.application->Keys(),
            (std::map<std::u16string, std::u16string>{{u"^+g", u"VantrelRLK_ShowSearch"}}));
  form = desk.Options(kKeyboardPage);
  EXPECT_FALSE(form->chk0_HotKeyUnhide.Value() || form->box0_HKU.Enabled());
}

TEST(OptionsForm, NamesTheHotkeysThatTheHostRefuses) {
  Desk desk;
  WatchedHost host;
  int32_t assigned = 0;
  host.Hear = [&](std::string_view operation) {
    const bool refuses = operation == "Application.OnKey" && ++assigned > 2;  // what was in force is let go
    if (refuses) throw host::Error(1004, u"Method 'OnKey' of object '_Application' failed");
  };
  desk.Start(host.Wrap(desk.application));
  desk.Options()->UserClosed();
  EXPECT_EQ(desk.windows.Messages,
            std::vector<std::string>{"Vantrel Rowlark: Excel refuses the hotkey Ctrl + f, Ctrl + Shift + f. "
                                     "Choose another one in the options. (16)"});
  desk.Options();
  desk.runtime->DoStop();  // which closes it
  EXPECT_EQ(desk.windows.Messages.size(), 1U);
}

TEST(OptionsForm, ShowsOnePageAtATime) {
  Desk desk;
  const auto form = desk.Options();
  const controls::Control* pages[] = {&form->chk0_RecentsUse, &form->lvw0, &form->box0_HKS,
                                      &form->chk2_EditCloseForm};
  for (int32_t page = 0; page < 4; ++page) {
    form->tvw0.UserPicked(page);
    for (int32_t other = 0; other < 4; ++other) EXPECT_EQ(pages[other]->Shown(), page == other);
  }
}

TEST(OptionsForm, SwitchesCountAtOnce) {
  Desk desk;
  auto& items = *desk.runtime->Items;
  const auto form = desk.Options();
  for (auto& [check, value] : {std::pair(&form->chk0_UnhideOnEsc, &items.UnhideOnEsc),
                               std::pair(&form->chk0_AutoDetectText, &items.AutoDetectSearchText),
                               std::pair(&form->chk2_EditCloseForm, &items.EditAutoClose),
                               std::pair(&form->chk0_RecentsTemp, &items.RecentItems->IsTemporary),
                               std::pair(&form->chk0_RecentsUse, &items.RecentItems->Use)}) {
    form->tvw0.UserPicked(check == &form->chk2_EditCloseForm ? kEditPage : kCommonPage);
    EXPECT_EQ(check->Value(), *value);
    const bool before = *value;
    check->UserClicked();
    EXPECT_EQ(*value, !before) << ToUtf8(check->Name);
  }
  for (const controls::Control* dependent : std::initializer_list<controls::Control*>{
           &form->chk0_RecentsTemp, &form->box0_RecentItems, &form->lbl0_RecentItemsCap}) {
    EXPECT_FALSE(dependent->Enabled());
  }
  form->chk0_RecentsUse.UserClicked();
  for (const auto& [typed, text, stored] : {std::tuple(u"12a3", u"123", 123),
                                            {u"1000", u"1000", 123},
                                            {u"", u"", 123},
                                            {u"999", u"999", 999},
                                            {u"99999999999", u"99999999999", 999},
                                            {u"0", u"0", 0},
                                            {u"7", u"7", 7}}) {
    form->box0_RecentItems.UserTyped(typed, 1);
    EXPECT_EQ(form->box0_RecentItems.Text(), text);
    EXPECT_EQ(items.RecentItems->MaxItemsCount, stored);
  }
  items.RecentItems->Add(u"x");
  form->btnRecentClear.UserClicked();
  EXPECT_EQ(items.RecentItems->count(), 0);
  EXPECT_TRUE(desk.windows.Messages.empty());
}

TEST(OptionsForm, ListsTheLanguagesAndSpeaksTheChosenOne) {
  Desk desk;
  desk.Write("ODD.LNG",
             "PRG_KEY = VTRLK 1.x\nLANGUAGE_NAME_ENG = Odd\nLANGUAGE_NAME = Odd!\n"
             "Options.UI.FormCaption = Odd options\nMenu.Root = Odd\nAUTHOR_NAME = Nobody\n");
  desk.Write("other.lng", "PRG_KEY = vtrlk 1.x\nLANGUAGE_NAME_ENG = Other\n");
  desk.Write("text.txt", "PRG_KEY = VTRLK 1.x\n");
  desk.runtime->Language().SetPath(ToUtf16(desk.Path().string()));
  auto form = desk.Options();
  auto& list = form->cbo0_LangFile;
  ASSERT_EQ(list.ListCount(), 2);
  EXPECT_EQ(list.Text(), u"<Default>");
  EXPECT_EQ(list.List(1), u"Odd (Odd!)");
  EXPECT_EQ(form->box0_LangInfo.Text(),
            u"File: <default>\r\nAuthor: Vantrel\r\nE-Mail: info@rowlark.example.com\r\n"
            u"WWW: https://rowlark.example.com");
  list.UserPicked(1);
  EXPECT_EQ(form->Caption(), u"Odd options");
  EXPECT_EQ(form->box0_LangInfo.Text(),
            u"File: ODD.LNG\r\nAuthor: Nobody\r\nE-Mail: info@rowlark.example.com\r\n"
            u"WWW: https://rowlark.example.com");
  EXPECT_EQ(desk.application->WorksheetMenuBar()->Controls().back()->Caption(), u"Odd");
  form->UserClosed();

  form = desk.Options();
  EXPECT_EQ(form->cbo0_LangFile.ListIndex(), 1);
  form->cbo0_LangFile.UserPicked(0);  // counts from the next start on, or when the form closes
  EXPECT_EQ(desk.runtime->Language().LangFile(), u"ODD.LNG");
  form->UserClosed();
  EXPECT_EQ(desk.runtime->Language().LangFile(), u"english.lng");
  desk.Start(desk.application);
  EXPECT_EQ(desk.runtime->Language().LangFile(), u"english.lng");

  // A language that is not there for the moment is not forgotten.
  desk.runtime->Language().SetLangFile(u"german.lng");
  desk.Options()->UserClosed();
  EXPECT_EQ(desk.runtime->Language().LangFile(), u"german.lng");
  desk.runtime->Language().SetPath(u"/nowhere");
  form = desk.Options();
  EXPECT_EQ(form->cbo0_LangFile.ListCount(), 1);
  EXPECT_EQ(desk.windows.Messages,
            std::vector<std::string>{"Vantrel Rowlark: Language files not found! (16)"});
}

TEST(OptionsForm, ClosesAndRegistersHotkeysEvenIfTheConfigurationCanNotBeWritten) {
  Desk desk;
  desk.runtime->Items->CfgFileName = u"/dev/null/rowlark.cfg";
  desk.Options()->UserClosed();
  EXPECT_EQ(desk.windows.Messages,
            std::vector<std::string>{"Vantrel Rowlark: Configuration write error in file\r\n"
                                     "/dev/null/rowlark.cfg (16)"});
  EXPECT_TRUE(desk.help.Calls.size() == 1 && desk.help.Calls[0].ends_with("vt_rlk_en.chm 15 1100"));
  EXPECT_EQ(desk.application->Keys().size(), 2U);
  EXPECT_TRUE(desk.NoFormIsLeft());
}

// "ab|cd" stands for a caret between b and c.
TEST(TextRules, NormaliseWhatIsTyped) {
  const auto apply = [](const TextRule& rule, std::u16string text) {
    auto caret = static_cast<int32_t>(text.find(u'|'));
    text.erase(static_cast<std::size_t>(caret), 1);
    auto result = Apply(rule, text, caret);
    result.insert(static_cast<std::size_t>(caret), 1, u'|');
    return ToUtf8(result);
  };
  EXPECT_EQ(apply(kRangeRule, u"a1-c5|"), "a1:c5|");
  EXPECT_EQ(apply(kRangeRule, u"1.|5"), "1:|5");
  EXPECT_EQ(apply(kRangeRule, u"a1 , |c5"), "a1:|c5");
  EXPECT_EQ(apply(kRangeRule, u"$A|$1\\B2"), "A|1:B2");
  EXPECT_EQ(apply(kColumnsRule, u"c e f|"), "C,E,F|");
  EXPECT_EQ(apply(kColumnsRule, u"c, |e"), "C,,|E");
  EXPECT_EQ(apply(kColumnsRule, u"a1/b|2"), "A,B|");
  EXPECT_EQ(apply(kColumnRule, u"AB-1|"), "AB|");
  EXPECT_EQ(apply(kColumnRule, u"a|,b"), "a|b");
  EXPECT_EQ(apply(kNumberRule, u"1a|2"), "12|");
}

TEST(OptionsForm, EditsTheProfileOfAWorkbook) {
  Desk desk;
  auto& items = *desk.runtime->Items;
  const auto form = desk.Options(kBooksPage);
  ASSERT_EQ(form->lvw0.Items().size(), 1U);
  EXPECT_EQ(form->lvw0.Items()[0].text, u"<All workbooks>");
  EXPECT_TRUE(form->box1_RangeAuto.Visible() && form->box1_SearchColsAuto.Visible() &&
              form->box1_ColAuto.Visible());
  form->tbr1_0.UserPressed(u"DEL");  // nobody asks: it can not be removed
  desk.windows.Answer = false;
  form->tbr1_0.UserPressed(u"ADD");
  EXPECT_EQ(items.count(), 0);
  desk.windows.Answer = true;
  form->tbr1_0.UserPressed(u"ADD");
  form->tbr1_0.UserPressed(u"ADD");
  EXPECT_EQ(
      desk.windows.Messages,
      (std::vector<std::string>{"Vantrel Rowlark: Do you want to add workbook [Book1.xls] in this list ? (?)",
                                "Vantrel Rowlark: Do you want to add workbook [Book1.xls] in this list ? (?)",
                                "Vantrel Rowlark: Workbook 'Book1.xls' already exists ! (48)"}));
  ASSERT_EQ(items.count(), 1);
  form->lvw0.UserPicked(1);
  const auto& item = *items.Item(0);
  const auto block = [&] {
    return std::vector<int32_t>{item.StartRow(), item.StartCol(), item.EndRow(), item.EndCol()};
  };
  form->box1_Range.SetFocus();
  Type(*form, u"a1-c5");
  EXPECT_EQ(form->box1_Range.Text(), u"a1:c5");
  EXPECT_EQ(block(), (std::vector<int32_t>{1, 1, 5, 3}));
  EXPECT_FALSE(form->box1_RangeAuto.Visible());
  form->box1_Range.UserTyped(u"1.5", 3);
  EXPECT_EQ(block(), (std::vector<int32_t>{1, 1, 5, 16384}));
  form->box1_Range.UserTyped(u"a1:", 3);  // not a range, or not yet
  EXPECT_EQ(block(), (std::vector<int32_t>(4, 0)));
  form->box1_Range.UserTyped(u"b2:c3", 3);
  form->box1_SearchCols.UserTyped(u"c e f", 5);
  EXPECT_EQ(item.SearchCols, u"C,E,F");
  form->box1_Col.UserTyped(u"AB-1", 4);
  EXPECT_EQ(item.SelectCol, 28);
  form->box1_Col.UserTyped(u"XYZW", 4);
  EXPECT_EQ(item.SelectCol, 0);
  form->box1_Col.UserTyped(u"c", 1);
  EXPECT_EQ(item.SelectCol, 3);
  form->chk1_JumpFirstRow.UserClicked();
  form->chk1_DontSaveChanges.UserClicked();
  EXPECT_TRUE(!item.UnhideJumpFirstRow && item.DontSaveChanges);

  form->lvw0.UserPicked(0);
  EXPECT_TRUE(form->box1_Range.Text().empty() && form->box1_RangeAuto.Visible());
  EXPECT_TRUE(form->chk1_JumpFirstRow.Value() && !form->chk1_DontSaveChanges.Value());
  form->lvw0.UserPicked(1);  // shown, and not written back
  EXPECT_EQ(form->box1_Range.Text(), u"B2:C3");
  EXPECT_EQ(form->box1_Col.Text(), u"C");
  EXPECT_EQ(form->box1_SearchCols.Text(), u"C,E,F");
  EXPECT_EQ(block(), (std::vector<int32_t>{2, 2, 3, 3}));

  form->box1_SearchColsAuto.UserClicked();  // hidden: nothing to click on
  EXPECT_EQ(item.SearchCols, u"C,E,F");
  form->tbr1_0.UserPressed(u"RESET");
  EXPECT_EQ(block(), (std::vector<int32_t>(4, 0)));
  EXPECT_TRUE(item.SearchCols.empty() && item.SelectCol == 0);
  EXPECT_TRUE(form->box1_RangeAuto.Visible() && form->box1_SearchColsAuto.Visible() &&
              form->box1_ColAuto.Visible());
  form->box1_ColAuto.UserClicked();
  EXPECT_EQ(form->ActiveControl(), &form->box1_Col);
  form->tbr1_0.UserPressed(u"DEL");
  EXPECT_EQ(items.count(), 0);
  EXPECT_EQ(form->lvw0.Items().size(), 1U);
  desk.application->Close(desk.book);
  form->tbr1_0.UserPressed(u"ADD");
  EXPECT_EQ(items.count(), 0);
  items.DefaultItem->SelectCol = 5;  // what can not be shown without a sheet is not lost
  form->lvw0.UserPicked(0);
  EXPECT_EQ(items.DefaultItem->SelectCol, 5);
}

TEST(OptionsForm, PicksOnTheSheet) {
  Desk desk;
  const auto form = desk.Options(kBooksPage);
  const auto pick = [&](controls::Button& button, const char16_t* address, int32_t key) {
    desk.script = {[] {},
                   [&] {
                     button.UserClicked();  // no second pick
                     desk.sheet->Select(address);
                   },
                   [&, key] {
                     EXPECT_EQ(desk.windows.Forms.size(), 2U);
                     form->tvw0.UserPicked(kCommonPage);
                     form->lvw0.UserPicked(1);
                     form->tbr1_0.UserPressed(u"DEL");
                     EXPECT_TRUE(form->lvw0.Shown() && form->lvw0.Selected() == 0);
                     form->Picker()->UserKeyDown(key, 0);
                   }};
    button.UserClicked();
    EXPECT_FALSE(form->Picker());
  };
  constexpr int32_t kOk = controls::kKeyReturn;
  form->tbr1_0.UserPressed(u"ADD");
  pick(form->btn1_SelRange, u"B2:C5,E5", kOk);
  EXPECT_TRUE(form->lvw0.Enabled() && form->tvw0.Enabled() && form->tbr1_0.Enabled());
  EXPECT_EQ(form->box1_Range.Text(), u"B2:C5");
  EXPECT_EQ(form->ActiveControl(), &form->box1_Range);
  EXPECT_EQ(desk.runtime->Items->DefaultItem->EndRow(), 5);
  pick(form->btn1_SelRange, u"D4", controls::kKeyEscape);
  EXPECT_EQ(form->box1_Range.Text(), u"B2:C5");
  pick(form->btn1_SelCol, u"AB5:AC6", kOk);
  EXPECT_EQ(form->box1_Col.Text(), u"AB");
  pick(form->btn1_SelSearchCols, u"AA1,B2:C3,B7", kOk);
  EXPECT_EQ(form->box1_SearchCols.Text(), u"AA,B,C");  // as texts
  pick(form->btn1_SelSearchCols, u"2:3", kOk);         // no columns in it
  EXPECT_EQ(form->box1_SearchCols.Text(), u"AA,B,C");

  desk.script = {[&] { form->Picker()->UserClosed(); }};
  form->btn1_SelCol.UserClicked();
  // The form goes while the user picks, and when a pick has just been accepted.
  desk.script = {[&] { form->UserClosed(); }};
  form->btn1_SelCol.UserClicked();
  EXPECT_TRUE(desk.NoFormIsLeft() && !desk.shared.Terminating);
  const auto again = desk.Options(kBooksPage);
  desk.script = {[&] {
    desk.sheet->Select(u"F6");
    again->Picker()->btn0.UserClicked();
    desk.runtime->DoStop();
  }};
  again->btn1_SelCol.UserClicked();
  EXPECT_TRUE(desk.NoFormIsLeft());
  EXPECT_EQ(desk.runtime->Items->DefaultItem->SelectCol, 28);
  EXPECT_EQ(form->box1_Col.Text(), u"AB");
}

TEST(OptionsForm, IsGoneWhenTheLibraryEndsDuringAQuestion) {
  Desk desk;
  auto& items = *desk.runtime->Items;
  for (const auto* button : {u"ADD", u"DEL"}) {
    const auto form = desk.Options(kBooksPage);
    form->lvw0.UserPicked(1);
    desk.windows.WhileMessage = [&] { desk.runtime->DoStop(); };
    form->tbr1_0.UserPressed(button);
    EXPECT_EQ(items.count(), button[0] == u'D' ? 1 : 0);
    EXPECT_TRUE(desk.NoFormIsLeft());
    desk.windows.WhileMessage = nullptr;
    desk.shared.Terminating = false;
    items.Add(items.DefaultItem->Clone(u"C:\\Data\\Book1.xls"));
  }
}

// The list shows what there was when it was filled.
TEST(OptionsForm, StandsProfilesThatOthersRemove) {
  Desk desk;
  auto& items = *desk.runtime->Items;
  for (const auto* book : {u"C:\\a.xls", u"C:\\b.xls", u"C:\\c.xls"}) {
    items.Add(items.DefaultItem->Clone(book));
  }
  const auto form = desk.Options(kBooksPage);
  items.Remove(u"a.xls");
  form->lvw0.UserPicked(2);
  form->box1_SearchCols.UserTyped(u"b", 1);
  EXPECT_EQ(items.ByName(u"b.xls")->SearchCols, u"B");
  EXPECT_EQ(items.ByName(u"c.xls")->SearchCols, u"");
  form->lvw0.UserPicked(1);
  EXPECT_FALSE(form->box1_Range.Enabled() || form->chk1_JumpFirstRow.Enabled());
  form->tbr1_0.UserPressed(u"RESET");
  form->tbr1_0.UserPressed(u"DEL");
  EXPECT_EQ(items.count(), 2);
  EXPECT_EQ(form->lvw0.Items().size(), 3U);
}

}  // namespace
}  // namespace rowlark
