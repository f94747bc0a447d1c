#include "csv/TextReader.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <ios>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "util/Utf.h"

namespace rowlark {
namespace {

using std::string_view;

constexpr std::size_t kFirstPiece = 1 << 20;  // the separator is found in this much

constexpr string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr string_view kUtf16LittleMark = "\xFF\xFE";
constexpr string_view kUtf16BigMark = "\xFE\xFF";

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

[[noreturn]] void FailWith(const std::string& path, const std::string& reason) {
  throw std::runtime_error(path + ": " + reason);
}

std::unique_ptr<std::streambuf> OpenFile(const std::filesystem::path& path) {
  auto file = std::make_unique<std::filebuf>();
  errno = 0;
  if (file->open(path, std::ios::in | std::ios::binary) == nullptr) {
    FailWith(path.string(), std::error_code(errno, std::generic_category()).message());
  }
  return file;
}

std::uintmax_t SizeOf(const std::filesystem::path& path) {
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  return unknown ? 0 : size;
}

// Where the last character of the text begins, if it may be cut off; else the text's end.
std::size_t WholeCharacters(string_view text) {
  for (std::size_t back = 1; back <= 3 && back <= text.size(); ++back) {
    const auto byte = static_cast<unsigned char>(text[text.size() - back]);
    if (byte < 0x80) break;
    if (byte >= 0xC0) return text.size() - back;
  }
  return text.size();
}

}  // namespace

TextReader::TextReader(const std::filesystem::path& path)
    : TextReader(path.string(), OpenFile(path), SizeOf(path)) {}

TextReader::TextReader(const std::string& bytes)
    : TextReader("", std::make_unique<std::stringbuf>(bytes, std::ios::in), bytes.size()) {}

TextReader::TextReader(std::string path, std::unique_ptr<std::streambuf> source, std::uintmax_t size)
    : path_(std::move(path)),
      source_(std::move(source)),
      size_(size),
      keep_(source_->pubseekoff(0, std::ios::cur, std::ios::in) < 0) {
  const std::size_t first =
      size_ == 0 ? kFirstPiece : static_cast<std::size_t>(std::min<std::uintmax_t>(size_ + 1, kFirstPiece));
  read_ = Read(0, first, text_);
  whole_ = read_ < first;
  const bool is_little = text_.starts_with(kUtf16LittleMark);
  if (is_little || text_.starts_with(kUtf16BigMark)) {
    encoding_ = is_little ? Encoding::Utf16Little : Encoding::Utf16Big;
    mark_size_ = kUtf16LittleMark.size();
    keep_ = true;
    const std::string bytes = std::exchange(text_, {});
    AppendUtf16(string_view(bytes).substr(mark_size_));
  } else if (text_.starts_with(kUtf8Mark)) {
    mark_size_ = kUtf8Mark.size();
    text_.erase(0, mark_size_);
  }
  Check(0);
}

void TextReader::ReadPiece() {
  if (!whole_) ReadOn(kPiece);
}

void TextReader::ReadOn(std::size_t size) {
  const std::size_t start = text_.size();
  const bool is_utf16 = encoding_ == Encoding::Utf16Little || encoding_ == Encoding::Utf16Big;
  std::string bytes;
  const std::size_t count = Read(read_, size, is_utf16 ? bytes : text_);
  read_ += count;
  whole_ = count < size;
  if (is_utf16) AppendUtf16(bytes);
  Check(start);
}

double TextReader::Fraction() const noexcept {
  if (whole_) return 1;
  return size_ == 0 ? 0 : std::min(1.0, static_cast<double>(read_) / static_cast<double>(size_));
}

void TextReader::Drop(std::size_t place) {
  if (keep_) return;
  const std::size_t dropped = place - start_;
  text_.erase(0, dropped);
  start_ = place;
  checked_ -= std::min(checked_, dropped);
}

void TextReader::Rewind() {
  if (start_ == 0) return;
  start_ = 0;
  checked_ = 0;
  read_ = mark_size_;
  text_.clear();
  whole_ = false;
  ReadOn(kFirstPiece);
}

string_view TextReader::Range(std::size_t start, std::size_t end) {
  const std::size_t size = end - start;
  if (start >= start_ && end <= start_ + text_.size()) return Text().substr(start - start_, size);
  if (start < range_start_ || end > range_start_ + range_.size()) {
    range_.clear();
    range_start_ = start;
    const auto place = mark_size_ + start;
    const auto rest = static_cast<std::size_t>(read_ - std::min<std::uintmax_t>(read_, place));
    Read(place, std::max(size, std::min(kPiece, rest)), range_);
  }
  return string_view(range_).substr(start - range_start_, size);
}

// Appends so many bytes, or fewer at the end of the file; returns how many.
std::size_t TextReader::Read(std::uintmax_t place, std::size_t size, std::string& bytes) {
  const std::size_t start = bytes.size();
  std::streamsize count = 0;
  bytes.resize(start + size);
  try {
    if (!keep_) source_->pubseekpos(static_cast<std::streamoff>(place), std::ios::in);
    count = source_->sgetn(bytes.data() + start, static_cast<std::streamsize>(size));
  } catch (const std::ios_base::failure& failure) {
    Fail(std::error_code(failure.code().value(), std::generic_category()).message());
  }
  const auto got = static_cast<std::size_t>(count);
  bytes.resize(start + got);
  return got;
}

void TextReader::AppendUtf16(string_view bytes) {
  const std::string all = std::exchange(rest_, {}) + std::string(bytes);
  const std::size_t low = encoding_ == Encoding::Utf16Little ? 0 : 1;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(all[at]); };
  std::u16string units;
  units.reserve(all.size() / 2);
  for (std::size_t i = 0; i + 1 < all.size(); i += 2) {
    units += static_cast<char16_t>(byte(i + low) | byte(i + 1 - low) << 8);
  }
  const bool is_cut_pair = !units.empty() && (units.back() & 0xFC00) == 0xD800;
  if (!whole_) {
    if (is_cut_pair) units.pop_back();
    rest_ = all.substr(units.size() * 2);
  } else if (all.size() % 2 != 0) {  // half a unit: the file was cut off
    cut_byte_ = all.back();
    units += u'\uFFFD';
  }
  text_ += rowlark::ToUtf8(units);
}

