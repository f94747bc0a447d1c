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

class BufferSource final : public ByteSource {
 public:
  BufferSource(std::unique_ptr<std::streambuf> buffer, std::uintmax_t size)
      : buffer_(std::move(buffer)),
        size_(size),
        can_go_back_(buffer_->pubseekoff(0, std::ios::cur, std::ios::in) >= 0) {}

  void Read(std::uintmax_t place, std::size_t size, std::string& bytes) override {
    const std::size_t start = bytes.size();
    bytes.resize(start + size);
    if (can_go_back_) buffer_->pubseekpos(static_cast<std::streamoff>(place), std::ios::in);
    const auto count = buffer_->sgetn(bytes.data() + start, static_cast<std::streamsize>(size));
    bytes.resize(start + static_cast<std::size_t>(count));
  }
  std::uintmax_t Size() const override { return size_; }
  bool CanGoBack() const override { return can_go_back_; }

 private:
  std::unique_ptr<std::streambuf> buffer_;
  std::uintmax_t size_;
  bool can_go_back_;
};

std::unique_ptr<ByteSource> OpenFile(const std::filesystem::path& path) {
  auto file = std::make_unique<std::filebuf>();
  errno = 0;
  if (file->open(path, std::ios::in | std::ios::binary) == nullptr) {
    FailWith(path.string(), std::error_code(errno, std::generic_category()).message());
  }
  std::error_code unknown;
  const auto size = std::filesystem::file_size(path, unknown);
  return std::make_unique<BufferSource>(std::move(file), unknown ? 0 : size);
}

// UTF-16 without a mark: its ASCII characters (digits, separators, line ends in any language) bring zeros,
// and these stand at one side of the pairs.
std::optional<Encoding> Utf16WithoutMark(string_view beginning) {
  const string_view sample = beginning.substr(0, 4096);
  std::size_t zeros[2] = {};
  for (std::size_t i = 0; i < sample.size(); ++i) zeros[i % 2] += sample[i] == 0 ? 1 : 0;
  const auto are_many = [&](std::size_t these, std::size_t others) {
    return these >= 2 && these >= sample.size() / 16 && these >= 8 * others;
  };
  if (are_many(zeros[1], zeros[0])) return Encoding::Utf16Little;
  if (are_many(zeros[0], zeros[1])) return Encoding::Utf16Big;
  return std::nullopt;
}

// A program or a picture: zeros, and many bytes that no text has. Tables may hold zeros alone.
bool IsBinary(string_view beginning) {
  const string_view sample = beginning.substr(0, 4096);
  const auto zeros = std::ranges::count(sample, '\0');
  const auto is_odd = [](char c) {
    return c > 0 && c < ' ' && string_view("\t\n\v\f\r\x1B\x1C\x1D\x1E\x1F\x01").find(c) == string_view::npos;
  };
  return zeros > 0 && std::ranges::count_if(sample, is_odd) * 20 > std::ssize(sample) - zeros;
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

TextReader::TextReader(const std::filesystem::path& path, TextOptions options)
    : TextReader(path.string(), OpenFile(path), std::move(options)) {}

TextReader::TextReader(const std::string& bytes, TextOptions options)
    : TextReader(
          "",
          std::make_unique<BufferSource>(std::make_unique<std::stringbuf>(bytes, std::ios::in), bytes.size()),
          std::move(options)) {}

TextReader::TextReader(std::string name, std::unique_ptr<ByteSource> source, TextOptions options)
    : path_(std::move(name)),
      source_(std::move(source)),
      options_(std::move(options)),
      keep_(!source_->CanGoBack()) {
  const auto size = source_->Size();
  ReadOn(size == 0 ? kFirstPiece : static_cast<std::size_t>(std::min<std::uintmax_t>(size + 1, kFirstPiece)));
}

void TextReader::ReadPiece() {
  if (!whole_) ReadOn(kPiece);
}

void TextReader::ReadOn(std::size_t size) {
  constexpr std::size_t kLeast = 4;  // tells the longest mark
  const bool is_text = begun_ && !IsUtf16(encoding_);
  std::string bytes = is_text ? std::string() : std::exchange(rest_, {});
  const std::size_t count = Read(read_, size, is_text ? text_ : bytes);
  read_ += count;
  whole_ = count < size && !source_->IsGrowing();
  if (!begun_) {
    if (bytes.size() < kLeast && !bytes.ends_with('\n') && !whole_) {
      rest_ = std::move(bytes);
      return;
    }
    begun_ = true;
    FindEncoding(bytes);
    bytes.erase(0, mark_size_);
    if (!IsUtf16(encoding_)) text_ = std::exchange(bytes, {});
  }
  if (IsUtf16(encoding_)) AppendUtf16(bytes);
  Check();
}

void TextReader::FindEncoding(string_view beginning) {
  struct Mark {
    Encoding encoding;
    string_view bytes;
  };
  constexpr Mark kMarks[] = {{Encoding::Utf8, kUtf8Mark},
                             {Encoding::Utf16Little, kUtf16LittleMark},
                             {Encoding::Utf16Big, kUtf16BigMark}};
  const auto mark = std::ranges::find_if(kMarks, [&](const Mark& one) {
    return beginning.starts_with(one.bytes) && options_.encoding.value_or(one.encoding) == one.encoding;
  });
  if (mark != std::end(kMarks)) {
    encoding_ = mark->encoding;
    mark_size_ = mark->bytes.size();
  } else if (options_.encoding) {
    encoding_ = *options_.encoding;
    charset_ = options_.charset;
  } else if (const auto found = Utf16WithoutMark(beginning)) {
    encoding_ = *found;
  } else if (IsBinary(beginning)) {
    Fail("Not a text file");
  }
  keep_ = keep_ || IsUtf16(encoding_);
}

double TextReader::Fraction() const noexcept {
  if (whole_) return 1;
  const auto size = source_->Size();
  return size == 0 ? 0 : std::min(1.0, static_cast<double>(read_) / static_cast<double>(size));
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
  try {
    source_->Read(place, size, bytes);
  } catch (const std::ios_base::failure& failure) {
    Fail(std::error_code(failure.code().value(), std::generic_category()).message());
  }
  return bytes.size() - start;
}

void TextReader::AppendUtf16(string_view bytes) {
  const std::size_t low = encoding_ == Encoding::Utf16Little ? 0 : 1;
  const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(byte(i + low) | byte(i + 1 - low) << 8);
  }
  const bool is_cut_pair = !units.empty() && (units.back() & 0xFC00) == 0xD800;
  if (!whole_) {
    if (is_cut_pair) units.pop_back();
    rest_ = bytes.substr(units.size() * 2);
  } else if (bytes.size() % 2 != 0) {  // half a unit: the file was cut off
    cut_byte_ = bytes.back();
    units += u'\uFFFD';
  }
  text_ += rowlark::ToUtf8(units);
}

