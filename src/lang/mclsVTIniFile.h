// Key = value lines under [section] headers, from a file or a text. The source is read and parsed at the
// first lookup, and a file again when it has changed since. Keys and sections are found whatever their letter
// case; of lines with the same key the first counts.
//
// A line that ends in " _" goes on in the next one, joined by one blank. A line is cut at the first comment
// separator, so no value holds one; then the first data separator ends the key. Other lines mean nothing, nor
// does a header with a name of more than 255 characters.
//
// Failures raise AutomationError with the member as its source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/mclsVTFileSystem.h"

namespace rowlark {

class mclsVTIniFile {
 public:
  static constexpr int32_t kNoSource = static_cast<int32_t>(0x800404B1);     // base + 1201
  static constexpr int32_t kLoadFailed = static_cast<int32_t>(0x800404B4);   // base + 1204
  static constexpr int32_t kKeyNotFound = static_cast<int32_t>(0x800404B5);  // base + 1205
  static constexpr int32_t kWriteFailed = static_cast<int32_t>(0x800404B6);  // base + 1206

  // `files` outlives the object.
  explicit mclsVTIniFile(const mclsVTFileSystem& files) : files_(files) {}

  // The file to read from. One that is missing raises `kNoSource` and the source stays what it was.
  const std::u16string& FullName() const noexcept { return full_name_; }
  void SetFullName(std::u16string_view path);

  // The text to read from instead of a file; one of blanks and line breaks alone raises `kNoSource`. Reading
  // it answers the lines of whatever is the source, joined by CR LF, and raises `kLoadFailed`.
  std::u16string SourceString();
  void SetSourceString(std::u16string_view text);

  // What parts key and value ("="), and what begins a comment ("'"). Empty separators part nothing.
  const std::u16string& SepData() const noexcept { return sep_data_; }
  void SetSepData(std::u16string_view separator);
  const std::u16string& SepComment() const noexcept { return sep_comment_; }
  void SetSepComment(std::u16string_view separator);

  // The value of a key, or nothing when there is no such key; an empty section stands for the lines before
  // the first header. Raises `kLoadFailed`.
  std::optional<std::u16string> GetData(std::u16string_view key_name, std::u16string_view section_name);

  // Replaces the value of a key that is there in its line and writes the source to `FullName`. Raises
  // `kLoadFailed`, `kKeyNotFound`, `kWriteFailed`, and an invalid call for a value that could not be read
  // back (line breaks, comment separators).
  void PutData(std::u16string_view key_name, std::u16string_view value, std::u16string_view section_name);

 private:
  struct Row {
    std::u16string key;  // section, ".", key name; folded
    std::u16string value;
    std::size_t begin = 0;  // its line, continuations included, in the text
    std::size_t end = 0;
  };
  using Table = std::vector<Row>;  // sorted by key

  Table Parse(std::u16string_view text) const;
  static const Row* Find(const Table& table, std::u16string_view key_name, std::u16string_view section_name);
  void Load(std::u16string_view member);

  const mclsVTFileSystem& files_;
  std::u16string full_name_;
  std::u16string sep_data_ = u"=";
  std::u16string sep_comment_ = u"'";
  std::optional<std::filesystem::file_time_type> source_time_;  // of the file when it was read
  bool is_file_ = true;
  bool loaded_ = false;  // the text is that of the source
  bool parsed_ = false;  // the table is that of the text
  std::u16string text_;
  Table table_;
};

}  // namespace rowlark
