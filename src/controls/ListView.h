#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "controls/Control.h"

namespace rowlark::controls {

// Rows with an icon, as wide as the list. Indices count from 0; -1 is none.
class ListView final : public Control {
 public:
  struct Item {
    std::u16string text;
    std::u16string small_icon;  // name of a picture
    int32_t tag;
  };

  ListView(Form& form, std::u16string_view name) : Control(form, ControlKind::ListView, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  const std::vector<Item>& Items() const { return items_; }
  void AddItem(Item item) {
    items_.push_back(std::move(item));
    Notify(Property::List);
  }
  void Clear() {
    items_.clear();
    selected_ = -1;
    Notify(Property::List);
  }

  // Raises ItemClick, also for the row that is selected already.
  void Select(int32_t index) {
    if (index < 0 || index >= static_cast<int32_t>(items_.size())) return;
    Set(selected_, index, Property::ListIndex);
    ItemClick.Raise();
  }
  int32_t Selected() const { return selected_; }
  const Item* SelectedItem() const {
    return selected_ < 0 ? nullptr : &items_[static_cast<std::size_t>(selected_)];
  }

  Size Needs(const Ruler& ruler, Extent least) const override {
    return {least.characters * ruler.metrics.character, least.lines * ruler.metrics.entry};
  }
  Room RoomInLine() const override { return Room::Lines; }

  Slot<> ItemClick{*this, "ItemClick"};

  void UserPicked(int32_t index) {
    OnUser([&] {
      if (Enabled()) Select(index);
    });
  }

 private:
  std::vector<Item> items_;
  int32_t selected_ = -1;
};

}  // namespace rowlark::controls
