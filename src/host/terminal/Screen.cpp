#include "host/terminal/Screen.h"

#include <curses.h>
#include <sys/ioctl.h>
#include <term.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <clocale>
#include <cstdint>
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

// Modes that the library does not switch as they are wanted here: the mouse, reported by its own sequences
// and while a button is held, and letters with Ctrl and Shift as keys of their own.
struct Mode {
  const char* capability;  // of terminals that may be asked for it
  const char* on;
  const char* off;
};
constexpr Mode kModes[] = {{"kmous", "\033[?1000;1002;1006h", "\033[?1000;1002;1006l"},
                           {"kUP5", "\033[>4;1m\033[m", "\033[>4m\033[m"}};
constexpr const char* kMouseSequence = "\033[<";

// What the terminal's description says; null when it says nothing.
const char* Capability(const char* name) {
  const char* text = tigetstr(name);
  // For a name that it does not know the library returns -1.
  return std::bit_cast<std::intptr_t>(text) == -1 ? nullptr : text;
}

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
  void SwitchModes(bool on) const;

  SCREEN* screen = nullptr;
  Canvas shown;  // an empty one: nothing is

 private:
  void UseColours();
  void LearnKeys();

  std::array<attr_t, static_cast<std::size_t>(Style::kCount)> attributes_{};
  char32_t backspace_ = 127;
};

Screen::Library::Library() {
  UseUtf8();
  screen = newterm(nullptr, stdout, stdin);
  if (screen == nullptr || Capability("cup") == nullptr) {
    if (screen != nullptr) {
      endwin();
      delscreen(screen);
    }
    throw std::runtime_error("terminal type '" + Environment("TERM") +
                             "' can not show a table; 'rowlark search FILE TEXT' needs none");
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
  SwitchModes(true);
}

Screen::Library::~Library() {
  SwitchModes(false);
  endwin();
  delscreen(screen);
}

void Screen::Library::SwitchModes(bool on) const {
  for (const auto& mode : kModes) {
    if (Capability(mode.capability) != nullptr) std::fputs(on ? mode.on : mode.off, stdout);
  }
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
  define_key(kMouseSequence, kMouseCode);
  const char* key = Capability("kbs");
  if (key != nullptr && key[0] == 8) backspace_ = 8;
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
      if (character == kMouseCode) {
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

// The rest of "ESC [ < buttons ; column ; row M", which ends in "m" when a button was released.
std::optional<Input> Screen::Library::ReadMouse() {
  constexpr int kLate = 50;  // milliseconds that a part of it may take
  std::array<int32_t, 3> numbers{};
  std::size_t at = 0;
  wint_t character = 0;
  timeout(kLate);
  int kind = OK;
  while ((kind = get_wch(&character)) == OK && character != L'M' && character != L'm') {
    if (character == L';') at = std::min(at + 1, numbers.size() - 1);
    if (character >= L'0' && character <= L'9' && numbers[at] < 10'000) {
      numbers[at] = numbers[at] * 10 + static_cast<int32_t>(character - L'0');
    }
  }
  timeout(0);
  if (kind != OK) return std::nullopt;
  const int32_t state = numbers[0];
  constexpr int32_t kMoved = 32;
  constexpr int32_t kWheel = 64;
  MouseAction action;
  action.at = {numbers[1] - 1, numbers[2] - 1};
  if ((state & 4) != 0) action.shift |= controls::kShift;
  if ((state & 8) != 0) action.shift |= controls::kAlt;
  if ((state & 16) != 0) action.shift |= controls::kCtrl;
  using Kind = MouseAction::Kind;
  const int32_t button = state & 3;
  if ((state & kWheel) != 0) {
    if (button > 1) return std::nullopt;
    action.kind = button == 0 ? Kind::WheelUp : Kind::WheelDown;
  } else if (button != 0) {
    return std::nullopt;  // only the left one means anything
  } else {
    action.kind = character == L'm' ? Kind::Release : (state & kMoved) != 0 ? Kind::Drag : Kind::Press;
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
  library_->SwitchModes(false);
  endwin();
}

void Screen::Return() {
  library_->SwitchModes(true);
  Resize();
  refresh();
}

}  // namespace rowlark::terminal
