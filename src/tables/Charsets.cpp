#include "tables/Charsets.h"

#include <iconv.h>
#include <uchardet/uchardet.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

#include "util/Owner.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using std::string_view;

constexpr string_view kUnknown = "\uFFFD";

bool IsAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

class Conversion {
 public:
  Conversion(const std::string& to, const std::string& from)
      : state_(::iconv_open(to.c_str(), from.c_str())) {
    if (!state_) throw std::runtime_error("no encoding '" + (to == "UTF-8" ? from : to) + "'");
  }

  // Appends as much as it can. What is left over in `in` is malformed (EILSEQ), or the beginning of a
  // character (EINVAL), as the result says; 0 when nothing is left.
  int Append(string_view& in, std::string& out) {
    std::array<char, 4096> buffer{};
    char* from = const_cast<char*>(in.data());  // NOLINT: an old interface; it only reads
    std::size_t left = in.size();
    int failed = E2BIG;
    while (failed == E2BIG) {
      char* to = buffer.data();
      std::size_t room = buffer.size();
      failed = ::iconv(*state_, &from, &left, &to, &room) == kFailed ? errno : 0;
      out.append(buffer.data(), buffer.size() - room);
    }
    in.remove_prefix(in.size() - left);
    return failed;
  }
  // Appends what is still held back, and begins anew.
  void End(std::string& out) {
    std::array<char, 64> buffer{};
    char* to = buffer.data();
    std::size_t room = buffer.size();
    ::iconv(*state_, nullptr, nullptr, &to, &room);
    out.append(buffer.data(), buffer.size() - room);
  }

 private:
  static constexpr auto kFailed = static_cast<std::size_t>(-1);
  struct Traits {
    using Handle = iconv_t;
    static Handle None() noexcept { return reinterpret_cast<iconv_t>(-1); }  // NOLINT: as iconv_open has it
    static void Close(Handle state) noexcept { ::iconv_close(state); }
  };
  Owner<Traits> state_;
};

// Appends all of it; malformed bytes as U+FFFD, one by one.
void AppendAll(Conversion& conversion, string_view bytes, std::string& text) {
  while (conversion.Append(bytes, text) != 0) {
    text += kUnknown;
    bytes.remove_prefix(1);
  }
  conversion.End(text);
}

class IconvCharset final : public Charset {
 public:
  explicit IconvCharset(const std::string& name)
      : name_(name), to_utf8_("UTF-8", name), from_utf8_(name, "UTF-8") {
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      const char byte = static_cast<char>(i);
      string_view rest(&byte, 1);
      const bool is_part = to_utf8_.Append(rest, texts_[i]) == EINVAL;
      to_utf8_.End(texts_[i]);
      single_bytes_ = single_bytes_ && !is_part;
      if (IsAscii(byte)) {
        keeps_ascii_ = keeps_ascii_ && texts_[i] == string_view(&byte, 1);
      } else if (texts_[i].empty()) {
        texts_[i] = kUnknown;
      } else {
        string_view text = texts_[i];
        const char32_t character = TakeUtf8(text);
        if (text.empty()) bytes_.emplace(character, byte);
      }
      leads_ += is_part ? std::string(1, byte) : "";
    }
  }

  bool KeepsAscii() const { return keeps_ascii_ && Tells('"') && Tells('\n') && Tells('\r'); }

  string_view Name() const override { return name_; }

  bool Tells(char ascii) const override {
    return std::ranges::none_of(leads_, [&](char lead) {
      const char pair[] = {lead, ascii};
      string_view rest(pair, sizeof pair);
      std::string text;
      const int failed = to_utf8_.Append(rest, text);
      to_utf8_.End(text);
      return failed != EILSEQ;
    });
  }

  std::string ToUtf8(string_view bytes) const override {
    std::string text;
    if (single_bytes_) {
      for (const char byte : bytes) text += texts_[static_cast<unsigned char>(byte)];
    } else {
      AppendAll(to_utf8_, bytes, text);
    }
    return text;
  }

  char32_t Append(std::string& bytes, string_view utf8) const override {
    while (!utf8.empty()) {
      const string_view before = utf8;
      const char32_t character = TakeUtf8(utf8);
      string_view rest = before.substr(0, before.size() - utf8.size());
      if (character < 0x80) {
        bytes += static_cast<char>(character);
      } else if (!single_bytes_) {
        if (from_utf8_.Append(rest, bytes) != 0) return character;
        from_utf8_.End(bytes);
      } else if (const auto at = bytes_.find(character); at != bytes_.end()) {
        bytes += at->second;
      } else {
        return character;
      }
    }
    return 0;
  }

 private:
  std::string name_;
  mutable Conversion to_utf8_;
  mutable Conversion from_utf8_;
  std::array<std::string, 256> texts_;  // of each byte
  std::map<char32_t, char> bytes_;      // of characters beyond ASCII
  std::string leads_;                   // bytes that begin a longer character
  bool single_bytes_ = true;
  bool keeps_ascii_ = true;
};

std::string UpperCase(std::string text) {
  for (char& c : text) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  return text;
}

// Of the first lines those that hold more than ASCII.
std::string Sample(string_view bytes) {
  constexpr std::size_t kEnough = 1 << 16;
  std::string sample;
  while (!bytes.empty() && sample.size() < kEnough) {
    const auto line = bytes.substr(0, std::min(bytes.find('\n'), kEnough) + 1);
    if (!std::ranges::all_of(line, IsAscii)) sample += line;
    bytes.remove_prefix(line.size());
  }
  return sample;
}

