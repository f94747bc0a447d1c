// What a terminal shows and understands, without a terminal.
#include <gtest/gtest.h>

#include <clocale>
#include <map>
#include <string>

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/ComboBox.h"
#include "controls/Form.h"
#include "controls/Frame.h"
#include "controls/Image.h"
#include "controls/Label.h"
#include "controls/ListView.h"
#include "controls/OptionButton.h"
#include "controls/TextBox.h"
#include "host/terminal/CellMetrics.h"
#include "host/terminal/FormPainter.h"
#include "host/terminal/InputDecoder.h"
#include "host/terminal/TextLines.h"
#include "util/Utf.h"

namespace rowlark::terminal {
namespace {

using controls::Layout;

const char* const kLocale = std::setlocale(LC_ALL, "C.UTF-8");  // widths are its

std::string Lines(const Canvas& canvas) {
  std::string lines;
  for (int32_t y = 0; y < canvas.Size().height; ++y) {
    std::string line;
    for (int32_t x = 0; x < canvas.Size().width; ++x) {
      const auto& glyph = canvas.At({x, y}).glyph;
      for (std::size_t i = 0; i < glyph.count; ++i) AppendUtf8(line, glyph.text[i]);
    }
    lines += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
  }
  return lines;
}

TEST(Canvas, ShowsWholeCharactersWithinItsBounds) {
  Canvas canvas({6, 3});
  EXPECT_EQ(canvas.Write({0, 0}, u"漢字e\u0301", Style::Normal), 5);
  EXPECT_EQ(canvas.Write({2, 1}, u"longer", Style::Bold, 3), 3);
  EXPECT_EQ(canvas.Write({4, 2}, u"漢字", Style::Normal), 1);
  EXPECT_EQ(Lines(canvas), "漢字e\u0301\n  lo…\n    …\n");
  EXPECT_EQ(canvas.At({4, 1}).style, Style::Bold);
  // Half of a wide character goes with the other half.
  canvas.Put({1, 0}, MakeGlyph(U'x'), Style::Normal);
  canvas.Put({2, 0}, MakeGlyph(U'y'), Style::Normal);
  canvas.Put({5, 2}, MakeGlyph(U'漢'), Style::Normal);
  canvas.Put({-1, 0}, MakeGlyph(U'z'), Style::Normal);
  canvas.Put({0, 3}, MakeGlyph(U'z'), Style::Normal);
  EXPECT_EQ(Lines(canvas), " xy e\u0301\n  lo…\n    …\n");

  Canvas tall({4, 4});
  tall.Box({0, 0, 4, 4}, Style::Dim);
  tall.Cursor = Point{1, 3};
  canvas.Fill({0, 0, 6, 3}, U'.', Style::Normal);
  canvas.Copy(tall, {1, 0, 4, 2}, 2);
  EXPECT_EQ(Lines(canvas), ".│  │.\n.└──┘.\n......\n");
  EXPECT_EQ(canvas.Cursor, (Point{2, 1}));
}

TEST(Glyphs, AreHarmlessAndKnowTheirWidth) {
  const auto shown = [](std::u16string_view text) {
    std::string glyphs;
    while (!text.empty()) {
      const Glyph glyph = TakeGlyph(text);
      for (std::size_t i = 0; i < glyph.count; ++i) AppendUtf8(glyphs, glyph.text[i]);
      glyphs += std::to_string(glyph.width);
    }
    return glyphs;
  };
  EXPECT_EQ(shown(u"a漢😀"), "a1漢2😀2");
  EXPECT_EQ(shown(u"e\u0301\u0301\u0301\u0301\u0301b"), "e\u0301\u0301\u03011b1");
  EXPECT_EQ(shown(u"\u0301"), " \u03011");
  EXPECT_EQ(shown(u"\n\x1b\u202e\u0090\xD800"), "↵1␛1\uFFFD1\uFFFD1\uFFFD1");
  EXPECT_EQ(WidthOf(u"漢e\u0301"), 3);
}

TEST(TextLines, BreakAtBlanksAndShowTheCaret) {
  const auto broken = [](std::u16string_view text, int32_t width) {
    std::string lines;
    for (const auto [begin, end] : BreakLines(text, width)) {
      lines +=
          ToUtf8(text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin))) + '|';
    }
    return lines;
  };
  EXPECT_EQ(broken(u"", 5), "|");
  EXPECT_EQ(broken(u"one two three", 7), "one two|three|");
  EXPECT_EQ(broken(u"one\r\ntwo\n", 9), "one|two||");
  EXPECT_EQ(broken(u"abcdefg hi", 3), "abc|def|g|hi|");
  EXPECT_EQ(broken(u"漢字漢", 3), "漢|字|漢|");

