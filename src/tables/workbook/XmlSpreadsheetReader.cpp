#include <algorithm>
#include <map>
#include <optional>

#include "tables/format/NumberFormat.h"
#include "tables/workbook/WorkbookReader.h"
#include "tables/workbook/Xml.h"

namespace rowlark {
namespace {

// Formats that have names here.
std::string_view FormatCodeOf(std::string_view name) {
  constexpr std::pair<std::string_view, std::string_view> kNamed[] = {
      {"General Number", "General"},
      {"Currency", "$#,##0.00_);[Red]($#,##0.00)"},
      {"Euro Currency", "[$€-2] #,##0.00_);[Red]([$€-2] #,##0.00)"},
      {"Fixed", "0.00"},
      {"Standard", "#,##0.00"},
      {"Percent", "0.00%"},
      {"Scientific", "0.00E+00"},
      {"General Date", "yyyy-mm-dd h:mm"},
      {"Long Date", "d-mmm-yy"},
      {"Medium Date", "d-mmm-yy"},
      {"Short Date", "yyyy-mm-dd"},
      {"Long Time", "h:mm:ss AM/PM"},
      {"Medium Time", "h:mm AM/PM"},
      {"Short Time", "h:mm"},
      {"Yes/No", R"("Yes";"Yes";"No")"},
      {"True/False", R"("True";"True";"False")"},
      {"On/Off", R"("On";"On";"Off")"}};
  for (const auto& [known, code] : kNamed) {
    if (known == name) return code;
  }
  return name;
}

class XmlSpreadsheetReader final : public XmlHandler {
 public:
  explicit XmlSpreadsheetReader(SheetSink& sink) : rows_(sink) {}

  void Start(std::string_view name, const Attributes& attributes) override {
    if (name == "ss:Style") {
      StartStyle(attributes);
    } else if (name == "ss:NumberFormat") {
      formats_[style_] = NumberFormat(FormatCodeOf(Value(attributes, "ss:Format")));
    } else if (name == "ss:Worksheet") {
      rows_.StartSheet(Value(attributes, "ss:Name"));
    } else if (name == "ss:Table") {
      first_row_ = Count(attributes, "ss:TopCell");
      first_column_ = Count(attributes, "ss:LeftCell");
      column_styles_.clear();
      rows_.StartRow(first_row_);
      column_ = 1;
    } else if (name == "ss:Column") {
      StartColumns(attributes);
    } else if (name == "ss:Row") {
      if (Has(attributes, "ss:Index")) rows_.StartRow(first_row_ - 1 + Place(attributes));
      row_style_ = Value(attributes, "ss:StyleID");
      column_ = 1;
    } else if (name == "ss:Cell") {
      StartCell(attributes);
    } else if (name == "ss:Comment") {
      in_comment_ = true;
    } else if (name == "ss:Data" && !in_comment_) {
      type_ = Value(attributes, "ss:Type");
      in_data_ = true;
    }
  }

  void End(std::string_view name) override {
    if (name == "ss:Row") {
      rows_.EndRow();
    } else if (name == "ss:Cell") {
      rows_.Put(first_column_ - 1 + column_, Shown());
      column_ += width_;
    } else if (name == "ss:Comment") {
      in_comment_ = false;
    } else if (name == "ss:Data") {
      in_data_ = false;
    }
  }

  void Characters(std::string_view text) override {
    if (in_data_) AppendToCell(text_, text);
  }

  void Progress(double fraction) override { rows_.Progress(fraction); }

 private:
  static constexpr std::size_t kBeyond = 1 << 21;  // any sheet

  // Bounded, so that sums do not overflow.
  static std::size_t Place(const Attributes& attributes) {
    return std::min(Count(attributes, "ss:Index"), kBeyond);
  }

  void StartStyle(const Attributes& attributes) {
    style_ = Value(attributes, "ss:ID");
    const auto parent = formats_.find(std::string(Value(attributes, "ss:Parent")));
    if (parent != formats_.end()) formats_[style_] = parent->second;
  }

  void StartColumns(const Attributes& attributes) {
    if (Has(attributes, "ss:Index")) column_ = Place(attributes);
    const auto count = 1 + std::min(Number(attributes, "ss:Span", 0), kBeyond);
    if (const auto style = Value(attributes, "ss:StyleID"); !style.empty()) {
      column_styles_.push_back({column_, column_ + count, std::string(style)});
    }
    column_ += count;
  }

  void StartCell(const Attributes& attributes) {
    if (Has(attributes, "ss:Index")) column_ = Place(attributes);
    width_ = 1 + std::min(Number(attributes, "ss:MergeAcross", 0), kBeyond);
    cell_style_ = Value(attributes, "ss:StyleID");
    formula_ = Value(attributes, "ss:Formula");
    type_.clear();
    text_.clear();
  }

  // That of the cell, of its row, of its column, or the one of all.
  const NumberFormat& Format() const {
    const auto* style = &cell_style_;
    if (style->empty()) style = &row_style_;
    for (const auto& columns : column_styles_) {
      if (style->empty() && column_ >= columns.first && column_ < columns.end) style = &columns.style;
    }
    const auto found = formats_.find(style->empty() ? "Default" : *style);
    return found == formats_.end() ? general_ : found->second;
  }

  std::string Shown() const {
    if (type_.empty())
      return formula_.empty() ? std::string() : FormulaText(formula_.substr(formula_[0] == '='));
    const auto& format = Format();
    if (type_ == "Boolean") return text_ == "0" ? "FALSE" : "TRUE";
    if (type_ == "String") return format.Text(text_);
    if (type_ == "DateTime") return ShownDate(format);
    const auto number = type_ == "Number" ? CellNumber(text_) : std::nullopt;
    return number ? format.Number(*number) : text_;
  }

  // Where the format is none of dates: 2024-01-02T10:20:00.000 as "2024-01-02 10:20:00".
  std::string ShownDate(const NumberFormat& format) const {
    const auto number = DateNumber(text_, Calendar::Since1900);
    if (number && format.IsDate()) return format.Number(*number);
    auto seconds = text_.substr(0, text_.find('.'));
    const auto at = seconds.find('T');
    if (at == std::string::npos) return seconds;
    const auto time = seconds.substr(at + 1);
    return seconds.substr(0, at) + (time == "00:00:00" ? "" : " " + time);
  }

  struct ColumnStyle {
    std::size_t first;
    std::size_t end;
    std::string style;
  };

  RowBuilder rows_;
  std::map<std::string, NumberFormat> formats_;  // of styles
  std::string style_;                            // the one being read
  NumberFormat general_;
  std::vector<ColumnStyle> column_styles_;
  std::size_t first_row_ = 1;     // of the table in the sheet
  std::size_t first_column_ = 1;  // as well
  std::size_t column_ = 1;        // in the table
  std::size_t width_ = 1;
  std::string row_style_;
  std::string cell_style_;
  std::string formula_;
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
