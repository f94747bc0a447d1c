// A registry kept in two text files, one of the user and one of the machine:
//
//   [SOFTWARE\Vantrel\Office Addins\Rowlark\1.0]
//   "SearchFormPosSize" = string:120;80
//   "EditMode" = dword:1
//   "Blob" = hex:00 ff
//
// Names and texts escape a backslash and a quotation mark with a backslash, and write line breaks and other
// controls as \n, \r and \uXXXX. A value whose bytes do not suit its type is "hex(1):..." with the number of
// the type. The files are UTF-8.
//
// Lines that cannot be understood count for nothing and stay where they are when the file is written; values
// below a header that cannot be understood belong to no key. A file that is there and cannot be read counts
// as empty and is never written. Files are read at every call, so other processes' changes are seen, and
// changed under a lock ("registry.lock" beside "registry"), so no change gets lost. The user's are made for
// that user alone.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Registry.h"

namespace rowlark::standalone {

// An empty path stands for a hive that is empty and cannot be written.
struct RegistryPaths {
  std::u16string user;
  std::u16string machine;
};

// The files in the folders that the environment names: $XDG_CONFIG_HOME or ~/.config (no file without a
// home), and the first of $XDG_CONFIG_DIRS or /etc/xdg.
RegistryPaths DefaultRegistryPaths();

class FileRegistry final : public host::Registry {
 public:
  explicit FileRegistry(RegistryPaths paths) : paths_(std::move(paths)) {}

  std::optional<host::RegistryValue> Read(host::Hive hive, std::u16string_view key,
                                          std::u16string_view name) const override;
  // A key with control characters in it cannot be made.
  bool CreateKey(host::Hive hive, std::u16string_view key) override;
  bool Write(host::Hive hive, std::u16string_view key, std::u16string_view name,
             const host::RegistryValue& value) override;
  bool DeleteValue(host::Hive hive, std::u16string_view key, std::u16string_view name) override;
  bool DeleteKey(host::Hive hive, std::u16string_view key) override;

 private:
  struct Line {
    enum class Kind { Other, Header, Value };
    std::string bytes;
    Kind kind = Kind::Other;
    std::u16string name;  // of the key or the value, folded; empty for a header that is damaged
    host::RegistryValue value{};
  };
  using Lines = std::vector<Line>;

  static Line ParseLine(std::string bytes);
  static Line HeaderLine(std::u16string_view key);
  // Where the values of a key end that begin behind a line.
  static Lines::iterator EndOfSection(Lines& lines, Lines::iterator from);
  static Lines::iterator FindHeader(Lines& lines, Lines::iterator from, std::u16string_view folded_key);
  // The first header of the key, made if need be.
  static Lines::iterator MakeHeader(Lines& lines, std::u16string_view key);
  static Lines::iterator FindValue(Lines& lines, std::u16string_view key, std::u16string_view name);

  const std::u16string& PathOf(host::Hive hive) const;
  // Nothing when the file is there and cannot be read.
  std::optional<Lines> Load(const std::u16string& file) const;
  // Applies a change to the file; a change that returns false is not written.
  bool Change(host::Hive hive, const std::function<bool(Lines&)>& change);

  RegistryPaths paths_;
};

}  // namespace rowlark::standalone
