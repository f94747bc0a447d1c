#include "TerminalProgram.h"

#include <signal.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

#include "controls/Keyboard.h"
#include "forms/HotKey.h"
#include "host/Block.h"
#include "host/standalone/CellText.h"
#include "host/terminal/TextLines.h"
#include "runtime/Failure.h"
#include "settings/Macros.h"
#include "settings/Product.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using namespace controls;  // names of keys
using terminal::KeyPress;
using terminal::kKeyF1;
using terminal::Point;
using terminal::Style;

constexpr int32_t FKey(int32_t number) { return kKeyF1 + number - 1; }

// Where F6 leads, of a text that names both: "Form/Table".
std::u16string OtherSide(const std::u16string& both, bool in_table) {
  const auto slash = std::min(both.find(u'/'), both.size());
  return in_table || slash == both.size() ? both.substr(0, slash) : both.substr(slash + 1);
}

// A cell as spreadsheet programs put it on the clipboard.
std::string Quoted(std::string_view cell) {
  if (cell.find_first_of("\t\r\n\"") == cell.npos) return std::string(cell);
  std::string quoted = "\"";
  for (const char c : cell) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

}  // namespace

TerminalProgram::TerminalProgram(Program& program, terminal::Screen& screen,
                                 terminal::TerminalMessagePump& pump, terminal::TerminalWindowSystem& windows,
                                 KeyHelp& help)
    : program_(program),
      screen_(screen),
      pump_(pump),
      windows_(windows),
      help_(help),
      tables_(program, pump, windows) {
  windows_.SetDesktop(*this);
  windows_.OkCaption = [this] { return Text(u"Edit.UI.BtnOK", u"O&K"); };
  windows_.CancelCaption = [this] { return Text(u"Edit.UI.BtnClose", u"&Cancel"); };
  help_.Show = [this] { ShowKeys(); };
  pump_.OnEnd = [this](int signal) { signal == SIGINT ? Quit() : EndBySignal(signal); };
  searching_ = program_.Runtime().SearchingEvent().Connect([this](bool& on) { evtRLRTM_Searching(on); });
}

TerminalProgram::~TerminalProgram() {
  pump_.OnEnd = [](int) {};
  help_.Show = [] {};
}

int TerminalProgram::Run(const TerminalArguments& arguments) {
  tables_.HeadRows = arguments.head_rows;
  for (const auto& file : arguments.files) {
    auto input = arguments.input;
    if (file == TerminalArguments::kStandardInput) input.descriptor = arguments.standard_input;
    tables_.Open(file, input);
  }
  tables_.First();
  auto& runtime = program_.Runtime();
  runtime.MenuCreate();
  AssignHotKeys(*program_.Host(), HotKeys(program_.Items()), program_.Trace());
  tables_.KeepEdits();
  follow_ = at_end_ = arguments.follow;
  while (!status_) {
    pump_.ProcessMessages();
    if (status_) break;
    tables_.Watch(follow_);
    const bool loading = tables_.Load();
    UseNewRows();
    const bool busy = loading || CountMatches();
    if (!loading && tables_.IsLoading()) pump_.Invalidate();  // rows may have come before the pause
    pump_.WaitForInput(busy ? 0 : Tables::kWatch);
    if (busy) pump_.Invalidate();
  }
  program_.Save();
  return *status_;
}

// A form that waits for the user may have a cell of the table in its hands.
void TerminalProgram::UseNewRows() {
  const auto& forms = program_.Forms();
  const bool may_replace = !(editor_ && editor_->Loaded()) && !forms.Edit() && !forms.Options();
  const bool reloaded = may_replace && tables_.FinishReload();
  if (reloaded) {
    highlight_ = {};
    matches_.reset();
  }
  if (tables_.TakeLoaded() || reloaded) EndLoading();
  if (at_end_ && !tables_.View().IsAtEnd()) {
    tables_.View().Navigate({kKeyDown, kCtrl});
    pump_.Invalidate();
  }
}

