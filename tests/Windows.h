// A window system without a screen: it remembers what it was asked, answers as the test says, and fires
// timers when their time has come.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "ScriptedMessagePump.h"
#include "controls/Form.h"
#include "controls/Timer.h"
#include "host/WindowSystem.h"
#include "util/Utf.h"

namespace rowlark::testing {

class ScriptedWindows final : public host::WindowSystem, public controls::View {
 public:
  explicit ScriptedWindows(ScriptedMessagePump& pump) : pump_(pump) {}

  std::vector<std::string> Messages;  // "title: text (icon)"; of a question, "(?)"
  std::vector<std::string> Links;
  int Beeps = 0;
  bool Answer = true;                  // to questions
  std::function<void()> WhileMessage;  // what happens before the user answers
  std::vector<controls::TwipRect> Areas{{0, 0, 28800, 15600}, {28800, 0, 15360, 11520}};  // of the screens
  std::function<void(std::string)> Log;  // hears of what windows do: "frmSearch shown"
  std::vector<controls::Form*> Forms;    // those with windows

  bool Present = true;  // there is a screen
  bool Realise(controls::Form& form) noexcept override {
    if (!Present) return false;
    form.Attach(*this);
    Forms.push_back(&form);
    return true;
  }
  void MsgBox(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title) noexcept override {
    Say(title, text, std::to_string(static_cast<int32_t>(icon)));
  }
  // The user asks for the help once.
  void MsgBoxWithHelp(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title,
                      const std::function<void()>& help) noexcept override {
    MsgBox(text, icon, title);
    help();
  }
  bool Ask(std::u16string_view text, std::u16string_view title) noexcept override {
    Say(title, text, "?");
    return Answer;
  }
  void OpenLink(controls::Form&, std::u16string_view link) noexcept override {
    Links.push_back(ToUtf8(link));
  }
  void Beep() noexcept override { ++Beeps; }
  std::vector<controls::TwipRect> Screens() const noexcept override { return Areas; }
  intptr_t WindowOfClass(std::u16string_view class_name) const noexcept override {
    return class_name == u"XLMAIN" ? 97 : 0;
  }

  void Changed(controls::Control& control, controls::Property property) noexcept override {
    using controls::Property;
    auto& form = control.Parent();
    const auto name = ToUtf8(form.Name);
    if (property == Property::Timer) {
      timers_.erase(&control);
      auto& timer = static_cast<controls::Timer&>(control);
      if (timer.Enabled()) timers_[&timer] = pump_.Now + static_cast<uint32_t>(timer.Interval());
    }
    if (&control != &form) return;
    if (property == Property::Visible) Note(name + (form.Visible() ? " shown" : " hidden"));
    if (property == Property::Owner) Note(name + " owner " + std::to_string(form.Owner()));
    if (property == Property::Topmost) Note(name + " topmost");
    if (property == Property::Position) {
      Note(name + " at " + std::to_string(form.Position().x) + ';' + std::to_string(form.Position().y));
    }
    if (property == Property::Visible && form.Visible()) form.UserActivated();
  }
  void Released(controls::Form& form) noexcept override {
    Note(ToUtf8(form.Name) + " gone");
    std::erase(Forms, &form);
    std::erase_if(timers_, [&form](const auto& timer) { return &timer.first->Parent() == &form; });
  }
  int32_t TextWidth(std::u16string_view text) const noexcept override {
    return 4 * static_cast<int32_t>(text.size());
  }
  controls::TwipSize WindowSize(controls::Size client) const noexcept override {
    return {client.width * 23, client.height * 24 + 450};
  }

  // Fires the timers that are due.
  void FireTimers() {
    for (;;) {
      const auto due =
          std::ranges::find_if(timers_, [this](const auto& timer) { return timer.second <= pump_.Now; });
      if (due == timers_.end()) return;
      auto* timer = static_cast<controls::Timer*>(due->first);
      due->second += static_cast<uint32_t>(timer->Interval());
      timer->Expired();
    }
  }
  // Lets time pass, with the message loop of the host running.
  void Elapse(uint32_t milliseconds) {
    for (uint32_t i = 0; i < milliseconds; ++i) {
      ++pump_.Now;
      FireTimers();
    }
  }

 private:
  void Note(const std::string& what) {
    if (Log) Log(what);
  }
  void Say(std::u16string_view title, std::u16string_view text, const std::string& icon) {
    Messages.push_back(ToUtf8(title) + ": " + ToUtf8(text) + " (" + icon + ')');
    if (WhileMessage) WhileMessage();
  }

  ScriptedMessagePump& pump_;
  std::map<controls::Control*, uint32_t> timers_;  // when they fire
};

}  // namespace rowlark::testing
