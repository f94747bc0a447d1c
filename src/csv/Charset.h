// Character sets of files that are neither UTF-8 nor UTF-16. Their text is kept as the bytes that it has in
// the file, so line ends and quotes, which are ASCII in all of them, can be no part of another character.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace rowlark {

class Charset {
 public:
  virtual ~Charset() = default;

  // For the user, "Windows-1252".
  virtual std::string_view Name() const = 0;
  // Whether a byte with the value of this ASCII character is never a part of another one.
  virtual bool Tells(char) const { return true; }
  // What is malformed comes as U+FFFD.
  virtual std::string ToUtf8(std::string_view bytes) const = 0;
  // Appends a text in the character set. Returns the first character that this has not, and 0 when it has
  // all.
  virtual char32_t Append(std::string& bytes, std::string_view utf8) const = 0;
};

std::shared_ptr<const Charset> Windows1252();

}  // namespace rowlark