void TerminalProgram::NextTable(int32_t step) {
  tables_.Next(step);
  highlight_ = {};
  matches_.reset();
}

// Rows that came after a search are searched too.
void TerminalProgram::EndLoading() {
  pump_.Invalidate();
  if (const auto form = program_.Forms().Search()) {
    if (!form->cboText.Text().empty()) form->tmr0.SetEnabled(true);
  } else if (program_.Items().RowsIsGrouped) {
    program_.Runtime().RunSearch(searched_);
  }
}

void TerminalProgram::Save(bool elsewhere) {
  const auto path = elsewhere ? tables_.SaveAs() : tables_.Save();
  if (!path) return;
  message_ = program_.Runtime().Language().GetText(u"Terminal.Save.Saved", u"Saved: %1", Shown(*path));
}

// The cell shows, so that the user sees what happens.
void TerminalProgram::Repeat(bool undo) {
  try {
    const auto place = undo ? tables_.Active().Undo() : tables_.Active().Redo();
    if (!place) {
      message_ = undo ? Text(u"Terminal.Edit.NoUndo", u"Nothing to undo")
                      : Text(u"Terminal.Edit.NoRedo", u"Nothing to redo");
      return;
    }
    const auto [sheet, row, column] = *place;
    tables_.Active().Workbook()->ActivateSheet(sheet);
    sheet->Select({Block::OfCell(row, column)}, {row, column});
  } catch (const host::Error& error) {
    windows_.MsgBox(error.Description(), host::MsgBoxIcon::Exclamation, kProductTitle);
  }
}

void TerminalProgram::Reload() {
  if (!tables_.Reload()) message_ = Text(u"Terminal.Reload.Once", u"This can be read once only");
}

// The active cell, which may be another one when the user has ended.
void TerminalProgram::Edit() {
  if (editor_ && editor_->Loaded()) return;
  Attempt(program_.Trace(), [this] {
    const auto cell = Require(program_.Host()->ActiveCell());
    const auto ended = [this, cell](CellEditor::End end, const std::u16string& text) {
      if (end == CellEditor::End::Cancelled) return;
      try {
        if (text != cell->Value()) cell->SetValue(text);
      } catch (const host::Error& error) {
        windows_.MsgBox(error.Description(), host::MsgBoxIcon::Exclamation, kProductTitle);
        return;
      }
      tables_.View().Navigate({end == CellEditor::End::Down ? kKeyDown : kKeyRight});
    };
    editor_ = MakeRef<CellEditor>(PlainAddress(*cell), cell->Value(), ended, program_.Trace());
    editor_->Open(windows_);
  });
}

void TerminalProgram::StartSearch(std::u16string_view text) {
  program_.Runtime().ShowSearch();
  if (const auto form = program_.Forms().Search(); form && !text.empty()) {
    form->cboText.UserFocused();
    form->cboText.SelectAll();
    controls::Paste(*form, text);
  }
}

std::shared_ptr<clsVTRLKItem> TerminalProgram::DetectedProfile() {
  std::shared_ptr<clsVTRLKItem> profile;
  Attempt(program_.Trace(), [&] {
    auto detected = program_.Items().ForWorkbook(tables_.Active().Workbook()->Name())->Clone();
    program_.Runtime().DetectSearchRange(tables_.View().Sheet(), *detected);
    profile = detected;
  });
  return profile;
}

Highlight TerminalProgram::MakeHighlight() {
  const auto profile = DetectedProfile();
  if (!profile) return {};
  Highlight highlight;  // none where the search will fail
  Attempt(program_.Trace(), [&] {
    highlight = {searched_, *program_.Runtime().SearchOptions, profile->Block(),
                 Columns(profile->SearchCols).On(tables_.View().Sheet())};
  });
  return highlight;
}

