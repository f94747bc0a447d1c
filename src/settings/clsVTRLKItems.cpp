#include "settings/clsVTRLKItems.h"

#include <exception>
#include <vector>

#include "settings/Product.h"
#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

std::u16string NormalizeHotKey(std::u16string_view key) {
  return key.find(u'{') == std::u16string_view::npos ? ToLower(key) : std::u16string(key);
}

}  // namespace

clsVTRLKItems::clsVTRLKItems(SharedState& shared)
    : DefaultItem(std::make_shared<clsVTRLKItem>(shared)),
      RecentItems(std::make_shared<clsVTRLKRecentItems>(shared)),
      shared_(shared) {
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

std::u16string clsVTRLKItems::ToString(bool ResetLangFile) const {
  const auto flag = [](bool on) { return std::u16string(on ? u"1" : u""); };
  std::vector<std::u16string> profiles = {DefaultItem->ToString()};
  for (int32_t i = 0; i < count(); ++i) profiles.push_back(Item(i)->ToString());
  const std::vector<std::u16string> options = {
      UnhideOnEsc ? u"1" : u"0",
      RecentItems->ToString(),
      HotKeySearch(),
      HotKeyUnhide(),
      ResetLangFile ? std::u16string() : shared_.Language->LangFile(),
      flag(EditAutoClose),
      flag(AutoDetectSearchText)};
  const std::vector<std::u16string> both = {mclsVTString::ArrayJoin(profiles, PackedCount::Text),
                                            mclsVTString::ArrayJoin(options, PackedCount::Text)};
  return mclsVTString::ArrayJoin(both, PackedCount::Text);
}

bool clsVTRLKItems::ToObject(std::u16string_view strData) {
  if (strData.empty()) return true;
  auto both = mclsVTString::ArraySalvage(strData, true);
  both.resize(2);
  const auto profiles = mclsVTString::ArraySalvage(both[0], true);
  auto options = mclsVTString::ArraySalvage(both[1]);
  options.resize(7);

  UnhideOnEsc = options[0] == u"1";
  RecentItems->ToObject(options[1]);
  hot_key_search_ = options[2];
  mstrHotKeyUnhide = options[3];
  auto language = options[4];
  if (language.empty()) {
    language = shared_.Registry.GetString(host::Hive::LocalMachine, kProductKey, u"SetupLanguage", u"");
    if (!language.empty()) language += u".lng";
  }
  shared_.Language->SetLangFile(language);
  EditAutoClose = !options[5].empty();
  AutoDetectSearchText = !options[6].empty();

  if (profiles.empty()) return true;
  DefaultItem->ToObject(profiles[0]);
  for (std::size_t i = 1; i < profiles.size(); ++i) {
    const auto item = std::make_shared<clsVTRLKItem>(shared_);
    item->ToObject(profiles[i]);
    Add(item);
  }
  return true;
}

bool clsVTRLKItems::CfgSave(bool ResetLangFile) {
  if (CfgFileName.empty()) return false;
  try {
    const auto folder = CfgFileName.substr(0, CfgFileName.find_last_of(u"\\/") + 1);
    if (!folder.empty() && !shared_.Platform.Files.IsPathExists(folder))
      shared_.Platform.Files.DirsMake(folder);
    shared_.Platform.Files.StringWrite(CfgFileName, ToString(ResetLangFile));
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

bool clsVTRLKItems::CfgLoad() {
  if (!shared_.Platform.Files.IsFileExists(CfgFileName)) return true;
  try {
    return ToObject(shared_.Platform.Files.StringRead(CfgFileName));
  } catch (const std::exception&) {
    return false;
  }
}

// Only profiles are ever added.
std::shared_ptr<clsVTRLKItem> clsVTRLKItems::ToItem(const mclsVTDictionary::Value& value) {
  const auto* object = std::get_if<std::shared_ptr<void>>(&value);
  return object != nullptr ? std::static_pointer_cast<clsVTRLKItem>(*object) : nullptr;
}

}  // namespace rowlark
