#include "host/fileregistry/FileRegistry.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>

#include <nlohmann/json.hpp>

#include "util/AutomationError.h"
#include "util/Text.h"
#include "util/Utf.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark::host {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::u16string_view kExtension = u".json";

// Numbers and texts are themselves, what is neither is its type and its bytes.
Json Encode(const RegistryValue& value) {
  const auto& bytes = value.bytes;
  const auto size = bytes.size();
  if (value.type == RegistryType::Dword && size == 4) {
    uint32_t number = 0;
    for (std::size_t i = 4; i-- > 0;) number = number << 8 | bytes[i];
    return static_cast<int32_t>(number);
  }
  if (value.type == RegistryType::String && size >= 2 && size % 2 == 0) {
    std::u16string units;
    for (std::size_t i = 0; i < size; i += 2) units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    const auto text = ToUtf8(std::u16string_view(units).substr(0, units.size() - 1));
    if (units.back() == u'\0' && IsValidUtf8(text)) return text;
  }
  return {{"type", static_cast<uint32_t>(value.type)}, {"bytes", bytes}};
}

std::optional<RegistryValue> Decode(const Json& json) {
  RegistryValue value{RegistryType::String, {}};
  const auto append = [&value](uint32_t number, int size) {
    for (; size > 0; --size, number >>= 8) value.bytes.push_back(static_cast<uint8_t>(number & 0xFF));
  };
  if (json.is_string()) {
    for (const char16_t unit : ToUtf16(json.get_ref<const std::string&>())) append(unit, 2);
    append(0, 2);
    return value;
  }
  if (json.is_number_unsigned() ? json <= std::numeric_limits<uint32_t>::max()
                                : json.is_number_integer() && json >= std::numeric_limits<int32_t>::min()) {
    value.type = RegistryType::Dword;
    append(json.get<uint32_t>(), 4);
    return value;
  }
  if (!json.is_object() || !json.contains("type") || !json.contains("bytes")) return std::nullopt;
  const auto& bytes = json["bytes"];
  if (!json["type"].is_number_unsigned() || !bytes.is_array()) return std::nullopt;
  value.type = static_cast<RegistryType>(json["type"].get<uint32_t>());
  for (const auto& byte : bytes) {
    if (!byte.is_number_unsigned() || byte > 0xFF) return std::nullopt;
    append(byte, 1);
  }
  return value;
}

// The member of an object, letter case aside.
template <class Object>
auto Find(Object& object, std::u16string_view name) {
  auto at = object.is_object() ? object.begin() : object.end();
  for (const auto folded = FoldCase(name); at != object.end(); ++at) {
    if (FoldCase(ToUtf16(at.key())) == folded) break;
  }
  return at;
}

// The member of an object, made if need be.
Json& Make(Json& object, std::u16string_view name, Json&& missing) {
  const auto found = Find(object, name);
  return found != object.end() ? *found : object[ToUtf8(name)] = std::move(missing);
}

// What the lines of the older format hold: `[key]` and, below it, `"name" = type:data`, whose escapes are
// those of JSON.
Json FromLines(std::string_view text) {
  Json root = Json::object();
  Json* key = nullptr;
  for (text.remove_prefix(text.starts_with("\xEF\xBB\xBF") ? 3 : 0); !text.empty();) {
    std::string line(text.substr(0, text.find('\n')));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    line.erase(line.find_last_not_of('\r') + 1);
    line.erase(0, line.find_first_not_of(" \t"));
    if (line.starts_with('[')) {
      line.erase(line.find_last_not_of(" \t") + 1);
      const bool whole = line.ends_with(']') && IsValidUtf8(line);
      key = whole ? &Make(root, ToUtf16(line.substr(1, line.size() - 2)), Json::object()) : nullptr;
    }
    std::size_t end = 1;  // of the name
    while (end < line.size() && line[end] != '"') end += line[end] == '\\' ? 2 : 1;
    const auto equals = line.find_first_not_of(" \t", std::min(end + 1, line.size()));
    const auto colon = line.find(':', end);
    if (key == nullptr || !line.starts_with('"') || colon == line.npos || line[equals] != '=') continue;
    const Json name = Json::parse(line.substr(0, end + 1), nullptr, false);
    auto type = line.substr(equals + 1, colon - equals - 1), data = line.substr(colon + 1);
    std::erase_if(type, [](char c) { return c == ' ' || c == '\t'; });
    Json value;
    if (type == "dword") value = Json::parse(data, nullptr, false);
    if (type == "string") value = Json::parse('"' + data + '"', nullptr, false);
    if (name.is_string() && Decode(value)) Make(*key, ToUtf16(name.get<std::string>()), std::move(value));
  }
  return root;
}

std::u16string_view TrimKey(std::u16string_view key) {
  key = key.substr(0, key.find_last_not_of(u'\\') + 1);
  return key.substr(std::min(key.find_first_not_of(u'\\'), key.size()));
}

