// The store of typed values by key and name that Windows calls its registry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark::host {

// HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER.
enum class Hive { LocalMachine, CurrentUser };

// REG_SZ, REG_BINARY and REG_DWORD of winnt.h.
enum class RegistryType : uint32_t {
  String = 1,  // UTF-16 units, little endian, with a terminating zero
  Binary = 3,  // any bytes
  Dword = 4,   // four bytes, little endian
};

struct RegistryValue {
  RegistryType type;
  std::vector<uint8_t> bytes;
  friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

// Keys are paths with "\" between their parts. Names of keys and values are compared without regard to case;
// an empty value name is the key's default value. Nothing throws: what can not be done returns false or
// nothing.
class Registry {
 public:
  virtual ~Registry() = default;

  virtual std::optional<RegistryValue> Read(Hive hive, std::u16string_view key,
                                            std::u16string_view name) const = 0;
  // Makes the key, and what is missing above it.
  virtual bool CreateKey(Hive hive, std::u16string_view key) = 0;
  // Makes the key when it is missing.
  virtual bool Write(Hive hive, std::u16string_view key, std::u16string_view name,
                     const RegistryValue& value) = 0;
  virtual bool DeleteValue(Hive hive, std::u16string_view key, std::u16string_view name) = 0;
  // With its values; a key with keys below it stays.
  virtual bool DeleteKey(Hive hive, std::u16string_view key) = 0;
};

}  // namespace rowlark::host
