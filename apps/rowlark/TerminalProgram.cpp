#include "TerminalProgram.h"

#include <signal.h>

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "HelpText.h"
#include "Keys.h"
#include "controls/Keyboard.h"
#include "forms/HotKey.h"
#include "settings/Macros.h"
#include "settings/Product.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using namespace controls;  // names of keys
using terminal::KeyPress;

constexpr int32_t FKey(int32_t number) { return terminal::kKeyF1 + number - 1; }

bool IsNextMatch(const KeyPress& press) { return press.key == FKey(3) && (press.shift & ~kShift) == 0; }

}  // namespace

TerminalProgram::TerminalProgram(Program& program, terminal::Screen& screen,
                                 terminal::TerminalMessagePump& pump, terminal::TerminalWindowSystem& windows,
                                 TerminalHelp& help)
    : program_(program),
      screen_(screen),
      pump_(pump),
      windows_(windows),
      help_(help),
      tables_(program, pump, windows),
      marks_(program, pump, windows, tables_),
      line_(program, tables_, marks_),
      cells_(program, screen, windows, tables_, line_) {
  windows_.SetDesktop(*this);
  windows_.OkCaption = [this] { return program_.Text(u"Edit.UI.BtnOK", u"O&K"); };
  windows_.CancelCaption = [this] { return program_.Text(u"Edit.UI.BtnClose", u"&Cancel"); };
  help_.Show = [this](std::u16string_view file, int32_t context) { return ShowHelp(file, context); };
  pump_.OnEnd = [this](int signal) { signal == SIGINT ? Quit() : EndBySignal(signal); };
}

