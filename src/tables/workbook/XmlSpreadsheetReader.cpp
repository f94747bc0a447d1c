#include "tables/workbook/WorkbookReader.h"
#include "tables/workbook/Xml.h"

namespace rowlark {
namespace {

class XmlSpreadsheetReader final : public XmlHandler {
 public:
  explicit XmlSpreadsheetReader(SheetSink& sink) : rows_(sink) {}

  void Start(std::string_view name, const Attributes& attributes) override {
    if (name == "Worksheet") {
      rows_.StartSheet(Value(attributes, "Name"));
    } else if (name == "Row") {
      if (!Value(attributes, "Index").empty()) rows_.StartRow(Count(attributes, "Index"));
      column_ = 1;
    } else if (name == "Cell") {
      if (!Value(attributes, "Index").empty()) column_ = Count(attributes, "Index");
    } else if (name == "Comment") {
      in_comment_ = true;
    } else if (name == "Data" && !in_comment_) {
      type_ = Value(attributes, "Type");
      text_.clear();
      in_data_ = true;
    }
  }

  void End(std::string_view name) override {
    if (name == "Row") {
      rows_.EndRow();
    } else if (name == "Cell") {
      ++column_;
    } else if (name == "Comment") {
      in_comment_ = false;
    } else if (name == "Data" && in_data_) {
      in_data_ = false;
      rows_.Put(column_, Shown());
    }
  }

  void Characters(std::string_view text) override {
    if (in_data_) text_ += text;
  }

  void Progress(double fraction) override { rows_.Progress(fraction); }

 private:
  std::string Shown() const {
    if (type_ == "Boolean") return text_ == "0" ? "FALSE" : "TRUE";
    if (type_ != "DateTime") return text_;
    // 2024-01-02T10:20:00.000
    auto seconds = text_.substr(0, text_.find('.'));
    const auto at = seconds.find('T');
    if (at == std::string::npos) return seconds;
    const auto time = seconds.substr(at + 1);
    return seconds.substr(0, at) + (time == "00:00:00" ? "" : " " + time);
  }

  RowBuilder rows_;
  std::size_t column_ = 1;
  bool in_comment_ = false;
  bool in_data_ = false;
  std::string type_;
  std::string text_;
};

}  // namespace

void ReadXmlSpreadsheet(std::string_view content, SheetSink& sink) {
  XmlSpreadsheetReader reader(sink);
  ParseXml(content, reader);
}

}  // namespace rowlark
