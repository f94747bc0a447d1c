#include "host/terminal/Screen.h"

#include <curses.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <term.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <stdexcept>
#include <string>

#include "host/terminal/InputDecoder.h"

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
// and while a button is held, pasted text in brackets, and letters with Ctrl and Shift as keys of their own.
struct Mode {
  const char* capability;  // of terminals that may be asked for it
  const char* on;
  const char* off;
};
constexpr Mode kModes[] = {{"kmous", "\033[?1000;1002;1006h", "\033[?1000;1002;1006l"},
                           {"kmous", "\033[?2004h", "\033[?2004l"},
                           {"kUP5", "\033[>4;1m\033[m", "\033[>4m\033[m"}};

// The names that terminals' descriptions have for keys.
struct NamedKey {
  const char* name;
  int32_t key;
  int32_t shift = controls::kNoShift;
};
constexpr NamedKey kNamedKeys[] = {{"kcuu1", controls::kKeyUp},
                                   {"kcud1", controls::kKeyDown},
                                   {"kcub1", controls::kKeyLeft},
                                   {"kcuf1", controls::kKeyRight},
                                   {"khome", controls::kKeyHome},
                                   {"kend", controls::kKeyEnd},
                                   {"kpp", kKeyPageUp},
                                   {"knp", kKeyPageDown},
                                   {"kich1", kKeyInsert},
                                   {"kdch1", controls::kKeyDelete},
                                   {"kcbt", controls::kKeyTab, controls::kShift},
                                   {"kri", controls::kKeyUp, controls::kShift},
                                   {"kind", controls::kKeyDown, controls::kShift},
                                   {"kLFT", controls::kKeyLeft, controls::kShift},
                                   {"kRIT", controls::kKeyRight, controls::kShift},
                                   {"kHOM", controls::kKeyHome, controls::kShift},
                                   {"kEND", controls::kKeyEnd, controls::kShift},
                                   {"kPRV", kKeyPageUp, controls::kShift},
                                   {"kNXT", kKeyPageDown, controls::kShift},
                                   {"kIC", kKeyInsert, controls::kShift},
                                   {"kDC", controls::kKeyDelete, controls::kShift}};

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    const auto group = bytes.substr(at, 3);
    uint32_t bits = 0;
    for (std::size_t i = 0; i < 3; ++i)
      bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i) text += i <= group.size() ? kDigits[bits >> (18 - 6 * i) & 63] : '=';
  }
  return text;
}

// What the terminal's description says; null when it says nothing.
const char* Capability(const char* name) {
  const char* text = tigetstr(name);
  // For a name that it does not know the library returns -1.
  return reinterpret_cast<std::intptr_t>(text) == -1 ? nullptr : text;
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
  void SwitchModes(bool on) const;

  SCREEN* screen = nullptr;
  Canvas shown;  // an empty one: nothing is

 private:
  void UseColours();
  void LearnKeys();
  bool FeedWithin(int milliseconds);

  std::array<attr_t, static_cast<std::size_t>(Style::kCount)> attributes_{};
  InputDecoder decoder_;
  // Milliseconds after which what follows an Escape is a key of its own.
  int late_ = 50;
};

Screen::Library::Library() {
  UseUtf8();
  screen = newterm(nullptr, stdout, stdin);
  if (screen == nullptr)
    screen = newterm("xterm-256color", stdout, stdin);  // what most of the unknown ones are
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
  intrflush(stdscr, FALSE);
  const auto delay = Environment("ESCDELAY");
  std::from_chars(delay.data(), delay.data() + delay.size(), late_);
  late_ = std::clamp(late_, 0, 10'000);
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
  for (const auto& [name, key, shift] : kNamedKeys) {
    const char* bytes = Capability(name);
    if (bytes != nullptr && bytes[0] == 27) decoder_.Named.emplace(bytes, KeyPress{key, shift});
  }
  // What others call F13 are keys with Shift, of which these descriptions do not tell which.
  const int32_t count = Environment("TERM").starts_with("linux") ? 24 : 12;
  for (int32_t i = 0; i < count; ++i) {
    const char* bytes = Capability(("kf" + std::to_string(i + 1)).c_str());
    if (bytes == nullptr || bytes[0] != 27) continue;
    decoder_.Named.emplace(bytes, KeyPress{kKeyF1 + i % 12, i < 12 ? controls::kNoShift : controls::kShift});
  }
  const char* key = Capability("kbs");
  if (key != nullptr && key[0] == 8) decoder_.Backspace = 8;
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

// A part of a sequence that is not there yet is waited for.
std::optional<Input> Screen::Library::Read() {
  for (;;) {
    if (auto input = decoder_.Next(false)) return input;
    if (FeedWithin(decoder_.Waiting() ? late_ : 0)) continue;
    return decoder_.Waiting() ? decoder_.Next(true) : std::nullopt;
  }
}

// False where nothing has come after so many milliseconds.
bool Screen::Library::FeedWithin(int milliseconds) {
  pollfd descriptor{STDIN_FILENO, POLLIN, 0};
  if (poll(&descriptor, 1, milliseconds) <= 0) return false;
  std::array<char, 4096> bytes;
  const ssize_t count = read(STDIN_FILENO, bytes.data(), bytes.size());
  if (count > 0) decoder_.Feed({bytes.data(), static_cast<std::size_t>(count)});
  return count > 0;
}

Screen::Screen() : library_(std::make_unique<Library>()) {}
Screen::~Screen() = default;

Size Screen::Size() const { return {COLS, LINES}; }
void Screen::Show(const Canvas& canvas) { library_->Show(canvas); }
std::optional<Input> Screen::Read() { return library_->Read(); }
int Screen::InputDescriptor() const { return STDIN_FILENO; }
void Screen::Beep() { beep(); }

void Screen::Copy(std::string_view text) {
  std::fputs(("\033]52;c;" + Base64(text) + '\a').c_str(), stdout);
  std::fflush(stdout);
}

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
