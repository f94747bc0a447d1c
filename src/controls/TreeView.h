#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "controls/Control.h"

namespace rowlark::controls {

// Nodes with a key and a text, all at the top level. Indices count from 0; -1 is none.
class TreeView final : public Control {
 public:
  struct Node {
    std::u16string key;
    std::u16string text;
  };

  TreeView(Form& form, std::u16string_view name) : Control(form, ControlKind::TreeView, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  const std::vector<Node>& Nodes() const { return nodes_; }
  void AddNode(std::u16string_view key) {
    nodes_.push_back({std::u16string(key), {}});
    Notify(Property::List);
  }
  void SetNodeText(std::size_t index, std::u16string_view text) {
    nodes_[index].text = text;
    Notify(Property::List);
  }

  int32_t Selected() const { return selected_; }
  // Raises NodeClick, also for the node that is selected already.
  void Select(int32_t index) {
    if (index < 0 || index >= static_cast<int32_t>(nodes_.size())) return;
    Set(selected_, index, Property::ListIndex);
    NodeClick.Raise(nodes_[static_cast<std::size_t>(index)]);
  }

  Size Needs(const Ruler& ruler, Extent least) const override {
    Size size{least.characters * ruler.metrics.character,
              static_cast<int32_t>(nodes_.size()) * ruler.metrics.entry};
    for (const auto& node : nodes_) {
      size.width = std::max(size.width, ruler.TextWidth(node.text) + ruler.metrics.tree_edges.width);
    }
    return size;
  }
  Room RoomInLine() const override { return Room::Lines; }

  Slot<const Node&> NodeClick{*this, "NodeClick"};

  void UserPicked(int32_t index) {
    OnUser([&] {
      if (Enabled()) Select(index);
    });
  }

 private:
  std::vector<Node> nodes_;
  int32_t selected_ = -1;
};

}  // namespace rowlark::controls
