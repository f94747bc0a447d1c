#include "host/windows/WindowsRegistry.h"

#include <windows.h>

#include <utility>

#include "util/windows/Handles.h"
#include "util/windows/WideText.h"

namespace rowlark::windows {
namespace {

HKEY Root(host::Hive hive) {
  return hive == host::Hive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

// The path of a key without separators at its end. Empty where there can be no such key: a zero would cut the
// name off and mean another one.
std::wstring KeyPath(std::u16string_view key) {
  while (key.ends_with(u'\\')) key.remove_suffix(1);
  return key.find(u'\0') == key.npos ? ToWide(key) : std::wstring();
}

RegistryKey Open(host::Hive hive, std::u16string_view path, REGSAM access) {
  RegistryKey key;
  HKEY opened = nullptr;
  if (const std::wstring wide = KeyPath(path);
      !wide.empty() && ::RegOpenKeyExW(Root(hive), wide.c_str(), 0, access, &opened) == ERROR_SUCCESS) {
    key.reset(opened);
  }
  return key;
}

bool IsDone(LSTATUS status, Trace* trace) {
  if (status != ERROR_SUCCESS) TraceNumber(trace, static_cast<int32_t>(status));
  return status == ERROR_SUCCESS;
}

// Opens the key, or makes it with what is missing above it.
RegistryKey Make(host::Hive hive, std::u16string_view path, Trace* trace) {
  RegistryKey key;
  HKEY made = nullptr;
  if (const std::wstring wide = KeyPath(path);
      !wide.empty() && IsDone(::RegCreateKeyExW(Root(hive), wide.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                                KEY_SET_VALUE, nullptr, &made, nullptr),
                              trace)) {
    key.reset(made);
  }
  return key;
}

bool IsName(std::u16string_view name) { return name.find(u'\0') == name.npos; }

}  // namespace

std::optional<host::RegistryValue> WindowsRegistry::Read(host::Hive hive, std::u16string_view key,
                                                         std::u16string_view name) const {
  const RegistryKey opened = Open(hive, key, KEY_QUERY_VALUE);
  if (!opened || !IsName(name)) return std::nullopt;
  const std::wstring wide_name = ToWide(name);
  std::vector<uint8_t> bytes(256);
  for (;;) {
    DWORD type = REG_NONE;
    auto size = static_cast<DWORD>(bytes.size());
    const LSTATUS status =
        ::RegQueryValueExW(*opened, wide_name.c_str(), nullptr, &type, bytes.data(), &size);
    if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return std::nullopt;
    bytes.resize(size);  // which may have grown again when the next query comes
    if (status == ERROR_SUCCESS) {
      return host::RegistryValue{static_cast<host::RegistryType>(type), std::move(bytes)};
    }
  }
}

bool WindowsRegistry::CreateKey(host::Hive hive, std::u16string_view key) {
  return static_cast<bool>(Make(hive, key, trace_));
}

bool WindowsRegistry::Write(host::Hive hive, std::u16string_view key, std::u16string_view name,
                            const host::RegistryValue& value) {
  if (!IsName(name) || !std::in_range<DWORD>(value.bytes.size())) return false;
  const RegistryKey made = Make(hive, key, trace_);
  return made && IsDone(::RegSetValueExW(*made, ToWide(name).c_str(), 0, static_cast<DWORD>(value.type),
                                         value.bytes.data(), static_cast<DWORD>(value.bytes.size())),
                        trace_);
}

bool WindowsRegistry::DeleteValue(host::Hive hive, std::u16string_view key, std::u16string_view name) {
  const RegistryKey opened = Open(hive, key, KEY_SET_VALUE);
  return opened && IsName(name) && ::RegDeleteValueW(*opened, ToWide(name).c_str()) == ERROR_SUCCESS;
}

bool WindowsRegistry::DeleteKey(host::Hive hive, std::u16string_view key) {
  const std::wstring path = KeyPath(key);
  return !path.empty() && ::RegDeleteKeyW(Root(hive), path.c_str()) == ERROR_SUCCESS;
}

}  // namespace rowlark::windows