void TerminalProgram::evtRLRTM_Searching(bool searching) {
  using std::chrono::steady_clock;
  if (searching) {
    search_began_ = steady_clock::now();
    const auto form = program_.Forms().Search();
    searched_ = form ? form->cboText.Text() : u"";
    highlight_ = MakeHighlight();
    matches_.reset();
  } else {
    search_time_ = std::chrono::duration<double, std::milli>(steady_clock::now() - search_began_).count();
  }
  pump_.Invalidate();
}

bool TerminalProgram::Marked() {
  const auto form = program_.Forms().Search();
  return program_.Items().RowsIsGrouped || (form && !form->cboText.Text().empty());
}

bool TerminalProgram::CountMatches() {
  constexpr auto kSlice = std::chrono::milliseconds(8);
  if (!Marked()) {
    matches_.reset();
    return false;
  }
  if (!matches_ || !matches_->Holds()) matches_.emplace(&tables_.View().Sheet(), highlight_);
  if (matches_->Counted()) return false;
  matches_->Count(std::chrono::steady_clock::now() + kSlice);
  return true;
}

void TerminalProgram::GoToMatch(bool back) {
  auto& view = tables_.View();
  const auto next = Marked() ? Matches(&view.Sheet(), highlight_).Next(view.At(), back) : std::nullopt;
  if (next) {
    view.GoTo(*next);
  } else {
    windows_.Beep();
  }
}

void TerminalProgram::AskForCell() {
  if (editor_ && editor_->Loaded()) return;
  const auto ended = [this](CellEditor::End end, const std::u16string& place) {
    if (end != CellEditor::End::Cancelled) GoTo(place);
  };
  editor_ = MakeRef<CellEditor>(Text(u"Terminal.GoTo.Caption", u"Go to a row or cell"), u"", ended,
                                program_.Trace());
  editor_->Open(windows_);
}

// "17" is a row, "B17" a cell.
void TerminalProgram::GoTo(const std::u16string& place) {
  auto& view = tables_.View();
  const auto bounds = view.Sheet().UsedBlock();
  const auto row = ToInteger(place);
  sheetview::Cell cell{row.value_or(0), view.At().column};
  if (!row) {
    try {
      const auto range = view.Sheet().Range(place);
      cell = {range->Row(), range->Column()};
    } catch (const host::Error&) {  // told below: row 0 is none
    }
  }
  if (bounds.Contains(cell.row, cell.column)) {
    view.GoTo(cell);
  } else {
    message_ = program_.Runtime().Language().GetText(u"Terminal.GoTo.None", u"No such place: %1", place);
  }
}

void TerminalProgram::ShowCell() {
  const auto [row, column] = tables_.View().At();
  const auto text = ToUtf16(tables_.View().Sheet().Text().Cell(row, column));
  std::vector<terminal::ListForm::Entry> lines;
  for (const auto [begin, end] : terminal::BreakLines(text, screen_.Size().width - 6))
    lines.push_back({text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin))});
  windows_.ChooseFrom(lines, 0, {1, 1});
}

void TerminalProgram::AskForCopy() {
  const auto entry = [](const std::u16string& caption) {
    return terminal::ListForm::Entry{PlainCaption(caption), Accelerator(caption)};
  };
  const int32_t chosen = windows_.ChooseFrom(
      {entry(Text(u"Terminal.Copy.Selection", u"&Cells selected")),
       entry(Text(u"Terminal.Copy.Row", u"&Row")), entry(Text(u"Terminal.Copy.Visible", u"&Visible rows"))},
      0, {1, screen_.Size().height - 1});
  if (chosen >= 0) Copy(static_cast<Copied>(chosen));
}

