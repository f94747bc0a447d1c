#include "host/terminal/Arrangement.h"

#include <algorithm>

#include "controls/ListView.h"
#include "controls/TextBox.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"

namespace rowlark::terminal {
namespace {

using controls::Control;
using controls::ControlKind;

constexpr int32_t kUnits = 4;  // dialog units of a cell's width

bool Grows(const Control& control) {
  switch (control.Kind) {
    case ControlKind::ListView:
    case ControlKind::TreeView:
      return true;
    case ControlKind::TextBox:
      return static_cast<const controls::TextBox&>(control).MultiLine;
    default:
      return false;
  }
}

// Rows that a control needs at least.
int32_t RowsOf(const Control& control) {
  constexpr int32_t kLine = 12;  // dialog units of a line in a box
  const auto lines = [](std::u16string_view text) {
    return 1 + static_cast<int32_t>(std::ranges::count(text, u'\n'));
  };
  if (control.Kind == ControlKind::Label) return lines(control.Caption());
  if (!Grows(control)) return 1;
  const int32_t rows = std::max(1, control.Bounds.height / kLine);
  if (control.Kind != ControlKind::TextBox) return rows;
  // What can only be read is read whole.
  const auto& box = static_cast<const controls::TextBox&>(control);
  return box.ReadOnly ? std::max(rows, lines(box.Text())) : rows;
}

bool Holds(const Control* frame, const Control& control) {
  const Control* around = control.Container;
  while (around != nullptr && around != frame) around = around->Container;
  return around != nullptr;
}

bool Overlap(const Rect& a, const Rect& b) {
  return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height &&
         b.top < a.top + a.height;
}

// Whether two controls stand on pages of which only one shows at a time.
bool OnDifferentPages(const Control& a, const Control& b) {
  const auto frames = [](const Control& control) {
    std::vector<const Control*> chain;
    if (control.Kind == ControlKind::Frame) chain.push_back(&control);
    for (const Control* c = control.Container; c != nullptr; c = c->Container) chain.insert(chain.begin(), c);
    return chain;
  };
  const auto of_a = frames(a);
  const auto of_b = frames(b);
  const auto [at_a, at_b] = std::ranges::mismatch(of_a, of_b);
  return at_a != of_a.end() && at_b != of_b.end() && Overlap((*at_a)->Bounds, (*at_b)->Bounds);
}

// The rows are found by order alone: what ends above another thing ends above it here too. A frame takes part
// as two things, its upper and its lower border.
class Rows {
 public:
  explicit Rows(const controls::Form& form) {
    for (Control* control : form.Controls()) {
      const auto& bounds = control->Bounds;
      if (control->Kind == ControlKind::Timer) continue;
      if (control->Kind != ControlKind::Frame) {
        items_.push_back({control, bounds.top, bounds.top + bounds.height, RowsOf(*control)});
        continue;
      }
      constexpr int32_t kTop = 11;
      constexpr int32_t kBottom = 6;
      items_.push_back({control, bounds.top, bounds.top + kTop, 1});
      items_.push_back({control, bounds.top + bounds.height - kBottom, bounds.top + bounds.height, 1, true});
    }
    std::ranges::stable_sort(items_, {}, &Item::top);
    Solve();
    FillFrames();
    for (auto& item : items_) {
      if (Grows(*item.control)) item.rows = std::max(item.rows, RoomBelow(item) - item.row);
    }
  }

  int32_t Top(const Control& control) const { return Find(control, false).row; }
  int32_t Height(const Control& control) const {
    const bool frame = control.Kind == ControlKind::Frame;
    const auto& last = Find(control, frame);
    return last.row + last.rows - Top(control);
  }
  int32_t Total() const {
    int32_t total = 0;
    for (const auto& item : items_) total = std::max(total, item.row + item.rows);
    return total;
  }

 private:
  struct Item {
    Control* control;
    int32_t top;  // dialog units
    int32_t bottom;
    int32_t rows;
    bool lower_border = false;
    int32_t least = 0;  // the row it must not stand above
    int32_t row = 0;
  };

  static bool IsAbove(const Item& a, const Item& b) {
    return a.bottom <= b.top && !OnDifferentPages(*a.control, *b.control);
  }

  void Solve() {
    for (auto& item : items_) {
      item.row = item.least;
      for (const auto& above : items_) {
        if (IsAbove(above, item)) item.row = std::max(item.row, above.row + above.rows);
      }
    }
  }

  // The first row below an item that something else takes.
  int32_t RoomBelow(const Item& item) const {
    int32_t room = Total();
    for (const auto& below : items_) {
      if (IsAbove(item, below)) room = std::min(room, below.row);
    }
    return room;
  }

  // Frames reach down as far as they can, the outer ones first; the room goes to something in them that can
  // use it.
  void FillFrames() {
    for (std::size_t i = 0; i < items_.size(); ++i) {
      if (items_[i].lower_border || items_[i].control->Kind != ControlKind::Frame) continue;
      const Control* frame = items_[i].control;
      auto& border = const_cast<Item&>(Find(*frame, true));
      const int32_t spare = RoomBelow(border) - border.row - 1;
      if (spare <= 0) continue;
      const auto taker = std::ranges::find_if(
          items_, [frame](const Item& item) { return Grows(*item.control) && Holds(frame, *item.control); });
      if (taker != items_.end()) {
        taker->rows += spare;
      } else {
        border.least = border.row + spare;
      }
      Solve();
    }
  }

  const Item& Find(const Control& control, bool lower_border) const {
    return *std::ranges::find_if(items_, [&](const Item& item) {
      return item.control == &control && item.lower_border == lower_border;
    });
  }

