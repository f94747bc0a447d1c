// The configuration as it lies in its file: texts, not objects. Packed lists in packed lists; see
// clsVTRLKItems for what they mean.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark {

// A packed list of so many elements. What a shorter list lacks is empty, as an older version wrote it; what a
// damaged one lacks is not known.
std::vector<std::optional<std::u16string>> StoredList(std::u16string_view text, std::size_t size);

struct Configuration {
  enum Option : std::size_t {
    kUnhideOnEsc,
    kHistory,
    kHotKeySearch,
    kHotKeyUnhide,
    kLanguage,
    kEditAutoClose,
    kAutoDetectSearchText,
    kOptions
  };
  struct Profile {
    std::u16string name;
    std::u16string text;
  };

  // What could not be read is nothing.
  std::optional<std::u16string> default_profile;
  std::vector<Profile> profiles;  // of different names, letter case ignored; none without a name
  std::array<std::optional<std::u16string>, kOptions> options;
  bool damaged = false;  // there was more than could be read

  // Never fails.
  static Configuration Parse(std::u16string_view text);
  std::u16string ToString() const;

  const Profile* Find(std::u16string_view name) const;
  // Gives its history the texts of another one.
  void SetHistoryTexts(const std::optional<std::u16string>& history);
};

// What two instances of the program have made of one file. `base` is what this one knew of the file when it
// read or wrote it last, `mine` what it has now, `theirs` what the file holds now. What this one has not
// touched is as in the file, and its own changes win: profiles one by one, the history text by text, options
// one by one.
Configuration Merge(const Configuration& base, const Configuration& mine, const Configuration& theirs);

}  // namespace rowlark
