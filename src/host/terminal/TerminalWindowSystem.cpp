#include "host/terminal/TerminalWindowSystem.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "controls/ComboBox.h"
#include "controls/Keyboard.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"
#include "host/terminal/FormPainter.h"
#include "host/terminal/TextLines.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::terminal {
namespace {

using controls::Control;
using controls::ControlKind;
using controls::Form;
using controls::Property;

constexpr int32_t kLeastPicture = 4;  // rows of the desktop that docked forms leave

// Keys that mean nothing to a form's controls: what a form leaves of them is the desktop's.
bool IsForeign(const KeyPress& press) {
  const bool letter = press.key >= u'A' && press.key <= u'Z';
  const bool ctrl = (press.shift & controls::kCtrl) != 0;
  return (press.key >= kKeyF1 && press.key <= kKeyF12) || press.key == kKeyPageUp ||
         press.key == kKeyPageDown || press.key == kKeyInsert || (ctrl && letter);
}

}  // namespace

TerminalWindowSystem::TerminalWindowSystem(Screen& screen, TerminalMessagePump& pump,
                                           std::set<std::u16string> docked)
    : screen_(screen), pump_(pump), docked_(std::move(docked)) {
  pump_.OnInput = [this](const Input& input) { UseInput(input); };
  pump_.OnDraw = [this] { Draw(); };
}

bool TerminalWindowSystem::Realise(Form& form) noexcept {
  windows_.push_back({&form});
  form.Attach(*this);
  return true;
}