  std::vector<Item> items_;
};

std::vector<Control*> InTabOrder(const controls::Form& form) {
  auto controls = form.Controls();
  std::ranges::sort(controls, {}, &Control::TabIndex);
  std::erase_if(controls, [](const Control* c) { return c->Kind == ControlKind::Timer; });
  return controls;
}

Arrangement Grid(const controls::Form& form) {
  Arrangement grid;
  const Rows rows(form);
  for (Control* control : InTabOrder(form)) {
    if (!control->Shown()) continue;
    const auto& bounds = control->Bounds;
    const int32_t left = bounds.left / kUnits;
    const bool frame = control->Kind == ControlKind::Frame;
    const int32_t width = frame ? (bounds.left + bounds.width) / kUnits - left : bounds.width / kUnits;
    grid.places.push_back({control, {left, rows.Top(*control), width, rows.Height(*control)}});
  }
  grid.size = {(form.ClientSize().width + kUnits - 1) / kUnits, rows.Total()};
  return grid;
}

// Cells that a control takes where it does not stand in a grid.
int32_t NaturalWidth(const Control& control) {
  int32_t text = 0;
  std::u16string_view rest = control.Caption();
  while (!rest.empty()) {
    const auto end = std::min(rest.find(u"\r\n"), rest.size());
    text = std::max(text, WidthOf(controls::PlainCaption(rest.substr(0, end))));
    rest.remove_prefix(std::min(end + 2, rest.size()));
  }
  switch (control.Kind) {
    case ControlKind::Button:
    case ControlKind::CheckBox:
    case ControlKind::OptionButton:
      return text + 4;
    case ControlKind::Image:
      return 1;
    case ControlKind::ToolBar: {
      int32_t width = 0;
      for (const auto& button : static_cast<const controls::ToolBar&>(control).Buttons()) {
        width += WidthOf(button.caption) + 3;
      }
      return width;
    }
    default:
      return text;
  }
}

// Rows where there is no form's height to fill: a list shows what it has, as far as there is room.
int32_t NaturalRows(const Control& control) {
  constexpr int32_t kLeast = 3;
  std::size_t entries = 0;
  if (control.Kind == ControlKind::TreeView) {
    entries = static_cast<const controls::TreeView&>(control).Nodes().size();
  } else if (control.Kind == ControlKind::ListView) {
    entries = static_cast<const controls::ListView&>(control).Items().size();
  } else {
    return RowsOf(control);
  }
  return std::min(RowsOf(control), std::max(kLeast, static_cast<int32_t>(entries)));
}

Arrangement Flow(const controls::Form& form, int32_t width, int32_t margin) {
  constexpr int32_t kLeast = 10;  // of a box for text
  Arrangement flow;
  flow.boxes = false;
  int32_t x = 0;
  int32_t y = 0;
  int32_t rows = 1;
  const Control* container = nullptr;
  const auto next_line = [&] {
    if (x == 0) return;
    x = 0;
    y += rows;
    rows = 1;
  };
  auto controls = InTabOrder(form);
  std::erase_if(controls, [](const Control* control) { return !control->Shown(); });
  for (std::size_t i = 0; i < controls.size(); ++i) {
    Control* control = controls[i];
    // What stands in the place of another control stands there here too.
    const auto same = std::ranges::find_if(
        flow.places, [&](const Arrangement::Place& p) { return p.control->Bounds == control->Bounds; });
    if (same != flow.places.end()) {
      flow.places.push_back({control, same->area});
      continue;
    }
    const bool frame = control->Kind == ControlKind::Frame;
    const bool caption = control->Kind == ControlKind::Label;
    if (control->Container != container || frame || caption) next_line();
    container = frame ? control : control->Container;
    const bool box =
        !Grows(*control) && (control->Kind == ControlKind::TextBox || control->Kind == ControlKind::ComboBox);
    const int32_t natural = NaturalWidth(*control);
    if (natural == 0 && !box && !Grows(*control)) continue;
    // A box takes what is left of its line, but for a button or picture that belongs to it.
    const auto next = std::find_if(controls.begin() + static_cast<std::ptrdiff_t>(i), controls.end(),
                                   [&](const Control* c) { return c->Bounds != control->Bounds; });
    const bool shares = next != controls.end() && (*next)->Container == control->Container &&
                        ((*next)->Kind == ControlKind::Button || (*next)->Kind == ControlKind::Image);
    const int32_t behind = shares && NaturalWidth(**next) < width / 3 ? NaturalWidth(**next) + 1 : 0;
    int32_t wide = Grows(*control) ? width : box ? kLeast : natural;
    if (x > 0 && x + wide > width) next_line();
    if (box) wide = std::max(kLeast, width - x - behind);
    wide = std::min(wide, width);
    flow.places.push_back({control, {margin + x, y, wide, NaturalRows(*control)}});
    rows = std::max(rows, NaturalRows(*control));
    x += wide + 1;
  }
  next_line();
  flow.size = {width + 2 * margin, y};
  return flow;
}

}  // namespace

const Rect* Arrangement::Of(const Control* control) const {
  const auto place = std::ranges::find(places, control, &Place::control);
  return place == places.end() ? nullptr : &place->area;
}

Arrangement Arrange(const controls::Form& form, int32_t width, int32_t margin) {
  auto arrangement = Grid(form);
  return arrangement.size.width <= width ? arrangement : Flow(form, width - 2 * margin, margin);
}

int32_t TextUnits(std::u16string_view text) { return text.empty() ? 0 : kUnits * (WidthOf(text) + 1); }

}  // namespace rowlark::terminal