// Whether letters beyond ASCII stand side by side, as in an alphabet of its own; accented ones stand alone.
bool IsOtherScript(string_view sample) {
  std::size_t all = 0;
  std::size_t side_by_side = 0;
  for (std::size_t i = 0; i < sample.size(); ++i) {
    if (IsAscii(sample[i])) continue;
    ++all;
    const bool has_neighbour =
        (i > 0 && !IsAscii(sample[i - 1])) || (i + 1 < sample.size() && !IsAscii(sample[i + 1]));
    side_by_side += has_neighbour ? 1 : 0;
  }
  return side_by_side * 4 >= all * 3;
}

std::string Detected(string_view sample) {
  struct Traits {
    using Handle = uchardet_t;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle detector) noexcept { ::uchardet_delete(detector); }
  };
  const Owner<Traits> detector(::uchardet_new());
  ::uchardet_handle_data(*detector, sample.data(), sample.size());
  ::uchardet_data_end(*detector);
  return ::uchardet_get_charset(*detector);
}

// Many tables have a few words only, for which the detector names rare encodings too. So these are passed
// over; of two that differ in a few characters the one of Windows is preferred.
std::string Plausible(const std::string& detected, string_view sample) {
  const auto count = [&](unsigned char first, unsigned char last) {
    return std::ranges::count_if(sample, [&](char c) {
      const auto byte = static_cast<unsigned char>(c);
      return first <= byte && byte <= last;
    });
  };
  const auto has = [&](unsigned char first, unsigned char last) { return count(first, last) > 0; };
  if (detected == "WINDOWS-1250" || detected == "ISO-8859-2")
    return has(0x80, 0x9F) ? "WINDOWS-1250" : detected;
  if (!IsOtherScript(sample)) return "";
  if (detected == "WINDOWS-1253" || detected == "ISO-8859-7") {
    constexpr unsigned char kAlphaWithTonos = 0xB6;  // in ISO 8859-7; the paragraph sign in Windows-1253
    return has(kAlphaWithTonos, kAlphaWithTonos) && !has(0x80, 0x9F) ? "ISO-8859-7" : "WINDOWS-1253";
  }
  // Of Cyrillic languages the detector does not know all. Two sets differ in where the capitals are.
  if (detected.empty() || (detected == "MAC-CYRILLIC" && count(0x80, 0x9F) <= count(0xC0, 0xDE))) {
    return "WINDOWS-1251";
  }
  if (detected == "SHIFT_JIS") return "CP932";
  for (const char* fine :
       {"WINDOWS-1251", "KOI8-R", "IBM866", "ISO-8859-5", "MAC-CYRILLIC", "IBM855", "WINDOWS-1255",
        "ISO-8859-8", "WINDOWS-1256", "ISO-8859-6", "TIS-620", "EUC-JP", "GB18030", "BIG5", "EUC-KR"}) {
    if (detected == fine) return detected;
  }
  return "";
}

}  // namespace

NamedEncoding::NamedEncoding(const std::string& name) {
  options.guess = GuessCharset;
  if (name.empty()) return;
  const std::string upper = UpperCase(name);
  if (upper == "UTF-8" || upper == "UTF8") {
    options.encoding = Encoding::Utf8;
  } else if (upper == "UTF-16LE" || upper == "UTF16LE") {
    options.encoding = Encoding::Utf16Little;
  } else if (upper == "UTF-16BE" || upper == "UTF16BE") {
    options.encoding = Encoding::Utf16Big;
  } else if (upper != "UTF-16" && upper != "UTF16") {  // which of the two the text tells
    auto charset = std::make_shared<IconvCharset>(name);
    if (charset->KeepsAscii()) {
      options.encoding = Encoding::Charset;
      options.charset = std::move(charset);
    } else {
      options.encoding = Encoding::Utf8;
      to_convert = name;
    }
  }
}

std::shared_ptr<const Charset> GuessCharset(string_view bytes) {
  auto western = Windows1252();
  const std::string sample = Sample(bytes);
  const std::string name = Plausible(Detected(sample), sample);
  if (name.empty()) return western;
  try {
    auto charset = std::make_shared<IconvCharset>(name);
    const std::string text = charset->ToUtf8(sample);
    std::size_t damages = 0;
    for (auto at = text.find(kUnknown); at != text.npos; at = text.find(kUnknown, at + 1)) ++damages;
    const auto letters = std::ranges::count_if(sample, [](char c) { return !IsAscii(c); });
    const bool is_damaged = damages * 4 > static_cast<std::size_t>(letters);
    if (is_damaged || text == western->ToUtf8(sample)) return western;
    return charset;
  } catch (const std::runtime_error&) {  // the system does not have it
    return western;
  }
}

Chunks Converted(Chunks chunks, const std::string& encoding) {
  struct State {
    Chunks chunks;
    Conversion conversion;
    std::string rest;  // the beginning of a character
  };
  const auto state = std::make_shared<State>(State{std::move(chunks), Conversion("UTF-8", encoding), ""});
  return [state] {
    std::string text;
    for (bool is_end = false; text.empty() && !is_end;) {
      const std::string chunk = state->chunks();
      is_end = chunk.empty();
      const std::string bytes = state->rest + chunk;
      string_view left = bytes;
      int failed = 0;
      while ((failed = state->conversion.Append(left, text)) != 0 && (failed != EINVAL || is_end)) {
        text += kUnknown;
        left.remove_prefix(1);
      }
      if (is_end) state->conversion.End(text);
      state->rest = left;
    }
    return text;
  };
}

}  // namespace rowlark
