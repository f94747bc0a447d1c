#include "controls/ComboBox.h"

namespace rowlark::controls {

void ComboBox::SetList(int32_t index, std::u16string_view text) {
  list_[static_cast<std::size_t>(index)] = text;
  Notify(Property::List);
  if (index == list_index_) Assign(text);
}

void ComboBox::AddItem(std::u16string_view text, int32_t index) {
  if (index < 0 || index > ListCount()) index = ListCount();
  list_.emplace(list_.begin() + index, text);
  if (list_index_ >= index) ++list_index_;
  Notify(Property::List);
}

void ComboBox::Clear() {
  list_.clear();
  list_index_ = -1;
  Notify(Property::List);
  Assign(u"");
}

void ComboBox::SetListIndex(int32_t index) {
  if (index < -1 || index >= ListCount() || index == list_index_) return;
  list_index_ = index;
  if (index < 0) return Notify(Property::ListIndex);
  Assign(List(index));
  SelectAll();
  Notify(Property::ListIndex);
  Click.Raise();
}

void ComboBox::UserPicked(int32_t index) {
  OnUser([&] {
    if (Enabled() && index >= 0) SetListIndex(index);
  });
}

}  // namespace rowlark::controls
