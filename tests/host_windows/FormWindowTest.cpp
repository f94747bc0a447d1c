// The forms in windows of their own, in a message loop that knows nothing of them.
#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <set>

#include "Platform.h"
#include "Sheet.h"
#include "TempFolder.h"
#include "controls/Form.h"
#include "forms/FormSet.h"
#include "host/windows/WindowsMessagePump.h"
#include "host/windows/WindowsWindowSystem.h"
#include "runtime/clsVTRLKRuntime.h"
#include "util/windows/Handles.h"

namespace rowlark::windows {
namespace {

using controls::Control;
using testing::MemoryRegistry;
using testing::RecordingHelp;
using testing::SampleHost;

BOOL CALLBACK ListWindow(HWND window, LPARAM list) {
  reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

std::vector<HWND> WindowsOfThread() {
  std::vector<HWND> windows;
  ::EnumThreadWindows(::GetCurrentThreadId(), ListWindow, reinterpret_cast<LPARAM>(&windows));
  return windows;
}

// A timer's procedure. With 32 bits those of the system have a calling convention that no lambda has.
template <auto action>
void CALLBACK OnTimer(HWND, UINT, UINT_PTR timer, DWORD) {
  action(timer);
}

RECT Client(HWND window) {
  RECT area{};
  ::GetClientRect(window, &area);
  return area;
}

RECT Place(HWND window) {
  RECT area{};
  ::GetWindowRect(window, &area);
  return area;
}

LONG Width(const RECT& area) { return area.right - area.left; }
LONG Height(const RECT& area) { return area.bottom - area.top; }

// The window comes to a screen of that resolution.
void Rescale(HWND window, WORD dpi) {
  RECT place{100, 100, 0, 0};
  ::SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
}

HFONT FontOf(HWND window) { return reinterpret_cast<HFONT>(::SendMessageW(window, WM_GETFONT, 0, 0)); }

// A host's loop, until something has come about or ten seconds have gone.
bool PumpUntil(const std::function<bool()>& condition) {
  const DWORD begin = ::GetTickCount();
  for (MSG message; !condition();) {
    if (::GetTickCount() - begin > 10'000) return false;
    ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
      ::TranslateMessage(&message);
      ::DispatchMessageW(&message);
    }
  }
  return true;
}

class FormWindows : public ::testing::Test {
 protected:
  FormWindows() {
    ::SetCursorPos(0, 0);  // an open list selects what it finds under the mouse
    runtime.SetExcelApp(sheet.application);
    runtime.Init();
  }
  ~FormWindows() override { forms.Unload(nullptr); }

  static void Pump() {
    bool passed = false;
    PumpUntil([&passed] { return std::exchange(passed, true); });
  }
  static HWND WindowOf(const controls::Form& form) {
    for (const HWND window : WindowsOfThread()) {
      wchar_t caption[100] = {};
      ::GetWindowTextW(window, caption, 100);
      wchar_t type[100] = {};
      ::GetClassNameW(window, type, 100);
      if (type == std::wstring_view(L"RowlarkForm") &&
          std::u16string(std::begin(caption), caption + ::lstrlenW(caption)) == form.Caption()) {
        return window;
      }
    }
    return nullptr;
  }
  // A key with modifiers, as the keyboard sends it to the window with the focus.
  static void Press(int key, std::initializer_list<int> held = {}) {
    BYTE before[256];
    BYTE state[256] = {};
    ::GetKeyboardState(before);
    for (const int modifier : held) state[modifier] = 0x80;
    ::SetKeyboardState(state);
    const bool is_system = state[VK_MENU] != 0;
    ::PostMessageW(::GetFocus(), is_system ? WM_SYSKEYDOWN : WM_KEYDOWN, static_cast<WPARAM>(key),
                   is_system ? 1 << 29 : 0);
    Pump();
    ::SetKeyboardState(before);
  }
  static void Type(std::u16string_view text) {
    for (const char16_t c : text) ::PostMessageW(::GetFocus(), WM_CHAR, c, 0);
    Pump();
  }
  static std::u16string TextOf(HWND window) {
    wchar_t text[1000];
    const int length = ::GetWindowTextW(window, text, 1000);
    return {text, text + length};
  }
  Ref<frmSearch> Search() {
    runtime.ShowSearch();
    Pump();
    return forms.Search();
  }
  Ref<frmOptions> Options(int32_t page) {
    runtime.ShowOptions();
    forms.Options()->tvw0.UserPicked(page);
    Pump();
    return forms.Options();
  }

  SampleHost sheet{"Name,City|ann,x|bob,y|ann,y|cid,x"};
  TempFolder folder;
  WindowsMessagePump pump;
  MemoryRegistry registry;
  RecordingHelp help;
  mclsVTFileSystem files;
  WindowsWindowSystem windows;
  SharedState shared{Platform{pump, registry, help, windows, files,
                              std::filesystem::path(ROWLARK_LANGUAGES).make_preferred().u16string(),
                              ToUtf16(folder.Path().string() + "\\")}};
  FormSet forms{shared};
  clsVTRLKRuntime runtime{shared, forms};
};

TEST_F(FormWindows, SearchForWhatIsTyped) {
  const auto form = Search();
  ASSERT_TRUE(form);
  EXPECT_EQ(form->ActiveControl(), &form->cboText);
  Type(u"bob");
  EXPECT_EQ(form->cboText.Text(), u"bob");
  EXPECT_EQ(form->cboText.Caret(), 3);
  EXPECT_TRUE(PumpUntil([&] { return sheet.VisibleRows(5) != "1 2 3 4 5"; }));
  EXPECT_EQ(sheet.VisibleRows(5), "3");
  Press(VK_BACK, {VK_CONTROL});
  EXPECT_EQ(form->cboText.Text(), u"");
  EXPECT_EQ(TextOf(::GetFocus()), u"");
  Type(u"nobody");
  EXPECT_TRUE(PumpUntil([&] { return form->boxError.Visible(); }));
  EXPECT_EQ(form->boxError.Text(), u"Text not found");

  // What code writes is shown and not heard of; the caret goes both ways.
  form->cboText.SetText(u"one two");
  form->cboText.Select(0, 3);
  EXPECT_EQ(TextOf(::GetFocus()), u"one two");
  Type(u"1");
  EXPECT_EQ(form->cboText.Text(), u"1 two");
  EXPECT_EQ(form->cboText.Caret(), 1);
  // So does the user's, as the next key finds it.
  Press(VK_END);
  Press(VK_LEFT, {VK_SHIFT});
  Press(VK_LEFT, {VK_SHIFT});
  Press(VK_SHIFT);
  EXPECT_EQ(form->cboText.Anchor(), 5);
  EXPECT_EQ(form->cboText.Caret(), 3);
  Press(VK_RIGHT, {VK_SHIFT});
  Press(VK_SHIFT);
  EXPECT_EQ(form->cboText.Caret(), 4);
  Press(VK_HOME);
  Press(VK_RIGHT, {VK_SHIFT});
  Press(VK_SHIFT);
  EXPECT_EQ(form->cboText.Anchor(), 0);
  EXPECT_EQ(form->cboText.Caret(), 1);
}

TEST_F(FormWindows, OfferKeysToTheFormFirst) {
  auto form = Search();
  const bool filter = form->chkSearchAll.Value();
  Press('F', {VK_CONTROL});
  EXPECT_NE(form->chkSearchAll.Value(), filter);
  // Entries of the history, and back to what was typed.
  runtime.Items->RecentItems->Add(u"first");
  Press(VK_ESCAPE);
  EXPECT_FALSE(form->Loaded());
  form = Search();
  Type(u"ann");
  Press(VK_DOWN);
  EXPECT_EQ(form->cboText.ListIndex(), 0);
  EXPECT_EQ(form->cboText.Text(), u"first");
  EXPECT_EQ(TextOf(::GetFocus()), u"first");
  Press(VK_UP);
  EXPECT_EQ(TextOf(::GetFocus()), u"ann");
  // Enter clicks the default button: go to the match.
  Press(VK_RETURN);
  EXPECT_FALSE(form->Loaded());
  EXPECT_EQ(sheet.application->ActiveCell()->Value(), u"ann");
}

TEST_F(FormWindows, LeadToTheHelp) {
  const auto form = Options(0);
  form->chk0_UnhideOnEsc.SetFocus();
  Press(VK_F1);
  ASSERT_EQ(help.Calls.size(), 1u);
  EXPECT_TRUE(help.Calls[0].ends_with("vt_rlk_en.chm 15 1030"));
  EXPECT_TRUE(form->Loaded());

  // A message of a failure waits for its user: the Help button, twice, F1 as the system reports it, then OK.
  runtime.Items->CfgFileName = u"\\\\.\\nowhere\\rowlark.cfg";
  constexpr auto answer = [](UINT_PTR) {
    const HWND box = ::FindWindowW(L"#32770", L"Vantrel Rowlark");
    if (box == nullptr) return;
    for (int i = 0; i < 2; ++i) ::SendMessageW(::GetDlgItem(box, IDHELP), BM_CLICK, 0, 0);
    HELPINFO info{};
    info.cbSize = sizeof info;
    ::SendMessageW(::GetDlgItem(box, IDOK), WM_HELP, 0, reinterpret_cast<LPARAM>(&info));
    ::SendMessageW(::GetDlgItem(box, IDOK), BM_CLICK, 0, 0);
  };
  const auto timer = ::SetTimer(nullptr, 0, 10, OnTimer<answer>);
  form->UserClosed();
  ::KillTimer(nullptr, timer);
  ASSERT_EQ(help.Calls.size(), 4u);
  for (std::size_t i = 1; i < 4; ++i) EXPECT_TRUE(help.Calls[i].ends_with("vt_rlk_en.chm 15 1100"));
  EXPECT_FALSE(form->Loaded());
}

TEST_F(FormWindows, AreReachedByTabsAndAccelerators) {
  const auto form = Search();
  std::vector<const Control*> reached;
  for (int i = 0; i < 9; ++i) {
    reached.push_back(form->ActiveControl());
    Press(VK_TAB);
  }
  const std::vector<const Control*> expected{&form->cboText,      &form->optWordsAll, &form->chkCase,
                                             &form->chkSearchAll, &form->chkEditMode, &form->btnMode,
                                             &form->btnUnhide,    &form->btnOptions,  &form->btnClose};
  EXPECT_EQ(reached, expected);
  EXPECT_EQ(form->ActiveControl(), &form->cboText);  // round again
  Press('M', {VK_MENU});
  EXPECT_TRUE(form->chkCase.Value());
  Press('E', {VK_MENU});
  EXPECT_TRUE(form->optWordsCell.Value());
  EXPECT_FALSE(form->optWordsAll.Value());
  Press('W', {VK_MENU});  // of the frame around the text
  EXPECT_EQ(form->ActiveControl(), &form->cboText);
  Press('C', {VK_MENU});
  EXPECT_FALSE(form->Loaded());
}

TEST_F(FormWindows, ShowListsAndReportWhatIsPicked) {
  const auto form = Options(1);
  ASSERT_TRUE(form);
  const HWND window = WindowOf(*form);
  const HWND list = ::FindWindowExW(window, nullptr, WC_LISTVIEWW, nullptr);
  const HWND tree = ::FindWindowExW(window, nullptr, WC_TREEVIEWW, nullptr);
  const HWND bar = ::FindWindowExW(window, nullptr, TOOLBARCLASSNAMEW, nullptr);
  EXPECT_EQ(::SendMessageW(list, LVM_GETITEMCOUNT, 0, 0), 1);
  EXPECT_EQ(::SendMessageW(tree, TVM_GETCOUNT, 0, 0), 4);
  EXPECT_EQ(::SendMessageW(bar, TB_BUTTONCOUNT, 0, 0), 3);
  EXPECT_FALSE(::IsWindowVisible(::FindWindowExW(window, nullptr, WC_COMBOBOXW, nullptr)));

  form->tvw0.SetFocus();
  Press(VK_UP);
  EXPECT_EQ(form->tvw0.Selected(), 0);
  EXPECT_TRUE(form->fra0.Visible());
  // Picking a language gives the form its texts.
  form->cbo0_LangFile.SetFocus();
  for (int i = 0; i < 6 && shared.Language->LangFile() != u"german.lng"; ++i) Press(VK_DOWN);
  EXPECT_EQ(TextOf(window), u"Optionen");
  EXPECT_NE(form->box0_LangInfo.Text().find(u"german.lng"), std::u16string::npos);
  // Hotkeys are captured, those with Alt too.
  form->tvw0.UserPicked(2);
  form->box0_HKS.SetFocus();
  Press('K', {VK_CONTROL, VK_MENU});
  EXPECT_EQ(runtime.Items->HotKeySearch(), u"^%k");
  form->tvw0.UserPicked(3);
  ::SendMessageW(window, WM_CLOSE, 0, 0);
  EXPECT_FALSE(form->Loaded());
}

TEST_F(FormWindows, TakeTheChoiceThatAnOpenListEndsWith) {
  const auto options = Options(0);
  auto& languages = options->cbo0_LangFile;
  const auto before = languages.ListIndex();
  languages.SetFocus();
  const HWND box = ::GetFocus();
  const auto is_open = [box] { return ::SendMessageW(box, CB_GETDROPPEDSTATE, 0, 0) != 0; };
  const auto shown = [box] { return ::SendMessageW(box, CB_GETCURSEL, 0, 0); };
  for (const int end : {VK_ESCAPE, VK_RETURN}) {
    Press(VK_F4);
    Press(VK_DOWN);
    Press(VK_DOWN);
    EXPECT_TRUE(is_open());
    EXPECT_EQ(shown(), before + 2);
    EXPECT_EQ(languages.ListIndex(), before);
    Press(end);
    EXPECT_FALSE(is_open());
    EXPECT_EQ(languages.ListIndex(), end == VK_RETURN ? before + 2 : before);
    EXPECT_EQ(shown(), languages.ListIndex());
  }
  EXPECT_TRUE(options->Loaded());
  options->Unload();

  runtime.Items->RecentItems->Add(u"first");
  runtime.Items->RecentItems->Add(u"second");
  const auto form = Search();
  Type(u"typed");
  for (const int end : {VK_ESCAPE, VK_RETURN}) {
    Press(VK_F4);
    Press(VK_DOWN);
    Press(VK_DOWN);
    Press(VK_UP);
    EXPECT_EQ(TextOf(::GetFocus()), u"second");
    EXPECT_EQ(form->cboText.Text(), u"typed");
    Press(end);
    EXPECT_EQ(form->cboText.Text(), end == VK_RETURN ? u"second" : u"typed");
    EXPECT_EQ(TextOf(::GetFocus()), form->cboText.Text());
  }
  EXPECT_TRUE(form->Loaded());
}

TEST_F(FormWindows, KeepLinesAsCellsHaveThem) {
  sheet.application->ActiveSheet()->Cells(1, 1)->SetValue(u"a\nb");
  sheet.application->ActiveSheet()->Cells(1, 1)->Activate();
  forms.ShowEdit(runtime);
  const auto form = forms.Edit();
  ASSERT_TRUE(form);
  Pump();
  EXPECT_EQ(TextOf(::GetFocus()), u"a\r\nb");
  form->box0.SetCaret(3);
  Type(u"c");
  EXPECT_EQ(form->box0.Text(), u"a\nbc");
  EXPECT_EQ(form->box0.Caret(), 4);
  Press(VK_RETURN);
  EXPECT_EQ(sheet.application->ActiveCell()->Value(), u"a\nbc");
}

// A text that its window cuts, in whatever language.
BOOL CALLBACK CheckText(HWND window, LPARAM report) {
  wchar_t type[50];
  ::GetClassNameW(window, type, 50);
  wchar_t text[500];
  ::GetWindowTextW(window, text, 500);
  const RECT area = Client(window);
  const std::wstring_view name = type;
  SIZE needed{};
  const bool is_group =
      name == WC_BUTTONW && (::GetWindowLongPtrW(window, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
  const bool is_picture = area.right < 2 * area.bottom;
  if (name == WC_BUTTONW && !is_group && !is_picture) {
    EXPECT_NE(::SendMessageW(window, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&needed)), 0);
  } else if (name == TOOLBARCLASSNAMEW) {
    ::SendMessageW(window, TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&needed));
  } else if (name == WC_STATICW || is_group || name == WC_LINK) {
    const ScreenContext context(::GetDC(window));
    const SelectedObject selected(*context, FontOf(window));
    RECT extent{};
    std::wstring plain = text;
    if (name == WC_LINK && plain.starts_with(L"<a>")) plain = plain.substr(3, plain.size() - 7);
    const bool is_icon = (::GetWindowLongPtrW(window, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
    if (!is_icon || is_group) ::DrawTextW(*context, plain.c_str(), -1, &extent, DT_CALCRECT);
    needed = {extent.right + (is_group ? 12 : 0), is_group ? 0 : extent.bottom};
  }
  if (needed.cx > area.right || needed.cy > area.bottom) {
    char what[600];
    ::snprintf(what, sizeof what, "%ls \"%ls\" needs %ldx%ld and has %ldx%ld", type, text, needed.cx,
               needed.cy, area.right, area.bottom);
    *reinterpret_cast<std::string*>(report) += std::string(what) + "\n";
  }
  return TRUE;
}

TEST_F(FormWindows, CutNoTextInAnyLanguage) {
  std::set<std::u16string> captions;
  for (const auto* language : {u"english", u"french", u"german", u"polish", u"russian", u"spanish"}) {
    shared.Language->SetLangFile(std::u16string(language) + u".lng");
    captions.insert(shared.Language->GetText(u"Search.UI.Opt.CellEntire", u""));
    std::string cut;
    const auto check = [&cut](const controls::Form& form) {
      const HWND window = WindowOf(form);
      ASSERT_NE(window, nullptr);
      ::EnumChildWindows(window, CheckText, reinterpret_cast<LPARAM>(&cut));
    };
    check(*Search());
    forms.ShowEdit(runtime);
    check(*forms.Edit());
    check(*Options(0));
    const HWND tree = ::FindWindowExW(WindowOf(*forms.Options()), nullptr, WC_TREEVIEWW, nullptr);
    for (auto node = ::SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0); node != 0;
         node = ::SendMessageW(tree, TVM_GETNEXTITEM, TVGN_NEXT, node)) {
      RECT item{};
      std::memcpy(&item, &node, sizeof node);
      ::SendMessageW(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&item));
      EXPECT_LE(item.right, Client(tree).right);
    }
    const auto about = MakeRef<frmAbout>(shared);
    ASSERT_TRUE(about->Open());
    check(*about);
    about->lblCopyrightMore.UserClicked();
    check(*about);
    about->Unload();
    EXPECT_EQ(cut, "") << ToUtf8(language);
    forms.Unload(nullptr);
  }
  EXPECT_EQ(captions.size(), 6U);
}

TEST_F(FormWindows, FollowTheResolution) {
  const auto form = Search();
  const HWND window = WindowOf(*form);
  const RECT before = Client(window);
  Rescale(window, 192);
  const RECT after = Client(window);
  EXPECT_NEAR(after.right, 2 * before.right, before.right / 5);
  EXPECT_NEAR(after.bottom, 2 * before.bottom, before.bottom / 4);
  std::string cut;
  ::EnumChildWindows(window, CheckText, reinterpret_cast<LPARAM>(&cut));
  EXPECT_EQ(cut, "");
}

// What a window shows of itself on the screen.
std::vector<COLORREF> Picture(HWND window) {
  const RECT area = Client(window);
  const ScreenContext context(::GetDC(window));
  std::vector<COLORREF> pixels;
  for (LONG y = 0; y < area.bottom; y += 2) {
    for (LONG x = 0; x < area.right; x += 2) pixels.push_back(::GetPixel(*context, x, y));
  }
  return pixels;
}

TEST_F(FormWindows, AreDrawnAnewWhereTheirControlsMove) {
  const auto form = Options(0);
  form->btnClose.SetFocus();  // no caret blinks
  const HWND window = WindowOf(*form);
  const std::function<void()> changes[] = {
      [&] { shared.Language->SetLangFile(u"german.lng"); }, [&] { form->tvw0.UserPicked(1); },
      [&] { shared.Language->SetLangFile(u"french.lng"); }, [&] { Rescale(window, 144); },
      [&] { shared.Language->SetLangFile(u"english.lng"); }};
  for (const auto& change : changes) {
    change();
    Pump();
    const auto shown = Picture(window);
    ::RedrawWindow(window, nullptr, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    Pump();
    EXPECT_TRUE(shown == Picture(window)) << &change - changes;
  }
}

TEST_F(FormWindows, HaveTextsOnTheBaseLinesOfTheirBoxes) {
  const auto form = Options(1);
  const HWND window = WindowOf(*form);
  const auto top_of_text = [window](const wchar_t* caption) {
    const HWND found = ::FindWindowExW(window, nullptr, nullptr, caption);
    RECT area = Place(found);
    if (::GetWindowLongPtrW(found, GWL_STYLE) & BS_CHECKBOX) {
      SIZE ideal{};
      ::SendMessageW(found, BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&ideal));
      area.top += (Height(area) - ideal.cy) / 2;
    }
    return area.top;
  };
  const auto top_in_box = [](controls::TextBox& box) {
    box.SetText(u"A1");
    box.SetFocus();
    const LRESULT place = ::SendMessageW(::GetFocus(), EM_POSFROMCHAR, 0, 0);
    POINT top{0, static_cast<SHORT>(HIWORD(place))};
    ::ClientToScreen(::GetFocus(), &top);
    return top.y;
  };
  for (const WORD dpi : std::initializer_list<WORD>{96, 120, 144, 192}) {
    Rescale(window, dpi);
    form->tvw0.UserPicked(1);
    EXPECT_EQ(top_of_text(L"Search range:"), top_in_box(form->box1_Range)) << dpi;
    EXPECT_EQ(top_of_text(L"GoTo column:"), top_in_box(form->box1_Col)) << dpi;
    form->tvw0.UserPicked(0);
    EXPECT_EQ(top_of_text(L"History max. items"), top_in_box(form->box0_RecentItems)) << dpi;
    form->tvw0.UserPicked(2);
    EXPECT_NEAR(top_of_text(L"Show All"), top_in_box(form->box0_HKU), 1) << dpi;
  }
}

TEST_F(FormWindows, GrowAndShrinkWithWhatTheyShow) {
  const auto form = Search();
  const HWND search = WindowOf(*form);
  const auto height = [](HWND window) { return Height(Place(window)); };
  const auto before = height(search);
  Type(u"nobody");
  EXPECT_TRUE(PumpUntil([&] { return form->boxError.Visible(); }));
  EXPECT_GT(height(search), before + 20);
  Type(u"\b\b\b\b\b\b");
  EXPECT_TRUE(PumpUntil([&] { return !form->boxError.Visible(); }));
  EXPECT_EQ(height(search), before);

  // The user gives the edit form another size, and never too small a one.
  forms.ShowEdit(runtime);
  Pump();
  const HWND edit = WindowOf(*forms.Edit());
  const HWND box = ::GetFocus();
  const RECT least = Place(edit);
  const RECT least_box = Place(box);
  const auto resize = [edit](LONG width, LONG tall) {
    ::SetWindowPos(edit, nullptr, 0, 0, width, tall, SWP_NOMOVE | SWP_NOZORDER);
  };
  resize(Width(least) + 90, Height(least) + 60);
  EXPECT_EQ(height(edit), Height(least) + 60);
  EXPECT_NEAR(Width(Place(box)), Width(least_box) + 90, 3);
  EXPECT_NEAR(height(box), Height(least_box) + 60, 3);
  shared.Language->SetLangFile(u"german.lng");
  EXPECT_NEAR(height(edit), Height(least) + 60, 3);
  resize(10, 10);
  EXPECT_LE(Width(least), Width(Place(edit)));
  EXPECT_NEAR(height(edit), Height(least), 3);
  EXPECT_EQ(::GetWindowLongPtrW(search, GWL_STYLE) & WS_THICKFRAME, 0);
}

TEST_F(FormWindows, CountEveryOneOfQuickClicks) {
  const auto form = Search();
  const HWND box = ::FindWindowExW(WindowOf(*form), nullptr, WC_BUTTONW, L"&Match case");
  ASSERT_NE(box, nullptr);
  const UINT presses[] = {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_LBUTTONDOWN, WM_LBUTTONDBLCLK};
  bool expected = form->chkCase.Value();
  for (const UINT press : presses) {
    ::SendMessageW(box, press, MK_LBUTTON, MAKELPARAM(5, 5));
    ::SendMessageW(box, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    expected = !expected;
    EXPECT_EQ(form->chkCase.Value(), expected);
    EXPECT_EQ(::SendMessageW(box, BM_GETCHECK, 0, 0) == BST_CHECKED, expected);
  }
}

TEST_F(FormWindows, ReachLinksByTheKeyboardAndNameButtonsWithPictures) {
  shared.Language->SetLangFile(u"Russian.LNG");
  const auto form = MakeRef<frmAbout>(shared);
  ASSERT_TRUE(form->Open());
  std::vector<const Control*> clicked;
  for (auto* link : {&form->lblWWW, &form->lblEMail}) link->Click = [&, link] { clicked.push_back(link); };
  form->Show();
  Pump();
  form->lblWWW.SetFocus();
  for (int i = 0; i < 3; ++i) {
    Press(VK_RETURN);  // means nothing to this form
    Press(VK_SPACE);
    Press(VK_TAB);
  }
  EXPECT_EQ(clicked, (std::vector<const Control*>{&form->lblWWW, &form->lblEMail}));
  EXPECT_FALSE(form->lblCopyrightMore.Focusable());  // it has told
  Press(VK_SPACE);
  EXPECT_EQ(clicked.size(), 3U);
  form->Unload();

  shared.Language->SetLangFile(u"english.lng");
  const HWND options = WindowOf(*Options(1));
  for (const wchar_t* name :
       {L"Select the search range on the sheet", L"Select the columns to search on the sheet",
        L"Select the column to go to on the sheet"}) {
    const HWND button = ::FindWindowExW(options, nullptr, WC_BUTTONW, name);
    ASSERT_NE(button, nullptr);
    const auto pixels = Picture(button);
    EXPECT_TRUE(std::ranges::any_of(pixels, [](COLORREF c) { return GetRValue(c) > GetBValue(c) + 80; }));
  }
}

TEST_F(FormWindows, RememberWhereTheUserPutsThem) {
  auto form = Search();
  form->Move({3000, 2000});
  const int32_t moved = form->Position().x;
  ::SetWindowPos(WindowOf(*form), nullptr, 100, 80, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  EXPECT_NE(form->Position().x, moved);
  const auto left = form->Position().x;
  const auto top = form->Position().y;
  form->Unload();
  form = Search();
  EXPECT_EQ(form->Position().x, left);
  EXPECT_EQ(form->Position().y, top);
  EXPECT_EQ(Place(WindowOf(*form)).left, 100);
  EXPECT_EQ(Place(WindowOf(*form)).top, 80);
}

HWND MakeHostWindow() {
  const HWND host = ::CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 10, 10, 400,
                                      300, nullptr, nullptr, nullptr, nullptr);
  EXPECT_NE(host, nullptr);
  return host;
}

TEST_F(FormWindows, EndWithTheirOwner) {
  const HWND host = MakeHostWindow();
  const auto form = Search();
  form->SetOwner(reinterpret_cast<intptr_t>(host));
  EXPECT_EQ(::GetWindow(WindowOf(*form), GW_OWNER), host);
  Type(u"kept");
  ::DestroyWindow(host);
  EXPECT_FALSE(form->Loaded());
  EXPECT_FALSE(shared.SearchFormLoaded);
  EXPECT_EQ(runtime.Items->RecentItems->Item(0), u"kept");  // closed as ever
  EXPECT_TRUE(Search());                                    // and ready for the next time
}

TEST_F(FormWindows, DisableTheOthersWhileModal) {
  const HWND host = MakeHostWindow();
  const auto search = Search();
  const HWND other = WindowOf(*search);
  bool was_modal = false;
  const std::function<void()> stop = [&] {
    was_modal = !::IsWindowEnabled(host) && !::IsWindowEnabled(other);
    runtime.DoStop();
  };
  static const std::function<void()>* action = nullptr;  // a timer without a window is told nothing else
  action = &stop;
  constexpr auto act = [](UINT_PTR timer) {
    ::KillTimer(nullptr, timer);
    (*action)();
  };
  ::SetTimer(nullptr, 0, 50, OnTimer<act>);
  runtime.About();
  EXPECT_TRUE(was_modal);
  EXPECT_TRUE(::IsWindowEnabled(host));
  EXPECT_FALSE(forms.About());
  EXPECT_FALSE(search->Loaded());
  ::DestroyWindow(host);
}

// The highest of the handles that a new object of GDI gets: they are given out again from the lowest on.
WORD HighestGdiHandle() {
  GdiObject<HBRUSH> brushes[32];
  WORD highest = 0;
  for (auto& brush : brushes) {
    brush.reset(::CreateSolidBrush(RGB(1, 2, 3)));
    highest = std::max(highest, LOWORD(reinterpret_cast<DWORD_PTR>(*brush)));
  }
  return highest;
}

TEST_F(FormWindows, LeaveNothingBehind) {
  const auto cycle = [this](int times) {
    for (int i = 0; i < times; ++i) {
      const auto about = MakeRef<frmAbout>(shared);
      EXPECT_TRUE(about->Open());
      about->Unload();
      if (i % 10 != 0) continue;
      Search();
      Options(i / 10 % 4);
      forms.Unload(nullptr);
      Pump();
    }
  };
  const auto process = ::GetCurrentProcess();
  const auto before = WindowsOfThread().size();
  cycle(40);
  DWORD handles = 0;
  ::GetProcessHandleCount(process, &handles);
  const DWORD user = ::GetGuiResources(process, GR_USEROBJECTS);
  const DWORD gdi = ::GetGuiResources(process, GR_GDIOBJECTS);
  const WORD gdi_handle = HighestGdiHandle();
  cycle(500);
  EXPECT_EQ(WindowsOfThread().size(), before);
  DWORD handles_after = 0;
  ::GetProcessHandleCount(process, &handles_after);
  EXPECT_LE(handles_after, handles + 5);
  EXPECT_LE(::GetGuiResources(process, GR_USEROBJECTS), user + 5);
  EXPECT_LE(::GetGuiResources(process, GR_GDIOBJECTS), gdi + 5);
  EXPECT_LE(HighestGdiHandle(), gdi_handle + 20);
}

}  // namespace
}  // namespace rowlark::windows