bool CanBeKept(std::u16string_view name) { return IsValidUtf8(ToUtf8(name)); }

std::u16string ConfigurationFile(const std::filesystem::path& folder) {
  return platform::ToText(folder / "vantrel" / "rowlark" / "registry") + std::u16string(kExtension);
}

// Raises AutomationError for a file that is there and cannot be read.
std::string ReadText(const mclsVTFileSystem& files, std::u16string_view file) {
  if (file.empty() || files.IsMissing(file)) return {};
  const auto bytes = files.BinaryRead(file);
  return {bytes.begin(), bytes.end()};
}

struct Content {
  Json root;
  bool damaged = false;
};

Content Load(const mclsVTFileSystem& files, std::u16string_view file) {
  if (files.IsMissing(file)) {
    return {FromLines(ReadText(files, file.substr(0, file.size() - kExtension.size())))};
  }
  Json root = Json::parse(ReadText(files, file), nullptr, false);
  return root.is_object() ? Content{std::move(root)} : Content{Json::object(), true};
}

// Applies a change to the file of a hive; one that returns false is not written.
bool Change(const RegistryPaths& paths, Hive hive, const std::function<bool(Json&)>& change) {
  const bool for_all = hive == Hive::LocalMachine;  // of its users to read
  const auto& file = for_all ? paths.machine : paths.user;
  const mclsVTFileSystem files({}, for_all ? platform::Access::Ordinary : platform::Access::Private);
  try {
    if (file.empty()) return false;
    auto content = Load(files, file);
    if (!change(content.root)) return false;  // and there is no folder or lock to make
    files.DirsMake(std::u16string_view(file).substr(0, file.find_last_of(PathMap::kSeparators) + 1));
    const auto lock = files.Lock(file + u".lock");
    if (!lock.Held()) return false;
    content = Load(files, file);
    if (!change(content.root)) return false;
    if (content.damaged) files.BinaryWrite(file + u".damaged", files.BinaryRead(file));
    const std::string text = content.root.dump(2) + '\n';
    files.BinaryWrite(file, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

RegistryPaths DefaultRegistryPaths() {
  RegistryPaths paths;
  if (const auto user = platform::ConfigurationFolder(); !user.empty()) paths.user = ConfigurationFile(user);

  // Relative folders are to be passed over.
  const char* const list = std::getenv("XDG_CONFIG_DIRS");
  std::string_view folders = list == nullptr ? "" : list;
  while (!folders.empty() && !folders.starts_with('/')) {
    folders.remove_prefix(std::min(folders.find(':'), folders.size() - 1) + 1);
  }
  paths.machine = ConfigurationFile(folders.empty() ? "/etc/xdg" : folders.substr(0, folders.find(':')));
  return paths;
}

std::optional<RegistryValue> FileRegistry::Read(Hive hive, std::u16string_view key,
                                                std::u16string_view name) const {
  const auto& file = hive == Hive::LocalMachine ? paths_.machine : paths_.user;
  if (file.empty()) return std::nullopt;
  try {
    const auto content = Load(mclsVTFileSystem(), file);
    const auto values = Find(content.root, TrimKey(key));
    if (values == content.root.end()) return std::nullopt;
    const auto value = Find(*values, name);
    return value == values->end() ? std::nullopt : Decode(*value);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

bool FileRegistry::CreateKey(Hive hive, std::u16string_view key) {
  key = TrimKey(key);
  return !key.empty() && CanBeKept(key) &&
         Change(paths_, hive, [key](Json& root) { return Make(root, key, Json::object()).is_object(); });
}

bool FileRegistry::Write(Hive hive, std::u16string_view key, std::u16string_view name,
                         const RegistryValue& value) {
  key = TrimKey(key);
  return !key.empty() && CanBeKept(key) && CanBeKept(name) && Change(paths_, hive, [&](Json& root) {
    Json& values = Make(root, key, Json::object());
    if (!values.is_object()) return false;
    Make(values, name, {}) = Encode(value);
    return true;
  });
}

bool FileRegistry::DeleteValue(Hive hive, std::u16string_view key, std::u16string_view name) {
  return Change(paths_, hive, [&](Json& root) {
    const auto values = Find(root, TrimKey(key));
    if (values == root.end()) return false;
    const auto value = Find(*values, name);
    if (value == values->end() || !Decode(*value)) return false;
    values->erase(value);
    return true;
  });
}

bool FileRegistry::DeleteKey(Hive hive, std::u16string_view key) {
  key = TrimKey(key);
  return Change(paths_, hive, [key](Json& root) {
    const auto below = FoldCase(key) + u'\\';
    for (const auto& [other, values] : root.items()) {
      if (FoldCase(ToUtf16(other)).starts_with(below)) return false;
    }
    const auto values = Find(root, key);
    if (values == root.end()) return false;
    root.erase(values);
    return true;
  });
}

}  // namespace rowlark::host
