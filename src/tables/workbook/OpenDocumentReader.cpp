#include <algorithm>

#include "tables/workbook/WorkbookReader.h"
#include "tables/workbook/Xml.h"

namespace rowlark {
namespace {

// Of a cell this reads the paragraphs, which are what the spreadsheet shows; where a program wrote none, the
// value.
class OpenDocumentReader final : public XmlHandler {
 public:
  explicit OpenDocumentReader(SheetSink& sink) : rows_(sink) {}

  void Start(std::string_view name, const Attributes& attributes) override {
    if (aside_ > 0 || IsAside(name)) {
      ++aside_;
    } else if (name == "table") {
      rows_.StartSheet(Value(attributes, "name"));
    } else if (name == "table-row") {
      row_times_ = Count(attributes, "number-rows-repeated");
      column_ = 1;
    } else if (name == "table-cell" || name == "covered-table-cell") {
      cell_times_ = Count(attributes, "number-columns-repeated");
      value_ = CellValue(attributes);
      text_.clear();
      paragraphs_ = 0;
      in_cell_ = true;
    } else if (in_cell_ && name == "p") {
      if (paragraphs_++ > 0) text_ += '\n';
      in_paragraph_ = true;
    } else if (in_paragraph_ && name == "s") {
      constexpr std::size_t kMaxSpaces = 32'767;  // of a cell
      text_.append(std::min(Count(attributes, "c"), kMaxSpaces), ' ');
    } else if (in_paragraph_ && (name == "tab" || name == "line-break")) {
      text_ += name == "tab" ? '\t' : '\n';
    }
  }

  void End(std::string_view name) override {
    if (aside_ > 0) {
      --aside_;
    } else if (name == "p") {
      in_paragraph_ = false;
    } else if (name == "table-cell" || name == "covered-table-cell") {
      in_cell_ = false;
      const std::string_view shown = paragraphs_ > 0 ? text_ : value_;
      if (!shown.empty()) {
        for (std::size_t i = 0; i < cell_times_; ++i) rows_.Put(column_ + i, shown);
      }
      column_ += std::min(cell_times_, std::size_t{1} << 20);
    } else if (name == "table-row") {
      rows_.EndRow(row_times_);
    }
  }

  void Characters(std::string_view text) override {
    if (!in_paragraph_ || aside_ > 0) return;
    for (const char c : text) {  // white space counts as one space
      const bool is_space = c == ' ' || c == '\t' || c == '\n' || c == '\r';
      if (!is_space) {
        text_ += c;
      } else if (text_.empty() || text_.back() != ' ') {
        text_ += ' ';
      }
    }
  }

  void Progress(double fraction) override { rows_.Progress(fraction); }

 private:
  // What holds text that is none of the cell's.
  static bool IsAside(std::string_view name) {
    return name == "annotation" || name == "shapes" || name == "frame" || name == "tracked-changes";
  }

  static std::string CellValue(const Attributes& attributes) {
    const auto type = Value(attributes, "value-type");
    if (type == "boolean") return Value(attributes, "boolean-value") == "true" ? "TRUE" : "FALSE";
    for (const auto* value : {"string-value", "date-value", "time-value", "value"}) {
      if (const auto text = Value(attributes, value); !text.empty()) return std::string(text);
    }
    return {};
  }

  RowBuilder rows_;
  std::size_t aside_ = 0;  // how deep within something that is not read
  bool in_cell_ = false;
  bool in_paragraph_ = false;
  std::size_t row_times_ = 1;
  std::size_t cell_times_ = 1;
  std::size_t column_ = 1;
  std::size_t paragraphs_ = 0;
  std::string value_;
  std::string text_;
};

}  // namespace

void ReadOpenDocument(std::string_view content, SheetSink& sink) {
  OpenDocumentReader reader(sink);
  ParseXml(content, reader);
}

}  // namespace rowlark
