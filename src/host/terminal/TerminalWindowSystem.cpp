#include "host/terminal/TerminalWindowSystem.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "controls/Keyboard.h"
#include "host/terminal/CellMetrics.h"
#include "host/terminal/FormPainter.h"
#include "host/terminal/TextLines.h"
#include "util/Utf.h"

namespace rowlark::terminal {
namespace {

using controls::Control;
using controls::Form;
using controls::Property;

constexpr int32_t kMostEntries = 12;  // of a list that show at a time
constexpr int32_t kWidest = 60;       // text of a message
constexpr int32_t kLeastPicture = 4;  // rows of the desktop that docked forms leave

}  // namespace

TerminalWindowSystem::TerminalWindowSystem(Screen& screen, TerminalMessagePump& pump,
                                           std::set<std::u16string> docked)
    : screen_(screen), pump_(pump), docked_(std::move(docked)) {
  docked_metrics_ = CellMetrics(screen_.Size().width - 2, 0);
  floating_metrics_ = CellMetrics(screen_.Size().width - 2, 1);
  pump_.OnInput = [this](const Input& input) { UseInput(input); };
  pump_.OnDraw = [this] { Draw(); };
}

bool TerminalWindowSystem::Realise(Form& form) noexcept {
  windows_.push_back({&form});
  form.Attach(*this);
  return true;
}

void TerminalWindowSystem::Changed(Control& control, Property property) noexcept {
  if (!arranging_) pump_.Invalidate();
  Form& form = control.Parent();
  if (property == Property::Timer) {
    auto& timer = static_cast<controls::Timer&>(control);
    if (timer.Enabled()) {
      pump_.Start(timer);
    } else {
      pump_.Stop(timer);
    }
  }
  if (&control != &form || property != Property::Visible) return;
  if (auto* window = form.Visible() ? Find(form) : Active()) Activate(*window);
}

void TerminalWindowSystem::Released(Form& form) noexcept {
  for (const auto* control : form.Controls()) pump_.Stop(*control);
  std::erase_if(windows_, [&form](const Window& window) { return window.form == &form; });
  pump_.Invalidate();
}

TerminalWindowSystem::Window* TerminalWindowSystem::Find(const Form& form) {
  const auto found = std::ranges::find(windows_, &form, &Window::form);
  return found == windows_.end() ? nullptr : &*found;
}

TerminalWindowSystem::Window* TerminalWindowSystem::Active() {
  const auto top =
      std::find_if(windows_.rbegin(), windows_.rend(), [](const Window& w) { return w.form->Visible(); });
  return top == windows_.rend() ? nullptr : &*top;
}

// Brings it to the front and gives it the keyboard.
void TerminalWindowSystem::Activate(Window& window) {
  const Ref<Form> form(window.form);
  const auto at = windows_.begin() + (&window - windows_.data());
  std::rotate(at, at + 1, windows_.end());
  desktop_focus_ = false;
  form->UserActivated();
  // A form that leaves it open begins at its beginning.
  if (form->Loaded() && form->ActiveControl() == nullptr) PressKey(*form, controls::kKeyTab);
}

void TerminalWindowSystem::Run(Form& form) {
  const Ref<Form> keep(&form);
  form.Show(true);
  while (form.Loaded() && !ending_) {
    pump_.ProcessMessages();
    if (form.Loaded()) pump_.WaitForInput(std::numeric_limits<uint32_t>::max());
  }
  form.Unload();
}

void TerminalWindowSystem::EndWaits() {
  ending_ = true;
  for (bool found = true; std::exchange(found, false);) {
    for (const auto& window : windows_) {
      if (!window.form->Modal() || !window.form->Loaded()) continue;
      window.form->Unload();
      found = true;
      break;
    }
  }
}

std::size_t TerminalWindowSystem::Choose(std::u16string_view text, std::u16string_view title,
                                         const std::vector<std::u16string>& buttons,
                                         const std::function<void()>& help) {
  const auto form = MakeRef<MessageForm>(title, text, buttons, help,
                                         std::min(kWidest, screen_.Size().width - 6), *this, pump_.Trace());
  windows_.push_back({form.get()});
  Run(*form);
  return form->Answer();
}

std::optional<std::u16string> TerminalWindowSystem::Prompt(std::u16string_view title,
                                                           std::u16string_view text) {
  const auto form = MakeRef<PromptForm>(title, text, OkCaption(), CancelCaption(),
                                        std::min(kWidest, screen_.Size().width - 6), *this, pump_.Trace());
  windows_.push_back({form.get()});
  Run(*form);
  return form->Answer();
}

void TerminalWindowSystem::MsgBox(std::u16string_view text, host::MsgBoxIcon icon,
                                  std::u16string_view title) noexcept {
  MsgBoxWithHelp(text, icon, title, {});
}

void TerminalWindowSystem::MsgBoxWithHelp(std::u16string_view text, host::MsgBoxIcon,
                                          std::u16string_view title,
                                          const std::function<void()>& help) noexcept {
  Attempt(pump_.Trace(), [&] { Choose(text, title, {OkCaption()}, help); });
}

bool TerminalWindowSystem::Ask(std::u16string_view text, std::u16string_view title) noexcept {
  return AttemptOr(pump_.Trace(), false, [&] {
    return Choose(text, title, {OkCaption(), CancelCaption()}) == 0;
  });
}

int32_t TerminalWindowSystem::ChooseFrom(const std::vector<ListForm::Entry>& entries, int32_t selected,
                                         Point beside) {
  return RunList(entries, selected, std::min(screen_.Size().height - 4, kMostEntries), beside);
}

void TerminalWindowSystem::Read(std::u16string_view text) {
  std::vector<ListForm::Entry> lines;
  for (const auto [begin, end] : BreakLines(text, screen_.Size().width - 6)) {
    const auto line = text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
    lines.push_back({std::u16string(line)});
  }
  RunList(lines, 0, screen_.Size().height - 4, {1, 1});
}

int32_t TerminalWindowSystem::RunList(const std::vector<ListForm::Entry>& entries, int32_t selected,
                                      int32_t rows, Point beside) {
  const auto form = MakeRef<ListForm>(entries, selected, std::max(rows, 1), *this, pump_.Trace());
  windows_.push_back({form.get()});
  windows_.back().beside = beside;
  Run(*form);
  return form->Chosen();
}

// In the background, and not in this terminal.
void TerminalWindowSystem::OpenLink(Form&, std::u16string_view link) noexcept {
  const std::string address = ToUtf8(link);
  const pid_t child = fork();
  if (child == 0) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execl("/bin/sh", "sh", "-c", "xdg-open \"$1\" </dev/null >/dev/null 2>&1 &", "sh", address.c_str(),
          nullptr);
    _exit(1);
  }
  if (child > 0) waitpid(child, nullptr, 0);
}

