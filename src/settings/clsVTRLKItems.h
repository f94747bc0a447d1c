// The user's settings: search profiles by workbook name, the profile for all other workbooks, the search
// history, hotkeys and switches, and the file that keeps them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "settings/Configuration.h"
#include "settings/clsVTRLKItem.h"
#include "settings/clsVTRLKRecentItems.h"
#include "util/mclsVTDictionary.h"

namespace rowlark {

class clsVTRLKItems {
 public:
  explicit clsVTRLKItems(SharedState& shared);

  bool UnhideOnEsc = true;                           // the search form shows all rows when it closes
  bool RowsIsGrouped = false;                        // a search has hidden rows; never stored
  bool EditAutoClose = false;                        // the edit form closes after an edit
  bool AutoDetectSearchText = false;                 // the search form starts with the active cell's text
  std::u16string CfgFileName;                        // full path of the configuration file
  std::u16string mstrHotKeyUnhide = u"+^f";          // behind HotKeyUnhide, without its rule of letter case
  std::shared_ptr<clsVTRLKItem> DefaultItem;         // for workbooks without a profile; never null
  std::shared_ptr<clsVTRLKRecentItems> RecentItems;  // never null

  // Hotkeys in the syntax of the host's OnKey; empty: none. Stored in lower case unless a key in braces
  // ("{F3}") is in it.
  const std::u16string& HotKeySearch() const { return hot_key_search_; }
  void SetHotKeySearch(std::u16string_view key);
  const std::u16string& HotKeyUnhide() const { return mstrHotKeyUnhide; }
  void SetHotKeyUnhide(std::u16string_view key);

  // Names are compared without regard to case. False, and no change, when the name is taken.
  bool Add(const std::shared_ptr<clsVTRLKItem>& item);
  void Remove(std::u16string_view ItemName) { profiles_.Remove(ItemName); }
  void Clear() { profiles_.Clear(); }
  int32_t count() const { return profiles_.Count(); }
  bool Exists(std::u16string_view name) const { return profiles_.Exists(name); }

  // The profile of that name, or at that position (from 0, in the order of adding); null when there is none.
  // Setting replaces what is there and ignores what is not.
  std::shared_ptr<clsVTRLKItem> ByName(std::u16string_view name) const {
    return ToItem(profiles_.Data(name));
  }
  // The profile of that workbook, or the default profile where it has none of its own.
  std::shared_ptr<clsVTRLKItem> ForWorkbook(std::u16string_view name) const;
  void SetByName(std::u16string_view name, const std::shared_ptr<clsVTRLKItem>& item);
  std::shared_ptr<clsVTRLKItem> Item(int32_t Index) const { return ToItem(profiles_.Data(Index)); }
  void SetItem(int32_t Index, const std::shared_ptr<clsVTRLKItem>& item);

  // The configuration as one text, without the language when `ResetLangFile` is set (the next load then takes
  // the one chosen at set-up), and back. Reading adds profiles whose names are new and sets everything else;
  // of a damaged text it takes what can be read. True.
  std::u16string ToString(bool ResetLangFile) const;
  bool ToObject(std::u16string_view strData);

  // Reads `CfgFileName`, trying again for up to half a second where that fails. A missing file is no failure.
  bool CfgLoad();
  // Writes the file, and makes its folder. What other instances have written to it since this one loaded it
  // stays, but for what was changed here; a file that was never loaded is replaced. One that can not be read
  // is left alone: false. Of one that was damaged a copy is kept beside it (".damaged").
  bool CfgSave(bool ResetLangFile);

 private:
  static std::shared_ptr<clsVTRLKItem> ToItem(const mclsVTDictionary::Value& value);
  Configuration Present(bool ResetLangFile) const;
  // Returns the profiles as they were read.
  std::vector<Configuration::Profile> Apply(const Configuration& read);
  void Remember(std::vector<Configuration::Profile> profiles, const std::optional<std::u16string>& history);
  std::optional<std::u16string> ReadFile() const;

  std::shared_ptr<Foundation> foundation_;
  Configuration known_;        // what of the present state came from the file, or went there
  std::u16string known_file_;  // the file that is
  std::u16string hot_key_search_ = u"^f";
  mclsVTDictionary profiles_;
};

}  // namespace rowlark