void TerminalProgram::Copy(Copied what) {
  constexpr std::size_t kMost = 1 << 20;  // bytes, more than most terminals take
  auto& view = tables_.View();
  const auto& sheet = view.Sheet();
  auto block = sheet.UsedBlock();
  if (what == Copied::Row) block.first_row = block.last_row = view.At().row;
  if (what == Copied::Selection) block = sheet.Selection().front();
  block.last_row = std::min(block.last_row, sheet.UsedBlock().last_row);
  block.last_column = std::min(block.last_column, sheet.UsedBlock().last_column);
  std::string text;
  const auto& hidden = sheet.HiddenRows();
  standalone::CellReader reader(sheet.Text(), false);
  for (int32_t row = hidden.Next(block.first_row, block.last_row, false);
       row <= block.last_row && text.size() < kMost; row = hidden.Next(row + 1, block.last_row, false)) {
    if (!text.empty()) text += '\n';
    for (int32_t column = block.first_column; column <= block.last_column; ++column) {
      if (column > block.first_column) text += '\t';
      text += Quoted(reader.Cell(row, column));
    }
  }
  if (text.size() >= kMost) {
    message_ = Text(u"Terminal.Copy.TooMuch", u"Too much for the clipboard");
  } else {
    screen_.Copy(text);
    message_ = Text(u"Terminal.Copy.Done", u"Copied");
  }
}

bool TerminalProgram::ChangeColumns(const KeyPress& press) {
  constexpr int32_t kStep = 2;
  auto& view = tables_.View();
  if (press.Is(kKeyLeft, kAlt)) {
    view.WidenColumn(-kStep);
  } else if (press.Is(kKeyRight, kAlt)) {
    view.WidenColumn(kStep);
  } else if (press.Is(u'H', kAlt)) {
    view.HideColumn();
  } else if (press.Is(u'U', kAlt)) {
    view.ShowColumns();
  } else if (press.Is(u'F', kAlt)) {
    view.FreezeColumns();
  } else {
    return false;
  }
  return true;
}

void TerminalProgram::RunMacro(std::u16string_view name) {
  const auto macro = MacroOf(name);
  if (!macro) return;
  auto& runtime = program_.Runtime();
  switch (*macro) {
    case Macro::ShowSearch:
      return runtime.ShowSearch();
    case Macro::ShowOptions:
      return runtime.ShowOptions();
    case Macro::CallHelp:
      return runtime.CallHelp();
    case Macro::CallTechSupport:
      return runtime.CallTechSupport();
    case Macro::ShowAbout:
      return runtime.About();
    case Macro::Unhide:
      break;
  }
  const auto result = runtime.ShowAllRows(false);
  if (!result.error.empty()) windows_.MsgBox(result.error, host::MsgBoxIcon::Exclamation, kProductTitle);
}

bool TerminalProgram::RunHotKey(const KeyPress& press) {
  const auto& keys = program_.Host()->Keys();
  const auto key = keys.find(CaptureHotKey(press.key, press.shift).code);
  if (key == keys.end()) return false;
  RunMacro(std::u16string(key->second));
  return true;
}

void TerminalProgram::ShowMenu() {
  std::vector<terminal::ListForm::Entry> entries;
  std::vector<std::function<void()>> actions;
  const auto add = [&](std::u16string_view caption, std::function<void()> action) {
    entries.push_back({PlainCaption(caption), Accelerator(caption)});
    actions.push_back(std::move(action));
  };
  for (const auto& menu : program_.Host()->WorksheetMenuBar()->Controls()) {
    for (const auto& button : menu->Controls()) {
      add(button->Caption(), [this, macro = std::u16string(button->OnAction())] { RunMacro(macro); });
    }
  }
  add(Text(u"Terminal.Menu.SaveAs", u"Sa&ve as..."), [this] { Save(true); });
  add(Text(u"Terminal.Menu.Undo", u"&Undo"), [this] { Repeat(true); });
  add(Text(u"Terminal.Menu.Redo", u"&Redo"), [this] { Repeat(false); });
  add(Text(u"Terminal.Menu.Reload", u"Re&load the file"), [this] { Reload(); });
  add(Text(u"Terminal.Menu.Shell", u"&Back to the shell for a while"), [this] { pump_.Suspend(); });
  const int32_t chosen = windows_.ChooseFrom(entries, 0, {1, screen_.Size().height - 1});
  if (chosen >= 0) actions[static_cast<std::size_t>(chosen)]();
}

