#include "tables/workbook/Xml.h"

#include <expat.h>
#include <iconv.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <new>
#include <stdexcept>

namespace rowlark {
namespace {

constexpr char kSeparator = '\n';  // between a namespace and a name

constexpr std::pair<std::string_view, std::string_view> kPrefixes[] = {
    {"http://schemas.openxmlformats.org/spreadsheetml/2006/main", ""},
    {"http://purl.oclc.org/ooxml/spreadsheetml/main", ""},
    {"http://schemas.openxmlformats.org/package/2006/relationships", ""},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships", "r:"},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships", "r:"},
    {"http://schemas.microsoft.com/office/2006/encryption", ""},
    {"http://schemas.microsoft.com/office/2006/keyEncryptor/password", "p:"},
    {"urn:oasis:names:tc:opendocument:xmlns:office:1.0", "office:"},
    {"urn:oasis:names:tc:opendocument:xmlns:table:1.0", "table:"},
    {"urn:oasis:names:tc:opendocument:xmlns:text:1.0", "text:"},
    {"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0", "draw:"},
    {"urn:oasis:names:tc:opendocument:xmlns:dr3d:1.0", "dr3d:"},
    {"urn:oasis:names:tc:opendocument:xmlns:manifest:1.0", "manifest:"},
    {"urn:schemas-microsoft-com:office:spreadsheet", "ss:"}};

void AssignName(std::string& name, std::string_view whole) {
  const auto end = whole.find(kSeparator);
  if (end != std::string_view::npos) {
    const auto* const known = std::ranges::find(kPrefixes, whole.substr(0, end),
                                                &std::pair<std::string_view, std::string_view>::first);
    if (known != std::end(kPrefixes)) {
      name = known->second;
      name += whole.substr(end + 1);
      return;
    }
  }
  name = whole;
}

// Code pages of one byte a character, which Expat wants as a table.
int UnknownEncoding(void*, const XML_Char* name, XML_Encoding* encoding) noexcept {
  const iconv_t conversion = ::iconv_open("UTF-32LE", name);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): how iconv says that there is none
  if (conversion == reinterpret_cast<iconv_t>(-1)) return XML_STATUS_ERROR;
  for (int i = 0; i < 256; ++i) {
    char byte = static_cast<char>(i);
    char* in = &byte;
    std::size_t in_size = 1;
    unsigned char bytes[4] = {};
    char* out = reinterpret_cast<char*>(bytes);
    std::size_t out_size = sizeof bytes;
    ::iconv(conversion, nullptr, nullptr, nullptr, nullptr);
    const bool converted =
        ::iconv(conversion, &in, &in_size, &out, &out_size) != static_cast<std::size_t>(-1) && out_size == 0;
    encoding->map[i] = converted ? bytes[0] | bytes[1] << 8 | bytes[2] << 16 : -1;
  }
  ::iconv_close(conversion);
  return XML_STATUS_OK;
}

}  // namespace

// Between the parser, which is C, and the handler, whose exceptions it must not meet.
struct XmlParser::State {
  explicit State(XmlHandler& to) : handler(to) {
    if (parser == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser.get(), this);
    XML_SetElementHandler(parser.get(), Start, End);
    XML_SetCharacterDataHandler(parser.get(), Characters);
    XML_SetUnknownEncodingHandler(parser.get(), UnknownEncoding, nullptr);
  }

  void Parse(std::string_view piece, bool is_last) const {
    if (XML_Parse(parser.get(), piece.data(), static_cast<int>(piece.size()), is_last) == XML_STATUS_OK)
      return;
    if (failure) std::rethrow_exception(failure);
    const auto code = XML_GetErrorCode(parser.get());
    if (code == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    throw std::runtime_error(std::string("Damaged XML: ") + XML_ErrorString(code));
  }

  template <class Call>
  static void Guard(void* self, Call&& call) noexcept {
    auto& state = *static_cast<State*>(self);
    if (state.failure) return;
    try {
      call(state);
    } catch (...) {
      state.failure = std::current_exception();
      XML_StopParser(state.parser.get(), XML_FALSE);
    }
  }

  static void Start(void* self, const char* name, const char** attributes) noexcept {
    Guard(self, [&](State& state) {
      std::size_t count = 0;
      for (; attributes[0] != nullptr; attributes += 2, ++count) {
        if (state.attributes.size() <= count) state.attributes.emplace_back();
        AssignName(state.attributes[count].first, attributes[0]);
        state.attributes[count].second = attributes[1];
      }
      state.attributes.resize(count);
      AssignName(state.name, name);
      state.handler.Start(state.name, state.attributes);
    });
  }
  static void End(void* self, const char* name) noexcept {
    Guard(self, [&](State& state) {
      AssignName(state.name, name);
      state.handler.End(state.name);
    });
  }
  static void Characters(void* self, const char* text, int size) noexcept {
    Guard(self, [&](State& state) { state.handler.Characters({text, static_cast<std::size_t>(size)}); });
  }

  struct Free {
    void operator()(XML_Parser p) const { XML_ParserFree(p); }
  };
  std::unique_ptr<XML_ParserStruct, Free> parser{XML_ParserCreateNS(nullptr, kSeparator)};
  XmlHandler& handler;
  std::string name;
  XmlHandler::Attributes attributes;
  std::exception_ptr failure;
};

XmlParser::XmlParser(XmlHandler& handler) : state_(std::make_unique<State>(handler)) {}

XmlParser::~XmlParser() = default;

void XmlParser::Take(std::string_view piece) {
  constexpr std::size_t kPiece = 1 << 20;  // sizes are 32 bits wide here
  for (; !piece.empty(); piece.remove_prefix(std::min(piece.size(), kPiece))) {
    state_->Parse(piece.substr(0, kPiece), false);
  }
}

void XmlParser::End() { state_->Parse({}, true); }

std::string_view XmlHandler::Value(const Attributes& attributes, std::string_view name) {
  const auto found = std::ranges::find(attributes, name, &Attributes::value_type::first);
  return found == attributes.end() ? std::string_view() : found->second;
}

bool XmlHandler::Has(const Attributes& attributes, std::string_view name) {
  return std::ranges::find(attributes, name, &Attributes::value_type::first) != attributes.end();
}

std::size_t XmlHandler::Number(const Attributes& attributes, std::string_view name, std::size_t otherwise) {
  const auto text = Value(attributes, name);
  std::from_chars(text.data(), text.data() + text.size(), otherwise);
  return otherwise;
}

std::size_t XmlHandler::Count(const Attributes& attributes, std::string_view name) {
  return std::max(Number(attributes, name, 1), std::size_t{1});
}

void ParseXml(std::string_view content, XmlHandler& handler) {
  constexpr std::size_t kPiece = 1 << 18;
  XmlParser parser(handler);
  for (std::size_t at = 0; at < content.size(); at += kPiece) {
    handler.Progress(static_cast<double>(at) / static_cast<double>(content.size()));
    parser.Take(content.substr(at, kPiece));
  }
  parser.End();
}

}  // namespace rowlark
