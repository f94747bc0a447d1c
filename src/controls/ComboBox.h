#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "controls/TextInput.h"

namespace rowlark::controls {

// A text, editable or not, with a list of entries to pick from. Indices count from 0; -1 is none.
class ComboBox final : public TextInput {
 public:
  ComboBox(Form& form, std::u16string_view name) : TextInput(form, ControlKind::ComboBox, name) {}

  void Accept(Visitor& visitor) override { visitor.Visit(*this); }

  bool DropDownList = false;  // the text is one of the entries and can not be edited

  int32_t ListCount() const { return static_cast<int32_t>(list_.size()); }
  const std::u16string& List(int32_t index) const { return list_[static_cast<std::size_t>(index)]; }
  void SetList(int32_t index, std::u16string_view text);
  // Appends an entry, or puts it before another one.
  void AddItem(std::u16string_view text, int32_t index = -1);
  // The text goes as well, without an event.
  void Clear();

  // Selecting an entry makes it the text and raises Click. Any other change of the text ends its selection,
  // and so does -1, which leaves the text.
  int32_t ListIndex() const { return list_index_; }
  void SetListIndex(int32_t index);

  void UserPicked(int32_t index);

 private:
  void TextChanged() override { list_index_ = -1; }

  std::vector<std::u16string> list_;
  int32_t list_index_ = -1;
};

}  // namespace rowlark::controls