void TerminalProgram::ShowKeys() {
  windows_.MsgBox(Text(u"Terminal.Keys.All",
                       u"Type - search for it\\n"
                       u"Arrows, PgUp, PgDn, Home, End - move (Ctrl: to the end, Shift: select)\\n"
                       u"Insert - select one more block\\n"
                       u"F2, Enter - edit the cell\\n"
                       u"F3, Shift+F3, n, N - next match, previous match\\n"
                       u"F4 - open a list in a form\\n"
                       u"F6 - from the table to the form and back\\n"
                       u"F7, Ctrl+PgDn, Ctrl+PgUp - another table\\n"
                       u"F8, Ctrl+G - show the whole cell, go to a row or cell\\n"
                       u"F10 - menu\\n"
                       u"Ctrl+F, / - search form\\n"
                       u"Ctrl+Shift+F - show all rows\\n"
                       u"Alt+Left, Right, H, U - narrower, wider, hide a column, show all\\n"
                       u"Alt+F, Alt+C, Ctrl+Insert - freeze columns, copy as..., copy\\n"
                       u"Ctrl+S, F12, F5 - save, save as, read anew\\n"
                       u"Ctrl+Z, Ctrl+Y - undo, redo\\n"
                       u"Ctrl+Q, Ctrl+C - quit"),
                  host::MsgBoxIcon::Exclamation, kProductTitle);
}

void TerminalProgram::Quit() {
  if (std::exchange(quitting_, true)) return;
  const bool may = tables_.MayQuit();
  quitting_ = false;
  if (may) End(0);
}

// Nobody can be asked any more.
void TerminalProgram::EndBySignal(int signal) {
  Attempt(program_.Trace(), [this] { farewell_ = tables_.KeepChanges(); });
  End(128 + signal);
}

void TerminalProgram::End(int status) {
  status_ = status;
  program_.Runtime().DoStop();
  if (editor_) editor_->Unload();
  windows_.EndWaits();
}

bool TerminalProgram::Navigate(const KeyPress& press) {
  if (press.Is(terminal::kKeyInsert)) {
    tables_.View().KeepSelection();
    return true;
  }
  const bool moved = tables_.View().Navigate(press);
  if (moved) at_end_ = follow_ && tables_.View().IsAtEnd();
  return moved;
}

void TerminalProgram::Press(const KeyPress& press) {
  message_.clear();
  if (press.Is(kKeyEscape)) return tables_.StopLoading();
  if (press.Is(u'S', kCtrl)) return Save(false);
  if (press.Is(FKey(12))) return Save(true);
  if (press.Is(u'Z', kCtrl)) return Repeat(true);
  if (press.Is(u'Y', kCtrl)) return Repeat(false);
  if (press.Is(FKey(5))) return Reload();
  if (press.Is(FKey(1)) || press.character == U'?') return ShowKeys();
  if (press.Is(FKey(7)) || press.Is(terminal::kKeyPageDown, kCtrl)) return NextTable(1);
  if (press.Is(terminal::kKeyPageUp, kCtrl)) return NextTable(-1);
  if (press.Is(FKey(10)) || press.Is(u'R', kAlt)) return ShowMenu();
  if (press.key == FKey(3) && (press.shift & ~kShift) == 0) return GoToMatch(press.shift == kShift);
  if (press.Is(FKey(8))) return ShowCell();
  if (press.Is(terminal::kKeyInsert, kCtrl)) return Copy(Copied::Selection);
  if (press.Is(u'C', kAlt)) return AskForCopy();
  if (ChangeColumns(press) || RunHotKey(press)) return;
  if (press.Is(u'G', kCtrl)) return AskForCell();
  if (press.Is(u'Q', kCtrl) || press.Is(u'C', kCtrl)) return Quit();
  if (press.Is(FKey(2)) || press.Is(kKeyReturn)) return Edit();
  if (press.character < U' ' || press.character == 127) return;
  if ((press.character == U'n' || press.character == U'N') && Marked())
    return GoToMatch(press.character == U'N');
  std::u16string text;  // typing is searching
  if (press.character != U'/') AppendUtf16(text, press.character);
  StartSearch(text);
}

