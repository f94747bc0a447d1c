#include "settings/clsVTRLKItems.h"

#include "util/Text.h"

namespace rowlark {
namespace {

std::u16string NormalizeHotKey(std::u16string_view key) {
  return key.find(u'{') == std::u16string_view::npos ? ToLower(key) : std::u16string(key);
}

}  // namespace

clsVTRLKItems::clsVTRLKItems(const SharedState& shared)
    : DefaultItem(std::make_shared<clsVTRLKItem>(shared)) {
  profiles_.SetCompareMode(CompareMode::Text);
}

void clsVTRLKItems::SetHotKeySearch(std::u16string_view key) { hot_key_search_ = NormalizeHotKey(key); }

void clsVTRLKItems::SetHotKeyUnhide(std::u16string_view key) { mstrHotKeyUnhide = NormalizeHotKey(key); }

bool clsVTRLKItems::Add(const std::shared_ptr<clsVTRLKItem>& item) {
  if (Exists(item->Name())) return false;
  profiles_.Add(item->Name(), item);
  return true;
}

void clsVTRLKItems::SetByName(std::u16string_view name, const std::shared_ptr<clsVTRLKItem>& item) {
  profiles_.SetData(name, item);
}

void clsVTRLKItems::SetItem(int32_t Index, const std::shared_ptr<clsVTRLKItem>& item) {
  profiles_.SetData(Index, item);
}

// Only profiles are ever added.
std::shared_ptr<clsVTRLKItem> clsVTRLKItems::ToItem(const mclsVTDictionary::Value& value) {
  const auto* object = std::get_if<std::shared_ptr<void>>(&value);
  return object != nullptr ? std::static_pointer_cast<clsVTRLKItem>(*object) : nullptr;
}

}  // namespace rowlark
