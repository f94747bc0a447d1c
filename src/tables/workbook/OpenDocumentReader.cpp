#include <algorithm>
#include <stdexcept>

#include "tables/workbook/Package.h"
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
    } else if (name == "table:table") {
      rows_.StartSheet(Value(attributes, "table:name"));
    } else if (name == "table:table-row") {
      row_times_ = Count(attributes, "table:number-rows-repeated");
      column_ = 1;
    } else if (IsCell(name)) {
      cell_times_ = Count(attributes, "table:number-columns-repeated");
      value_ = CellValue(attributes);
      text_.clear();
      paragraphs_ = 0;
      in_cell_ = true;
    } else if (in_cell_ && name == "text:p") {
      if (paragraphs_++ > 0) text_ += '\n';
      in_paragraph_ = true;
    } else if (in_paragraph_ && name == "text:s") {
      constexpr std::size_t kMaxSpaces = 32'767;  // of a cell
      AppendToCell(text_, std::string(std::min(Count(attributes, "text:c"), kMaxSpaces), ' '));
    } else if (in_paragraph_ && (name == "text:tab" || name == "text:line-break")) {
      AppendToCell(text_, name == "text:tab" ? "\t" : "\n");
    }
  }

  void End(std::string_view name) override {
    if (aside_ > 0) {
      --aside_;
    } else if (name == "text:p") {
      in_paragraph_ = false;
    } else if (IsCell(name)) {
      in_cell_ = false;
      const std::string_view shown = paragraphs_ > 0 ? text_ : value_;
      if (!shown.empty()) {
        for (std::size_t i = 0; i < cell_times_; ++i) rows_.Put(column_ + i, shown);
      }
      column_ += std::min(cell_times_, std::size_t{1} << 20);
    } else if (name == "table:table-row") {
      rows_.EndRow(row_times_);
    }
  }

  void Characters(std::string_view text) override {
    if (!in_paragraph_ || aside_ > 0) return;
    for (const char c : text) {  // white space counts as one space
      const bool is_space = c == ' ' || c == '\t' || c == '\n' || c == '\r';
      if (!is_space) {
        AppendToCell(text_, {&c, 1});
      } else if (text_.empty() || text_.back() != ' ') {
        AppendToCell(text_, " ");
      }
    }
  }

  void Progress(double fraction) override { rows_.Progress(fraction); }

 private:
  static bool IsCell(std::string_view name) {
    return name == "table:table-cell" || name == "table:covered-table-cell";
  }
  // What holds text that is none of the cell's, or a table that is no sheet.
  static bool IsAside(std::string_view name) {
    return name.starts_with("draw:") || name.starts_with("dr3d:") || name == "office:annotation" ||
           name == "office:forms" || name == "table:shapes" || name == "table:tracked-changes" ||
           name == "table:dde-link" || name == "text:ruby-text";
  }

  static std::string CellValue(const Attributes& attributes) {
    const auto type = Value(attributes, "office:value-type");
    if (type == "boolean") return Value(attributes, "office:boolean-value") == "true" ? "TRUE" : "FALSE";
    for (const auto* value :
         {"office:string-value", "office:date-value", "office:time-value", "office:value"}) {
      if (const auto text = Value(attributes, value); !text.empty()) return std::string(text);
    }
    // A formula, "of:=A1+1", whose result is not in the file.
    const auto formula = Value(attributes, "table:formula");
    if (formula.empty() || !type.empty()) return {};
    const auto equals = formula.find('=');
    return FormulaText(equals == std::string_view::npos ? formula : formula.substr(equals + 1));
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

// Whether an archive's list of parts says that the cells are encrypted.
struct Manifest final : XmlHandler {
  void Start(std::string_view name, const Attributes& attributes) override {
    if (name == "manifest:file-entry") part = Value(attributes, "manifest:full-path");
    is_encrypted |=
        name == "manifest:encryption-data" && (part == "content.xml" || part == "encrypted-package");
  }
  std::string part;
  bool is_encrypted = false;
};

}  // namespace

void ReadOpenDocument(const Package& package, SheetSink& sink) {
  if (!package.Has("content.xml") && !package.Has("encrypted-package")) {
    throw std::runtime_error("No workbook is in this archive");
  }
  Manifest manifest;
  package.Parse("META-INF/manifest.xml", manifest);
  if (manifest.is_encrypted)
    throw std::runtime_error("The workbook is encrypted; save it without a password");
  OpenDocumentReader reader(sink);
  package.Parse("content.xml", reader);
}

void ReadOpenDocument(std::string_view content, SheetSink& sink) {
  OpenDocumentReader reader(sink);
  ParseXml(content, reader);
}

}  // namespace rowlark
