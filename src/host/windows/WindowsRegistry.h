// The registry of Windows.
#pragma once

#include "host/Registry.h"
#include "util/Trace.h"

namespace rowlark::windows {

// A value of a type that has no name here is read with its number. The hives themselves hold no values of the
// system: an empty key can neither be read nor changed. The trace, which may be null, is told what the system
// refuses to write.
class WindowsRegistry final : public host::Registry {
 public:
  explicit WindowsRegistry(Trace* trace = nullptr) : trace_(trace) {}

  std::optional<host::RegistryValue> Read(host::Hive hive, std::u16string_view key,
                                          std::u16string_view name) const override;
  bool CreateKey(host::Hive hive, std::u16string_view key) override;
  bool Write(host::Hive hive, std::u16string_view key, std::u16string_view name,
             const host::RegistryValue& value) override;
  bool DeleteValue(host::Hive hive, std::u16string_view key, std::u16string_view name) override;
  bool DeleteKey(host::Hive hive, std::u16string_view key) override;

 private:
  Trace* const trace_;
};

}  // namespace rowlark::windows
