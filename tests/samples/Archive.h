// Documents made of their parts: ZIP archives, whose parts are stored as they are, and the workbooks in them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rowlark::samples {

inline std::uint32_t Crc32(std::string_view bytes) {
  std::uint32_t crc = ~0u;
  for (const char c : bytes) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

using Parts = std::vector<std::pair<std::string, std::string>>;  // name, content

inline std::string Archive(const Parts& parts) {
  const auto number = [](std::size_t value, std::size_t size) {
    std::string bytes;
    for (; size > 0; --size, value >>= 8) bytes += static_cast<char>(value & 0xFF);
    return bytes;
  };
  std::string archive;
  std::string directory;
  for (const auto& [name, content] : parts) {
    // From the version needed to the length of the extra field: the same in both headers.
    const auto head = number(20, 2) + number(0, 8) + number(Crc32(content), 4) + number(content.size(), 4) +
                      number(content.size(), 4) + number(name.size(), 2) + number(0, 2);
    directory += "PK\x01\x02" + number(20, 2) + head + number(0, 10) + number(archive.size(), 4) + name;
    archive += "PK\x03\x04" + head + name + content;
  }
  return archive + directory + "PK\x05\x06" + number(0, 4) + number(parts.size(), 2) +
         number(parts.size(), 2) + number(directory.size(), 4) + number(archive.size(), 4) + number(0, 2);
}

// A workbook of Office Open XML: the cells of its sheets as XML, its strings, and the formats of its styles
// 1, 2 ...
inline Parts XlsxParts(const std::vector<std::pair<std::string, std::string>>& sheets,
                       const std::string& strings = {}, const std::vector<std::string>& formats = {}) {
  const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
  const auto relationship = [&](const std::string& id, const std::string& type, const std::string& target) {
    return "<Relationship Id=\"" + id + "\" Type=\"" + office + type + "\" Target=\"" + target + "\"/>";
  };
  const auto relationships = [](const std::string& all) {
    return "<?xml version=\"1.0\"?><Relationships>" + all + "</Relationships>";
  };
  std::string names;
  std::string targets =
      relationship("s", "sharedStrings", "/xl/strings.xml") + relationship("f", "styles", "styles.xml");
  std::string codes;
  std::string styles = "<xf numFmtId=\"0\"/>";
  for (std::size_t i = 0; i < formats.size(); ++i) {
    const auto id = "\"" + std::to_string(200 + i) + "\"";
    codes += "<numFmt numFmtId=" + id + " formatCode=\"" + formats[i] + "\"/>";
    styles += "<xf numFmtId=" + id + "/>";
  }
  Parts parts;
  for (const auto& [name, rows] : sheets) {
    const auto number = std::to_string(parts.size() + 1);
    names += "<sheet name=\"" + name + "\" sheetId=\"" + number + "\" r:id=\"r" + number + "\"/>";
    targets += relationship("r" + number, "worksheet", "worksheets/sheet" + number + ".xml");
    parts.emplace_back("xl/worksheets/sheet" + number + ".xml",
                       "<?xml version=\"1.0\"?><worksheet><sheetData>" + rows + "</sheetData></worksheet>");
  }
  parts.insert(parts.end(),
               {{"_rels/.rels", relationships(relationship("a", "officeDocument", "xl/workbook.xml"))},
                {"xl/workbook.xml", "<?xml version=\"1.0\"?><workbook xmlns:r=\"" +
                                        office.substr(0, office.size() - 1) + "\"><sheets>" + names +
                                        "</sheets></workbook>"},
                {"xl/_rels/workbook.xml.rels", relationships(targets)},
                {"xl/strings.xml", "<?xml version=\"1.0\"?><sst>" + strings + "</sst>"},
                {"xl/styles.xml", "<?xml version=\"1.0\"?><styleSheet><numFmts>" + codes +
                                      "</numFmts><cellStyleXfs><xf numFmtId=\"9\"/></cellStyleXfs><cellXfs>" +
                                      styles + "</cellXfs></styleSheet>"}});
  return parts;
}

// The content of an OpenDocument spreadsheet whose tables are given as XML.
inline std::string OdsContent(const std::string& tables) {
  return "<?xml version=\"1.0\"?><office:document-content "
         "xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\" "
         "xmlns:table=\"urn:oasis:names:tc:opendocument:xmlns:table:1.0\" "
         "xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" "
         "xmlns:draw=\"urn:oasis:names:tc:opendocument:xmlns:drawing:1.0\"><office:body><office:"
         "spreadsheet>" +
         tables + "</office:spreadsheet></office:body></office:document-content>";
}

}  // namespace rowlark::samples
