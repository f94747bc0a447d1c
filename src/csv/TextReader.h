// The text of a file, read piece by piece. Only the piece at hand is kept in memory, where the file can be
// read again; and it is read rather than mapped, so a file that another program shortens meanwhile just ends
// early.
//
// Places in the text are offsets from its beginning, behind the mark.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "csv/ByteSource.h"
#include "csv/Charset.h"

namespace rowlark {

enum class Encoding { Utf8, Utf16Little, Utf16Big, Charset };

constexpr bool IsUtf16(Encoding encoding) {
  return encoding == Encoding::Utf16Little || encoding == Encoding::Utf16Big;
}

// What is known of a text before it is read.
struct TextOptions {
  std::optional<Encoding> encoding;        // found by itself when not given
  std::shared_ptr<const Charset> charset;  // for Encoding::Charset
  // The character set of bytes that are no UTF-8; Windows-1252 where nobody guesses.
  std::function<std::shared_ptr<const Charset>(std::string_view bytes)> guess;
};

class TextReader {
 public:
  static constexpr std::size_t kPiece = 1 << 18;  // stays in the cache while it is looked through

  // Opens the file and reads its first piece. Throws std::runtime_error("path: reason").
  explicit TextReader(const std::filesystem::path& path, TextOptions options = {});
  // As with a file, for bytes at hand.
  explicit TextReader(const std::string& bytes, TextOptions options = {});
  // As with a file, for another source; `name` is for messages.
  TextReader(std::string name, std::unique_ptr<ByteSource> source, TextOptions options);

  // What has been read and not been dropped: the bytes as they are in the file, but UTF-16 as UTF-8. Reading
  // and dropping end its life.
  std::string_view Text() const noexcept { return text_; }
  // The place in the text where it begins.
  std::size_t Start() const noexcept { return start_; }

  // Reads on, as far as there is more. Throws std::runtime_error, also where the beginning is that of no
  // text.
  void ReadPiece();
  // Whether the end has been read; there is none yet while the source grows.
  bool IsWhole() const noexcept { return whole_; }
  // Of the file's size; 0 when it has none to tell (a pipe).
  double Fraction() const noexcept;
  // What lies before that place in the text will not be looked at, unless with Range or Rewind.
  void Drop(std::size_t place);
  // Goes back to the first piece.
  void Rewind();

  // Any part of what has been read; shorter when the file has become so. It lives until the next call.
  std::string_view Range(std::size_t start, std::size_t end);

  // UTF-16 by its mark or by the zeros of its ASCII characters, UTF-8 by its mark or while all that has been
  // read is UTF-8, else a character set by what it looks like.
  Encoding TextEncoding() const noexcept { return encoding_; }
  // Of Encoding::Charset; null otherwise.
  const std::shared_ptr<const rowlark::Charset>& TextCharset() const noexcept { return charset_; }
  // How often more of the text has shown that its encoding is another one than it had seemed.
  int Corrections() const noexcept { return corrections_; }
  bool HasMark() const noexcept { return mark_size_ != 0; }
  // The last byte of UTF-16 that ends in half a unit, for which the text has U+FFFD.
  std::optional<char> CutByte() const noexcept { return cut_byte_; }

  // Whether all that has been read is UTF-8 without damage.
  bool IsUtf8() const noexcept { return encoding_ != Encoding::Charset && well_formed_; }
  // A part of the text as UTF-8, for which it may need `scratch`.
  std::string_view ToUtf8(std::string_view part, std::string& scratch) const;

  // Throws std::runtime_error("path: reason").
  [[noreturn]] void Fail(const std::string& reason) const;

 private:
  std::size_t Read(std::uintmax_t place, std::size_t size, std::string& bytes);
  void ReadOn(std::size_t size);
  void FindEncoding(std::string_view beginning);
  void AppendUtf16(std::string_view bytes);
  void Check();
  void Guess();

  std::string path_;
  std::unique_ptr<ByteSource> source_;
  TextOptions options_;
  bool keep_;                // all of the text, since it can not be read again or not by places in the text
  std::uintmax_t read_ = 0;  // of the source
  bool whole_ = false;
  bool begun_ = false;  // the encoding has been looked for
  std::string text_;
  std::size_t start_ = 0;
  std::size_t checked_ = 0;  // of text_: so much is UTF-8, when that is the encoding
  std::string range_;
  std::size_t range_start_ = 0;
  Encoding encoding_ = Encoding::Utf8;
  std::shared_ptr<const rowlark::Charset> charset_;
  std::size_t guessed_ = 0;  // the text of which the character set was guessed
  int corrections_ = 0;
  std::size_t mark_size_ = 0;
  bool well_formed_ = true;  // without damage, when it is UTF-8 for sure
  std::string rest_;  // bytes that are not in the text yet: too few to begin, or half a character of UTF-16
  std::optional<char> cut_byte_;
};

// Appends UTF-8 in another encoding, without a mark. Returns the first character that this encoding does not
// have, and 0 when it has all.
char32_t AppendEncoded(std::string& bytes, std::string_view utf8, Encoding encoding,
                       const Charset* charset = nullptr);

}  // namespace rowlark
