// The texts that the user searched for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "settings/SharedState.h"

namespace rowlark {

class clsVTRLKRecentItems {
 public:
  explicit clsVTRLKRecentItems(SharedState& shared) : foundation_(shared.Foundation) {}

  bool Use = true;             // without it nothing is added or read
  bool IsTemporary = false;    // lives for one run of the host: the first load of a run empties it
  int32_t MaxItemsCount = 10;  // not enforced on what is loaded

  // Appends a text that is more than spaces and not there yet (letter case ignored), unchanged; the oldest
  // one goes when there are too many. One goes at most, so a lowered maximum is reached text by text.
  void Add(std::u16string_view strItem);
  void Clear() { entries_.clear(); }
  int32_t count() const { return static_cast<int32_t>(entries_.size()); }
  bool Exists(std::u16string_view text) const;  // letter case ignored
  std::u16string Item(int32_t Index) const;     // from 0, oldest first; empty outside

  // The whole state as a packed list, and back. What can not be read keeps its value, but for the texts and
  // their maximum, which are as they were made.
  std::u16string ToString() const;
  void ToObject(std::u16string_view strData);

 private:
  std::shared_ptr<Foundation> foundation_;
  std::vector<std::u16string> entries_;
};

}  // namespace rowlark
