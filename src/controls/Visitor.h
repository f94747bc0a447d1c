// Something that is done to a control in another way for every kind of control: drawing it, pressing a key in
// it.
#pragma once

namespace rowlark::controls {

class Button;
class CheckBox;
class ComboBox;
class Frame;
class Image;
class Label;
class ListView;
class OptionButton;
class TextBox;
class Timer;
class ToolBar;
class TreeView;

// Kinds that are not overridden are left alone.
class Visitor {
 public:
  virtual ~Visitor() = default;
  virtual void Visit(Button&) {}
  virtual void Visit(CheckBox&) {}
  virtual void Visit(ComboBox&) {}
  virtual void Visit(Frame&) {}
  virtual void Visit(Image&) {}
  virtual void Visit(Label&) {}
  virtual void Visit(ListView&) {}
  virtual void Visit(OptionButton&) {}
  virtual void Visit(TextBox&) {}
  virtual void Visit(Timer&) {}
  virtual void Visit(ToolBar&) {}
  virtual void Visit(TreeView&) {}
};

}  // namespace rowlark::controls
