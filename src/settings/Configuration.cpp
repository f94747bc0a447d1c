#include "settings/Configuration.h"

#include <algorithm>
#include <utility>

#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

using Texts = std::vector<std::u16string>;

std::u16string Pack(const Texts& list) { return mclsVTString::ArrayJoin(list, PackedCount::Text); }

bool Same(std::u16string_view a, std::u16string_view b) { return Compare(a, b, CompareMode::Text) == 0; }

bool IsWhole(std::u16string_view list) {
  bool damaged = false;
  mclsVTString::ArraySalvage(list, false, &damaged);
  return !damaged;
}

bool Contains(const Texts& list, std::u16string_view text) {
  return std::ranges::any_of(list, [text](const auto& one) { return Same(one, text); });
}

// The coordinates of a profile are numbers. Where a list was cut the wrong way anything may stand there.
bool IsProfile(const Texts& fields) {
  for (std::size_t i = 2; i < std::min<std::size_t>(fields.size(), 6); ++i) {
    if (!ToInteger(fields[i])) return false;
  }
  return !fields.empty();
}

struct History {
  static constexpr std::size_t kMaximum = 0, kEntries = 1, kFields = 4;

  explicit History(const std::optional<std::u16string>& text)
      : fields(StoredList(text.value_or(u""), kFields)),
        entries(mclsVTString::ArraySalvage(fields[kEntries].value_or(u""))) {}

  std::u16string ToString() const {
    Texts list;
    for (const auto& field : fields) list.push_back(field.value_or(u""));
    list[kEntries] = Pack(entries);
    return Pack(list);
  }

  std::vector<std::optional<std::u16string>> fields;
  Texts entries;
};

void TakeUntouched(const std::optional<std::u16string>& base, std::optional<std::u16string>& mine,
                   const std::optional<std::u16string>& theirs) {
  if (theirs && mine == base) mine = theirs;
}

// Texts that went from here go from the file, and those that are new here are added as a search adds them.
// One that a damaged file lacks may not have been removed by anybody.
std::u16string MergeHistories(const History& base, const History& mine, const History& theirs, bool damaged) {
  History merged = mine;
  for (std::size_t i = 0; i < History::kFields; ++i)
    TakeUntouched(base.fields[i], merged.fields[i], theirs.fields[i]);
  merged.entries = theirs.entries;
  std::erase_if(merged.entries, [&](const auto& text) {
    return Contains(base.entries, text) && !Contains(mine.entries, text);
  });
  const int32_t maximum = ToInteger(merged.fields[History::kMaximum].value_or(u"")).value_or(10);
  for (const auto& text : mine.entries) {
    if ((Contains(base.entries, text) && !damaged) || Contains(merged.entries, text)) continue;
    merged.entries.push_back(text);
    if (std::ssize(merged.entries) > maximum) merged.entries.erase(merged.entries.begin());
  }
  return merged.ToString();
}

}  // namespace

std::vector<std::optional<std::u16string>> StoredList(std::u16string_view text, std::size_t size) {
  bool damaged = false;
  auto elements = mclsVTString::ArraySalvage(text, false, &damaged);
  if (!damaged || elements.size() > size) elements.resize(size);
  std::vector<std::optional<std::u16string>> list(size);
  std::ranges::move(elements, list.begin());
  return list;
}

const Configuration::Profile* Configuration::Find(std::u16string_view name) const {
  const auto found =
      std::ranges::find_if(profiles, [name](const auto& profile) { return Same(profile.name, name); });
  return found == profiles.end() ? nullptr : &*found;
}

void Configuration::SetHistoryTexts(const std::optional<std::u16string>& history) {
  History own(options[kHistory]);
  own.entries = History(history).entries;
  options[kHistory] = own.ToString();
}

Configuration Configuration::Parse(std::u16string_view text) {
  Configuration read;
  if (text.empty()) return read;
  bool outer_damaged = false;
  auto both = mclsVTString::ArraySalvage(text, true, &outer_damaged);
  if (outer_damaged && text.ends_with(u'\n')) {  // an editor's
    text = text.substr(0, text.find_last_not_of(u"\r\n") + 1);
    outer_damaged = false;
    both = mclsVTString::ArraySalvage(text, true, &outer_damaged);
  }
  both.resize(2);

  bool damaged = outer_damaged;
  const auto profiles = mclsVTString::ArraySalvage(both[0], true, &damaged);
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    bool profile_damaged = false;
    const auto fields = mclsVTString::ArraySalvage(profiles[i], false, &profile_damaged);
    damaged |= profile_damaged;
    if (fields.empty() || (outer_damaged && !IsProfile(fields))) {
      damaged = true;
      continue;
    }
    if (i == 0) {
      read.default_profile = profiles[i];
    } else if (fields.size() < 2 || fields[1].empty()) {
      damaged = true;
    } else if (read.Find(fields[1]) == nullptr) {
      read.profiles.push_back({fields[1], profiles[i]});
    }
  }

  if (both[1].empty()) {
    damaged = true;
  } else {
    auto options = StoredList(both[1], kOptions);
    std::move(options.begin(), options.end(), read.options.begin());
    const auto history = mclsVTString::ArraySalvage(read.options[kHistory].value_or(u""), false, &damaged);
    damaged |= !IsWhole(both[1]) || (history.size() > 1 && !IsWhole(history[1]));
  }
  read.damaged = damaged;
  return read;
}

std::u16string Configuration::ToString() const {
  Texts profile_list = {default_profile.value_or(u"")};
  for (const auto& profile : profiles) profile_list.push_back(profile.text);
  Texts option_list;
  for (const auto& option : options) option_list.push_back(option.value_or(u""));
  return Pack({Pack(profile_list), Pack(option_list)});
}

Configuration Merge(const Configuration& base, const Configuration& mine, const Configuration& theirs) {
  Configuration merged = mine;
  if (IsWhole(theirs.default_profile.value_or(u"")))
    TakeUntouched(base.default_profile, merged.default_profile, theirs.default_profile);
  for (std::size_t i = 0; i < Configuration::kOptions; ++i) {
    if (i != Configuration::kHistory) TakeUntouched(base.options[i], merged.options[i], theirs.options[i]);
  }
  constexpr auto kHistory = Configuration::kHistory;
  if (theirs.options[kHistory]) {
    merged.options[kHistory] =
        MergeHistories(History(base.options[kHistory]), History(mine.options[kHistory]),
                       History(theirs.options[kHistory]), theirs.damaged);
  }

  merged.profiles.clear();
  for (const auto& profile : mine.profiles) {
    const auto* known = base.Find(profile.name);
    const auto* other = theirs.Find(profile.name);
    if (known == nullptr || known->text != profile.text) {
      merged.profiles.push_back(profile);
    } else if (other != nullptr && IsWhole(other->text)) {
      merged.profiles.push_back(*other);
    } else if (theirs.damaged) {  // nobody need have removed it
      merged.profiles.push_back(profile);
    }
  }
  for (const auto& profile : theirs.profiles) {
    // What is written again is whole.
    if (mine.Find(profile.name) == nullptr && base.Find(profile.name) == nullptr)
      merged.profiles.push_back({profile.name, Pack(mclsVTString::ArraySalvage(profile.text))});
  }
  return merged;
}

}  // namespace rowlark