void TextReader::Check() {
  if (encoding_ == Encoding::Charset) {
    // What came from a slow source so far may have been too little to guess by.
    const bool is_guessed = !options_.encoding && keep_;
    if (is_guessed && guessed_ < kFirstPiece && (whole_ || text_.size() >= 2 * guessed_)) Guess();
    return;
  }
  if (encoding_ != Encoding::Utf8 || !well_formed_) return;
  const string_view unchecked = Text().substr(checked_);
  const std::size_t size = whole_ ? unchecked.size() : WholeCharacters(unchecked);
  if (IsValidUtf8(unchecked.substr(0, size))) {
    checked_ += size;
  } else if (HasMark() || options_.encoding) {
    well_formed_ = false;
  } else {
    Guess();
  }
}

void TextReader::Guess() {
  auto charset = options_.guess ? options_.guess(Text()) : Windows1252();
  guessed_ = text_.size();
  if (charset_ && charset_->Name() == charset->Name()) return;
  encoding_ = Encoding::Charset;
  charset_ = std::move(charset);
  ++corrections_;
}

string_view TextReader::ToUtf8(string_view part, std::string& scratch) const {
  if (encoding_ == Encoding::Charset) {
    if (std::ranges::all_of(part, IsAscii)) return part;
    scratch = charset_->ToUtf8(part);
  } else if (well_formed_ || IsValidUtf8(part)) {
    return part;
  } else {
    scratch = rowlark::ToUtf8(ToUtf16(part));
  }
  return scratch;
}

void TextReader::Fail(const std::string& reason) const { FailWith(path_, reason); }

char32_t AppendEncoded(std::string& bytes, string_view utf8, Encoding encoding, const Charset* charset) {
  if (encoding == Encoding::Charset) return charset->Append(bytes, utf8);
  if (IsUtf16(encoding)) {
    const bool is_little = encoding == Encoding::Utf16Little;
    for (const char16_t unit : ToUtf16(utf8)) {
      const char halves[] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
      bytes += halves[is_little ? 0 : 1];
      bytes += halves[is_little ? 1 : 0];
    }
  } else if (IsValidUtf8(utf8)) {
    bytes += utf8;
  } else {
    while (!utf8.empty()) {
      const char32_t c = TakeUtf8(utf8);
      AppendUtf8(bytes, (c & 0xFFFFF800) == 0xD800 ? U'\uFFFD' : c);  // half a pair has no place in UTF-8
    }
  }
  return 0;
}

}  // namespace rowlark
