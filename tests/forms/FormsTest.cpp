// All forms together: layout, languages, faults, and a user's whole session.
#include <gtest/gtest.h>
#include <algorithm>

#include <set>

#include "Desk.h"

namespace rowlark {
namespace {

using controls::PressKey;
using testing::Desk;
using testing::Type;

TEST(AboutForm, TellsAndCloses) {
  for (const bool credits : {false, true}) {
    Desk desk;
    desk.runtime->Language().SetLangFile(credits ? u"Russian.LNG" : u"english.lng");
    desk.script = {[&] {
                     const auto form = desk.forms.About();
                     EXPECT_TRUE(form->Modal() && form->Visible());
                     EXPECT_EQ(form->lblVersion.Caption(), ROWLARK_VERSION);
                     EXPECT_EQ(form->lblCopyrightMore.Visible(), credits);
                     form->lblCopyrightMore.UserClicked();
                     EXPECT_EQ(form->lblCopyrightMore.Caption().find(u"\r\n") != std::u16string::npos,
                               credits);
                     form->lblWWW.UserClicked();
                     EXPECT_FALSE(form->lblVersion.Focusable() || form->lblCopyrightMore.Focusable());
                     form->lblWWW.SetFocus();
                     PressKey(*form, controls::kKeyTab);
                     EXPECT_EQ(form->ActiveControl(), &form->lblEMail);
                     PressKey(*form, controls::kKeySpace, 0, u' ');
                     EXPECT_EQ(form->UserKeyPress(u'\r'), 0);
                     PressKey(*form, controls::kKeyReturn, 0, u'\r');
                     EXPECT_TRUE(form->Loaded());
                   },
                   [&] { PressKey(*desk.forms.About(), controls::kKeyEscape); }};
    desk.runtime->About();
    EXPECT_TRUE(desk.script.empty() && desk.NoFormIsLeft());
    EXPECT_EQ(desk.windows.Links,
              (std::vector<std::string>{"https://rowlark.example.com", "mailto:info@rowlark.example.com"}));
    desk.script = {[&] { desk.forms.About()->UserClicked(); }};
    desk.runtime->About();
    desk.script = {[&] { desk.runtime->DoStop(); }};
    desk.runtime->About();
    EXPECT_TRUE(desk.NoFormIsLeft());
  }
}

// Every text has the room that it needs, within the form and beside its neighbours.
void CheckLayout(const controls::Form& form, const std::string& language) {
  using controls::ControlKind;
  const auto client = form.ClientSize();
  for (const auto* control : form.Controls()) {
    if (control->Kind == ControlKind::Timer || !control->Shown()) continue;
    const auto& at = control->Bounds;
    const auto name = language + ' ' + ToUtf8(form.Name) + '.' + ToUtf8(control->Name);
    EXPECT_TRUE(at.left >= 7 && at.top >= 7 && at.left + at.width <= client.width - 7 &&
                at.top + at.height <= client.height - 7)
        << name;
    if (control->Kind != ControlKind::Label) {
      EXPECT_LE(4 * static_cast<int32_t>(controls::PlainCaption(control->Caption()).size()), at.width)
          << name;
    }
    for (const auto* other : form.Controls()) {
      const auto& beside = other->Bounds;
      if (other == control || other->Container != control->Container || !other->Shown() ||
          !control->Shown() || other->Kind == ControlKind::Timer) {
        continue;
      }
      const bool apart = at.left + at.width <= beside.left || beside.left + beside.width <= at.left ||
                         at.top + at.height <= beside.top || beside.top + beside.height <= at.top;
      const bool stacked = at == beside;  // an overlay
      EXPECT_TRUE(apart || stacked) << name << ' ' << ToUtf8(other->Name);
    }
  }
}

TEST(Forms, OpenTheHelpAtTheirTopics) {
  Desk desk;
  const auto options = desk.Options(2);
  const auto picker = MakeRef<frmSelectRange>(desk.shared);
  const auto about = MakeRef<frmAbout>(desk.shared);
  picker->Open();
  about->Open();
  std::string asked;
  for (const Ref<controls::Form>& form :
       std::initializer_list<Ref<controls::Form>>{desk.Search(), desk.Edit(), picker, options, about}) {
    EXPECT_EQ(form->UserKeyDown(controls::kKeyF1, controls::kShift), controls::kKeyF1);
    EXPECT_EQ(form->UserKeyDown(controls::kKeyF1, controls::kNoShift), 0);
    asked += desk.help.Calls.back().substr(desk.help.Calls.back().find_last_of("\\/") + 1) + '|';
  }
  EXPECT_EQ(asked,
            "vt_rlk_en.chm 15 1000|vt_rlk_en.chm 15 1010|vt_rlk_en.chm 15 1020|vt_rlk_en.chm 15 1030|"
            "vt_rlk_en.chm 15 1040|");
  // What a control makes of the key comes first.
  options->box0_HKS.SetFocus();
  EXPECT_EQ(options->UserKeyDown(controls::kKeyF1, controls::kNoShift), 0);
  EXPECT_EQ(desk.runtime->Items->HotKeySearch(), u"{F1}");
  EXPECT_EQ(desk.help.Calls.size(), 5U);
  picker->Unload();
  about->Unload();
}

TEST(Forms, FollowTheLanguageAndCutNoText) {
  Desk desk;
  const auto search = desk.Search();
  const auto options = desk.Options();
  EXPECT_FALSE(search->tmr0.Enabled());  // showing the languages loads none
  const auto edit = desk.Edit();
  desk.script = {[&] {
    std::set<std::u16string> captions;
    const auto about = desk.forms.About();
    const auto picker = MakeRef<frmSelectRange>(desk.shared);
    picker->Open();
    auto& list = options->cbo0_LangFile;
    ASSERT_EQ(list.ListCount(), 7);
    for (int32_t language = 1; language < list.ListCount(); ++language) {
      list.UserPicked(language);
      const auto text = [&](std::u16string_view key) { return desk.runtime->Language().GetText(key, u"?"); };
      EXPECT_EQ(options->chk0_RecentsUse.Caption(), text(u"Options.UI.Common.UseRecent"));
      EXPECT_EQ(options->lvw0.Items()[0].text, text(u"Options.UI.Book.DefItem"));
      EXPECT_EQ(options->box1_ColAuto.Text(), text(u"Options.UI.Book.Auto"));
      EXPECT_EQ(search->btnOptions.Caption(), text(u"Search.UI.Chk.BtnOptions"));
      EXPECT_EQ(search->fraTextCaption.Caption(), u" " + text(u"Search.UI.SearchBox.Caption") + u" ");
      EXPECT_EQ(edit->btnClose.Caption(), text(u"Edit.UI.BtnClose"));
      EXPECT_EQ(about->lblCaption2.Caption(), text(u"About.UI.Caption2"));
      EXPECT_EQ(picker->Caption(), text(u"SelectRange.UI.FormCaption"));
      captions.insert(search->btnUnhide.Caption());
      for (int32_t page = 0; page < 4; ++page) {
        options->tvw0.UserPicked(page);
        for (const auto* form : desk.windows.Forms) CheckLayout(*form, ToUtf8(list.Text()));
      }
    }
    EXPECT_GE(captions.size(), 5U);
    // The chosen language restarts the search.
    EXPECT_TRUE(search->tmr0.Enabled());
    picker->Unload();
    about->UserClosed();
  }};
  desk.runtime->About();
}

TEST(Forms, KeysReachEveryControl) {
  Desk desk;
  const auto form = desk.Search();
  std::vector<std::string> order;
  for (int i = 0; i < 11; ++i) {
    order.push_back(ToUtf8(form->ActiveControl()->Name));
    PressKey(*form, controls::kKeyTab);
  }
  EXPECT_EQ(order, (std::vector<std::string>{"cboText", "optWordsAll", "optWordsCell", "optWordsAny",
                                             "chkCase", "chkSearchAll", "chkEditMode", "btnMode", "btnUnhide",
                                             "btnOptions", "btnClose"}));
  PressKey(*form, u'M', controls::kAlt);
  EXPECT_TRUE(form->chkCase.Value());
  PressKey(*form, controls::kKeySpace);
  EXPECT_FALSE(form->chkCase.Value());
  PressKey(*form, controls::kKeyTab, controls::kShift);
  EXPECT_EQ(form->ActiveControl(), &form->optWordsAny);
  PressKey(*form, u'W', controls::kAlt);  // of the frame around it
  EXPECT_EQ(form->ActiveControl(), &form->cboText);
  Type(*form, u"abc");
  PressKey(*form, controls::kKeyLeft);
  PressKey(*form, controls::kKeyBack);
  PressKey(*form, controls::kKeyDelete);
  EXPECT_EQ(form->cboText.Text(), u"a");
}

// A session that uses everything; `step` is called between any two things that the user does.
void WholeSession(Desk& desk, const std::function<void()>& step) {
  const auto with = [&](auto form, auto action) {
    if (form) action(*form);
    step();
  };
  desk.runtime->ShowSearch();
  step();
  with(desk.forms.Search(), [&](frmSearch& form) {
    Type(form, u"bob");
    desk.windows.Elapse(300);
  });
  with(desk.forms.Search(), [&](frmSearch& form) {
    if (!form.chkEditMode.Value()) PressKey(form, u'E', controls::kCtrl);
    const auto edit = [&](auto action) {
      desk.script.emplace_back([&desk, action] {
        if (const auto cell = desk.forms.Edit()) action(*cell);
      });
    };
    edit([](frmEdit& cell) { PressKey(cell, controls::kKeyDown); });
    edit([](frmEdit& cell) { cell.box0.UserTyped(u"edited", 6); });
    edit([](frmEdit& cell) { cell.btnOK.UserClicked(); });
    edit([](frmEdit& cell) { cell.UserMoved({1234, 5678}); });
    edit([](frmEdit& cell) { cell.UserClosed(); });
    form.btnMode.UserClicked();
    desk.script.clear();
  });
  desk.runtime->ShowOptions();
  step();
  with(desk.forms.Options(), [&](frmOptions& form) {
    form.tvw0.UserPicked(1);
    form.tbr1_0.UserPressed(u"ADD");
    form.lvw0.UserPicked(1);
    desk.script = {[&] { desk.sheet->Select(u"A2:B8"); },
                   [&form] {
                     if (form.Picker()) form.Picker()->btn0.UserClicked();
                   }};
    form.btn1_SelRange.UserClicked();
    desk.script.clear();
  });
  with(desk.forms.Options(), [&](frmOptions& form) {
    form.tvw0.UserPicked(2);
    form.box0_HKS.SetFocus();
    PressKey(form, 120, controls::kCtrl);
    form.tvw0.UserPicked(0);
    form.cbo0_LangFile.UserPicked(3);
    desk.windows.Elapse(300);  // the search form searches once more
  });
  with(desk.forms.Options(), [&](frmOptions& form) { form.btnClose.UserClicked(); });
  with(desk.forms.Search(), [&](frmSearch& form) {
    form.UserMoved({4321, 2100});
    form.btnClose.UserClicked();
  });
}

TEST(Forms, AWholeSessionIsFoundAsItWasLeft) {
  Desk desk;
  WholeSession(desk, [] {});
  EXPECT_TRUE(desk.NoFormIsLeft());
  EXPECT_EQ(desk.sheet->Range(u"A6")->Value(), u"edited");
  EXPECT_EQ(desk.Rows(), "1 2 3 4 5 6 7 8");
  desk.Start(desk.application);
  EXPECT_EQ(desk.runtime->Language().LangFile(), u"german.lng");
  EXPECT_EQ(desk.application->Keys().count(u"^{F9}"), 1U);
  const auto options = desk.Options(1);
  EXPECT_EQ(options->Caption(), u"Optionen");
  EXPECT_EQ(options->box0_HKS.Text(), u"Ctrl + {F9}");
  ASSERT_EQ(options->lvw0.Items().size(), 2U);
  options->lvw0.UserPicked(1);
  EXPECT_EQ(options->box1_Range.Text(), u"A2:B8");
  const auto search = desk.Search();
  EXPECT_EQ(search->Position().x, 4321);
  EXPECT_EQ(search->Position().y, 2100);
  EXPECT_TRUE(search->chkEditMode.Value());
  ASSERT_EQ(search->cboText.ListCount(), 1);
  EXPECT_EQ(search->cboText.List(0), u"bob");
  EXPECT_NE(search->Caption().find(u"[A2:B8]"), std::u16string::npos);
  EXPECT_EQ(desk.Edit()->Position().x, 1234);
}

// Whatever the host or the registry refuses, once: the forms stay usable, close, and leave everything in
// order.
TEST(Forms, SurviveEveryRefusal) {
  TempFolder few;  // languages, for there is nothing to see in them
  for (const char* name : {"a.lng", "b.lng", "c.lng"}) few.Write(name, "PRG_KEY = VTRLK 1.x\n");
  const auto languages = ToUtf16(few.Path().string() + "/");
  for (int64_t call = 1;; ++call) {
    Desk desk(testing::kTable, languages);
    testing::FaultyHost faulty(call);
    SCOPED_TRACE("host call " + std::to_string(call));
    const auto in_order = [&] {
      EXPECT_TRUE(desk.application->ScreenUpdating() && desk.application->EnableEvents() &&
                  desk.application->EnableAnimations())
          << faulty.Failed();
      EXPECT_FALSE(desk.runtime->Searching()) << faulty.Failed();
    };
    desk.runtime->SetExcelApp(faulty.Wrap(Ref<host::Application>(desk.application)));
    desk.trace.Lines.clear();
    WholeSession(desk, in_order);
    EXPECT_TRUE(desk.NoFormIsLeft()) << faulty.Failed();
    EXPECT_EQ(desk.runtime->Items->RecentItems->count(), 1) << faulty.Failed();
    EXPECT_EQ(desk.Stored(u"SearchFormPosSize"), u"4321;2100");
    desk.runtime->SetExcelApp(nullptr);
    for (const auto& line : desk.trace.Lines) EXPECT_EQ(line.find("busy"), line.npos) << line;
    if (faulty.Failed().empty()) break;
    // What can not be had is taken for what lies off the sheet, and asked for in another way.
    const auto told = [](const std::string& line) { return line.ends_with(": host error 1004"); };
    EXPECT_TRUE(std::ranges::any_of(desk.trace.Lines, told) || faulty.Failed() == "Worksheet.Cells" ||
                faulty.Failed() == "Worksheet.Range")
        << faulty.Failed();
    ASSERT_LT(call, 5000);
  }
  for (int64_t call = 1;; ++call) {
    Desk desk(testing::kTable, languages);
    SCOPED_TRACE("registry call " + std::to_string(call));
    desk.registry.Calls = 0;
    desk.registry.FailingCall = call;
    WholeSession(desk, [] {});
    EXPECT_TRUE(desk.NoFormIsLeft());
    EXPECT_EQ(desk.Rows(), "1 2 3 4 5 6 7 8");
    if (desk.registry.Calls < call) break;
    ASSERT_LT(call, 1000);
  }
}

TEST(Forms, AnyMessageGivesTheHostItsFlagsBack) {
  bool busy = false;
  testing::WatchedHost host;
  host.Hear = [&](std::string_view) {
    if (busy) throw host::Error(1004, u"The host is busy");
  };
  Desk desk;
  desk.Start(host.Wrap(Ref<host::Application>(desk.application)));
  const auto form = desk.Search();
  Type(*form, u"ann");
  desk.script = {[] {}, [&] { busy = true; }};
  desk.windows.Elapse(300);
  EXPECT_FALSE(desk.application->ScreenUpdating() || desk.application->EnableEvents());
  PressKey(*form, controls::kKeyDown);
  EXPECT_FALSE(desk.application->EnableEvents());
  busy = false;
  PressKey(*form, controls::kKeyDown);
  EXPECT_TRUE(desk.application->ScreenUpdating() && desk.application->EnableEvents() &&
              desk.application->EnableAnimations());
  desk.runtime->DoStop();
  desk.runtime.reset();
}

// Whatever a host calls back for from the middle of an operation: forms that are on the stack end in order.
TEST(Forms, StandEveryCallBack) {
  const std::function<void(Desk&)> actions[] = {
      [](Desk& desk) { desk.runtime->DoStop(); },
      [](Desk& desk) { desk.forms.Unload(nullptr); },
      [](Desk& desk) {
        desk.forms.Unload(nullptr);
        desk.runtime->ShowSearch();
        desk.forms.ShowEdit(*desk.runtime);
        desk.runtime->ShowOptions();
      },
      [](Desk& desk) {
        desk.runtime->Items->Clear();
        desk.runtime->Items->DefaultItem = desk.runtime->Items->DefaultItem->Clone();
        if (const auto options = desk.forms.Options()) options->lvw0.UserPicked(0);
      },
      [](Desk& desk) {
        const auto file = desk.runtime->Items->CfgFileName;
        desk.runtime->Items = std::make_shared<clsVTRLKItems>(desk.shared);
        desk.runtime->Items->CfgFileName = file;
      },
      [](Desk& desk) { desk.runtime->SetExcelApp(nullptr); }};
  constexpr int64_t kStep = 7;  // shares no factor with the number of actions, so that each has its turns
  for (int64_t call = 1;; call += kStep) {
    SCOPED_TRACE("call " + std::to_string(call));
    Desk desk;
    int64_t left = call;
    testing::WatchedHost calling;
    calling.Hear = [&](std::string_view) {
      if (--left == 0) actions[static_cast<std::size_t>(call) % std::size(actions)](desk);
    };
    desk.runtime->SetExcelApp(calling.Wrap(Ref<host::Application>(desk.application)));
    WholeSession(desk, [] {});
    desk.runtime->DoStop();
    EXPECT_TRUE(desk.NoFormIsLeft());
    EXPECT_FALSE(desk.runtime->Searching());
    desk.runtime->SetExcelApp(nullptr);
    if (left > 0) break;
    ASSERT_LT(call, 5000);
  }
}

TEST(Forms, AreUnloadedInOrderWhenTheLibraryEndsOrTheirRuntimeGoes) {
  for (const bool stop : {true, false}) {
    Desk desk;
    desk.Search();
    desk.Edit();
    desk.Options();
    std::vector<std::string> gone;
    desk.windows.Log = [&gone](const std::string& what) {
      if (what.ends_with("gone")) gone.push_back(what);
    };
    if (stop) {
      desk.runtime->DoStop();
    } else {
      desk.runtime.reset();
    }
    EXPECT_EQ(gone, (std::vector<std::string>{"frmOptions gone", "frmSearch gone", "frmEdit gone"}));
    EXPECT_TRUE(desk.NoFormIsLeft() && desk.shared.Terminating);
  }
}

// The forms of one object are ended by another one, and the client lets the first one go in the middle.
TEST(Forms, MayBeUnloadedWhileTheirRuntimeGoes) {
  for (const bool host : {true, false}) {  // in an operation of the host, or in a message
    bool gone = true;
    for (int64_t point = 1; gone; ++point) {
      SCOPED_TRACE((host ? "call " : "pass ") + std::to_string(point));
      Desk desk;
      clsVTRLKRuntime other(desk.shared, desk.forms);
      int64_t left = 0;
      testing::WatchedHost calling;
      calling.Hear = [&](std::string_view) {
        if (--left == 0) desk.runtime.reset();
      };
      desk.runtime->SetExcelApp(calling.Wrap(Ref<host::Application>(desk.application)));
      desk.Options();
      Type(*desk.Search(), u"ann");
      if (host) desk.windows.Elapse(300);
      desk.pump.OnPass = [&, passes = int64_t{0}](int64_t) mutable {  // of the search, then of its end
        if (++passes == 1) other.DoStop();
        if (passes == point + 1) desk.runtime.reset();
      };
      left = host ? point : 0;
      host ? other.DoStop() : desk.windows.Elapse(300);
      gone = !desk.runtime;
      EXPECT_TRUE(desk.NoFormIsLeft());
      other.SetExcelApp(nullptr);
    }
  }
}

TEST(Forms, AreNotOpenedWhereThereAreNoWindows) {
  Desk desk;
  desk.windows.Present = false;
  desk.runtime->ShowSearch();
  desk.runtime->ShowOptions();
  desk.runtime->StartEdit();  // does not wait for what nobody could close
  desk.runtime->About();
  EXPECT_TRUE(desk.NoFormIsLeft());
  EXPECT_EQ(desk.Stored(u"SearchFormPosSize"), u"(none)");
}

TEST(Forms, StandAHostWithoutWorkbooks) {
  Desk desk;
  const auto search = desk.Search();
  const auto edit = desk.Edit();
  desk.application->Close(desk.book);
  for (const auto* text : {u"ann", u""}) {
    search->cboText.UserTyped(text, 0);
    desk.windows.Elapse(300);
    EXPECT_EQ(search->boxError.Text(), u"");
  }
  search->btnUnhide.UserClicked();
  edit->box0.UserTyped(u"kept", 4);
  PressKey(*edit, controls::kKeyDown);
  edit->btnOK.UserClicked();
  EXPECT_EQ(edit->box0.Text(), u"kept");
  const auto options = desk.Options(1);
  EXPECT_FALSE(options->btn1_SelRange.Enabled() || options->btn1_SelSearchCols.Enabled() ||
               options->btn1_SelCol.Enabled());
  for (controls::Form* form : std::vector(desk.windows.Forms)) form->UserClosed();
  EXPECT_TRUE(desk.NoFormIsLeft() && desk.events.empty());
}

TEST(Forms, AreShownAgainWhenTheyAreLoaded) {
  Desk desk;
  const auto form = desk.Search();
  Type(*form, u"ann");
  form->Hide();
  form->btnClose.SetFocus();
  EXPECT_EQ(desk.Search(), form);
  EXPECT_TRUE(form->Visible());
  EXPECT_EQ(form->ActiveControl(), &form->cboText);
  EXPECT_EQ(form->cboText.SelLength(), 3);
  const auto options = desk.Options(2);
  EXPECT_EQ(desk.Options(2), options);
  EXPECT_EQ(desk.windows.Forms.size(), 2U);
}

}  // namespace
}  // namespace rowlark
