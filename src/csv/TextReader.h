// The text of a file, read piece by piece. Only the piece at hand is kept in memory, where the file can be
// read again; and it is read rather than mapped, so a file that another program shortens meanwhile just ends
// early.
//
// Places in the text are offsets from its beginning, behind the mark.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <streambuf>
#include <string>
#include <string_view>

namespace rowlark {

enum class Encoding { Utf8, Utf16Little, Utf16Big, Windows1252 };

class TextReader {
 public:
  static constexpr std::size_t kPiece = 1 << 18;  // stays in the cache while it is looked through

  // Opens the file and reads its first piece. Throws std::runtime_error("path: reason").
  explicit TextReader(const std::filesystem::path& path);
  // As with a file, for bytes at hand.
  explicit TextReader(const std::string& bytes);

  // What has been read and not been dropped: the bytes as they are in the file, but UTF-16 as UTF-8. Reading
  // and dropping end its life.
  std::string_view Text() const noexcept { return text_; }
  // The place in the text where it begins.
  std::size_t Start() const noexcept { return start_; }

  // Reads on. Throws std::runtime_error, also for a NUL character: then it is no text.
  void ReadPiece();
  // Whether the end has been read.
  bool IsWhole() const noexcept { return whole_; }
  // Of the file's size; 0 when it has none to tell (a pipe).
  double Fraction() const noexcept;
  // What lies before that place in the text will not be looked at, unless with Range or Rewind.
  void Drop(std::size_t place);
  // Goes back to the first piece.
  void Rewind();

  // Any part of what has been read; shorter when the file has become so. It lives until the next call.
  std::string_view Range(std::size_t start, std::size_t end);

  // UTF-16 by its mark, UTF-8 by its mark or while all that has been read is UTF-8, else Windows-1252.
  Encoding TextEncoding() const noexcept { return encoding_; }
  bool HasMark() const noexcept { return mark_size_ != 0; }
  // The last byte of UTF-16 that ends in half a unit, for which the text has U+FFFD.
  std::optional<char> CutByte() const noexcept { return cut_byte_; }

  // Whether all that has been read is UTF-8 without damage.
  bool IsUtf8() const noexcept { return encoding_ != Encoding::Windows1252 && well_formed_; }
  // A part of the text as UTF-8, for which it may need `scratch`.
  std::string_view ToUtf8(std::string_view part, std::string& scratch) const;

  // Throws std::runtime_error("path: reason").
  [[noreturn]] void Fail(const std::string& reason) const;

 private:
  TextReader(std::string path, std::unique_ptr<std::streambuf> source, std::uintmax_t size);
  std::size_t Read(std::uintmax_t place, std::size_t size, std::string& bytes);
  void ReadOn(std::size_t size);
  void AppendUtf16(std::string_view bytes);
  void Check(std::size_t start);

  std::string path_;
  std::unique_ptr<std::streambuf> source_;
  std::uintmax_t size_;
  bool keep_;                // all of the text, since it can not be read again or not by places in the text
  std::uintmax_t read_ = 0;  // of the source
  bool whole_ = false;
  std::string text_;
  std::size_t start_ = 0;
  std::size_t checked_ = 0;  // of text_: so much is UTF-8, when that is the encoding
  std::string range_;
  std::size_t range_start_ = 0;
  Encoding encoding_ = Encoding::Utf8;
  std::size_t mark_size_ = 0;
  bool well_formed_ = true;  // without damage, when the mark says UTF-8
  std::string rest_;         // bytes of a UTF-16 character that the last piece cut
  std::optional<char> cut_byte_;
};

// Appends UTF-8 in another encoding, without a mark. Returns the first character that this encoding does not
// have, and 0 when it has all.
char32_t AppendEncoded(std::string& bytes, std::string_view utf8, Encoding encoding);

}  // namespace rowlark
