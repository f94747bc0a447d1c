// XML read from its beginning to its end.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rowlark {

// The names of elements and attributes come without the prefix of their namespace; texts live during the call
// only.
class XmlHandler {
 public:
  using Attributes = std::vector<std::pair<std::string, std::string>>;

  virtual ~XmlHandler() = default;
  virtual void Start(std::string_view name, const Attributes& attributes) = 0;
  virtual void End(std::string_view name) = 0;
  virtual void Characters(std::string_view text) = 0;
  // How much has been read, 0 to 1; now and then.
  virtual void Progress(double) {}

 protected:
  // The value of an attribute; empty without it.
  static std::string_view Value(const Attributes& attributes, std::string_view name);
  // As a number; `otherwise` without it and where it is none.
  static std::size_t Number(const Attributes& attributes, std::string_view name, std::size_t otherwise);
  // As a number of at least 1.
  static std::size_t Count(const Attributes& attributes, std::string_view name);
};

// Throws std::exception for what is not well-formed.
void ParseXml(std::string_view content, XmlHandler& handler);

}  // namespace rowlark
