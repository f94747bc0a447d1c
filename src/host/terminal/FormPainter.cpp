#include "host/terminal/FormPainter.h"

#include <algorithm>
#include <string>
#include <vector>

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/ComboBox.h"
#include "controls/Frame.h"
#include "controls/Image.h"
#include "controls/Label.h"
#include "controls/ListView.h"
#include "controls/OptionButton.h"
#include "controls/TextBox.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"
#include "host/terminal/TextLines.h"
#include "util/Text.h"

namespace rowlark::terminal {
namespace {

using controls::Control;

struct Entries {
  std::vector<std::u16string_view> texts;
  int32_t selected = -1;
  // The selected one shows.
  int32_t First(int32_t height) const { return std::max(0, selected - height + 1); }
};

Entries EntriesOf(const controls::TreeView& tree) {
  Entries entries{{}, tree.Selected()};
  for (const auto& node : tree.Nodes()) entries.texts.push_back(node.text);
  return entries;
}

Entries EntriesOf(const controls::ListView& list) {
  Entries entries{{}, list.Selected()};
  for (const auto& item : list.Items()) entries.texts.push_back(item.text);
  return entries;
}

class Painter final : public controls::Visitor {
 public:
  Painter(Canvas& canvas, const controls::Form& form, bool active)
      : canvas_(canvas), focus_(active ? form.ActiveControl() : nullptr) {}

  void Visit(controls::Button& button) override { PaintButton(button, button.Bounds, Plain(button)); }
  void Visit(controls::CheckBox& box) override {
    PaintBox(box.Value() ? u"[x]" : u"[ ]", box, box.Bounds, Plain(box));
  }
  void Visit(controls::OptionButton& button) override {
    PaintBox(button.Value() ? u"(•)" : u"( )", button, button.Bounds, Plain(button));
  }
  void Visit(controls::ComboBox& box) override {
    const Rect& area = box.Bounds;
    const Style style = StyleOf(box, false);
    canvas_.Fill(area, U' ', style);
    canvas_.Write({area.left + area.width - 1, area.top}, u"▾", Style::Normal);
    if (box.DropDownList) {
      canvas_.Write({area.left, area.top}, box.Text(), HasFocus(box) ? Style::Focus : style, area.width - 2);
    } else {
      PaintText(box, {area.left, area.top, area.width - 2, area.height}, style);
    }
  }
  void Visit(controls::TextBox& box) override {
    const Style style = StyleOf(box, box.Alert);
    if (!box.ReadOnly) canvas_.Fill(box.Bounds, U' ', style);
    PaintText(box, box.Bounds, style);
  }
  void Visit(controls::Frame& frame) override {
    const Rect& area = frame.Bounds;
    if (frame.Bordered) canvas_.Box(area, Style::Dim);
    WriteCaption(canvas_, {area.left + (frame.Bordered ? 1 : 0), area.top}, frame.Caption(), Style::Title,
                 area.width);
  }
  void Visit(controls::Image& image) override {
    canvas_.Write({image.Bounds.left, image.Bounds.top}, image.Sign,
                  image.Alert ? Style::Error : Style::Normal);
  }
  void Visit(controls::Label& label) override { PaintLabel(label, label.Bounds, HasFocus(label)); }
  void Visit(controls::ListView& list) override {
    PaintEntries(EntriesOf(list), list.Bounds, HasFocus(list));
  }
  void Visit(controls::TreeView& tree) override {
    PaintEntries(EntriesOf(tree), tree.Bounds, HasFocus(tree));
  }
  void Visit(controls::ToolBar& bar) override {
    int32_t x = bar.Bounds.left;
    for (const auto& button : bar.Buttons()) {
      // The first letter, with Alt, does what a click does.
      x += WriteCaption(canvas_, {x, bar.Bounds.top}, u"&" + button.caption, Style::Bold, -1) + 3;
    }
  }

 private:
  bool HasFocus(const Control& control) const { return &control == focus_; }
  Style Plain(const Control& control) const {
    return !control.Enabled() ? Style::Dim : HasFocus(control) ? Style::Focus : Style::Normal;
  }
  static Style StyleOf(const controls::TextInput& input, bool alert) {
    return alert ? Style::Error : !input.Enabled() || input.ReadOnly ? Style::Dim : Style::Field;
  }

