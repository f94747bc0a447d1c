#include "util/mclsVTDictionary.h"

#include <algorithm>
#include <utility>

#include "util/Utf.h"

namespace rowlark {

std::size_t mclsVTDictionary::FoldedHash::operator()(std::u16string_view key) const noexcept {
  uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  while (!key.empty()) hash = (hash ^ FoldCase(TakeUtf16(key))) * 0x100000001B3;
  return static_cast<std::size_t>(hash ^ (hash >> 32));
}

std::ptrdiff_t mclsVTDictionary::InsertionOffset(std::u16string_view key) const {
  if (sort_mode_ == rowlark::SortMode::Insertion) return std::ssize(order_);
  const int32_t direction = sort_mode_ == rowlark::SortMode::Descending ? -1 : 1;
  std::ptrdiff_t low = 1;
  std::ptrdiff_t high = std::ssize(order_);
  while (low <= high) {
    const std::ptrdiff_t middle = (low + high) / 2;
    const std::u16string& present = order_[static_cast<std::size_t>(middle - 1)]->first;
    const int32_t order = direction * Compare(present, key, compare_mode_);
    if (order == 0) return -1;
    if (order < 0) {
      low = middle + 1;
    } else {
      if (low == middle) break;
      high = middle;
    }
  }
  return low - 1;
}

void mclsVTDictionary::Add(std::u16string_view key, Value value) {
  if (Exists(key)) return;
  const std::ptrdiff_t offset = InsertionOffset(key);
  if (offset < 0) return;

  // With room in the order beforehand nothing below fails half way.
  if (order_.size() == order_.capacity()) order_.reserve(2 * order_.size() + 8);
  const bool is_object = std::holds_alternative<std::shared_ptr<void>>(value);
  const auto entry = values_.emplace(key, std::move(value)).first;
  order_.insert(order_.begin() + offset, &*entry);
  if (is_object) {
    has_objects_ = true;
  } else if (has_objects_) {
    mixed_ = true;
  }
  changed_ = true;
}

void mclsVTDictionary::Clear() {
  order_.clear();
  values_.clear();
  mixed_ = has_objects_ = changed_ = false;
}

void mclsVTDictionary::Erase(Order::const_iterator entry) {
  const auto node = values_.find((*entry)->first);
  order_.erase(entry);
  values_.erase(node);
  changed_ = true;
}

void mclsVTDictionary::Remove(std::u16string_view key) {
  const auto found = values_.find(key);
  if (found != values_.end()) Erase(std::find(order_.begin(), order_.end(), &*found));
}

void mclsVTDictionary::Remove(int32_t position) {
  if (HasPosition(position)) Erase(order_.begin() + position);
}

const mclsVTDictionary::Value& mclsVTDictionary::Data(std::u16string_view key) const {
  static const Value kNothing;
  const auto found = values_.find(key);
  return found == values_.end() ? kNothing : found->second;
}

const mclsVTDictionary::Value& mclsVTDictionary::Data(int32_t position) const {
  static const Value kNothing;
  return HasPosition(position) ? order_[static_cast<std::size_t>(position)]->second : kNothing;
}

void mclsVTDictionary::SetData(std::u16string_view key, Value value) {
  const auto found = values_.find(key);
  if (found == values_.end()) return;
  found->second = std::move(value);
  changed_ = true;
}

void mclsVTDictionary::SetData(int32_t position, Value value) {
  if (!HasPosition(position)) return;
  order_[static_cast<std::size_t>(position)]->second = std::move(value);
  changed_ = true;
}

std::u16string_view mclsVTDictionary::Key(int32_t position) const {
  if (!HasPosition(position)) return {};
  return order_[static_cast<std::size_t>(position)]->first;
}

void mclsVTDictionary::SetKey(int32_t position, std::u16string_view key) {
  if (!HasPosition(position)) return;
  const auto entry = values_.find(order_[static_cast<std::size_t>(position)]->first);
  const auto holder = values_.find(key);
  if (holder != values_.end() && holder != entry) return;
  std::u16string changed(key);  // made before the entry leaves the map
  auto node = values_.extract(entry);
  node.key() = std::move(changed);
  values_.insert(std::move(node));
}

}  // namespace rowlark
