#include "host/terminal/Screen.h"

#include <curses.h>
#include <sys/ioctl.h>
#include <term.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <stdexcept>
#include <string>

#include "host/terminal/Keymap.h"

namespace rowlark::terminal {
namespace {

struct Look {
  short foreground = -1;
  short background = -1;
  attr_t attributes = A_NORMAL;
};
struct Looks {
  Look many, few, none;  // with 256 colours, with 8 or 16, without
};

// The colours of a terminal's background and text stay the user's (-1); where one of the two is set, the
// other is too or can be read on light and on dark.
Looks LooksOf(Style style) {
  switch (style) {
    case Style::Dim:
      return {{244}, {-1, -1, A_DIM}, {-1, -1, A_DIM}};
    case Style::Bold:
    case Style::Title:
      return {{-1, -1, A_BOLD}, {-1, -1, A_BOLD}, {-1, -1, A_BOLD}};
    case Style::Header:
      return {{-1, -1, A_BOLD | A_UNDERLINE}, {-1, -1, A_BOLD | A_UNDERLINE}, {-1, -1, A_BOLD | A_UNDERLINE}};
    case Style::Cursor:
    case Style::Focus:
      return {{-1, -1, A_REVERSE}, {-1, -1, A_REVERSE}, {-1, -1, A_REVERSE}};
    case Style::Selected:
      return {{231, 25}, {COLOR_WHITE, COLOR_BLUE}, {-1, -1, A_REVERSE}};
    case Style::Match:
      return {{16, 221}, {COLOR_BLACK, COLOR_YELLOW}, {-1, -1, A_BOLD | A_UNDERLINE}};
    case Style::CursorMatch:
      return {{16, 214, A_BOLD}, {COLOR_BLACK, COLOR_GREEN}, {-1, -1, A_REVERSE | A_BOLD | A_UNDERLINE}};
    case Style::Gap:
      return {{172, -1, A_BOLD}, {COLOR_RED, -1, A_BOLD}, {-1, -1, A_BOLD}};
    case Style::Status:
      return {{231, 24}, {COLOR_WHITE, COLOR_BLUE}, {-1, -1, A_REVERSE}};
    case Style::Accelerator:
    case Style::Field:
      return {{-1, -1, A_UNDERLINE}, {-1, -1, A_UNDERLINE}, {-1, -1, A_UNDERLINE}};
    case Style::Error:
      return {{203, -1, A_BOLD}, {COLOR_RED, -1, A_BOLD}, {-1, -1, A_BOLD}};
    case Style::Link:
      return {{33, -1, A_UNDERLINE}, {COLOR_CYAN, -1, A_UNDERLINE}, {-1, -1, A_UNDERLINE}};
    default:
      return {};
  }
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? "" : value;
}

// Widths of characters, and their bytes, are those of UTF-8 also where the user's locale is another one.
void UseUtf8() {
  const char* locale = std::setlocale(LC_CTYPE, "");  // NOLINT(concurrency-mt-unsafe)
  if (locale == nullptr || MB_CUR_MAX == 1)
    std::setlocale(LC_CTYPE, "C.UTF-8");  // NOLINT(concurrency-mt-unsafe)
}

// Modes that terminals know and the library does not switch: the mouse while a button is held, and letters
// with Ctrl and Shift as keys of their own.
constexpr const char* kModesOn = "\033[?1002h\033[>4;1m\033[m";
constexpr const char* kModesOff = "\033[>4m\033[m\033[?1002l";

}  // namespace

class Screen::Library {
 public:
  Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library();

  void Show(const Canvas& canvas);
  std::optional<Input> Read();
  std::optional<Input> ReadMouse();
  void Send(const char* bytes) const;
  bool HasModes() const { return modes_; }

  SCREEN* screen = nullptr;
  Canvas shown;  // an empty one: nothing is

 private:
  void UseColours();
  void LearnKeys();

