// The terminal itself, as long as this object lives: the only place that knows the terminal library.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "host/terminal/Canvas.h"
#include "host/terminal/Input.h"

namespace rowlark::terminal {

// One at a time. The terminal is as it was before when the screen goes, also by an exception. Colours are
// those that the terminal has, and none where the environment asks for none (NO_COLOR).
class Screen {
 public:
  // Takes the terminal at standard input and output. Throws std::runtime_error where there is none, or one on
  // which the cursor can not be moved.
  Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  terminal::Size Size() const;
  // Sends what has changed since the last time.
  void Show(const Canvas& canvas);
  // What the user has done and nobody has read yet; does not wait.
  std::optional<Input> Read();
  int InputDescriptor() const;
  void Beep();
  // Puts a text in UTF-8 on the clipboard, where the terminal does that for programs.
  void Copy(std::string_view text);

  // The terminal has another size than before.
  void Resize();
  // Gives the terminal back for a while, and takes it again.
  void Leave();
  void Return();

 private:
  class Library;
  std::unique_ptr<Library> library_;
};

}  // namespace rowlark::terminal
