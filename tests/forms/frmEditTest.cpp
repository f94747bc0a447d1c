// The edit form and the range selection form: small windows that follow the cells of the sheet.
#include <gtest/gtest.h>

#include "Desk.h"

namespace rowlark {
namespace {

using controls::PressKey;
using testing::Desk;
using testing::SampleHost;
using testing::Type;

TEST(EditForm, WalksOverTheVisibleRowsWithTheArrowKeys) {
  Desk desk("a,b|a,b|a,b|a,b|a,b|a,b|a,b|a,b|a,b|a,b|a,b|a,b");  // 12 rows
  desk.sheet->Range(u"3:9")->SetEntireRowHidden(true);
  const auto form = desk.Edit();
  using namespace controls;
  for (const auto& [from, key, to] : {std::tuple("A10", kKeyUp, "A2"),
                                      {"A2", kKeyDown, "A10"},
                                      {"A2", kKeyUp, "A1"},
                                      {"A1", kKeyUp, "A1"},
                                      {"A12", kKeyDown, "A13"},  // the row behind the used range
                                      {"A13", kKeyDown, "A13"},
                                      {"A1", kKeyLeft, "A1"},
                                      {"B2", kKeyLeft, "A2"},
                                      {"B2", kKeyRight, "C2"},
                                      {"IU2", kKeyRight, "IV2"},
                                      {"IV2", kKeyRight, "IV2"},
                                      {"XFD2", kKeyLeft, "XFC2"}}) {
    desk.sheet->Select(ToUtf16(from));
    EXPECT_EQ(ToUtf8(form->lblActiveCell.Caption()), from);  // follows the mouse
    form->box0.UserTyped(u"dropped", 0);
    EXPECT_EQ(form->UserKeyDown(key, kNoShift), 0);
    EXPECT_EQ(desk.ActiveCell(), to) << from;
    EXPECT_EQ(ToUtf8(form->lblActiveCell.Caption()), to);
    EXPECT_EQ(form->box0.Text(), desk.application->ActiveCell()->Value());
    EXPECT_EQ(form->box0.SelLength(), form->box0.End());
  }
  desk.sheet->Select(u"B2");
  form->box0.SetCaret(1);
  PressKey(*form, kKeyLeft, kShift);
  EXPECT_EQ(form->box0.SelLength(), 1);
  EXPECT_EQ(desk.ActiveCell(), "B2");
}

// A million hidden rows are passed over with a few questions.
TEST(EditForm, CountsNoHiddenRows) {
  Desk desk("a");
  desk.sheet->SetCell(1'048'576, 1, u"z");
  desk.sheet->Range(u"2:1048575")->SetEntireRowHidden(true);
  testing::FaultyHost counter(0);
  desk.runtime->SetExcelApp(counter.Wrap(Ref<host::Application>(desk.application)));
  const auto form = desk.Edit();
  counter.Rearm(0);
  PressKey(*form, controls::kKeyDown);
  EXPECT_EQ(desk.ActiveCell(), "A1048576");
  EXPECT_LT(counter.Calls(), 400);
  PressKey(*form, controls::kKeyDown);  // the row behind it is not on the sheet
  EXPECT_EQ(desk.ActiveCell(), "A1048576");
  PressKey(*form, controls::kKeyUp);
  EXPECT_EQ(desk.ActiveCell(), "A1");
  desk.sheet->Range(u"1:1048575")->SetEntireRowHidden(true);
  desk.sheet->Select(u"A1048576");
  PressKey(*form, controls::kKeyUp);  // all are hidden
  EXPECT_EQ(desk.ActiveCell(), "A1048576");
  desk.runtime->DoStop();
  desk.runtime->SetExcelApp(nullptr);
}

TEST(EditForm, WritesTheCellAndStaysOrCloses) {
  Desk desk("old");
  auto form = desk.Edit();
  EXPECT_EQ(form->Caption(), u"Edit mode - Vantrel Rowlark");
  Type(*form, u"new");  // over the selected text
  PressKey(*form, controls::kKeyReturn);
  EXPECT_EQ(desk.application->ActiveCell()->Value(), u"new");
  EXPECT_TRUE(form->Loaded());
  EXPECT_EQ(form->box0.Text(), u"new");

  desk.runtime->Items->EditAutoClose = true;
  standalone::Protection locked;
  locked.contents = true;
  desk.sheet->Protect(locked);
  form->box0.UserTyped(u"refused", 7);
  form->btnOK.UserClicked();  // the host does not take it
  EXPECT_TRUE(form->Loaded());
  EXPECT_EQ(form->box0.Text(), u"refused");
  EXPECT_EQ(form->box0.SelLength(), 7);
  EXPECT_EQ(desk.windows.Beeps, 1);
  ASSERT_EQ(desk.trace.Lines.size(), 1U);
  const auto& line = desk.trace.Lines.front();
  EXPECT_TRUE(line.starts_with("btnOK_Click (frmEdit.cpp:")) << line;
  EXPECT_TRUE(line.ends_with("): host error 1004")) << line;
  desk.sheet->Protect({});
  form->btnOK.UserClicked();
  EXPECT_EQ(desk.application->ActiveCell()->Value(), u"refused");
  EXPECT_TRUE(desk.NoFormIsLeft());

  form = desk.Edit();
  Type(*form, u"cancelled");
  PressKey(*form, controls::kKeyEscape);
  EXPECT_EQ(desk.application->ActiveCell()->Value(), u"refused");
  EXPECT_TRUE(desk.NoFormIsLeft());
}

TEST(EditForm, WritesToTheCellThatItShows) {
  Desk desk;
  desk.sheet->Select(u"A2");
  const auto form = desk.Edit();
  auto& box = form->box0;
  const auto shows = [&] { return ToUtf8(form->lblActiveCell.Caption()) + " " + ToUtf8(box.Text()); };
  const auto search = [&](const char16_t* text) {
    std::u16string error;
    EXPECT_TRUE(desk.runtime->Search(text, error)) << ToUtf8(error);
  };
  // A search, which raises no events.
  search(u"bob");
  EXPECT_EQ(shows(), "A3 bob");
  box.UserTyped(u"typed", 5);
  search(u"cid");
  EXPECT_EQ(desk.ActiveCell(), "A5");
  EXPECT_EQ(shows(), "[Book1.xls]Sheet1!A3 typed");
  form->btnOK.UserClicked();
  EXPECT_EQ(desk.sheet->Range(u"A3")->Value(), u"typed");
  EXPECT_EQ(desk.sheet->Range(u"A5")->Value(), u"cid");

  // Another sheet, and another workbook.
  const auto second = desk.book->AddWorksheet();
  second->SetCell(1, 1, u"second");
  form->UserActivated();
  EXPECT_EQ(shows(), "A1 second");
  box.UserTyped(u"kept", 4);
  const auto other = desk.application->AddWorkbook(u"C:\\Data\\Book2.xls");
  auto* sheet = static_cast<standalone::Worksheet*>(other->ActiveSheet().get());
  sheet->SetCell(2, 1, u"below");
  form->UserActivated();
  EXPECT_EQ(shows(), "[Book1.xls]Sheet2!A1 kept");
  form->btnOK.UserClicked();
  EXPECT_EQ(second->Range(u"A1")->Value(), u"kept");
  EXPECT_EQ(sheet->Range(u"A1")->Value(), u"");
  form->UserActivated();
  EXPECT_EQ(shows(), "A1 ");
  sheet->Select(u"A2");  // of the workbook that is active now
  EXPECT_EQ(shows(), "A2 below");

  // Moving with a key follows as well, and drops what was typed.
  desk.application->Activate(desk.book);
  box.UserTyped(u"dropped", 7);
  PressKey(*form, controls::kKeyRight);
  EXPECT_EQ(shows(), "B1 ");
  second->Select(u"A1");
  EXPECT_EQ(shows(), "A1 kept");

  // A cell that is gone refuses what was typed.
  box.UserTyped(u"late", 4);
  desk.application->Close(desk.book);
  form->btnOK.UserClicked();
  EXPECT_EQ(shows(), "A1 late");
  EXPECT_EQ(box.SelLength(), 4);
  EXPECT_EQ(desk.windows.Beeps, 1);
  EXPECT_EQ(sheet->Range(u"A2")->Value(), u"below");
}

// A cell may show something other than what it holds.
TEST(EditForm, WritesNothingWhenTheTextIsUnchanged) {
  Desk desk("old");
  int writes = 0;
  testing::WatchedHost watched;
  watched.Hear = [&](std::string_view operation) { writes += operation == "Range.Value=" ? 1 : 0; };
  desk.runtime->SetExcelApp(watched.Wrap(Ref<host::Application>(desk.application)));
  const auto form = desk.Edit();
  form->btnOK.UserClicked();
  EXPECT_EQ(writes, 0);
  for (const auto* text : {u"new", u"new", u"old"}) {
    form->box0.UserTyped(text, 0);
    form->btnOK.UserClicked();
  }
  EXPECT_EQ(writes, 2);
  desk.runtime->Items->EditAutoClose = true;
  form->btnOK.UserClicked();
  EXPECT_EQ(writes, 2);
  EXPECT_TRUE(desk.NoFormIsLeft());
  desk.runtime->SetExcelApp(nullptr);
}

TEST(EditForm, OpensWhereItWasOrWhereTheSearchFormWasOrOverTheHost) {
  Desk desk;
  auto form = desk.Edit();
  const auto size = form->WindowSize();
  EXPECT_EQ(form->Position().x, 960 * 20 / 2 - size.width / 2);
  EXPECT_EQ(form->Position().y, 540 * 20 / 2 - size.height / 2);
  form->UserMoved({700, 800});
  form->UserClosed();
  EXPECT_EQ(desk.Edit()->Position().x, 700);
  EXPECT_EQ(desk.forms.Edit()->Owner(), 1);
  desk.forms.Edit()->UserClosed();
  desk.Store(u"EditFormPosSize", u"");
  desk.Store(u"SearchFormPosSize", u"500;600");
  EXPECT_EQ(desk.Edit()->Position().y, 600);
}

TEST(RangeForm, ShowsTheSelectionAndFiltersWhatIsTyped) {
  Desk desk;
  desk.sheet->Select(u"A1:B2,D4");
  const auto form = MakeRef<frmSelectRange>(desk.shared);
  form->Open();
  EXPECT_EQ(form->Caption(), u"Range select");
  EXPECT_TRUE(form->Topmost() && form->uVisible() && form->AllowMultipleSelection());
  EXPECT_EQ(form->Position().x, 28800 / 2 - form->WindowSize().width / 2);
  EXPECT_EQ(form->box0.Text(), u"A1:B2;D4");
  form->SetAllowMultipleSelection(false);
  EXPECT_EQ(form->box0.Text(), u"A1:B2");
  desk.sheet->Select(u"C3,D4");
  EXPECT_EQ(form->box0.Text(), u"C3");
  for (const auto& [typed, kept] : {std::pair(u"$A$1", u"A1"), std::pair(u"A1, B2", u"A1B2"),
                                    std::pair(u"a1:c5;e\u00E91", u"a1:c5;e1")}) {
    form->box0.UserTyped(typed, 2);
    EXPECT_EQ(form->box0.Text(), kept);
    EXPECT_EQ(form->box0.Caret(), 2);
  }
  form->Show();
  for (const auto& [key, accepted] :
       {std::pair(controls::kKeyEscape, false), std::pair(controls::kKeyReturn, true),
        std::pair(controls::kKeyExecute, true)}) {
    EXPECT_EQ(form->UserKeyDown(key, 0), 0);
    EXPECT_FALSE(form->uVisible() || form->Visible());
    EXPECT_EQ(form->Accepted(), accepted);
    EXPECT_EQ(form->box0.Text(), u"a1:c5;e1");
  }
  form->Unload();
  desk.book->AddChartSheet();
  const auto empty = MakeRef<frmSelectRange>(desk.shared);
  empty->Open();
  EXPECT_EQ(empty->box0.Text(), u"");
  empty->Unload();
}

}  // namespace
}  // namespace rowlark
