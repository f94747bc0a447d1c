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

namespace rowlark::terminal {
namespace {

using controls::Control;
using controls::ControlKind;

struct Entries {
  std::vector<std::u16string_view> texts;
  int32_t selected = -1;
  // The selected one shows.
  int32_t First(int32_t height) const { return std::max(0, selected - height + 1); }
};

Entries EntriesOf(const Control& control) {
  Entries entries;
  if (control.Kind == ControlKind::TreeView) {
    const auto& tree = static_cast<const controls::TreeView&>(control);
    for (const auto& node : tree.Nodes()) entries.texts.push_back(node.text);
    entries.selected = tree.Selected();
  } else {
    const auto& list = static_cast<const controls::ListView&>(control);
    for (const auto& item : list.Items()) entries.texts.push_back(item.text);
    entries.selected = list.Selected();
  }
  return entries;
}

class Painter {
 public:
  Painter(Canvas& canvas, const controls::Form& form, bool active)
      : canvas_(canvas), focus_(active ? form.ActiveControl() : nullptr) {}

  void Paint(const Control& control, const Rect& area) const {
    const bool focused = &control == focus_;
    const Style plain = !control.Enabled() ? Style::Dim : focused ? Style::Focus : Style::Normal;
    const Point at{area.left, area.top};
    switch (control.Kind) {
      case ControlKind::Button:
        return PaintButton(static_cast<const controls::Button&>(control), area, plain);
      case ControlKind::CheckBox:
        return PaintBox(static_cast<const controls::CheckBox&>(control).Value() ? u"[x]" : u"[ ]", control,
                        area, plain);
      case ControlKind::OptionButton:
        return PaintBox(static_cast<const controls::OptionButton&>(control).Value() ? u"(•)" : u"( )",
                        control, area, plain);
      case ControlKind::ComboBox:
      case ControlKind::TextBox:
        return PaintInput(static_cast<const controls::TextInput&>(control), area, focused);
      case ControlKind::Frame: {
        const bool bordered = static_cast<const controls::Frame&>(control).Bordered;
        if (bordered) canvas_.Box(area, Style::Dim);
        WriteCaption(canvas_, bordered ? Point{at.x + 1, at.y} : at, control.Caption(), Style::Title,
                     area.width);
        return;
      }
      case ControlKind::Image: {
        const auto& image = static_cast<const controls::Image&>(control);
        canvas_.Write(at, image.Sign, image.Alert ? Style::Error : Style::Normal);
        return;
      }
      case ControlKind::Label:
        return PaintLabel(static_cast<const controls::Label&>(control), area, focused);
      case ControlKind::ListView:
      case ControlKind::TreeView:
        return PaintEntries(EntriesOf(control), area, focused);
      case ControlKind::ToolBar: {
        int32_t x = area.left;
        for (const auto& button : static_cast<const controls::ToolBar&>(control).Buttons()) {
          // The first letter, with Alt, does what a click does.
          x += WriteCaption(canvas_, {x, area.top}, u"&" + button.caption, Style::Bold, -1) + 3;
        }
        return;
      }
      default:
        return;
    }
  }

 private:
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

  void PaintInput(const controls::TextInput& input, const Rect& area, bool focused) const {
    const bool read_only = input.ReadOnly;
    const bool alert =
        input.Kind == ControlKind::TextBox && static_cast<const controls::TextBox&>(input).Alert;
    const Style style = alert ? Style::Error : !input.Enabled() || read_only ? Style::Dim : Style::Field;
    if (!read_only) canvas_.Fill(area, U' ', style);
    Rect text = area;
    if (input.Kind == ControlKind::ComboBox) {
      text.width -= 2;
      canvas_.Write({area.left + area.width - 1, area.top}, u"▾", Style::Normal);
      const auto& box = static_cast<const controls::ComboBox&>(input);
      if (box.DropDownList) {
        canvas_.Write({area.left, area.top}, box.Text(), focused ? Style::Focus : style, text.width);
        return;
      }
    }
    TextPane(input, {text.width, text.height}).Draw(canvas_, {text.left, text.top}, style, focused);
  }

  void PaintLabel(const controls::Label& label, const Rect& area, bool focused) const {
    const Style style = focused           ? Style::Focus
                        : label.Link      ? Style::Link
                        : label.Enabled() ? Style::Normal
                                          : Style::Dim;
    std::u16string_view rest = label.Caption();
    for (int32_t y = area.top; !rest.empty(); ++y) {
      const auto end = std::min(rest.find(u"\r\n"), rest.size());
      WriteCaption(canvas_, {area.left, y}, rest.substr(0, end), style, area.width);
      rest.remove_prefix(std::min(end + 2, rest.size()));
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
  const Painter painter(canvas, form, active);
  for (const Control* control : form.InTabOrder()) {
    if (control->Shown() && control->Kind != ControlKind::Timer) painter.Paint(*control, control->Bounds);
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

std::optional<int32_t> EntryAt(const Control& control, const Rect& area, Point place) {
  if (control.Kind == ControlKind::ToolBar) {
    int32_t x = area.left;
    int32_t index = 0;
    for (const auto& button : static_cast<const controls::ToolBar&>(control).Buttons()) {
      const int32_t width = WidthOf(button.caption);
      if (place.x >= x && place.x < x + width) return index;
      x += width + 3;
      ++index;
    }
    return std::nullopt;
  }
  const auto entries = EntriesOf(control);
  const int32_t index = entries.First(area.height) + place.y - area.top;
  if (index < 0 || index >= static_cast<int32_t>(entries.texts.size())) return std::nullopt;
  return index;
}

}  // namespace rowlark::terminal