  struct Sheet final : controls::Form {
    Sheet() : Form(u"Sheet") { box.MultiLine = true; }
    controls::TextBox line{*this, u"line"}, box{*this, u"box"};
  };
  const auto form = MakeRef<Sheet>();
  const auto pane = [&](const controls::TextInput& input, Size size) {
    Canvas canvas(size);
    TextPane(input, size).Draw(canvas, {0, 0}, Style::Field, true);
    const auto cursor = canvas.Cursor.value_or(Point{-1, -1});
    return Lines(canvas) + std::to_string(cursor.x) + ',' + std::to_string(cursor.y);
  };
  form->line.SetText(u"abcdefgh");
  EXPECT_EQ(pane(form->line, {5, 1}), "abcde\n0,0");
  form->line.SetCaret(8);
  EXPECT_EQ(pane(form->line, {5, 1}), "efgh\n4,0");
  EXPECT_EQ(TextPane(form->line, {5, 1}).OffsetAt({1, 0}), 5);
  form->box.SetText(u"one two\nthree");
  form->box.SetCaret(9);
  EXPECT_EQ(pane(form->box, {6, 2}), "two\nthree\n1,1");
  EXPECT_EQ(TextPane(form->box, {6, 2}).OffsetAt({2, 0}), 6);
  EXPECT_EQ(TextPane(form->box, {6, 2}).OffsetAt({9, 9}), 13);
}

// What the user has done, as "Ctrl+End", "Down at 3,5", "'x'" for a key that types, "\"text\"" for a pasted
// one.
std::string Told(const Input& input) {
  std::string told;
  const auto shift = [&told](int32_t bits) {
    if ((bits & controls::kCtrl) != 0) told += "Ctrl+";
    if ((bits & controls::kAlt) != 0) told += "Alt+";
    if ((bits & controls::kShift) != 0) told += "Shift+";
  };
  if (const auto* pasted = std::get_if<Pasted>(&input)) return '"' + ToUtf8(pasted->text) + '"';
  if (const auto* action = std::get_if<MouseAction>(&input)) {
    shift(action->shift);
    constexpr const char* kKinds[] = {"Press", "Drag", "Release", "Up", "Down"};
    return told + kKinds[static_cast<std::size_t>(action->kind)] + ' ' + std::to_string(action->at.x) + ',' +
           std::to_string(action->at.y);
  }
  const auto& press = std::get<KeyPress>(input);
  static const std::map<int32_t, const char*> kNames{
      {8, "Back"},  {9, "Tab"},    {13, "Enter"}, {27, "Esc"},    {32, "Space"},
      {33, "PgUp"}, {34, "PgDn"},  {35, "End"},   {36, "Home"},   {37, "Left"},
      {38, "Up"},   {39, "Right"}, {40, "Down"},  {45, "Insert"}, {46, "Delete"}};
  shift(press.shift);
  if (const auto name = kNames.find(press.key); name != kNames.end() && press.character != U' ')
    return told + name->second;
  if (press.key >= kKeyF1 && press.key <= kKeyF12) return told + 'F' + std::to_string(press.key - kKeyF1 + 1);
  if (press.character == 0) {
    AppendUtf8(told, static_cast<char32_t>(press.key));
    return told;
  }
  told += '\'';
  AppendUtf8(told, press.character);
  return told + '\'';
}

