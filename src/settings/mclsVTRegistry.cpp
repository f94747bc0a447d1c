#include "settings/mclsVTRegistry.h"

#include <utility>

namespace rowlark {

using host::Hive;
using host::RegistryType;

std::optional<std::vector<uint8_t>> mclsVTRegistry::Read(Hive hive, std::u16string_view key,
                                                         std::u16string_view name, RegistryType type) const {
  auto value = registry_.Read(hive, key, name);
  if (!value || value->type != type) return std::nullopt;
  return std::move(value->bytes);
}

bool mclsVTRegistry::DeleteKey(Hive hive, std::u16string_view key, std::u16string_view name) const {
  return name.empty() ? registry_.DeleteKey(hive, key) : registry_.DeleteValue(hive, key, name);
}

bool mclsVTRegistry::SetString(Hive hive, std::u16string_view key, std::u16string_view name,
                               std::u16string_view text) const {
  std::vector<uint8_t> bytes;
  bytes.reserve((text.size() + 1) * 2);
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<uint8_t>(unit >> 8));
  }
  bytes.insert(bytes.end(), {0, 0});
  return registry_.Write(hive, key, name, {RegistryType::String, std::move(bytes)});
}

std::u16string mclsVTRegistry::GetString(Hive hive, std::u16string_view key, std::u16string_view name,
                                         std::u16string_view default_text) const {
  const auto bytes = Read(hive, key, name, RegistryType::String);
  if (!bytes || bytes->empty()) return std::u16string(default_text);
  std::u16string text;
  for (std::size_t i = 0; i + 1 < bytes->size(); i += 2) {
    text += static_cast<char16_t>((*bytes)[i] | (*bytes)[i + 1] << 8);
  }
  if (text.ends_with(u'\0')) text.pop_back();
  return text;
}

bool mclsVTRegistry::SetLong(Hive hive, std::u16string_view key, std::u16string_view name,
                             int32_t number) const {
  std::vector<uint8_t> bytes;
  for (int shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<uint8_t>(static_cast<uint32_t>(number) >> shift & 0xFF));
  }
  return registry_.Write(hive, key, name, {RegistryType::Dword, std::move(bytes)});
}

int32_t mclsVTRegistry::GetLong(Hive hive, std::u16string_view key, std::u16string_view name,
                                int32_t default_number) const {
  const auto bytes = Read(hive, key, name, RegistryType::Dword);
  if (!bytes || bytes->size() != 4) return default_number;
  uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) number = number << 8 | (*bytes)[i];
  return static_cast<int32_t>(number);
}

bool mclsVTRegistry::SetBinary(Hive hive, std::u16string_view key, std::u16string_view name,
                               std::span<const uint8_t> bytes) const {
  return registry_.Write(hive, key, name, {RegistryType::Binary, {bytes.begin(), bytes.end()}});
}

std::vector<uint8_t> mclsVTRegistry::GetBinary(Hive hive, std::u16string_view key,
                                               std::u16string_view name) const {
  return Read(hive, key, name, RegistryType::Binary).value_or(std::vector<uint8_t>());
}

}  // namespace rowlark
