// XML read from its beginning to its end.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rowlark {

// Names are told with a prefix of ours for each namespace of workbooks, whatever the file's own is:
// "table:table-row", "ss:Row"; those of Office Open XML's main namespaces, and those in no namespace, have
// none: "row". Names of other namespaces are never equal to one of these. Texts live during the call only.
class XmlHandler {
 public:
  using Attributes = std::vector<std::pair<std::string, std::string>>;

  virtual ~XmlHandler() = default;
  virtual void Start(std::string_view name, const Attributes& attributes) = 0;
  virtual void End(std::string_view) {}
  virtual void Characters(std::string_view) {}
  // How much has been read, 0 to 1; now and then.
  virtual void Progress(double) {}

 protected:
  // The value of an attribute; empty without it.
  static std::string_view Value(const Attributes& attributes, std::string_view name);
  static bool Has(const Attributes& attributes, std::string_view name);
  // As a number; `otherwise` without it and where it is none.
  static std::size_t Number(const Attributes& attributes, std::string_view name, std::size_t otherwise);
  // As a number of at least 1.
  static std::size_t Count(const Attributes& attributes, std::string_view name);
};

// Takes a text in pieces, as they come. Throws std::exception for what is not well-formed, and what the
// handler throws.
class XmlParser {
 public:
  explicit XmlParser(XmlHandler& handler);
  ~XmlParser();

  void Take(std::string_view piece);
  void End();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A whole text, with its progress.
void ParseXml(std::string_view content, XmlHandler& handler);

}  // namespace rowlark
