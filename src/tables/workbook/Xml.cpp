#include "tables/workbook/Xml.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <memory>
#include <stdexcept>

namespace rowlark {
namespace {

std::string_view LocalName(const char* name) {
  const std::string_view whole(name);
  return whole.substr(whole.rfind(':') + 1);
}

// Between the parser, which is C, and the handler, whose exceptions it must not meet.
class Parse {
 public:
  explicit Parse(XmlHandler& handler) : handler_(handler) {
    if (parser_ == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), Start, End);
    XML_SetCharacterDataHandler(parser_.get(), Characters);
  }

  void Run(std::string_view content) {
    constexpr std::size_t kPiece = 1 << 20;  // sizes are 32 bits wide here
    const auto size = static_cast<double>(content.size() + 1);
    bool is_last = false;
    do {
      handler_.Progress(1 - static_cast<double>(content.size()) / size);
      const auto piece = content.substr(0, kPiece);
      content.remove_prefix(piece.size());
      is_last = content.empty();
      if (XML_Parse(parser_.get(), piece.data(), static_cast<int>(piece.size()), is_last) == XML_STATUS_OK)
        continue;
      if (failure_) std::rethrow_exception(failure_);
      throw std::runtime_error(std::string("Damaged XML: ") +
                               XML_ErrorString(XML_GetErrorCode(parser_.get())));
    } while (!is_last);
  }

 private:
  template <class Call>
  static void Guard(void* self, Call&& call) noexcept {
    auto& parse = *static_cast<Parse*>(self);
    if (parse.failure_) return;
    try {
      call(parse);
    } catch (...) {
      parse.failure_ = std::current_exception();
      XML_StopParser(parse.parser_.get(), XML_FALSE);
    }
  }

  static void Start(void* self, const char* name, const char** attributes) noexcept {
    Guard(self, [&](Parse& parse) {
      parse.attributes_.clear();
      for (; attributes[0] != nullptr; attributes += 2) {
        parse.attributes_.emplace_back(LocalName(attributes[0]), attributes[1]);
      }
      parse.handler_.Start(LocalName(name), parse.attributes_);
    });
  }
  static void End(void* self, const char* name) noexcept {
    Guard(self, [&](Parse& parse) { parse.handler_.End(LocalName(name)); });
  }
  static void Characters(void* self, const char* text, int size) noexcept {
    Guard(self, [&](Parse& parse) { parse.handler_.Characters({text, static_cast<std::size_t>(size)}); });
  }

  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };
  std::unique_ptr<XML_ParserStruct, Free> parser_{XML_ParserCreate(nullptr)};
  XmlHandler& handler_;
  XmlHandler::Attributes attributes_;
  std::exception_ptr failure_;
};

}  // namespace

std::string_view XmlHandler::Value(const Attributes& attributes, std::string_view name) {
  const auto found = std::ranges::find(attributes, name, &Attributes::value_type::first);
  return found == attributes.end() ? std::string_view() : found->second;
}

std::size_t XmlHandler::Number(const Attributes& attributes, std::string_view name, std::size_t otherwise) {
  const auto text = Value(attributes, name);
  std::from_chars(text.data(), text.data() + text.size(), otherwise);
  return otherwise;
}

std::size_t XmlHandler::Count(const Attributes& attributes, std::string_view name) {
  return std::max(Number(attributes, name, 1), std::size_t{1});
}

void ParseXml(std::string_view content, XmlHandler& handler) { Parse(handler).Run(content); }

}  // namespace rowlark
