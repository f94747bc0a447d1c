// The registry of Windows.
#pragma once

#include "host/Registry.h"

namespace rowlark::windows {

// A value of a type that has no name here is read with its number. The hives themselves hold no values of the
// system: an empty key can neither be read nor changed.
class WindowsRegistry final : public host::Registry {
 public:
  std::optional<host::RegistryValue> Read(host::Hive hive, std::u16string_view key,
                                          std::u16string_view name) const override;
  bool CreateKey(host::Hive hive, std::u16string_view key) override;
  bool Write(host::Hive hive, std::u16string_view key, std::u16string_view name,
             const host::RegistryValue& value) override;
  bool DeleteValue(host::Hive hive, std::u16string_view key, std::u16string_view name) override;
  bool DeleteKey(host::Hive hive, std::u16string_view key) override;
};

}  // namespace rowlark::windows
