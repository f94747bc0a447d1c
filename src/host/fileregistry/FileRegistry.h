// A registry kept in two JSON files, one of the user and one of the machine:
//
//   {
//     "SOFTWARE\\Vantrel\\Office Addins\\Rowlark\\1.0": {
//       "SearchFormPosSize": "120;80",
//       "EditMode": 1,
//       "Blob": {"type": 3, "bytes": [0, 255]}
//     }
//   }
//
// What cannot be understood in a file counts for nothing and stays. A file that is no JSON counts as empty;
// before it is written it is copied ("registry.json.damaged"). One that is there and cannot be read counts as
// empty and is never written. Files are read at every call, so other processes' changes are seen, and changed
// under a lock
// ("registry.json.lock"), so no change gets lost. The user's are made for that user alone.
//
// Where there is no "registry.json" yet, what is in "registry", lines of a form of their own, counts. That
// file is never changed.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/Registry.h"

namespace rowlark::host {

// An empty path stands for a hive that is empty and cannot be written.
struct RegistryPaths {
  std::u16string user;
  std::u16string machine;
};

// The files in the folders that the environment names: $XDG_CONFIG_HOME or ~/.config (no file without a
// home), and the first of $XDG_CONFIG_DIRS or /etc/xdg.
RegistryPaths DefaultRegistryPaths();

class FileRegistry final : public Registry {
 public:
  explicit FileRegistry(RegistryPaths paths) : paths_(std::move(paths)) {}

  // Names that are no Unicode cannot be kept.
  std::optional<RegistryValue> Read(Hive hive, std::u16string_view key,
                                    std::u16string_view name) const override;
  bool CreateKey(Hive hive, std::u16string_view key) override;
  bool Write(Hive hive, std::u16string_view key, std::u16string_view name,
             const RegistryValue& value) override;
  bool DeleteValue(Hive hive, std::u16string_view key, std::u16string_view name) override;
  bool DeleteKey(Hive hive, std::u16string_view key) override;

 private:
  RegistryPaths paths_;
};

}  // namespace rowlark::host
