// The search form, as a user types into it.
#include <gtest/gtest.h>

#include "Desk.h"

namespace rowlark {
namespace {

using controls::kCtrl;
using controls::PressKey;
using testing::Desk;
using testing::Type;

TEST(SearchForm, SearchesOnceWhenTheUserPausesAndShowsAllForAnEmptyText) {
  Desk desk;
  const auto form = desk.Search();
  EXPECT_EQ(form->ActiveControl(), &form->cboText);
  Type(*form, u"an");
  desk.windows.Elapse(299);
  Type(*form, u"n");
  desk.windows.Elapse(299);
  EXPECT_EQ(desk.events, "");
  desk.windows.Elapse(1);
  EXPECT_EQ(desk.Rows(), "2 4 6 8");
  EXPECT_EQ(desk.ActiveCell(), "A2");
  desk.windows.Elapse(5000);
  EXPECT_EQ(desk.events, "TF");

  PressKey(*form, controls::kKeyBack, kCtrl, 127);
  EXPECT_EQ(form->cboText.Text(), u"");
  desk.windows.Elapse(300);
  EXPECT_EQ(desk.Rows(), "1 2 3 4 5 6 7 8");
  EXPECT_EQ(desk.events, "TF");
}

TEST(SearchForm, EveryOptionCountsForTheNextSearch) {
  Desk desk("Name,City|Ann,x|ann bob,y|bob,y|cid,x");
  const auto form = desk.Search();
  EXPECT_TRUE(desk.runtime->SearchOptions->UseFilter);  // from the moment the form is loaded
  Type(*form, u"ann bob");
  const auto rows_after = [&](auto& control) {
    control.UserClicked();
    desk.windows.Elapse(300);
    return desk.VisibleRows(5);
  };
  EXPECT_EQ(rows_after(form->optWordsAny), "2 3 4");
  EXPECT_EQ(rows_after(form->chkCase), "3 4");
  EXPECT_EQ(rows_after(form->optWordsCell), "3");
  desk.events.clear();
  PressKey(*form, u'F', kCtrl);  // only goes there
  EXPECT_FALSE(form->chkSearchAll.Value());
  EXPECT_EQ(form->cboText.Text(), u"ann bob");
  form->btnUnhide.UserClicked();
  desk.windows.Elapse(300);
  EXPECT_EQ(desk.VisibleRows(5), "1 2 3 4 5");
  EXPECT_EQ(desk.ActiveCell(), "A3");
  EXPECT_EQ(desk.events, "TF");
  form->chkEditMode.UserClicked();  // does not search
  desk.windows.Elapse(300);
  EXPECT_EQ(desk.events, "TF");
}

TEST(SearchForm, ShowsWhyNothingWasFoundUntilSomethingIs) {
  Desk desk;
  const auto form = desk.Search();
  Type(*form, u"nobody");
  desk.windows.Elapse(300);
  EXPECT_TRUE(form->boxError.Visible() && form->imgExclamationErr.Visible());
  EXPECT_FALSE(form->imgExclamationNormal.Visible());
  EXPECT_EQ(form->boxError.Text(), u"Text not found");
  EXPECT_EQ(form->imgExclamationErr.ToolTip(), u"Text not found");
  form->cboText.SetText(u"ann");
  form->btnClose.SetFocus();
  form->imgExclamationErr.UserClicked();
  EXPECT_EQ(form->ActiveControl(), &form->cboText);
  EXPECT_EQ(form->cboText.SelLength(), 3);
  desk.windows.Elapse(300);
  EXPECT_FALSE(form->boxError.Visible() || form->imgExclamationErr.Visible());
  EXPECT_EQ(form->boxError.Text(), u"");
  EXPECT_EQ(form->imgExclamationErr.ToolTip(), u"");
}

TEST(SearchForm, CtrlBackspaceDropsTheLastWord) {
  Desk desk;
  const auto form = desk.Search();
  for (const auto& [before, after] :
       {std::pair(u"foo bar", u"foo "), std::pair(u"foo ", u"foo "), std::pair(u"word", u""),
        std::pair(u"", u""), std::pair(u"a\"b", u"a\""), std::pair(u"x-y~z", u"x-y~"),
        std::pair(u"a\u00B7b", u"")}) {
    form->cboText.SetText(before);
    PressKey(*form, controls::kKeyBack, kCtrl, 127);
    EXPECT_EQ(form->cboText.Text(), after);
    EXPECT_EQ(form->cboText.Caret(), form->cboText.End());
  }
}

TEST(SearchForm, StepsThroughTheHistoryAndBackToWhatWasTyped) {
  Desk desk;
  for (const auto* text : {u"bob", u"dan"}) desk.runtime->Items->RecentItems->Add(text);
  const auto form = desk.Search();
  Type(*form, u"ann");
  const auto press = [&](int32_t key) {
    PressKey(*form, key);
    return ToUtf8(form->cboText.Text());
  };
  EXPECT_EQ(press(controls::kKeyUp), "ann");  // with nothing to go back to
  EXPECT_EQ(press(controls::kKeyDown), "dan");
  EXPECT_EQ(press(controls::kKeyDown), "bob");
  desk.windows.Elapse(300);
  EXPECT_EQ(desk.Rows(), "3 6");
  EXPECT_EQ(press(controls::kKeyUp), "dan");
  EXPECT_EQ(press(controls::kKeyUp), "ann");
  EXPECT_EQ(form->cboText.SelStart(), 3);
  desk.windows.Elapse(300);
  EXPECT_EQ(desk.Rows(), "2 4 6 8");
  EXPECT_EQ(press(controls::kKeyDown), "dan");
  // Back to a text that an entry has as well.
  EXPECT_EQ(press(controls::kKeyUp), "ann");
  form->cboText.UserTyped(u"dan", 3);
  EXPECT_EQ(press(controls::kKeyDown), "dan");
  EXPECT_EQ(press(controls::kKeyUp), "dan");
  EXPECT_EQ(form->cboText.ListIndex(), -1);
}

// Typed while a search runs: the search under way gives way at every point, and the last text wins.
TEST(SearchForm, ABurstOfTypingOverASearchEndsWithTheLastText) {
  for (const auto* last : {u"dan", u"no one"}) {
    for (std::size_t point = 0; point < 12; ++point) {
      SCOPED_TRACE(point);
      Desk desk;
      const auto form = desk.Search();
      Type(*form, u"ann");
      desk.script.assign(point, [] {});
      for (const auto* text : {u"b", u"bo", u"bobo", u"nobody", last}) {
        desk.script.emplace_back([&desk, &form, text] {
          form->cboText.UserTyped(text, 0);
          desk.windows.Elapse(300);
        });
      }
      desk.windows.Elapse(2000);
      while (!desk.script.empty()) desk.pump.ProcessMessages();
      desk.windows.Elapse(2000);
      const bool found = last == std::u16string_view(u"dan");
      EXPECT_EQ(desk.Rows(), found ? "7" : "1 2 3 4 5 6 7 8");
      EXPECT_EQ(form->boxError.Text(), found ? u"" : u"Text not found");
      EXPECT_EQ(form->fraTextCaption.Caption(), u" Find &what: ");
    }
  }
}

TEST(SearchForm, WhateverTheUserDoesDuringASearchBringsItToItsEnd) {
  const auto retype = [](Desk& desk, frmSearch& form, const char16_t* text) {
    form.cboText.UserTyped(text, 0);
    desk.windows.Elapse(300);
  };
  const struct {
    const char* what;
    std::function<void(Desk&, frmSearch&)> act;
    bool closes;
    bool shows_all = true;  // rows
  } kCases[] = {
      {"close", [](Desk&, frmSearch& form) { form.UserClosed(); }, true},
      {"Show All", [](Desk&, frmSearch& form) { form.btnUnhide.UserClicked(); }, false},
      {"the end of the library", [](Desk& desk, frmSearch&) { desk.runtime->DoStop(); }, true},
      {"an empty text", [&](Desk& desk, frmSearch& form) { retype(desk, form, u""); }, false},
      {"Escape", [](Desk&, frmSearch& form) { PressKey(form, controls::kKeyEscape); }, false, false},
      {"Escape, while another one waits",
       [&](Desk& desk, frmSearch& form) {
         desk.script.emplace_back([&] { PressKey(form, controls::kKeyEscape); });
         retype(desk, form, u"bob");
       },
       false, false},
  };
  for (const auto& [what, act, closes, shows_all] : kCases) {
    for (std::size_t point = 0; point < 12; ++point) {
      SCOPED_TRACE(what + std::string(" at ") + std::to_string(point));
      Desk desk;
      const auto form = desk.Search();
      Type(*form, u"ann");
      desk.script.assign(point, [] {});
      desk.script.emplace_back([&desk, &form, &run = act] { run(desk, *form); });
      desk.windows.Elapse(2000);
      if (!desk.script.empty()) continue;  // the search was over before
      EXPECT_TRUE(!shows_all || desk.Rows() == "1 2 3 4 5 6 7 8") << desk.Rows();
      EXPECT_TRUE(shows_all || desk.events == "TF") << desk.events;
      EXPECT_FALSE(form->boxError.Visible());
      EXPECT_EQ(form->Loaded(), !closes);
      EXPECT_EQ(desk.NoFormIsLeft(), closes);
    }
  }
}

TEST(SearchForm, LoadsAndUnloadsInOrder) {
  Desk desk;
  desk.runtime->Items->DefaultItem->DontSaveChanges = true;
  std::vector<std::string> effects;
  const auto log = [&effects](const std::string& effect) { effects.push_back(effect); };
  testing::WatchedHost watched;
  watched.Hear = [&](std::string_view operation) {
    if (operation == "Range.EntireRow.Hidden=" || operation == "Workbook.Saved=") log(std::string(operation));
  };
  desk.runtime->SetExcelApp(watched.Wrap(Ref<host::Application>(desk.application)));
  desk.Store(u"SearchFormPosSize", u"4320;2160");
  desk.windows.Log = desk.registry.Log = log;

  const auto form = desk.Search();
  EXPECT_EQ(effects,
            (std::vector<std::string>{"frmSearch at 4320;2160", "frmSearch owner 1", "frmSearch shown"}));
  Type(*form, u"ann");
  desk.windows.Elapse(300);
  EXPECT_FALSE(desk.book->Saved());
  effects.clear();
  form->btnClose.UserClicked();
  EXPECT_EQ(effects, (std::vector<std::string>{
                         "frmSearch hidden", "frmSearch owner 0", "write SearchFormPosSize",
                         "write SearchAllWords", "write EditMode", "write SearchMatchCase",
                         "write SearchFilter", "Range.EntireRow.Hidden=", "Workbook.Saved=",  // Show All
                         "Workbook.Saved=", "frmSearch gone"}));
  EXPECT_TRUE(desk.book->Saved());
  EXPECT_EQ(desk.runtime->Items->RecentItems->Item(0), u"ann");
  EXPECT_TRUE(desk.NoFormIsLeft());
  desk.runtime->SetExcelApp(nullptr);
}

TEST(SearchForm, RemembersItsSwitches) {
  const auto modes = [](const frmSearch& form) {
    return std::string(form.optWordsAny.Value() ? "any" : "") + (form.optWordsAll.Value() ? "all" : "") +
           (form.optWordsCell.Value() ? "cell" : "");
  };
  for (const auto& [stored, mode, written] :
       {std::tuple(-1, "all", 1), {0, "any", 0}, {1, "all", 1}, {2, "cell", 2}, {7, "any", 0}}) {
    Desk desk;
    if (stored >= 0) {
      for (const auto* value : {u"SearchAllWords", u"EditMode", u"SearchMatchCase", u"SearchFilter"}) {
        desk.shared.Registry.SetLong(host::Hive::CurrentUser, kProductKey, value, stored);
      }
    }
    const auto form = desk.Search();
    EXPECT_EQ(modes(*form), mode) << stored;
    EXPECT_EQ(form->chkSearchAll.Value(), stored == 1 || stored == -1);
    EXPECT_EQ(form->chkCase.Value(), stored == 1);
    EXPECT_EQ(form->chkEditMode.Value(), stored == 1);
    EXPECT_EQ(form->btnMode.Caption(), stored == 1 ? u"Edi&t" : u"Go&to");
    EXPECT_FALSE(form->tmr0.Enabled());
    form->UserClosed();
    EXPECT_EQ(desk.shared.Registry.GetLong(host::Hive::CurrentUser, kProductKey, u"SearchAllWords", -1),
              written);
  }
}

TEST(SearchForm, ComesBackToItsPlaceOrOntoTheNearestScreen) {
  constexpr int kRight = -1;  // at the right end of the second screen
  constexpr int kBottom = -1;
  for (const auto& [stored, left, top] : {std::tuple(u"4320;2160", 4320, 2160),
                                          {u"30000;9000", 30000, 9000},  // on the second screen
                                          {u" -400 ;x", -400, 0},        // most of it can be seen
                                          {u"4320", 4320, 0},
                                          {u"abc;2", 0, 2},
                                          {u"44159;0", kRight, 0},  // hardly a pixel of it could be seen
                                          {u"44170;0", kRight, 0},
                                          {u"-9900;900", 0, 900},
                                          {u"300;15601", 300, kBottom},
                                          {u"99999999999;-7", kRight, 0}}) {
    Desk desk;
    desk.Store(u"SearchFormPosSize", stored);
    const auto form = desk.Search();
    const auto size = form->WindowSize();
    EXPECT_EQ(form->Position().x, left == kRight ? 28800 + 15360 - size.width : left) << ToUtf8(stored);
    if (top == kBottom) {
      EXPECT_EQ(form->Position().y, 15600 - size.height);
      continue;
    }
    EXPECT_EQ(form->Position().y, top) << ToUtf8(stored);
    form->UserMoved({111, 222});
    form->UserClosed();
    EXPECT_EQ(desk.Stored(u"SearchFormPosSize"), u"111;222");
  }
}

// From the start on, and while the form is open.
TEST(SearchForm, CaptionTellsWhatIsSearched) {
  Desk desk;
  Ref<frmSearch> open;
  const auto caption = [&] {
    const auto form = desk.Search();
    const auto text = ToUtf8(form->Caption());
    form->UserClosed();
    open = desk.Search();
    EXPECT_EQ(ToUtf8(open->Caption()), text);
    return text;
  };
  EXPECT_EQ(caption(), "Search - [entire sheet]");
  const auto item = desk.runtime->Items->DefaultItem->Clone(u"C:\\Data\\Book1.xls");
  item->SetBlock({2, 1, 9, 2});
  desk.runtime->Items->Add(item);
  EXPECT_EQ(caption(), "Search - [A2:B9]");
  const auto options = desk.Options(1);
  options->lvw0.UserPicked(1);
  for (const auto& [typed, shown] : {std::pair(u"b3:c4", u"Search - [B3:C4]"),
                                     {u"", u"Search - [entire sheet]"},
                                     {u"b3:c4", u"Search - [B3:C4]"},
                                     {u"b3:", u"Search - [entire sheet]"},
                                     {u"b3:d4", u"Search - [B3:D4]"}}) {
    options->box1_Range.UserTyped(typed, 0);
    EXPECT_EQ(open->Caption(), shown);
  }
  item->SetEndRow(2'000'000);  // not on a sheet
  EXPECT_EQ(caption(), "Search - [entire sheet]");
  item->SetEndRow(4);
  const auto other = desk.application->AddWorkbook(u"C:\\Data\\Book2.xls");
  open->UserActivated();
  EXPECT_EQ(open->Caption(), u"Search - [entire sheet]");
  desk.application->Activate(desk.book);
  Type(*open, u"ann");
  desk.windows.Elapse(300);
  EXPECT_EQ(open->Caption(), u"Search - [B3:D4]");
  options->tbr1_0.UserPressed(u"DEL");
  EXPECT_EQ(open->Caption(), u"Search - [entire sheet]");
  desk.application->Close(other);
  desk.sheet->Range(u"A1:B8")->AutoFilter({1, host::Criterion(u"ann")});
  EXPECT_EQ(caption(), "Search - [AutoFiltered range]");
  desk.application->Close(desk.book);
  EXPECT_EQ(caption(), "Search - [entire sheet]");
}

TEST(SearchForm, StartsWithTheActiveCellsTextIfAsked) {
  Desk desk("Name,City|ann,#N/A");
  desk.sheet->Select(u"B2");
  EXPECT_EQ(desk.Search()->cboText.Text(), u"");
  desk.forms.Search()->UserClosed();
  desk.runtime->Items->AutoDetectSearchText = true;
  EXPECT_EQ(desk.Search()->cboText.Text(), u"#N/A");
  PressKey(*desk.forms.Search(), controls::kKeyUp);
  EXPECT_EQ(desk.forms.Search()->cboText.Text(), u"#N/A");
  desk.windows.Elapse(1000);
  EXPECT_EQ(desk.events, "");  // the first search comes with the first change
}

TEST(SearchForm, EnterGoesToWhatWasTypedLast) {
  Desk desk;
  auto form = desk.Search();
  Type(*form, u"dax");
  PressKey(*form, controls::kKeyReturn);
  EXPECT_TRUE(form->Loaded() && form->boxError.Visible());
  Type(*form, u"\b");
  form->cboText.UserTyped(u"dan", 3);
  PressKey(*form, controls::kKeyReturn);
  EXPECT_TRUE(desk.NoFormIsLeft());
  EXPECT_EQ(desk.ActiveCell(), "A7");
  EXPECT_EQ(desk.Rows(), "1 2 3 4 5 6 7 8");

  // The search is under way, or its text was typed during another one.
  for (const bool retyped : {false, true}) {
    form = desk.Search();
    form->cboText.UserTyped(u"bob", 3);
    desk.script = {[&] {
                     if (retyped) form->cboText.UserTyped(u"cid", 3);
                   },
                   [&] { PressKey(*form, controls::kKeyReturn); }};
    desk.windows.Elapse(300);
    EXPECT_TRUE(desk.NoFormIsLeft());
    EXPECT_EQ(desk.ActiveCell(), retyped ? "A5" : "A3");
  }

  form = desk.Search();
  form->cboText.UserTyped(u"cid", 3);
  desk.windows.Elapse(300);
  PressKey(*form, controls::kKeyEscape);  // as Show All does it
  EXPECT_EQ(desk.ActiveCell(), "A1");
}

TEST(SearchForm, StandsInFrontOfTheWindowThatIsInFront) {
  std::vector<std::string> log;
  Desk desk;
  const auto form = desk.Search();
  const auto options = desk.Options();
  desk.windows.Log = [&](const std::string& what) { log.push_back(what); };
  desk.application->SetWindow({7});
  desk.Search();
  desk.Options();
  EXPECT_EQ(log, (std::vector<std::string>{"frmSearch owner 7", "frmSearch shown", "frmOptions owner 7",
                                           "frmOptions shown"}));
  log.clear();
  PressKey(*form, u'E', kCtrl);
  desk.script = {[&] {
    desk.application->SetWindow({8});
    desk.runtime->ShowSearch();  // shows the form that is waited for
    EXPECT_TRUE(!form->Visible() && desk.forms.Edit()->Owner() == 8);
    desk.forms.Edit()->UserClosed();
  }};
  form->btnMode.UserClicked();
  EXPECT_EQ(form->Owner(), 8);
  EXPECT_EQ(log, (std::vector<std::string>{"frmSearch hidden", "frmEdit at 7139;4215", "frmEdit owner 7",
                                           "frmEdit shown", "frmEdit owner 8", "frmEdit shown",
                                           "frmEdit owner 0", "frmEdit hidden", "frmEdit gone",
                                           "frmSearch owner 8", "frmSearch shown"}));
}

TEST(SearchForm, HistoryFollowsClear) {
  Desk desk;
  desk.runtime->Items->RecentItems->Add(u"bob");
  const auto form = desk.Search();
  form->cboText.UserTyped(u"ann", 3);
  desk.windows.Elapse(300);
  desk.events.clear();
  EXPECT_EQ(form->cboText.ListCount(), 1);
  desk.Options()->btnRecentClear.UserClicked();
  EXPECT_EQ(form->cboText.ListCount(), 0);
  EXPECT_EQ(form->cboText.Text(), u"ann");
  desk.windows.Elapse(300);
  EXPECT_EQ(desk.events, "");
}

// A search would move the active cell away from the one that is edited.
TEST(SearchForm, IsAwayAndDoesNotSearchWhileACellIsEdited) {
  Desk desk;
  const auto form = desk.Search();
  PressKey(*form, u'E', kCtrl);
  Type(*form, u"bob");
  desk.script.assign(20, [] {});  // the search for it comes first
  desk.script.emplace_back([&] { desk.runtime->Language().SetLangFile(u"german.lng"); });
  desk.script.emplace_back([&] { desk.windows.Elapse(1000); });
  desk.script.emplace_back([&] {
    EXPECT_TRUE(desk.shared.EditFormOpen && !form->Visible());
    EXPECT_EQ(desk.events, "TF");
    EXPECT_EQ(desk.forms.Edit()->lblActiveCell.Caption(), u"A3");
    form->cboText.UserTyped(u"dan", 3);
    desk.windows.Elapse(1000);
    EXPECT_EQ(desk.ActiveCell(), "A3");
    desk.forms.Edit()->btnClose.UserClicked();
  });
  form->btnMode.UserClicked();
  EXPECT_TRUE(form->Visible() && !desk.shared.EditFormOpen);
  EXPECT_EQ(form->cboText.SelLength(), 3);
  EXPECT_EQ(desk.events, "TFTF");
  EXPECT_EQ(desk.ActiveCell(), "A7");
  EXPECT_EQ(desk.Rows(), "7");

  // The library ends while the edit form is open: nothing comes back.
  desk.script = {[&] { desk.runtime->DoStop(); }};
  form->btnMode.UserClicked();
  EXPECT_FALSE(form->Visible());
  EXPECT_TRUE(desk.NoFormIsLeft());
}

TEST(SearchForm, GoesOnSearchingWhileAnotherFormIsWaitedFor) {
  Desk desk;
  const auto form = desk.Search();
  form->chkEditMode.UserClicked();
  Type(*form, u"ann");
  desk.windows.Elapse(299);
  std::string rows;
  // The search processes messages, the user presses the button, and the wait for the edit form brings the
  // search to its end.
  desk.script = {[&] { form->btnMode.UserClicked(); }};
  desk.script.insert(desk.script.end(), 40, [] {});
  desk.script.emplace_back([&] {
    rows = desk.Rows();
    desk.forms.Edit()->UserClosed();
  });
  desk.windows.Elapse(1);
  EXPECT_EQ(rows, "2 4 6 8");
  EXPECT_EQ(desk.events, "TF");
}

}  // namespace
}  // namespace rowlark