void TerminalProgram::Paste(std::u16string_view text) { StartSearch(text); }

void TerminalProgram::UseMouse(const terminal::MouseAction& action) {
  tables_.View().UseMouse(action);
  at_end_ = follow_ && tables_.View().IsAtEnd();
}

std::u16string TerminalProgram::Text(std::u16string_view key, std::u16string_view text) const {
  return program_.Runtime().Language().GetText(key, text);
}

int32_t TerminalProgram::StatusRows(int32_t height) const { return height >= 16 ? 2 : 1; }

void TerminalProgram::Draw(terminal::Canvas& canvas, const terminal::Rect& picture,
                           const terminal::Rect& status, bool focused) {
  tables_.View().Draw(canvas, picture, Marked() ? highlight_ : Highlight(), focused);
  DrawStatus(canvas, {status.left, status.top}, status.width);
  if (status.height > 1) DrawKeys(canvas, {status.left, status.top + 1}, status.width, focused);
}

// Counting goes through all rows, so it is done again only when rows were hidden or shown.
std::u16string TerminalProgram::CountRows() {
  const auto& sheet = tables_.View().Sheet();
  const auto used = sheet.UsedBlock();
  const int32_t first = used.first_row + sheet.HeadRows();
  const int32_t last = used.last_row;
  const int32_t all = std::max(last - first + 1, 0);
  if (count_.sheet != &sheet || count_.layout != sheet.Layout() || count_.all != all) {
    count_ = {&sheet, sheet.Layout(), all, sheet.HiddenRows().Count(first, last, false)};
  }
  return program_.Runtime().Language().GetText(u"Terminal.Status.Rows", u"%1 of %2 rows",
                                               {ToText(count_.visible), ToText(count_.all)});
}

std::u16string TerminalProgram::TellMatches() {
  auto& language = program_.Runtime().Language();
  const auto cells = ToText(matches_->Cells());
  const auto rows = ToText(matches_->Rows());
  const int32_t number = matches_->Number(tables_.View().At());
  if (number == 0)
    return language.GetText(u"Terminal.Status.Matches", u"%1 matches in %2 rows", {cells, rows});
  return language.GetText(u"Terminal.Status.Match", u"match %1 of %2 in %3 rows",
                          {ToText(number), cells, rows});
}

std::u16string TerminalProgram::Mode() const {
  const auto& options = *program_.Runtime().SearchOptions;
  std::u16string mode;
  switch (options.SearchWords) {
    case xcVT_SEARCH_WORDS_CELL:
      mode = Text(u"Search.UI.Opt.CellEntire", u"&Entire cells only");
      break;
    case xcVT_SEARCH_WORDS_ANY:
      mode = Text(u"Search.UI.Opt.CellAnyWord", u"&Any of words");
      break;
    default:
      mode = Text(u"Search.UI.Opt.CellPart", u"Any &part of cells");
  }
  if (options.CompareMethod == CompareMode::Binary)
    mode += u", " + Text(u"Search.UI.Chk.MatchCase", u"&Match case");
  return PlainCaption(mode);
}