  std::array<attr_t, static_cast<std::size_t>(Style::kCount)> attributes_{};
  bool modes_ = false;
  bool button_held_ = false;
  char32_t backspace_ = 127;
};

Screen::Library::Library() {
  UseUtf8();
  screen = newterm(nullptr, stdout, stdin);
  const char* move = screen == nullptr ? nullptr : tigetstr("cup");
  if (move == nullptr || move == reinterpret_cast<const char*>(-1)) {
    if (screen != nullptr) {
      endwin();
      delscreen(screen);
    }
    throw std::runtime_error("terminal type '" + Environment("TERM") + "' can not show a table");
  }
  raw();
  noecho();
  nonl();
  keypad(stdscr, TRUE);
  nodelay(stdscr, TRUE);
  intrflush(stdscr, FALSE);
  // What follows an Escape this long after it is a key of its own.
  if (Environment("ESCDELAY").empty()) set_escdelay(50);
  UseColours();
  LearnKeys();
  mouseinterval(0);
  mousemask(BUTTON1_PRESSED | BUTTON1_RELEASED | BUTTON4_PRESSED | BUTTON5_PRESSED | BUTTON_SHIFT |
                BUTTON_CTRL | BUTTON_ALT | REPORT_MOUSE_POSITION,
            nullptr);
  const char* ctrl_up = tigetstr("kUP5");
  modes_ = ctrl_up != nullptr && ctrl_up != reinterpret_cast<const char*>(-1);
  if (modes_) Send(kModesOn);
}

Screen::Library::~Library() {
  if (modes_) Send(kModesOff);
  endwin();
  delscreen(screen);
}

void Screen::Library::Send(const char* bytes) const {
  std::fputs(bytes, stdout);
  std::fflush(stdout);
}

void Screen::Library::UseColours() {
  bool colours = has_colors() && Environment("NO_COLOR").empty();
  if (colours) colours = start_color() == OK && use_default_colors() == OK;
  for (std::size_t i = 0; i < attributes_.size(); ++i) {
    const auto looks = LooksOf(static_cast<Style>(i));
    const auto& look = !colours ? looks.none : COLORS >= 256 ? looks.many : looks.few;
    attributes_[i] = look.attributes;
    if (look.foreground < 0 && look.background < 0) continue;
    const auto pair = static_cast<short>(i + 1);
    init_pair(pair, look.foreground, look.background);
    attributes_[i] |= static_cast<attr_t>(COLOR_PAIR(pair));
  }
}

void Screen::Library::LearnKeys() {
  for (const auto& [bytes, code] : KeySequences()) define_key(bytes.c_str(), code);
  const char* key = tigetstr("kbs");
  if (key != nullptr && key != reinterpret_cast<const char*>(-1) && key[0] == 8) backspace_ = 8;
}

void Screen::Library::Show(const Canvas& canvas) {
  const auto size = canvas.Size();
  const bool all = shown.Size() != size;
  for (int32_t y = 0; y < size.height; ++y) {
    for (int32_t x = 0; x < size.width; ++x) {
      const auto& cell = canvas.At({x, y});
      const bool wide = x + 1 < size.width && cell.glyph.width == 2;
      if (cell.glyph.count == 0) continue;  // drawn with what stands to the left
      if (!all && cell == shown.At({x, y}) && (!wide || canvas.At({x + 1, y}) == shown.At({x + 1, y})))
        continue;
      std::array<wchar_t, Glyph::kMost + 1> text{};
      for (std::size_t i = 0; i < cell.glyph.count; ++i) text[i] = static_cast<wchar_t>(cell.glyph.text[i]);
      const attr_t attributes = attributes_[static_cast<std::size_t>(cell.style)];
      cchar_t out;
      setcchar(&out, text.data(), attributes & ~static_cast<attr_t>(A_COLOR),
               static_cast<short>(PAIR_NUMBER(attributes)), nullptr);
      mvadd_wch(y, x, &out);
    }
  }
  shown = canvas;
  curs_set(canvas.Cursor ? 1 : 0);
  if (canvas.Cursor) move(canvas.Cursor->y, canvas.Cursor->x);
  refresh();
}

std::optional<Input> Screen::Library::Read() {
  for (;;) {
    wint_t character = 0;
    const int kind = get_wch(&character);
    if (kind == ERR) return std::nullopt;
    if (kind == KEY_CODE_YES) {
      if (character == KEY_MOUSE) {
        if (auto action = ReadMouse()) return action;
        continue;
      }
      if (const auto press = FromCode(static_cast<int32_t>(character))) return *press;
      continue;
    }
    if (character != 27) return FromCharacter(character, false, backspace_);
    // With Alt held a terminal sends Escape first.
    wint_t next = 0;
    const int next_kind = get_wch(&next);
    if (next_kind == OK && next >= L' ' && next != 127) return FromCharacter(next, true, backspace_);
    if (next_kind == OK) unget_wch(static_cast<wchar_t>(next));
    if (next_kind == KEY_CODE_YES) ungetch(static_cast<int>(next));
    return FromCharacter(27, false, backspace_);
  }
}

std::optional<Input> Screen::Library::ReadMouse() {
  MEVENT event;
  if (getmouse(&event) != OK) return std::nullopt;
  MouseAction action;
  action.at = {event.x, event.y};
  if ((event.bstate & BUTTON_SHIFT) != 0) action.shift |= controls::kShift;
  if ((event.bstate & BUTTON_CTRL) != 0) action.shift |= controls::kCtrl;
  if ((event.bstate & BUTTON_ALT) != 0) action.shift |= controls::kAlt;
  using Kind = MouseAction::Kind;
  if ((event.bstate & BUTTON4_PRESSED) != 0) {
    action.kind = Kind::WheelUp;
  } else if ((event.bstate & BUTTON5_PRESSED) != 0) {
    action.kind = Kind::WheelDown;
  } else if ((event.bstate & BUTTON1_RELEASED) != 0) {
    action.kind = Kind::Release;
    button_held_ = false;
  } else if ((event.bstate & BUTTON1_PRESSED) != 0) {
    action.kind = button_held_ ? Kind::Drag : Kind::Press;
    button_held_ = true;
  } else if ((event.bstate & REPORT_MOUSE_POSITION) != 0 && button_held_) {
    action.kind = Kind::Drag;
  } else {
    return std::nullopt;
  }
  return action;
}

Screen::Screen() : library_(std::make_unique<Library>()) {}
Screen::~Screen() = default;

Size Screen::Size() const { return {COLS, LINES}; }
void Screen::Show(const Canvas& canvas) { library_->Show(canvas); }
std::optional<Input> Screen::Read() { return library_->Read(); }
int Screen::InputDescriptor() const { return STDIN_FILENO; }
void Screen::Beep() { beep(); }

void Screen::Resize() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0) {
    resizeterm(size.ws_row, size.ws_col);
  }
  library_->shown = Canvas();
  clearok(stdscr, TRUE);
}

void Screen::Leave() {
  if (library_->HasModes()) library_->Send(kModesOff);
  endwin();
}

void Screen::Return() {
  if (library_->HasModes()) library_->Send(kModesOn);
  Resize();
  refresh();
}

}  // namespace rowlark::terminal
