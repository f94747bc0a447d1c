#include "settings/clsVTRLKRecentItems.h"

#include <algorithm>

#include "settings/Configuration.h"
#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {

void clsVTRLKRecentItems::Add(std::u16string_view strItem) {
  if (!Use || strItem.find_first_not_of(u' ') == std::u16string_view::npos || Exists(strItem)) return;
  entries_.emplace_back(strItem);
  if (count() > MaxItemsCount) entries_.erase(entries_.begin());
}

bool clsVTRLKRecentItems::Exists(std::u16string_view text) const {
  return std::ranges::any_of(
      entries_, [text](const auto& entry) { return Compare(entry, text, CompareMode::Text) == 0; });
}

std::u16string clsVTRLKRecentItems::Item(int32_t Index) const {
  if (Index < 0 || Index >= count()) return {};
  return entries_[static_cast<std::size_t>(Index)];
}

std::u16string clsVTRLKRecentItems::ToString() const {
  const std::vector<std::u16string> fields = {ToText(MaxItemsCount),
                                              mclsVTString::ArrayJoin(entries_, PackedCount::Text),
                                              Use ? u"1" : u"", IsTemporary ? u"1" : u""};
  return mclsVTString::ArrayJoin(fields, PackedCount::Text);
}

void clsVTRLKRecentItems::ToObject(std::u16string_view strData) {
  entries_.clear();
  MaxItemsCount = 10;
  if (strData.empty()) return;
  const auto fields = StoredList(strData, 4);
  MaxItemsCount = ToInteger(fields[0].value_or(u"")).value_or(MaxItemsCount);
  if (fields[2]) Use = !fields[2]->empty();
  if (fields[3]) IsTemporary = !fields[3]->empty();
  if (Use && fields[1]) entries_ = mclsVTString::ArraySalvage(*fields[1]);
  if (IsTemporary && !foundation_->HistoryCleared) {
    foundation_->HistoryCleared = true;
    entries_.clear();
  }
}

}  // namespace rowlark
