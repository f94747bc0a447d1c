// What shows a form on a screen.
#pragma once

#include <cstdint>
#include <string_view>

#include "controls/Units.h"

namespace rowlark::controls {

class Control;
class Form;
struct Metrics;

// What of a control was set by code, so that its window has to follow.
enum class Property {
  Caption,
  Text,
  Selection,  // of text
  Value,
  Enabled,
  Visible,
  ToolTip,
  List,       // the entries of a list, the nodes of a tree, the buttons of a tool bar
  ListIndex,  // the selected one of them
  Focus,
  Layout,    // of a form: all bounds
  Position,  // of a form
  Owner,     // of a form
  Topmost,   // of a form
  Timer,     // started anew, or stopped
};

class View {
 public:
  virtual ~View() = default;

  virtual void Changed(Control& control, Property property) noexcept = 0;

  // The form is being unloaded: its window goes, and nothing of it may be reported any more.
  virtual void Released(Form& form) noexcept = 0;

  // The unit of bounds is the screen's own: a dialog unit, unless its metrics say otherwise.
  virtual const Metrics& MetricsOf(const Form& form) const noexcept;

  // Width of a line of text in the forms' font.
  virtual int32_t TextWidth(std::u16string_view text) const noexcept = 0;

  // Outer size of a window whose inner area has that size.
  virtual TwipSize WindowSize(Size client) const noexcept = 0;
};

}  // namespace rowlark::controls
