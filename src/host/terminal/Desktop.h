// What lies behind the forms: the program's own picture, with a few rows at the bottom for its status.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/terminal/Canvas.h"
#include "host/terminal/Input.h"

namespace rowlark::terminal {

class Desktop {
 public:
  virtual ~Desktop() = default;

  // How many rows of a screen of that height are the status's.
  virtual int32_t StatusRows(int32_t height) const = 0;
  // `focused`: the keyboard is not a form's.
  virtual void Draw(Canvas& canvas, const Rect& picture, const Rect& status, bool focused) = 0;

  // Hears of every key before a form does. True when it has stopped what was under way and means nothing
  // more.
  virtual bool Interrupt(const KeyPress& press) = 0;
  // Moves about in the picture, also while a form waits for something to be selected there. False for any
  // other key.
  virtual bool Navigate(const KeyPress& press) = 0;
  // Keys that no form wanted.
  virtual void Press(const KeyPress& press) = 0;
  // A text that no form takes.
  virtual void Paste(std::u16string_view text) = 0;
  virtual void UseMouse(const MouseAction& action) = 0;
};

}  // namespace rowlark::terminal
