// The parts of a ZIP archive.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "tables/workbook/Xml.h"

namespace rowlark {

class Package {
 public:
  // Throws std::exception for what is no archive. The bytes have to stay.
  explicit Package(std::string_view bytes);
  ~Package();

  bool Has(const std::string& name) const;
  // Hands on the pieces of a part. False when there is no such part. Throws std::exception for one that is
  // damaged.
  using Take = std::function<void(std::string_view piece, double fraction)>;
  bool Read(const std::string& name, const Take& take) const;
  // A part that is XML.
  bool Parse(const std::string& name, XmlHandler& handler) const;

 private:
  struct Archive;
  std::unique_ptr<Archive> archive_;
};

}  // namespace rowlark
