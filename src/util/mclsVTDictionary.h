// An ordered map from text keys to values, on demand kept sorted by key. A key is found whatever its letter
// case; positions count from 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "util/Text.h"

namespace rowlark {

enum class SortMode : int32_t {
  Insertion = 0,
  Ascending = 1,   // by key
  Descending = 2,  // by key
};

class mclsVTDictionary {
  struct FoldedHash {
    using is_transparent = void;
    std::size_t operator()(std::u16string_view key) const noexcept;
  };
  struct FoldedEqual {
    using is_transparent = void;
    bool operator()(std::u16string_view a, std::u16string_view b) const {
      return a.size() == b.size() && Compare(a, b, rowlark::CompareMode::Text) == 0;
    }
  };

 public:
  // Nothing, a number, a text or an object reference.
  using Value = std::variant<std::monostate, int32_t, double, std::u16string, std::shared_ptr<void>>;

 private:
  // The nodes of the map stay where they are, so the order is kept beside it.
  using Map = std::unordered_map<std::u16string, Value, FoldedHash, FoldedEqual>;
  using Order = std::vector<Map::value_type*>;

 public:
  // Walks over the keys in the dictionary's order.
  class Iterator {
   public:
    using value_type = std::u16string;
    using difference_type = std::ptrdiff_t;
    using pointer = const std::u16string*;
    using reference = const std::u16string&;
    using iterator_category = std::forward_iterator_tag;

    Iterator() = default;
    explicit Iterator(Order::const_iterator at) : at_(at) {}
    reference operator*() const { return (*at_)->first; }
    pointer operator->() const { return &(*at_)->first; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    Iterator operator++(int) { return Iterator(at_++); }
    bool operator==(const Iterator&) const = default;

   private:
    Order::const_iterator at_;
  };

  mclsVTDictionary() = default;
  mclsVTDictionary(const mclsVTDictionary&) = delete;
  mclsVTDictionary& operator=(const mclsVTDictionary&) = delete;

  // Inserts unless the key exists or, while sorting, equals another under `CompareMode`.
  void Add(std::u16string_view key, Value value);
  void Add(int32_t key, Value value) { Add(ToText(key), std::move(value)); }

  // Empties the dictionary and clears its flags; the modes stay.
  void Clear();

  int32_t Count() const noexcept { return static_cast<int32_t>(order_.size()); }
  bool Exists(std::u16string_view key) const { return values_.find(key) != values_.end(); }

  // A missing key or position leaves the dictionary unchanged.
  void Remove(std::u16string_view key);
  void Remove(int32_t position);

  // The value; nothing (std::monostate) for a missing key or position. Writing one replaces the value in
  // place and ignores what is missing.
  const Value& Data(std::u16string_view key) const;
  const Value& Data(int32_t position) const;
  void SetData(std::u16string_view key, Value value);
  void SetData(int32_t position, Value value);

  // The key; empty for a missing position. Writing one keeps the entry's position and value; it is ignored
  // for a missing position and for a key that another entry has.
  std::u16string_view Key(int32_t position) const;
  void SetKey(int32_t position, std::u16string_view key);

  // How keys are ordered; neither sorts the entries that are there, so they are set before the first `Add`.
  rowlark::CompareMode CompareMode() const noexcept { return compare_mode_; }
  void SetCompareMode(rowlark::CompareMode mode) noexcept { compare_mode_ = mode; }
  rowlark::SortMode SortMode() const noexcept { return sort_mode_; }
  void SetSortMode(rowlark::SortMode mode) noexcept { sort_mode_ = mode; }

  // Set by every insertion, removal and written value.
  bool Changed() const noexcept { return changed_; }
  // Set by the first object reference added, and by another value added after one.
  bool HasObjects() const noexcept { return has_objects_; }
  bool Mixed() const noexcept { return mixed_; }

  Iterator begin() const noexcept { return Iterator(order_.begin()); }
  Iterator end() const noexcept { return Iterator(order_.end()); }

 private:
  bool HasPosition(int32_t position) const noexcept { return position >= 0 && position < Count(); }
  // Where a new key belongs, or -1 when an equal one stands there.
  std::ptrdiff_t InsertionOffset(std::u16string_view key) const;
  void Erase(Order::const_iterator entry);

  bool mixed_ = false;
  bool has_objects_ = false;
  bool changed_ = false;
  rowlark::SortMode sort_mode_ = rowlark::SortMode::Insertion;
  rowlark::CompareMode compare_mode_ = rowlark::CompareMode::Binary;
  Order order_;
  Map values_;
};

}  // namespace rowlark