void TextReader::Check(std::size_t start) {
  if (Text().find('\0', start) != string_view::npos) Fail("Not a text file (it holds a NUL character)");
  if (encoding_ != Encoding::Utf8 || !well_formed_) return;
  const string_view unchecked = Text().substr(checked_);
  const std::size_t size = whole_ ? unchecked.size() : WholeCharacters(unchecked);
  if (IsValidUtf8(unchecked.substr(0, size))) {
    checked_ += size;
  } else if (HasMark()) {
    well_formed_ = false;
  } else {
    encoding_ = Encoding::Windows1252;
  }
}

string_view TextReader::ToUtf8(string_view part, std::string& scratch) const {
  if (encoding_ == Encoding::Windows1252) {
    if (std::ranges::all_of(part, IsAscii)) return part;
    scratch = rowlark::ToUtf8(FromWindows1252(part));
  } else if (well_formed_ || IsValidUtf8(part)) {
    return part;
  } else {
    scratch = rowlark::ToUtf8(ToUtf16(part));
  }
  return scratch;
}

void TextReader::Fail(const std::string& reason) const { FailWith(path_, reason); }

char32_t AppendEncoded(std::string& bytes, string_view utf8, Encoding encoding) {
  if (encoding == Encoding::Utf8 && IsValidUtf8(utf8)) {
    bytes += utf8;
    return 0;
  }
  if (encoding == Encoding::Utf16Little || encoding == Encoding::Utf16Big) {
    for (const char16_t unit : ToUtf16(utf8)) {
      const char halves[] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
      const bool is_little = encoding == Encoding::Utf16Little;
      bytes += halves[is_little ? 0 : 1];
      bytes += halves[is_little ? 1 : 0];
    }
    return 0;
  }
  static const std::u16string kAnsi = [] {
    std::string all(256, '\0');
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<char>(i);
    return FromWindows1252(all);
  }();
  while (!utf8.empty()) {
    const char32_t c = TakeUtf8(utf8);
    if (encoding == Encoding::Utf8) {
      AppendUtf8(bytes, (c & 0xFFFFF800) == 0xD800 ? U'\uFFFD' : c);  // half a pair has no place in UTF-8
    } else if (c < 0x80) {
      bytes += static_cast<char>(c);
    } else {
      const auto at = c < 0x10000 ? kAnsi.find(static_cast<char16_t>(c), 0x80) : std::u16string::npos;
      if (at == std::u16string::npos) return c;
      bytes += static_cast<char>(at);
    }
  }
  return 0;
}

}  // namespace rowlark