TerminalProgram::~TerminalProgram() {
  pump_.OnEnd = [](int) {};
  help_.Show = [](std::u16string_view, int32_t) { return false; };
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
  follow_ = arguments.follow;
  while (!status_) {
    pump_.ProcessMessages();
    if (status_) break;
    tables_.Watch(follow_);
    const bool loading = tables_.Load();
    UseNewRows();
    const bool busy = marks_.Work() || loading;
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
  const bool may_replace = !cells_.Editing() && !forms.Edit() && !forms.Options();
  const bool reloaded = may_replace && tables_.FinishReload();
  if (reloaded) marks_.Forget();
  if (tables_.TakeLoaded() || reloaded) {
    pump_.Invalidate();
    marks_.SearchAgain();
  }
  if (follow_ && tables_.View().KeepToEnd()) pump_.Invalidate();
}

void TerminalProgram::NextTable(int32_t step) {
  tables_.Next(step);
  marks_.Forget();
}

void TerminalProgram::Save(bool elsewhere) {
  const auto path = elsewhere ? tables_.SaveAs() : tables_.Save();
  if (path) line_.Tell(program_.Text(u"Terminal.Save.Saved", u"Saved: %1", {Shown(*path)}));
}

void TerminalProgram::Reload() {
  if (!tables_.Reload()) line_.Tell(program_.Text(u"Terminal.Reload.Once", u"This can be read once only"));
}

void TerminalProgram::StartSearch(std::u16string_view text) {
  program_.Runtime().ShowSearch();
  if (const auto form = program_.Forms().Search(); form && !text.empty()) {
    form->cboText.UserFocused();
    form->cboText.SelectAll();
    controls::Paste(*form, text);
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
    entries.push_back(terminal::ListForm::Entry::Of(caption));
    actions.push_back(std::move(action));
  };
  for (const auto& menu : program_.Host()->WorksheetMenuBar()->Controls()) {
    for (const auto& button : menu->Controls()) {
      add(button->Caption(), [this, macro = std::u16string(button->OnAction())] { RunMacro(macro); });
    }
  }
  add(program_.Text(u"Terminal.Menu.SaveAs", u"Sa&ve as..."), [this] { Save(true); });
  add(program_.Text(u"Terminal.Menu.Undo", u"&Undo"), [this] { cells_.Undo(); });
  add(program_.Text(u"Terminal.Menu.Redo", u"&Redo"), [this] { cells_.Redo(); });
  add(program_.Text(u"Terminal.Menu.Reload", u"Re&load the file"), [this] { Reload(); });
  add(program_.Text(u"Terminal.Menu.Shell", u"&Back to the shell for a while"), [this] { pump_.Suspend(); });
  const int32_t chosen = windows_.ChooseFrom(entries, 0, {1, screen_.Size().height - 1});
  if (chosen >= 0) actions[static_cast<std::size_t>(chosen)]();
}

bool TerminalProgram::ShowHelp(std::u16string_view file, int32_t context) {
  const auto& language = program_.Runtime().Language();
  auto topics = ReadHelpTexts(program_.Files(), language.HelpFile());
  if (topics.empty()) topics = ReadHelpTexts(program_.Files(), file);
  if (context != 0) {
    const auto topic = std::ranges::find(topics, context, &HelpText::context);
    if (topic == topics.end()) return false;
    windows_.Read(topic->text);
    return true;
  }
  if (topics.empty()) {
    ShowKeys();
    return true;
  }
  std::vector<terminal::ListForm::Entry> titles;
  titles.reserve(topics.size());
  for (const auto& topic : topics) titles.push_back({topic.title});
  int32_t chosen = 0;
  while ((chosen = windows_.ChooseFrom(titles, chosen, {1, 1})) >= 0 && !status_) {
    windows_.Read(topics[static_cast<std::size_t>(chosen)].text);
  }
  return true;
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
  cells_.EndEditing();
  windows_.EndWaits();
}

bool TerminalProgram::Navigate(const KeyPress& press) {
  if (press.Is(terminal::kKeyInsert)) {
    tables_.View().KeepSelection();
    return true;
  }
  return tables_.View().Navigate(press);
}

// Whoever goes on does not want to be taken away later.
bool TerminalProgram::Interrupt(const KeyPress& press) {
  const bool asks_for_more = IsNextMatch(press) || press.character == U'n' || press.character == U'N';
  return !asks_for_more && marks_.StopLooking() && press.Is(kKeyEscape);
}

void TerminalProgram::Press(const KeyPress& press) {
  line_.Clear();
  if (press.Is(kKeyEscape)) return tables_.StopLoading();
  if (press.Is(u'S', kCtrl)) return Save(false);
  if (press.Is(FKey(12))) return Save(true);
  if (press.Is(u'Z', kCtrl)) return cells_.Undo();
  if (press.Is(u'Y', kCtrl)) return cells_.Redo();
  if (press.Is(FKey(5))) return Reload();
  if (press.Is(FKey(1)) || press.character == U'?') return ShowKeys();
  if (press.Is(FKey(7)) || press.Is(terminal::kKeyPageDown, kCtrl)) return NextTable(1);
  if (press.Is(terminal::kKeyPageUp, kCtrl)) return NextTable(-1);
  if (press.Is(FKey(10)) || press.Is(u'R', kAlt)) return ShowMenu();
  if (IsNextMatch(press)) return marks_.GoToNext(press.shift == kShift);
  if (press.Is(FKey(8))) return cells_.Show();
  if (press.Is(terminal::kKeyInsert, kCtrl)) return cells_.CopySelection();
  if (press.Is(u'C', kAlt)) return cells_.Copy();
  if (ChangeColumns(press) || RunHotKey(press)) return;
  if (press.Is(u'G', kCtrl)) return cells_.GoTo();
  if (press.Is(u'Q', kCtrl) || press.Is(u'C', kCtrl)) return Quit();
  if (press.Is(FKey(2)) || press.Is(kKeyReturn)) return cells_.Edit();
  if (press.character < U' ' || press.character == 127) return;
  if ((press.character == U'n' || press.character == U'N') && marks_.Shown())
    return marks_.GoToNext(press.character == U'N');
  std::u16string text;  // typing is searching
  if (press.character != U'/') AppendUtf16(text, press.character);
  StartSearch(text);
}

void TerminalProgram::Paste(std::u16string_view text) { StartSearch(text); }

void TerminalProgram::UseMouse(const terminal::MouseAction& action) {
  marks_.StopLooking();
  tables_.View().UseMouse(action);
}

void TerminalProgram::ShowKeys() {
  windows_.MsgBox(TellKeys(program_), host::MsgBoxIcon::Exclamation, kProductTitle);
}

int32_t TerminalProgram::StatusRows(int32_t height) const { return height >= 16 ? 2 : 1; }

void TerminalProgram::Draw(terminal::Canvas& canvas, const terminal::Rect& picture,
                           const terminal::Rect& status, bool focused) {
  tables_.View().Draw(canvas, picture, marks_.Marks(), focused);
  line_.Draw(canvas, {status.left, status.top}, status.width);
  const KeyLine keys{program_.Forms().Search() != nullptr, focused, !tables_.Place().empty()};
  if (status.height > 1) keys.Draw(program_, canvas, {status.left, status.top + 1}, status.width);
}

}  // namespace rowlark