TEST(InputDecoder, KnowsWhatArrives) {
  using namespace std::string_literals;
  InputDecoder decoder;
  decoder.Named["\033[25~"] = {kKeyF1, controls::kShift};
  decoder.Named["\033A"] = {controls::kKeyUp};
  const auto read = [&decoder](bool late) {
    std::string told;
    while (const auto input = decoder.Next(late)) told += (told.empty() ? "" : " ") + Told(*input);
    return told;
  };
  const struct {
    std::string bytes;
    std::string input;
  } kCases[] = {
      {"aZ7 ж😀\r\t\x7f\b\0\x06"s, "'a' 'Z' '7' ' ' 'ж' '😀' Enter Tab Back Ctrl+Back Ctrl+Space Ctrl+F"},
      {"\033m\033ж\033\033\r\033", "Alt+M Alt+Ж Esc Esc Enter Esc"},
      {"a\xFF\xC3(b", "'a' '(' 'b'"},
      // Cursor keys of every tradition, and what terminals without one say of themselves.
      {"\033[A\033OB\033[1;5F\033[1;2C\033O5D\033[1;3A\033Oa\033[d",
       "Up Down Ctrl+End Shift+Right Ctrl+Left Alt+Up Ctrl+Up Shift+Left"},
      {"\033[H\033OF\033[1~\033[4~\033[7~\033[8^\033[7$\033[8@",
       "Home End Home End Home Ctrl+End Shift+Home Ctrl+Shift+End"},
      {"\033[2~\033[3;5~\033[5~\033[6;6~\033[Z", "Insert Ctrl+Delete PgUp Ctrl+Shift+PgDn Shift+Tab"},
      {"\033OP\033[12~\033[13;2~\033[[D\033[15~\033[17;5~\033[24~\033[1;2R\033[28~\033[25~\033A",
       "F1 F2 Shift+F3 F4 F5 Ctrl+F6 F12 Shift+F3 Shift+F5 Shift+F1 Up"},
      {"\033[27;6;70~\033[102;5u\033[27;5;13~\033[9;2u\033[97;1:1u\033[27;1;228~\033[57399u",
       "Ctrl+Shift+F Ctrl+F Ctrl+Enter Shift+Tab 'a' 'ä'"},
      {"\033Oj\033Op\033Oy\033OM", "'*' '0' '9' Enter"},
      // The mouse in both ways.
      {"\033[<0;4;6M\033[<32;5;6M\033[<0;5;6m\033[<64;1;1M\033[<81;1;1M\033[<2;1;1M",
       "Press 3,5 Drag 4,5 Release 4,5 Up 0,0 Ctrl+Down 0,0"},
      {"\033[M $&\033[M#$&\033[M\x60!!", "Press 3,5 Release 3,5 Up 0,0"},
      // What means nothing is passed over whole.
      {"\033[?62;22c\033[12;40R\033[>41;354;0c\033[99~\033[I\033[?2004;1$yx", "'x'"},
      {"\033]11;rgb:ffff/ffff/ffff\033\\\033]0;x\a\033P1$r0m\033\\\033_x\033\\x", "'x'"},
      {"\033[12\033[A\033]0;x\033[A\033Ox", "Up Up '8'"},
      // Pasted text is no command, whatever is in it.
      {"\033[200~a\tb\r\033[Aж\x11\033[201~", "\"a\tb\n[Aж\x11\""},
      {"\033[200~\033[201~x", "'x'"},
  };
  for (const auto& [bytes, input] : kCases) {
    decoder.Feed(bytes + "\r");
    EXPECT_EQ(read(false), input + " Enter") << bytes;
    if (input.front() == '"') continue;
    std::string told;
    for (const char byte : bytes + '\r') {
      decoder.Feed({&byte, 1});
      if (const auto next = read(false); !next.empty()) told += next + ' ';
    }
    EXPECT_EQ(told, input + " Enter ") << "byte by byte: " << bytes;
  }
  // What never comes: half a sequence means nothing, and a paste ends with the Escape key.
  constexpr struct {
    const char* bytes;
    const char* input;
  } kBroken[] = {{"\033[1;", ""}, {"\033O5", ""},     {"\033]0;x", ""},   {"\xC3", ""},      {"\033[M ", ""},
                 {"\033", "Esc"}, {"\033[", "Alt+ç"}, {"\033O", "Alt+O"}, {"\033P", "Alt+P"}};
  for (const auto& [bytes, input] : kBroken) {
    decoder.Feed(bytes);
    EXPECT_EQ(read(false), "") << bytes;
    EXPECT_TRUE(decoder.Waiting()) << bytes;
    EXPECT_EQ(read(true), input) << bytes;
    EXPECT_FALSE(decoder.Waiting()) << bytes;
  }
  decoder.Feed("\033[200~lost");
  EXPECT_EQ(read(true), "\"lost\"");
  decoder.Feed("\033");
  EXPECT_EQ(read(false) + read(true), "");
  decoder.Feed("x");
  EXPECT_EQ(read(false), "'x'");
  decoder.Backspace = 8;
  decoder.Feed("\b");
  EXPECT_EQ(read(false), "Back");
}

struct Folding final : controls::Form, controls::View {
  controls::Frame frame{*this, u"frame"}, page{*this, u"page"}, other_page{*this, u"other_page"};
  controls::ComboBox combo{*this, u"combo"};
  controls::Image image{*this, u"image", u"warning"};
  controls::OptionButton one{*this, u"one"}, two{*this, u"two"};
  controls::CheckBox check{*this, u"check"}, dependent{*this, u"dependent"};
  controls::Button ok{*this, u"ok"}, cancel{*this, u"cancel"};
  controls::Label label{*this, u"label"};
  controls::TextBox box{*this, u"box"}, error{*this, u"error"};
  controls::ListView list{*this, u"list"};
  controls::Metrics metrics;

