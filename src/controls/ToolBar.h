#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "controls/Control.h"

namespace rowlark::controls {

class ToolBar final : public Control {
 public:
  struct Button {
    std::u16string key;
    std::u16string caption;
    std::u16string tool_tip;
  };

  ToolBar(Form& form, std::u16string_view name) : Control(form, ControlKind::ToolBar, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  const std::vector<Button>& Buttons() const { return buttons_; }
  void SetButtons(std::vector<Button> buttons) {
    buttons_ = std::move(buttons);
    Notify(Property::List);
  }

  Size Needs(const Ruler& ruler, Extent) const override {
    Size size{0, ruler.metrics.line + ruler.metrics.tool_edges.height};
    for (const auto& button : buttons_) {
      size.width += ruler.TextWidth(button.caption) + ruler.metrics.tool_edges.width;
    }
    return size;
  }
  Room RoomInLine() const override { return Room::LineOfItsOwn; }

  Slot<std::u16string_view> ButtonClick{*this, "ButtonClick"};  // with the button's key

  void UserPressed(std::u16string_view key) {
    OnUser([&] {
      if (Enabled()) ButtonClick.Raise(key);
    });
  }

 private:
  bool TakesFocus() const override { return false; }

  std::vector<Button> buttons_;
};

}  // namespace rowlark::controls
