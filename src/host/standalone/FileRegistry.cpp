#include "host/standalone/FileRegistry.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>

#include "util/AutomationError.h"
#include "util/FileSystemPlatform.h"
#include "util/Text.h"
#include "util/Utf.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark::standalone {
namespace {

using host::Hive;
using host::RegistryType;
using host::RegistryValue;

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kHexDigits = "0123456789abcdef";

std::string_view TrimLeft(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

std::string_view Trim(std::string_view text) {
  return TrimLeft(text.substr(0, text.find_last_not_of(kBlanks) + 1));
}

bool IsSurrogate(char32_t c) { return (c & 0xFFFFF800) == 0xD800; }

std::string Escape(std::u16string_view text) {
  std::string escaped;
  while (!text.empty()) {
    const char32_t c = TakeUtf16(text);
    if (c == U'\\' || c == U'"') {
      escaped += '\\';
      escaped += static_cast<char>(c);
    } else if (c == U'\n') {
      escaped += "\\n";
    } else if (c == U'\r') {
      escaped += "\\r";
    } else if (c < 0x20 || IsSurrogate(c)) {
      escaped += "\\u";
      for (int shift = 12; shift >= 0; shift -= 4) escaped += kHexDigits[(c >> shift) & 0xF];
    } else {
      AppendUtf8(escaped, c);
    }
  }
  return escaped;
}

// The number that all of the digits spell.
template <class Number>
std::optional<Number> ToNumber(std::string_view digits, int base = 10) {
  Number number{};
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// Takes an escaped text off the front, up to its end or to a quotation mark that is not escaped.
std::optional<std::u16string> TakeEscaped(std::string_view& text) {
  std::u16string plain;
  while (!text.empty() && text.front() != '"') {
    const char32_t c = TakeUtf8(text);
    if (c != U'\\') {
      AppendUtf16(plain, c);
      continue;
    }
    if (text.empty()) return std::nullopt;
    const char escape = text.front();
    text.remove_prefix(1);
    if (escape == '\\' || escape == '"') {
      plain += static_cast<char16_t>(escape);
    } else if (escape == 'n') {
      plain += u'\n';
    } else if (escape == 'r') {
      plain += u'\r';
    } else if (escape == 'u' && text.size() >= 4) {
      const auto unit = ToNumber<uint16_t>(text.substr(0, 4), 16);
      if (!unit) return std::nullopt;
      plain += static_cast<char16_t>(*unit);
      text.remove_prefix(4);
    } else {
      return std::nullopt;
    }
  }
  return plain;
}

void AppendUnit(std::vector<uint8_t>& bytes, char16_t unit) {
  bytes.push_back(static_cast<uint8_t>(unit & 0xFF));
  bytes.push_back(static_cast<uint8_t>(unit >> 8));
}

std::optional<std::vector<uint8_t>> ParseHex(std::string_view text) {
  std::vector<uint8_t> bytes;
  for (text = Trim(text); !text.empty(); text = TrimLeft(text)) {
    const auto byte = text.size() < 2 ? std::nullopt : ToNumber<uint8_t>(text.substr(0, 2), 16);
    if (!byte) return std::nullopt;
    bytes.push_back(*byte);
    text.remove_prefix(2);
  }
  return bytes;
}

std::optional<RegistryValue> ParseValue(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == text.npos) return std::nullopt;
  const std::string_view type = Trim(text.substr(0, colon));
  std::string_view data = text.substr(colon + 1);
  if (type == "string") {
    if (data.ends_with('\r')) data.remove_suffix(1);
    const std::optional<std::u16string> plain = TakeEscaped(data);
    if (!plain || !data.empty()) return std::nullopt;
    RegistryValue value{RegistryType::String, {}};
    for (const char16_t unit : *plain) AppendUnit(value.bytes, unit);
    AppendUnit(value.bytes, u'\0');
    return value;
  }
  if (type == "dword") {
    const auto number = ToNumber<int64_t>(Trim(data));
    if (!number || *number < std::numeric_limits<int32_t>::min() ||
        *number > std::numeric_limits<uint32_t>::max()) {
      return std::nullopt;
    }
    RegistryValue value{RegistryType::Dword, {}};
    for (int shift = 0; shift < 32; shift += 8) {
      value.bytes.push_back(static_cast<uint8_t>(static_cast<uint64_t>(*number) >> shift & 0xFF));
    }
    return value;
  }
  for (const auto& [word, number] :
       {std::pair("hex", RegistryType::Binary), std::pair("hex(1)", RegistryType::String),
        std::pair("hex(4)", RegistryType::Dword)}) {
    if (type != word) continue;
    std::optional<std::vector<uint8_t>> bytes = ParseHex(data);
    if (!bytes) return std::nullopt;
    return RegistryValue{number, *std::move(bytes)};
  }
  return std::nullopt;
}

std::string FormatValue(const RegistryValue& value) {
  const std::vector<uint8_t>& bytes = value.bytes;
  const std::size_t size = bytes.size();
  if (value.type == RegistryType::Dword && size == 4) {
    uint32_t number = 0;
    for (std::size_t i = 4; i-- > 0;) number = number << 8 | bytes[i];
    return "dword:" + std::to_string(static_cast<int32_t>(number));
  }
  if (value.type == RegistryType::String && size >= 2 && size % 2 == 0 && bytes[size - 2] == 0 &&
      bytes[size - 1] == 0) {
    std::u16string text;
    for (std::size_t i = 0; i + 2 < size; i += 2) {
      text += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    }
    return "string:" + Escape(text);
  }
  std::string text = "hex";
  if (value.type != RegistryType::Binary) {
    text += '(' + std::to_string(static_cast<uint32_t>(value.type)) + ')';
  }
  text += ':';
  for (std::size_t i = 0; i < size; ++i) {
    if (i > 0) text += ' ';
    text += kHexDigits[bytes[i] >> 4];
    text += kHexDigits[bytes[i] & 0xF];
  }
  return text;
}

std::u16string_view TrimKey(std::u16string_view key) {
  key = key.substr(0, key.find_last_not_of(u'\\') + 1);
  return key.substr(std::min(key.find_first_not_of(u'\\'), key.size()));
}

bool CanBeKept(std::u16string_view key) {
  return !key.empty() && std::none_of(key.begin(), key.end(), [](char16_t c) { return c < 0x20; }) &&
         IsValidUtf8(ToUtf8(key));
}

std::u16string ConfigurationFile(const std::filesystem::path& folder) {
  return platform::ToText(folder / "vantrel" / "rowlark" / "registry");
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

FileRegistry::Line FileRegistry::ParseLine(std::string bytes) {
  Line line;
  std::string_view text = bytes;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // the mark of some editors
  text = TrimLeft(text);
  if (text.starts_with('[')) {
    line.kind = Line::Kind::Header;
    text = Trim(text);
    if (text.ends_with(']') && IsValidUtf8(text)) {
      line.name = FoldCase(TrimKey(ToUtf16(text.substr(1, text.size() - 2))));
    }
  } else if (text.starts_with('"') && IsValidUtf8(text)) {
    text.remove_prefix(1);
    std::optional<std::u16string> name = TakeEscaped(text);
    if (name && text.starts_with('"')) {
      text = TrimLeft(text.substr(1));
      if (text.starts_with('=')) {
        if (std::optional<RegistryValue> value = ParseValue(text.substr(1))) {
          line.kind = Line::Kind::Value;
          line.name = FoldCase(*name);
          line.value = *std::move(value);
        }
      }
    }
  }
  line.bytes = std::move(bytes);
  return line;
}

FileRegistry::Line FileRegistry::HeaderLine(std::u16string_view key) {
  return ParseLine(std::string(1, '[').append(ToUtf8(key)).append("]"));
}

FileRegistry::Lines::iterator FileRegistry::EndOfSection(Lines& lines, Lines::iterator from) {
  return std::find_if(from, lines.end(), [](const Line& line) { return line.kind == Line::Kind::Header; });
}

FileRegistry::Lines::iterator FileRegistry::FindHeader(Lines& lines, Lines::iterator from,
                                                       std::u16string_view folded_key) {
  return std::find_if(from, lines.end(), [folded_key](const Line& line) {
    return line.kind == Line::Kind::Header && line.name == folded_key;
  });
}

FileRegistry::Lines::iterator FileRegistry::MakeHeader(Lines& lines, std::u16string_view key) {
  const auto found = FindHeader(lines, lines.begin(), FoldCase(key));
  if (found != lines.end()) return found;
  if (!lines.empty() && !lines.back().bytes.empty()) lines.emplace_back();
  lines.push_back(HeaderLine(key));
  return lines.end() - 1;
}

FileRegistry::Lines::iterator FileRegistry::FindValue(Lines& lines, std::u16string_view key,
                                                      std::u16string_view name) {
  const std::u16string folded_key = FoldCase(key), folded_name = FoldCase(name);
  auto header = FindHeader(lines, lines.begin(), folded_key);
  while (header != lines.end()) {
    const auto end = EndOfSection(lines, header + 1);
    const auto found = std::find_if(header + 1, end, [&folded_name](const Line& line) {
      return line.kind == Line::Kind::Value && line.name == folded_name;
    });
    if (found != end) return found;
    header = FindHeader(lines, end, folded_key);
  }
  return lines.end();
}

const std::u16string& FileRegistry::PathOf(Hive hive) const {
  return hive == Hive::LocalMachine ? paths_.machine : paths_.user;
}

std::optional<FileRegistry::Lines> FileRegistry::Load(const std::u16string& file) const {
  const mclsVTFileSystem files;
  std::string text;
  try {
    const std::vector<uint8_t> bytes = files.BinaryRead(file);
    text.assign(bytes.begin(), bytes.end());
  } catch (const AutomationError&) {
    return files.FileModified(file) ? std::nullopt : std::optional(Lines());
  }
  Lines lines;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    lines.push_back(ParseLine(std::string(rest.substr(0, end))));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return lines;
}

bool FileRegistry::Change(Hive hive, const std::function<bool(Lines&)>& change) {
  const std::u16string& file = PathOf(hive);
  if (file.empty()) return false;
  // The machine's values are for all of its users to read.
  const auto access = hive == Hive::LocalMachine ? platform::Access::Ordinary : platform::Access::Private;
  const mclsVTFileSystem files({}, access);
  try {
    files.DirsMake(std::u16string_view(file).substr(0, file.find_last_of(PathMap::kSeparators) + 1));
    const platform::FileLock lock(PathMap().ToNative(file + u".lock"), access);
    if (!lock.Held()) return false;
    std::optional<Lines> lines = Load(file);
    if (!lines || !change(*lines)) return false;
    std::vector<uint8_t> bytes;
    for (const Line& line : *lines) {
      bytes.insert(bytes.end(), line.bytes.begin(), line.bytes.end());
      bytes.push_back('\n');
    }
    files.BinaryWrite(file, bytes);
    return true;
  } catch (const AutomationError&) {
    return false;
  }
}

std::optional<RegistryValue> FileRegistry::Read(Hive hive, std::u16string_view key,
                                                std::u16string_view name) const {
  key = TrimKey(key);
  std::optional<Lines> lines = Load(PathOf(hive));
  if (key.empty() || !lines) return std::nullopt;
  const auto found = FindValue(*lines, key, name);
  if (found == lines->end()) return std::nullopt;
  return std::move(found->value);
}

bool FileRegistry::CreateKey(Hive hive, std::u16string_view key) {
  key = TrimKey(key);
  return CanBeKept(key) && Change(hive, [key](Lines& lines) {
           MakeHeader(lines, key);
           return true;
         });
}

bool FileRegistry::Write(Hive hive, std::u16string_view key, std::u16string_view name,
                         const RegistryValue& value) {
  key = TrimKey(key);
  return CanBeKept(key) && Change(hive, [&](Lines& lines) {
           Line line = ParseLine('"' + Escape(name) + "\" = " + FormatValue(value));
           if (line.value != value) return false;
           const auto found = FindValue(lines, key, name);
           if (found != lines.end()) {
             *found = std::move(line);
             return true;
           }
           auto last = MakeHeader(lines, key);
           const auto end = EndOfSection(lines, last + 1);
           for (auto at = last + 1; at != end; ++at) {
             if (at->kind == Line::Kind::Value) last = at;
           }
           lines.insert(last + 1, std::move(line));
           return true;
         });
}

bool FileRegistry::DeleteValue(Hive hive, std::u16string_view key, std::u16string_view name) {
  key = TrimKey(key);
  if (!Read(hive, key, name)) return false;
  return Change(hive, [&](Lines& lines) {
    bool deleted = false;
    for (auto found = FindValue(lines, key, name); found != lines.end();
         found = FindValue(lines, key, name)) {
      lines.erase(found);
      deleted = true;
    }
    return deleted;
  });
}

bool FileRegistry::DeleteKey(Hive hive, std::u16string_view key) {
  const std::u16string folded = FoldCase(TrimKey(key));
  const std::u16string& file = PathOf(hive);
  if (folded.empty() || !mclsVTFileSystem().IsFileExists(file)) return false;
  return Change(hive, [&folded](Lines& lines) {
    bool within = false, found = false;
    Lines kept;
    for (Line& line : lines) {
      if (line.kind == Line::Kind::Header) {
        if (line.name.starts_with(folded + u'\\')) return false;
        within = line.name == folded;
        found |= within;
      }
      if (!within || line.kind == Line::Kind::Other) kept.push_back(std::move(line));
    }
    lines = std::move(kept);
    return found;
  });
}

}  // namespace rowlark::standalone
