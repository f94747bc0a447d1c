#include "settings/clsVTRLKItems.h"

#include <exception>
#include <utility>

#include "util/AutomationError.h"
#include "util/PathMap.h"
#include "util/Text.h"

namespace rowlark {
namespace {

std::u16string NormalizeHotKey(std::u16string_view key) {
  return key.find(u'{') == std::u16string_view::npos ? ToLower(key) : std::u16string(key);
}

}  // namespace

clsVTRLKItems::clsVTRLKItems(SharedState& shared)
    : DefaultItem(std::make_shared<clsVTRLKItem>(shared)),
      RecentItems(std::make_shared<clsVTRLKRecentItems>(shared)),
      foundation_(shared.Foundation) {
  profiles_.SetCompareMode(CompareMode::Text);
}

void clsVTRLKItems::SetHotKeySearch(std::u16string_view key) { hot_key_search_ = NormalizeHotKey(key); }

void clsVTRLKItems::SetHotKeyUnhide(std::u16string_view key) { mstrHotKeyUnhide = NormalizeHotKey(key); }

bool clsVTRLKItems::Add(const std::shared_ptr<clsVTRLKItem>& item) {
  if (Exists(item->Name())) return false;
  profiles_.Add(item->Name(), item);
  return true;
}

std::shared_ptr<clsVTRLKItem> clsVTRLKItems::ForWorkbook(std::u16string_view name) const {
  auto profile = ByName(name);
  return profile ? profile : DefaultItem;
}

void clsVTRLKItems::SetByName(std::u16string_view name, const std::shared_ptr<clsVTRLKItem>& item) {
  profiles_.SetData(name, item);
}

void clsVTRLKItems::SetItem(int32_t Index, const std::shared_ptr<clsVTRLKItem>& item) {
  profiles_.SetData(Index, item);
}

Configuration clsVTRLKItems::Present(bool ResetLangFile) const {
  const auto flag = [](bool on) { return std::u16string(on ? u"1" : u""); };
  Configuration present;
  present.default_profile = DefaultItem->ToString();
  for (int32_t i = 0; i < count(); ++i) present.profiles.push_back({Item(i)->Name(), Item(i)->ToString()});
  const auto* const language = foundation_->Language.get();
  const bool chosen = language != nullptr && !language->IsDefault() && !ResetLangFile;
  present.options = {UnhideOnEsc ? u"1" : u"0",
                     RecentItems->ToString(),
                     HotKeySearch(),
                     HotKeyUnhide(),
                     chosen ? language->LangFile() : std::u16string(),
                     flag(EditAutoClose),
                     flag(AutoDetectSearchText)};
  return present;
}

std::u16string clsVTRLKItems::ToString(bool ResetLangFile) const { return Present(ResetLangFile).ToString(); }

bool clsVTRLKItems::ToObject(std::u16string_view strData) {
  Apply(Configuration::Parse(strData));
  return true;
}

std::vector<Configuration::Profile> clsVTRLKItems::Apply(const Configuration& read) {
  const auto& options = read.options;
  if (options[Configuration::kUnhideOnEsc]) UnhideOnEsc = options[Configuration::kUnhideOnEsc] == u"1";
  if (options[Configuration::kHistory]) RecentItems->ToObject(*options[Configuration::kHistory]);
  if (options[Configuration::kHotKeySearch]) hot_key_search_ = *options[Configuration::kHotKeySearch];
  if (options[Configuration::kHotKeyUnhide]) mstrHotKeyUnhide = *options[Configuration::kHotKeyUnhide];
  if (const auto& language = options[Configuration::kLanguage]; language && foundation_->Language) {
    // There are files with the bare extension for a language that the set-up lacked.
    if (language->empty() || language == u".lng") {
      foundation_->Language->SetDefault();
    } else {
      foundation_->Language->SetLangFile(*language);
    }
  }
  const auto flag = [](const std::optional<std::u16string>& option, bool& value) {
    if (option) value = !option->empty();
  };
  flag(options[Configuration::kEditAutoClose], EditAutoClose);
  flag(options[Configuration::kAutoDetectSearchText], AutoDetectSearchText);

  if (read.default_profile) DefaultItem->ToObject(*read.default_profile);
  std::vector<Configuration::Profile> profiles;
  for (const auto& profile : read.profiles) {
    const auto item = std::make_shared<clsVTRLKItem>(foundation_);
    item->ToObject(profile.text);
    profiles.push_back({profile.name, item->ToString()});
    Add(item);
  }
  return profiles;
}

// Texts that the load has passed over (of a history that is temporary, or not used) are known all the same:
// they are gone from here.
void clsVTRLKItems::Remember(std::vector<Configuration::Profile> profiles,
                             const std::optional<std::u16string>& history) {
  known_ = Present(false);
  known_.profiles = std::move(profiles);
  known_.SetHistoryTexts(history);
  known_file_ = CfgFileName;
}

// The text of the file, or nothing when there is none. Another program may hold a file for a moment. Throws
// AutomationError.
std::optional<std::u16string> clsVTRLKItems::ReadFile() const {
  constexpr uint32_t kPatience = 500, kPause = 10;  // milliseconds
  auto& pump = foundation_->Platform->Pump;
  const auto& files = foundation_->Platform->Files;
  const uint32_t begin = pump.TickCount();
  for (;;) {
    try {
      if (files.IsMissing(CfgFileName)) return std::nullopt;
      return files.StringRead(CfgFileName);
    } catch (const AutomationError&) {
      if (pump.TickCount() - begin >= kPatience) throw;
      pump.WaitForInput(kPause);
    }
  }
}

bool clsVTRLKItems::CfgLoad() {
  if (foundation_->Platform == nullptr) return false;
  try {
    const auto read = Configuration::Parse(ReadFile().value_or(u""));
    Remember(Apply(read), read.options[Configuration::kHistory]);
    return true;
  } catch (const std::exception&) {
    TraceCaught(foundation_->Trace());
    // What the file holds is not known, so a save has to find out.
    if (known_file_ != CfgFileName) Remember({}, std::nullopt);
    return false;
  }
}

bool clsVTRLKItems::CfgSave(bool ResetLangFile) {
  if (CfgFileName.empty() || foundation_->Platform == nullptr) return false;
  const auto& files = foundation_->Platform->Files;
  try {
    const auto folder = CfgFileName.substr(0, CfgFileName.find_last_of(PathMap::kSeparators) + 1);
    if (!folder.empty() && !files.IsPathExists(folder)) files.DirsMake(folder);
    // Where there are no locks two that save at once leave one of the two files.
    const auto lock = files.Lock(CfgFileName + u".lock");
    auto present = Present(ResetLangFile);
    auto written = present;
    if (const auto text = ReadFile()) {
      const auto theirs = Configuration::Parse(*text);
      if (theirs.damaged) files.BinaryWrite(CfgFileName + u".damaged", files.BinaryRead(CfgFileName));
      if (known_file_ == CfgFileName) written = Merge(known_, present, theirs);
    }
    if (ResetLangFile) written.options[Configuration::kLanguage].reset();
    files.StringWrite(CfgFileName, written.ToString());
    known_ = std::move(present);
    known_file_ = CfgFileName;
    return true;
  } catch (const std::exception&) {
    TraceCaught(foundation_->Trace());
    return false;
  }
}

// Only profiles are ever added.
std::shared_ptr<clsVTRLKItem> clsVTRLKItems::ToItem(const mclsVTDictionary::Value& value) {
  const auto* object = std::get_if<std::shared_ptr<void>>(&value);
  return object != nullptr ? std::static_pointer_cast<clsVTRLKItem>(*object) : nullptr;
}

}  // namespace rowlark
