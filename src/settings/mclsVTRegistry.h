// Typed single values of the registry. Nothing here fails: a getter gives the caller's default for what is
// missing, of another type or of a wrong size, and the other operations tell whether they were done.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Registry.h"

namespace rowlark {

// An empty value name is the key's default value.
class mclsVTRegistry {
 public:
  explicit mclsVTRegistry(host::Registry& registry) : registry_(registry) {}

  bool CreateSubKey(host::Hive hive, std::u16string_view key) const { return registry_.CreateKey(hive, key); }
  // Deletes the value, or the key itself when no value is named.
  bool DeleteKey(host::Hive hive, std::u16string_view key, std::u16string_view name) const;

  bool SetString(host::Hive hive, std::u16string_view key, std::u16string_view name,
                 std::u16string_view text) const;
  std::u16string GetString(host::Hive hive, std::u16string_view key, std::u16string_view name,
                           std::u16string_view default_text) const;
  bool SetLong(host::Hive hive, std::u16string_view key, std::u16string_view name, int32_t number) const;
  int32_t GetLong(host::Hive hive, std::u16string_view key, std::u16string_view name,
                  int32_t default_number) const;
  bool SetBinary(host::Hive hive, std::u16string_view key, std::u16string_view name,
                 std::span<const uint8_t> bytes) const;
  std::vector<uint8_t> GetBinary(host::Hive hive, std::u16string_view key, std::u16string_view name) const;

 private:
  // The bytes of a value of that type; nothing when there is none.
  std::optional<std::vector<uint8_t>> Read(host::Hive hive, std::u16string_view key, std::u16string_view name,
                                           host::RegistryType type) const;

  host::Registry& registry_;
};

}  // namespace rowlark