void TerminalWindowSystem::Changed(Control& control, Property property) noexcept {
  pump_.Invalidate();
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

Size TerminalWindowSystem::WindowSize(Size client) const noexcept {
  constexpr int32_t kTwips = 30;  // of a dialog unit
  return {client.width * kTwips, client.height * kTwips};
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
                                         const std::vector<std::u16string>& buttons) {
  constexpr int32_t kWidest = 60;
  const auto form =
      MakeRef<MessageForm>(title, text, buttons, std::min(kWidest, screen_.Size().width - 6), *this);
  windows_.push_back({form.get()});
  Run(*form);
  return form->Answer();
}

void TerminalWindowSystem::MsgBox(std::u16string_view text, host::MsgBoxIcon,
                                  std::u16string_view title) noexcept {
  try {
    Choose(text, title, {OkCaption()});
  } catch (...) {  // NOLINT(bugprone-empty-catch): there is nobody to tell
  }
}

bool TerminalWindowSystem::Ask(std::u16string_view text, std::u16string_view title) noexcept {
  try {
    return Choose(text, title, {OkCaption(), CancelCaption()}) == 0;
  } catch (...) {
    return false;
  }
}

int32_t TerminalWindowSystem::ChooseFrom(const std::vector<ListForm::Entry>& entries, int32_t selected,
                                         Point beside) {
  const auto form = MakeRef<ListForm>(entries, selected, *this);
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
  window.arrangement = Arrange(form, room.width - 2, docked ? 0 : 1);
  const Size size = window.arrangement.size;
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
  const Rect* focus = window.arrangement.Of(form.ActiveControl());
  window.scroll = std::clamp(window.scroll, 0, std::max(0, size.height - window.inner.height));
  if (focus == nullptr) return;
  window.scroll = std::max(window.scroll, focus->top + focus->height - window.inner.height);
  window.scroll = std::min(window.scroll, focus->top);
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
  Canvas inner(
      {window.arrangement.size.width, std::max(window.arrangement.size.height, window.inner.height)});
  Paint(inner, form, window.arrangement, active);
  if (active) canvas.Cursor.reset();
  canvas.Copy(inner, window.inner, window.scroll);
  // There is more above or below.
  const int32_t right = frame.left + frame.width - 1;
  if (window.scroll > 0) canvas.Write({right, window.inner.top}, u"▲", Style::Dim);
  if (window.scroll + window.inner.height < window.arrangement.size.height) {
    canvas.Write({right, window.inner.top + window.inner.height - 1}, u"▼", Style::Dim);
  }
}

void TerminalWindowSystem::Draw() {
  Canvas canvas(screen_.Size());
  const Size size = canvas.Size();
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

void TerminalWindowSystem::UseInput(const Input& input) {
  if (const auto* press = std::get_if<KeyPress>(&input)) UseKey(*press);
  if (const auto* action = std::get_if<MouseAction>(&input)) UseMouse(*action);
}

void TerminalWindowSystem::UseDesktop(const KeyPress& press) {
  if (!desktop_->Navigate(press)) desktop_->Press(press);
}

void TerminalWindowSystem::UseKey(const KeyPress& press) {
  auto* window = Active();
  if (window == nullptr) return UseDesktop(press);
  const Ref<Form> form(window->form);
  if (!form->Modal()) {
    if (press.Is(kKeyF1 + 5)) {
      desktop_focus_ = !desktop_focus_;
      return;
    }
    if (form->Topmost() && !desktop_focus_ && desktop_->Navigate(press)) return;
    if (desktop_focus_ && !form->Topmost()) {
      if (!press.Is(controls::kKeyEscape)) return UseDesktop(press);
      desktop_focus_ = false;
      return;
    }
  }
  const bool opens = press.Is(kKeyF1 + 3) || press.Is(controls::kKeyDown, controls::kAlt);
  if ((opens && OpenList(*form)) || PressToolBar(*form, press) || MoveFocus(*form, press)) return;
  if (IsForeign(press)) {
    const bool left = form->UserKeyDown(press.key, press.shift) != 0;
    form->UserKeyUp(press.key, press.shift);
    if (left && !form->Modal()) UseDesktop(press);
    return;
  }
  std::u16string units;
  if (press.character != 0) AppendUtf16(units, press.character);
  PressKey(*form, press.key, press.shift, units.empty() ? u'\0' : units.front());
  if (units.size() > 1) PressKey(*form, kKeyPacket, press.shift, units.back());
}

// Arrows go from button to button and from box to box, as Tab does.
bool TerminalWindowSystem::MoveFocus(Form& form, const KeyPress& press) {
  const Control* control = form.ActiveControl();
  if (control == nullptr || press.shift != controls::kNoShift) return false;
  const bool moves = control->Kind == ControlKind::Button || control->Kind == ControlKind::CheckBox ||
                     control->Kind == ControlKind::OptionButton;
  const bool back = press.key == controls::kKeyLeft || press.key == controls::kKeyUp;
  if (!moves || (!back && press.key != controls::kKeyRight && press.key != controls::kKeyDown)) return false;
  PressKey(form, controls::kKeyTab, back ? controls::kShift : controls::kNoShift);
  return true;
}

// Of the combo box that has the keyboard.
bool TerminalWindowSystem::OpenList(Form& form) {
  Control* control = form.ActiveControl();
  if (control == nullptr || control->Kind != ControlKind::ComboBox || !control->Enabled()) return false;
  auto& box = static_cast<controls::ComboBox&>(*control);
  const auto* window = Find(form);
  const Rect* area = window->arrangement.Of(control);
  if (box.ListCount() == 0 || area == nullptr) return false;
  std::vector<ListForm::Entry> entries;
  entries.reserve(static_cast<std::size_t>(box.ListCount()));
  for (int32_t i = 0; i < box.ListCount(); ++i) entries.push_back({box.List(i)});
  const Rect& inner = window->inner;
  const int32_t chosen =
      ChooseFrom(entries, box.ListIndex(), {inner.left + area->left, inner.top + area->top - window->scroll});
  if (form.Loaded()) box.UserPicked(chosen);
  return true;
}

// Its buttons can not have the keyboard; Alt with their first letter presses them.
bool TerminalWindowSystem::PressToolBar(Form& form, const KeyPress& press) {
  if (press.shift != controls::kAlt) return false;
  for (auto* control : form.Controls()) {
    if (control->Kind != ControlKind::ToolBar || !control->Shown()) continue;
    auto& bar = static_cast<controls::ToolBar&>(*control);
    for (const auto& button : bar.Buttons()) {
      std::u16string_view caption = button.caption;
      if (caption.empty() || ToUpper(TakeUtf16(caption)) != static_cast<char32_t>(press.key)) continue;
      bar.UserPressed(std::u16string(button.key));
      return true;
    }
  }
  return false;
}

void TerminalWindowSystem::UseMouse(const MouseAction& action) {
  using Kind = MouseAction::Kind;
  auto* active = Active();
  const bool modal = active != nullptr && active->form->Modal();
  const bool selecting = active != nullptr && active->form->Topmost();
  Window* hit = nullptr;
  for (auto& window : windows_) {
    const bool drawn = window.form->Visible() && (!selecting || &window == active);
    if (drawn && (!modal || &window == active) && Contains(window.frame, action.at)) hit = &window;
  }
  const bool press = action.kind == Kind::Press;
  if (press) mouse_in_desktop_ = hit == nullptr && !modal;
  if (hit == nullptr || (mouse_in_desktop_ && (action.kind == Kind::Drag || action.kind == Kind::Release))) {
    if (modal) {
      if (press && active->beside != Point{}) active->form->UserClosed();
      return;
    }
    if (press && active != nullptr && !selecting) desktop_focus_ = true;
    return desktop_->UseMouse(action);
  }
  if (!press) {
    if (action.kind == Kind::WheelUp || action.kind == Kind::WheelDown) {
      const Ref<Form> form(hit->form);
      PressKey(*form, action.kind == Kind::WheelUp ? controls::kKeyUp : controls::kKeyDown);
    }
    return;
  }
  const Ref<Form> form(hit->form);
  if (hit != active || desktop_focus_) Activate(*hit);
  if (auto* window = Find(*form)) UseMouse(*window, action);
}

void TerminalWindowSystem::UseMouse(Window& window, const MouseAction& action) {
  const Ref<Form> form(window.form);
  const auto& frame = window.frame;
  if (action.at.y == frame.top && window.beside == Point{} && action.at.x >= frame.left + frame.width - 4) {
    return form->UserClosed();
  }
  const Point at{action.at.x - window.inner.left, action.at.y - window.inner.top + window.scroll};
  const auto& places = window.arrangement.places;
  const auto place = std::find_if(places.rbegin(), places.rend(), [at](const Arrangement::Place& p) {
    return p.control->Kind != ControlKind::Frame && Contains(p.area, at);
  });
  if (place == places.rend()) return form->UserClicked();
  auto [control, area] = *place;
  if (control->Focusable()) control->UserFocused();
  control->UserPressedMouse();
  if (!form->Loaded()) return;
  const auto entry = control->Kind == ControlKind::TreeView || control->Kind == ControlKind::ListView ||
                             control->Kind == ControlKind::ToolBar
                         ? EntryAt(*control, area, at)
                         : std::nullopt;
  switch (control->Kind) {
    case ControlKind::ListView:
      if (!entry) return;
      static_cast<controls::ListView*>(control)->UserPicked(*entry);
      if (auto* list = dynamic_cast<ListForm*>(form.get())) list->Choose(*entry);
      return;
    case ControlKind::TreeView:
      if (entry) static_cast<controls::TreeView*>(control)->UserPicked(*entry);
      return;
    case ControlKind::ToolBar:
      if (entry) {
        auto* bar = static_cast<controls::ToolBar*>(control);
        bar->UserPressed(std::u16string(bar->Buttons()[static_cast<std::size_t>(*entry)].key));
      }
      return;
    case ControlKind::ComboBox:
      if (at.x >= area.left + area.width - 2 || static_cast<controls::ComboBox*>(control)->DropDownList) {
        OpenList(*form);
        return;
      }
      [[fallthrough]];
    case ControlKind::TextBox: {
      auto* input = static_cast<controls::TextInput*>(control);
      const int32_t caret =
          TextPane(*input, {area.width, area.height}).OffsetAt({at.x - area.left, at.y - area.top});
      if (input->Enabled()) input->UserSelected(caret, caret);
      break;
    }
    default:
      break;
  }
  control->UserClicked();
}

}  // namespace rowlark::terminal