  void PaintButton(const controls::Button& button, const Rect& area, Style style) const {
    if (style == Style::Normal && button.Default) style = Style::Bold;
    const int32_t text =
        std::min(WidthOf(controls::PlainCaption(button.Caption())), std::max(0, area.width - 2));
    canvas_.Fill({area.left, area.top, area.width, 1}, U' ', style);
    canvas_.Write({area.left, area.top}, u"[", style);
    canvas_.Write({area.left + area.width - 1, area.top}, u"]", style);
    WriteCaption(canvas_, {area.left + (area.width - text) / 2, area.top}, button.Caption(), style, text);
  }

  void PaintBox(std::u16string_view box, const Control& control, const Rect& area, Style style) const {
    canvas_.Write({area.left, area.top}, box, style);
    WriteCaption(canvas_, {area.left + 4, area.top}, control.Caption(), style, area.width - 4);
  }

  void PaintText(const controls::TextInput& input, const Rect& area, Style style) const {
    TextPane(input, {area.width, area.height}).Draw(canvas_, {area.left, area.top}, style, HasFocus(input));
  }

  void PaintLabel(const controls::Label& label, const Rect& area, bool focused) const {
    const Style style = focused           ? Style::Focus
                        : label.Link      ? Style::Link
                        : label.Enabled() ? Style::Normal
                                          : Style::Dim;
    int32_t y = area.top;
    for (const auto line : Pieces(label.Caption(), u"\r\n")) {
      WriteCaption(canvas_, {area.left, y++}, line, style, area.width);
    }
  }

  void PaintEntries(const Entries& entries, const Rect& area, bool focused) const {
    const auto first = entries.First(area.height);
    const auto count = static_cast<int32_t>(entries.texts.size());
    for (int32_t y = 0; y < area.height; ++y) {
      const int32_t index = first + y;
      if (index >= count) return;
      const bool selected = index == entries.selected;
      const Style style = !selected ? Style::Normal : focused ? Style::Focus : Style::Selected;
      canvas_.Fill({area.left, area.top + y, area.width, 1}, U' ', style);
      canvas_.Write({area.left + 1, area.top + y}, entries.texts[static_cast<std::size_t>(index)], style,
                    area.width - 2);
    }
  }

  Canvas& canvas_;
  const Control* focus_;
};

}  // namespace

void Paint(Canvas& canvas, const controls::Form& form, bool active) {
  Painter painter(canvas, form, active);
  for (Control* control : form.InTabOrder()) {
    if (control->Shown()) control->Accept(painter);
  }
}

int32_t WriteCaption(Canvas& canvas, Point at, std::u16string_view caption, Style style, int32_t width) {
  const auto plain = controls::PlainCaption(caption);
  const int32_t used = canvas.Write(at, plain, style, width);
  if (controls::Accelerator(caption) == 0 || style != Style::Normal) {
    if (style != Style::Bold && style != Style::Title) return used;
  }
  // The caption up to the mark, "&&" being one character.
  std::size_t mark = 0;
  while (mark + 1 < caption.size() && (caption[mark] != u'&' || caption[mark + 1] == u'&')) {
    mark += caption[mark] == u'&' ? 2 : 1;
  }
  if (mark + 1 >= caption.size()) return used;
  const int32_t before = WidthOf(controls::PlainCaption(caption.substr(0, mark)));
  auto rest = caption.substr(mark + 1);
  if (before < used) canvas.Put({at.x + before, at.y}, TakeGlyph(rest), Style::Accelerator);
  return used;
}

namespace {

std::optional<int32_t> EntryAt(const Entries& entries, const Rect& area, Point place) {
  const int32_t index = entries.First(area.height) + place.y - area.top;
  if (index < 0 || index >= static_cast<int32_t>(entries.texts.size())) return std::nullopt;
  return index;
}

}  // namespace

std::optional<int32_t> EntryAt(const controls::ListView& list, Point place) {
  return EntryAt(EntriesOf(list), list.Bounds, place);
}

std::optional<int32_t> EntryAt(const controls::TreeView& tree, Point place) {
  return EntryAt(EntriesOf(tree), tree.Bounds, place);
}

std::optional<int32_t> EntryAt(const controls::ToolBar& bar, Point place) {
  int32_t x = bar.Bounds.left;
  int32_t index = 0;
  for (const auto& button : bar.Buttons()) {
    const int32_t width = WidthOf(button.caption);
    if (place.x >= x && place.x < x + width) return index;
    x += width + 3;
    ++index;
  }
  return std::nullopt;
}

}  // namespace rowlark::terminal