  Folding() : Form(u"Folding") {
    frame.SetCaption(u" &Find ");
    page.SetCaption(u" Page ");
    image.Sign = u"!";
    one.SetCaption(u"Option one");
    two.SetCaption(u"Option two");
    check.SetCaption(u"&Check");
    dependent.SetCaption(u"Dependent");
    ok.SetCaption(u"OK");
    cancel.SetCaption(u"Cancel");
    label.SetCaption(u"Range:");
    box.SetText(u"A1");
    error.SetText(u"wrong");
    error.SetVisible(false);
    error.ReadOnly = error.MultiLine = true;
    list.AddItem({u"entry", u"", 0});
    other_page.SetVisible(false);
    SetLayout(Layout::Column(
        {Layout::Framed(frame, Layout::Row({Layout(combo, {14}).Wide(), image})),
         Layout::Row({Layout::Column({one, two}).Wide(), check, Layout::Column({ok, cancel})}).Apart(),
         Layout::Stack({Layout::Framed(page, Layout::Row({label, Layout(box).Wide()})),
                        Layout::Framed(other_page, Layout(list, {20, 3}).High())}),
         Layout(dependent).Indented(), Layout(error, {0, 2}).WhileVisible()}));
    Attach(*this);
    Load();
    Show();
  }
  std::string Drawn(int32_t widest) {
    metrics = CellMetrics(widest, 0);
    Arrange();
    Canvas canvas(ClientSize());
    Paint(canvas, *this, false);
    return '\n' + Lines(canvas);
  }
  void Changed(controls::Control&, controls::Property) noexcept override {}
  void Released(Form&) noexcept override {}
  const controls::Metrics& MetricsOf(const Form&) const noexcept override { return metrics; }
  int32_t TextWidth(std::u16string_view text) const noexcept override { return WidthOf(text); }
  controls::TwipSize WindowSize(Size) const noexcept override { return {}; }
};

TEST(FormLayout, IsOneTreeForEveryWidth) {
  const auto form = MakeRef<Folding>();
  EXPECT_EQ(form->Drawn(60), R"(
 ┌ Find ─────────────────────────────────┐
 │                                   ▾ ! │
 └───────────────────────────────────────┘
 ( ) Option one   [ ] Check   [    OK    ]
 ( ) Option two               [  Cancel  ]
 ┌ Page ─────────────────────────────────┐
 │ Range:  A1                            │
 │                                       │
 │                                       │
 └───────────────────────────────────────┘
     [ ] Dependent
)");
  EXPECT_EQ(form->Drawn(36), R"(
┌ Find ────────────────────────────┐
│                              ▾ ! │
└──────────────────────────────────┘
( ) Option one ( ) Option two
[ ] Check [ OK ] [ Cancel ]
┌ Page ────────────────────────────┐
│ Range:  A1                       │
│                                  │
│                                  │
└──────────────────────────────────┘
    [ ] Dependent
)");
  // A page that does not show takes no room any more, and a text that is cut no border.
  form->one.SetCaption(u"An option");
  form->label.SetCaption(u"A long label");
  EXPECT_EQ(form->Drawn(14), R"(
 Find
           ▾ !
( ) An option
( ) Option two
[ ] Check
[ OK ]
[ Cancel ]
 Page
A long label
A1
    [ ] Depen…
)");
  form->one.SetCaption(u"Option one");
  form->label.SetCaption(u"Range:");
  form->error.SetVisible(true);
  form->page.SetVisible(false);
  form->other_page.SetVisible(true);
  EXPECT_EQ(form->Drawn(18), R"(
 Find
               ▾ !
( ) Option one
( ) Option two
[ ] Check [ OK ]
[ Cancel ]
┌────────────────┐
│  entry         │
│                │
│                │
└────────────────┘
    [ ] Dependent
wrong
)");
  // Nothing leaves the form, and nothing lies above anything else.
  for (int32_t widest = 80; widest >= 12; --widest) {
    form->Drawn(widest);
    EXPECT_LE(form->ClientSize().width, widest);
    for (const auto* a : form->Controls()) {
      if (!a->Shown()) continue;
      EXPECT_LE(a->Bounds.left + a->Bounds.width, form->ClientSize().width) << widest << ToUtf8(a->Name);
      EXPECT_LE(a->Bounds.top + a->Bounds.height, form->ClientSize().height) << widest << ToUtf8(a->Name);
      for (const auto* b : form->Controls()) {
        const Rect& x = a->Bounds;
        const Rect& y = b->Bounds;
        const bool apart = x.left + x.width <= y.left || y.left + y.width <= x.left ||
                           x.top + x.height <= y.top || y.top + y.height <= x.top;
        EXPECT_TRUE(a == b || !b->Shown() || a->Container == b || b->Container == a || apart)
            << widest << ToUtf8(a->Name + u' ' + b->Name);
      }
    }
  }
}

}  // namespace
}  // namespace rowlark::terminal
