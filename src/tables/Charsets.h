// Character sets of the system's library (iconv), by their names or by what a text looks like.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "csv/TextReader.h"
#include "tables/Chunks.h"

namespace rowlark {

// How a text in the encoding of that name is read; without a name it is found by itself. Throws
// std::runtime_error when there is no such encoding.
struct NamedEncoding {
  explicit NamedEncoding(const std::string& name);

  TextOptions options;
  // Not empty: an encoding that does not hold ASCII as it is, so a table in it can not be read as it stands
  // (UTF-32, EBCDIC). It has to be converted, and `options` say UTF-8.
  std::string to_convert;
};

// Of a text that is no UTF-8, by its first lines: a Cyrillic, Greek, Central European or East Asian one where
// it looks like that, else Windows-1252.
std::shared_ptr<const Charset> GuessCharset(std::string_view bytes);

// A text in that encoding as UTF-8. Malformed bytes come as U+FFFD.
Chunks Converted(Chunks chunks, const std::string& encoding);

}  // namespace rowlark