void TerminalWindowSystem::Place(Window& window, const Rect& room) {
  const Form& form = *window.form;
  const bool docked = IsDocked(form);
  const bool list = window.beside != Point{};
  arranging_ = true;
  window.form->Arrange();
  arranging_ = false;
  const Size size = form.ClientSize();
  const int32_t title = docked ? 1 : 2;  // and the lower border of a floating one
  const int32_t height = std::min(size.height + title, room.height);
  const int32_t width = docked ? room.width : std::min(size.width + 2, room.width);
  Point at{room.left + (room.width - width) / 2, room.top + (room.height - height) / 2};
  if (docked) at.y = room.top + room.height - height;
  if (list) {
    at.x = std::clamp(window.beside.x, room.left, room.left + room.width - width);
    at.y = window.beside.y + 1;
    if (at.y + height > room.top + room.height) at.y = std::max(room.top, window.beside.y - height);
  }
  window.frame = {at.x, at.y, width, height};
  window.inner = {at.x + 1, at.y + 1, width - 2, height - title};
  // What has the keyboard shows.
  const Control* focus = form.ActiveControl();
  window.scroll = std::clamp(window.scroll, 0, std::max(0, size.height - window.inner.height));
  if (focus == nullptr || !focus->Shown()) return;
  const Rect& area = focus->Bounds;
  window.scroll = std::max(window.scroll, area.top + area.height - window.inner.height);
  window.scroll = std::min(window.scroll, area.top);
}

void TerminalWindowSystem::DrawWindow(Canvas& canvas, Window& window, bool active) {
  const Form& form = *window.form;
  const auto& frame = window.frame;
  canvas.Fill(frame, U' ', Style::Normal);
  if (IsDocked(form)) {
    canvas.Fill({frame.left, frame.top, frame.width, 1}, U'─', Style::Dim);
  } else {
    canvas.Box(frame, active ? Style::Normal : Style::Dim);
  }
  if (!form.Caption().empty()) {
    canvas.Write({frame.left + 1, frame.top}, u" " + form.Caption() + u" ",
                 active ? Style::Title : Style::Dim, std::max(0, frame.width - 6));
  }
  if (window.beside == Point{})
    canvas.Write({frame.left + frame.width - 4, frame.top}, u" × ", Style::Normal);
  const Size size = form.ClientSize();
  Canvas inner({size.width, std::max(size.height, window.inner.height)});
  Paint(inner, form, active);
  if (active) canvas.Cursor.reset();
  canvas.Copy(inner, window.inner, window.scroll);
  // There is more above or below.
  const int32_t right = frame.left + frame.width - 1;
  if (window.scroll > 0) canvas.Write({right, window.inner.top}, u"▲", Style::Dim);
  if (window.scroll + window.inner.height < size.height) {
    canvas.Write({right, window.inner.top + window.inner.height - 1}, u"▼", Style::Dim);
  }
}

void TerminalWindowSystem::Draw() {
  Canvas canvas(screen_.Size());
  const Size size = canvas.Size();
  docked_metrics_ = CellMetrics(size.width - 2, 0);
  floating_metrics_ = CellMetrics(size.width - 2, 1);
  const int32_t status = desktop_->StatusRows(size.height);
  const Window* active = Active();
  // While something is to be selected, the form that waits for it does not lie above the picture.
  const bool selecting = active != nullptr && active->form->Topmost();
  Window* docked = nullptr;
  for (auto& window : windows_) {
    if (window.form->Visible() && IsDocked(*window.form)) docked = &window;
  }
  Rect picture{0, 0, size.width, size.height - status};
  if (docked != nullptr) {
    const int32_t least = std::min(kLeastPicture, picture.height / 2);
    Place(*docked, {0, least, size.width, picture.height - least});
    picture.height = docked->frame.top;
  }
  const bool focused = active == nullptr || desktop_focus_ || selecting;
  desktop_->Draw(canvas, picture, {0, size.height - status, size.width, status}, focused);
  if (docked != nullptr) DrawWindow(canvas, *docked, docked == active && (!desktop_focus_ || selecting));
  for (auto& window : windows_) {
    if (!window.form->Visible() || IsDocked(*window.form) || selecting) continue;
    Place(window, {0, 0, size.width, size.height});
    DrawWindow(canvas, window, &window == active && !desktop_focus_);
  }
  screen_.Show(canvas);
}

}  // namespace rowlark::terminal
