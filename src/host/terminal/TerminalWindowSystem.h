// Windows in a terminal: forms that lie at the bottom of the screen, beneath the program's picture, and forms
// that float above it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "controls/Form.h"
#include "host/WindowSystem.h"
#include "host/terminal/Desktop.h"
#include "host/terminal/Dialogs.h"
#include "host/terminal/TerminalMessagePump.h"

namespace rowlark::terminal {

class TerminalWindowSystem final : public host::WindowSystem, public controls::View {
 public:
  // Takes the pump's input and drawing. `docked` are the names of the forms that lie at the bottom.
  TerminalWindowSystem(Screen& screen, TerminalMessagePump& pump, std::set<std::u16string> docked);

  // Before anything is shown; it outlives this object.
  void SetDesktop(Desktop& desktop) { desktop_ = &desktop; }
  // Captions of the buttons of message boxes, in the user's language.
  std::function<std::u16string()> OkCaption = [] { return std::u16string(u"OK"); };
  std::function<std::u16string()> CancelCaption = [] { return std::u16string(u"Cancel"); };

  bool Realise(controls::Form& form) noexcept override;
  void MsgBox(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title) noexcept override;
  void MsgBoxWithHelp(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title,
                      const std::function<void()>& help) noexcept override;
  bool Ask(std::u16string_view text, std::u16string_view title) noexcept override;
  void OpenLink(controls::Form& parent, std::u16string_view link) noexcept override;
  void Beep() noexcept override { screen_.Beep(); }
  // Forms have places of their own here, which have nothing to do with those on a screen of windows.
  std::vector<controls::TwipRect> Screens() const noexcept override { return {}; }
  intptr_t WindowOfClass(std::u16string_view) const noexcept override { return 0; }

  // Asks with buttons of one's own; the index of the one pressed, the last for Escape. F1 calls `help`.
  std::size_t Choose(std::u16string_view text, std::u16string_view title,
                     const std::vector<std::u16string>& buttons, const std::function<void()>& help = {});
  // Asks for a line, which begins as `text`; nothing for Escape.
  std::optional<std::u16string> Prompt(std::u16string_view title, std::u16string_view text);
  // Offers entries beside a place on the screen; the index of the one chosen, -1 for none.
  int32_t ChooseFrom(const std::vector<ListForm::Entry>& entries, int32_t selected, Point beside);
  // Shows a text of any length, to be scrolled through.
  void Read(std::u16string_view text);
  // Every wait for an answer ends, also later ones.
  void EndWaits();

  // Draws everything.
  void Draw();

 private:
  struct Window {
    controls::Form* form;
    Rect frame{};  // on the screen
    Rect inner{};
    int32_t scroll = 0;  // rows of the inner area above the screen
    Point beside{};      // of a list
  };

  void Changed(controls::Control& control, controls::Property property) noexcept override;
  void Released(controls::Form& form) noexcept override;
  const controls::Metrics& MetricsOf(const controls::Form& form) const noexcept override {
    return IsDocked(form) ? docked_metrics_ : floating_metrics_;
  }
  int32_t TextWidth(std::u16string_view text) const noexcept override { return WidthOf(text); }
  controls::TwipSize WindowSize(Size /*client*/) const noexcept override { return {}; }

  bool IsDocked(const controls::Form& form) const { return docked_.contains(form.Name); }
  Window* Find(const controls::Form& form);
  // The window with the keyboard, unless the desktop has it; null without one.
  Window* Active();
  void Activate(Window& window);
  void Run(controls::Form& form);
  int32_t RunList(const std::vector<ListForm::Entry>& entries, int32_t selected, int32_t rows, Point beside);

  void Place(Window& window, const Rect& room);
  void DrawWindow(Canvas& canvas, Window& window, bool active);

  void UseInput(const Input& input);
  void UseKey(const KeyPress& press);
  void Paste(std::u16string_view text);
  void UseMouse(const MouseAction& action);
  void UseMouse(Window& window, const MouseAction& action);
  void UseDesktop(const KeyPress& press);
  bool OpenList(controls::Form& form);
  static bool MoveFocus(controls::Form& form, const KeyPress& press);
  static bool PressToolBar(controls::Form& form, const KeyPress& press);

  Screen& screen_;
  TerminalMessagePump& pump_;
  std::set<std::u16string> docked_;
  Desktop* desktop_ = nullptr;
  std::vector<Window> windows_;    // the one on top last
  bool desktop_focus_ = false;     // the keyboard is the desktop's though there are forms
  bool mouse_in_desktop_ = false;  // its button went down there
  bool ending_ = false;
  bool arranging_ = false;  // for what is being drawn
  controls::Metrics docked_metrics_;
  controls::Metrics floating_metrics_;
};

}  // namespace rowlark::terminal
