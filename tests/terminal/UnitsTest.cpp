// What a terminal shows and understands, without a terminal.
#include <curses.h>
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
#include "host/terminal/Keymap.h"
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

TEST(Keymap, KnowsWhatArrives) {
  const auto is = [](const std::optional<KeyPress>& press, int32_t key, int32_t shift,
                     char32_t character = 0) {
    return press && press->Is(key, shift) && press->character == character;
  };
  using namespace controls;
  EXPECT_TRUE(is(FromCode(KEY_LEFT), kKeyLeft, kNoShift));
  EXPECT_TRUE(is(FromCode(KEY_BTAB), kKeyTab, kShift));
  EXPECT_TRUE(is(FromCode(KEY_ENTER), kKeyReturn, kNoShift, U'\r'));
  EXPECT_TRUE(is(FromCode(KEY_F(12)), kKeyF12, kNoShift));
  EXPECT_TRUE(is(FromCode(KEY_F(13)), kKeyF1, kShift));
  EXPECT_FALSE(FromCode(KEY_HELP));
  EXPECT_TRUE(is(FromCharacter(U'a', false, 127), u'A', kNoShift, U'a'));
  EXPECT_TRUE(is(FromCharacter(U'f' & 31, false, 127), u'F', kCtrl));
  EXPECT_TRUE(is(FromCharacter(U'm', true, 127), u'M', kAlt));
  EXPECT_TRUE(is(FromCharacter(U'ж', false, 127), kKeyPacket, kNoShift, U'ж'));
  EXPECT_TRUE(is(FromCharacter(U'ж', true, 127), static_cast<int32_t>(U'Ж'), kAlt));
  EXPECT_TRUE(is(FromCharacter(8, false, 127), kKeyBack, kCtrl, 127));
  EXPECT_TRUE(is(FromCharacter(8, false, 8), kKeyBack, kNoShift));
  EXPECT_TRUE(is(FromCharacter(0, false, 127), kKeySpace, kCtrl));
  // Every sequence stands for one key with its modifiers.
  std::map<std::string, int32_t> codes;
  for (const auto& [bytes, code] : KeySequences()) EXPECT_TRUE(codes.emplace(bytes, code).second) << bytes;
  EXPECT_TRUE(is(FromCode(codes["\033[1;5F"]), kKeyEnd, kCtrl));
  EXPECT_TRUE(is(FromCode(codes["\033[6;5~"]), kKeyPageDown, kCtrl));
  EXPECT_TRUE(is(FromCode(codes["\033[1;2C"]), kKeyRight, kShift));
  EXPECT_TRUE(is(FromCode(codes["\033[1;3A"]), kKeyUp, kAlt));
  EXPECT_TRUE(is(FromCode(codes["\033[27;6;70~"]), u'F', kShift | kCtrl));
  EXPECT_TRUE(is(FromCode(codes["\033[102;5u"]), u'F', kCtrl));
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
  Size WindowSize(Size client) const noexcept override { return client; }
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