// From the left the table and its active cell, from the right what is known of the search, as far as there is
// room.
void TerminalProgram::DrawStatus(terminal::Canvas& canvas, Point at, int32_t width) {
  canvas.Fill({at.x, at.y, width, 1}, U' ', Style::Status);
  std::u16string left = u" " + tables_.Name();
  std::u16string notices;
  for (const auto& notice : tables_.Notices()) notices += u" │ " + notice;
  const int32_t least = 34 + terminal::WidthOf(notices);  // cells for the table
  std::vector<std::u16string> parts{CountRows()};
  const auto& document = tables_.Active();
  if (const auto fraction = tables_.LoadingFraction()) {
    const auto percent = static_cast<int32_t>(*fraction * 100);
    auto& language = program_.Runtime().Language();
    parts = {percent > 0
                 ? language.GetText(u"Terminal.Status.Loading", u"Loading: %1 of 100 - Escape stops",
                                    ToText(percent))
                 : language.GetText(u"Terminal.Status.Reading", u"Reading: %1 rows so far - Escape stops",
                                    ToText(tables_.View().Sheet().Text().AppendedRows()))};
  } else if (document.LoadState() == Document::State::Stopped) {
    parts.push_back(Text(u"Terminal.Status.Stopped", u"not loaded to its end"));
  }
  if (matches_ && matches_->Holds() && matches_->Counted() && matches_->Cells() > 0)
    parts.push_back(TellMatches());
  if (search_time_) {
    const auto tenths = static_cast<int32_t>(std::lround(*search_time_ * 10));
    parts.push_back(program_.Runtime().Language().GetText(u"Terminal.Status.Time", u"%1 ms",
                                                          ToText(tenths / 10) + u"." + ToText(tenths % 10)));
  }
  if (const auto profile = DetectedProfile()) parts.push_back(profile->SearchRange());
  if (search_time_) parts.push_back(Mode());
  std::u16string right;
  for (const auto& part : parts) {
    if (part.empty() || terminal::WidthOf(right + part) + least > width) continue;
    right += (right.empty() ? u" " : u" │ ") + part;
  }
  right += u' ';
  left += notices;
  if (!message_.empty()) left += u" │ " + message_;
  Attempt(program_.Trace(), [&] {
    const auto cell = Require(program_.Host()->ActiveCell());
    left += u" │ " + PlainAddress(*cell) + u" " + cell->Value();
  });
  const int32_t taken = terminal::WidthOf(right);
  canvas.Write(at, left, Style::Status, std::max(0, width - taken - 1));
  canvas.Write({at.x + width - taken, at.y}, right, Style::Status);
}

// Where a line is too short for them, the keys close up.
void TerminalProgram::DrawKeys(terminal::Canvas& canvas, Point at, int32_t width, bool in_table) const {
  struct Entry {
    std::u16string_view key;
    std::u16string text;
    int32_t Width() const { return terminal::WidthOf(key) + 1 + terminal::WidthOf(text); }
  };
  std::vector<Entry> entries{{u"F1", Text(u"Terminal.Keys.Help", u"Help")},
                             {u"F2", Text(u"Terminal.Keys.Edit", u"Edit")}};
  const bool form = program_.Forms().Search() != nullptr;
  if (form) entries.push_back({u"F6", OtherSide(Text(u"Terminal.Keys.Form", u"Form/Table"), in_table)});
  if (!tables_.Place().empty()) {
    entries.push_back({u"F7", Text(u"Terminal.Keys.NextTable", u"Next table")});
  }
  entries.push_back({u"F10", Text(u"Terminal.Keys.Menu", u"Menu")});
  if (!form) entries.push_back({u"^F", Text(u"Terminal.Keys.Search", u"Search")});
  entries.push_back({u"^S", Text(u"Terminal.Keys.Save", u"Save")});
  entries.push_back({u"^Q", Text(u"Terminal.Keys.Quit", u"Quit")});

  int32_t apart = 1;
  for (const auto& entry : entries) apart += entry.Width() + 2;
  const int32_t gap = apart - 2 <= width ? 2 : 1;
  int32_t x = at.x + gap - 1;
  for (const auto& entry : entries) {
    if (x + entry.Width() > at.x + width) continue;
    x += canvas.Write({x, at.y}, entry.key, Style::Bold) + 1;
    x += canvas.Write({x, at.y}, entry.text, Style::Dim) + gap;
  }
}

}  // namespace rowlark
