#include "lang/mclsVTIniFile.h"

#include <algorithm>

#include "util/AutomationError.h"
#include "util/Text.h"

namespace rowlark {
namespace {

constexpr std::u16string_view kBlanks = u" \t";
constexpr std::u16string_view kLineBreaks = u"\r\n";
constexpr std::u16string_view kBlanksAndLineBreaks = u"\r\n\t ";
constexpr std::u16string_view kContinued = u" _";

// Every key of a section repeats its name, so that a longer one could fill the memory.
constexpr std::size_t kMaxSectionName = 255;

std::u16string Source(std::u16string_view member) {
  return std::u16string(u"VTRLKRuntime.mclsVTIniFile.").append(member);
}

std::u16string_view TrimRight(std::u16string_view text, std::u16string_view characters) {
  return text.substr(0, text.find_last_not_of(characters) + 1);
}

std::u16string_view Trim(std::u16string_view text, std::u16string_view characters) {
  text = TrimRight(text, characters);
  return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

// What stands before the first separator, and after it. Both lie within `text`.
struct Halves {
  std::u16string_view before;
  std::optional<std::u16string_view> after;
};
Halves Split(std::u16string_view text, std::u16string_view separator) {
  const std::size_t at = separator.empty() ? text.npos : text.find(separator);
  if (at == text.npos) return {text, std::nullopt};
  return {text.substr(0, at), text.substr(at + separator.size())};
}

// The first line of `text`, which loses it and its line break.
std::u16string_view TakeLine(std::u16string_view& text) {
  const std::u16string_view line = text.substr(0, text.find_first_of(kLineBreaks));
  text.remove_prefix(line.size());
  if (!text.empty()) text.remove_prefix(text.starts_with(u"\r\n") ? 2 : 1);
  return line;
}

std::u16string JoinLines(std::u16string_view text) {
  std::u16string joined(TakeLine(text));
  while (!text.empty()) joined.append(u"\r\n").append(TakeLine(text));
  return joined;
}

std::u16string FullKey(std::u16string_view section, std::u16string_view key) {
  return FoldCase(std::u16string(section).append(u".").append(key));
}

}  // namespace

void mclsVTIniFile::SetFullName(std::u16string_view path) {
  if (!files_.IsFileExists(path)) {
    throw AutomationError(kNoSource, Source(u"FullName"),
                          std::u16string(u"FullName = '").append(path).append(u"'"));
  }
  full_name_ = path;
  is_file_ = true;
  loaded_ = false;
}

std::u16string mclsVTIniFile::SourceString() {
  Load(u"SourceString");
  return is_file_ ? JoinLines(text_) : text_;
}

void mclsVTIniFile::SetSourceString(std::u16string_view text) {
  text = Trim(text, kBlanksAndLineBreaks);
  if (text.empty()) {
    throw AutomationError(kNoSource, Source(u"SourceString"), u"The source string is empty");
  }
  text_ = text;
  is_file_ = false;
  loaded_ = true;
  parsed_ = false;
}

void mclsVTIniFile::SetSepData(std::u16string_view separator) {
  sep_data_ = separator;
  parsed_ = false;
}

void mclsVTIniFile::SetSepComment(std::u16string_view separator) {
  sep_comment_ = separator;
  parsed_ = false;
}

void mclsVTIniFile::Load(std::u16string_view member) {
  if (is_file_) {
    // Taken before the file is read, so that a change in between is seen next time.
    const auto time = files_.FileModified(full_name_);
    if (!loaded_ || !time || time != source_time_) {
      try {
        text_ = Trim(files_.StringRead(full_name_), kBlanksAndLineBreaks);
      } catch (const AutomationError&) {
        throw AutomationError(kLoadFailed, Source(member), u"Error in loading INI file: " + full_name_);
      }
      source_time_ = time;
      loaded_ = true;
      parsed_ = false;
    }
  }
  if (!parsed_) {
    table_ = Parse(text_);
    parsed_ = true;
  }
}

mclsVTIniFile::Table mclsVTIniFile::Parse(std::u16string_view text) const {
  Table table;
  std::u16string section, joined;
  std::u16string_view rest = text;
  while (!rest.empty()) {
    const std::size_t begin = text.size() - rest.size();
    std::u16string_view line = TakeLine(rest);
    const auto is_continued = [&] {
      return line.ends_with(kContinued) && line.data() + line.size() < text.data() + text.size();
    };
    if (is_continued()) {
      joined.clear();
      for (; is_continued(); line = TakeLine(rest)) {
        joined.append(Trim(line.substr(0, line.size() - kContinued.size()), kBlanks)).append(u" ");
      }
      joined.append(Trim(line, kBlanks));
    } else {
      joined = line;
    }
    const std::size_t end = static_cast<std::size_t>(line.data() + line.size() - text.data());

    line = Trim(joined, kBlanks);
    if (line.size() >= 2 && line.front() == u'[' && line.back() == u']') {
      const std::u16string_view name = Trim(line, u"[] \t");
      if (name.size() <= kMaxSectionName) section = name;
      continue;
    }
    const Halves halves = Split(Split(line, sep_comment_).before, sep_data_);
    if (!halves.after) continue;
    table.push_back({FullKey(section, Trim(halves.before, kBlanks)),
                     std::u16string(Trim(*halves.after, kBlanks)), begin, end});
  }
  std::stable_sort(table.begin(), table.end(), [](const Row& a, const Row& b) { return a.key < b.key; });
  return table;
}

const mclsVTIniFile::Row* mclsVTIniFile::Find(const Table& table, std::u16string_view key_name,
                                              std::u16string_view section_name) {
  const std::u16string key = FullKey(section_name, key_name);
  const auto found =
      std::lower_bound(table.begin(), table.end(), key,
                       [](const Row& row, const std::u16string& name) { return row.key < name; });
  return found != table.end() && found->key == key ? &*found : nullptr;
}

std::optional<std::u16string> mclsVTIniFile::GetData(std::u16string_view key_name,
                                                     std::u16string_view section_name) {
  Load(u"GetData");
  const Row* const row = Find(table_, key_name, section_name);
  return row == nullptr ? std::nullopt : std::optional(row->value);
}

void mclsVTIniFile::PutData(std::u16string_view key_name, std::u16string_view value,
                            std::u16string_view section_name) {
  Load(u"PutData");
  const Row* const row = Find(table_, key_name, section_name);
  if (row == nullptr) {
    throw AutomationError(kKeyNotFound, Source(u"PutData"),
                          std::u16string(u"Key not found: ").append(key_name));
  }

  const std::u16string_view line = std::u16string_view(text_).substr(row->begin, row->end - row->begin);
  const auto after = Split(Split(line, sep_comment_).before, sep_data_).after;
  std::u16string changed = text_;
  if (after) {
    std::u16string_view old = TrimRight(*after, kBlanks);
    old.remove_prefix(std::min(old.find_first_not_of(kBlanks), old.size()));
    // An empty value goes behind the blanks that follow the separator.
    if (old.empty()) old = after->substr(after->size());
    changed.replace(static_cast<std::size_t>(old.data() - text_.data()), old.size(), value);
  }
  changed = JoinLines(changed);

  // The one way to know that a value can be kept: read it back.
  const Table table = Parse(changed);
  const Row* const written = Find(table, key_name, section_name);
  if (table.size() != table_.size() || written == nullptr || written->value != Trim(value, kBlanks)) {
    throw AutomationError::InvalidCall(Source(u"PutData"));
  }
  try {
    files_.StringWrite(full_name_, changed);
  } catch (const AutomationError&) {
    throw AutomationError(kWriteFailed, Source(u"PutData"), u"Error in write in INI file: " + full_name_);
  }
  // A file is read again; its time may be the same as before.
  loaded_ = !is_file_;
  parsed_ = false;
  text_ = std::move(changed);
}

}  // namespace rowlark
