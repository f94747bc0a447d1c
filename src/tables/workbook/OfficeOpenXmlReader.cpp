#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <stdexcept>

#include "tables/format/NumberFormat.h"
#include "tables/workbook/Package.h"
#include "tables/workbook/WorkbookReader.h"
#include "tables/workbook/Xml.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using std::string_view;

// A text with "_x000D_" for characters that XML does not hold.
std::string Unescape(string_view text) {
  std::string plain;
  while (!text.empty()) {
    unsigned unit = 0;
    constexpr std::size_t kSize = 7;
    const bool is_escape = text.size() >= kSize && text.starts_with("_x") && text[kSize - 1] == '_' &&
                           std::from_chars(text.data() + 2, text.data() + 6, unit, 16).ptr == text.data() + 6;
    if (is_escape) AppendUtf8(plain, unit);
    if (!is_escape) plain += text.front();
    text.remove_prefix(is_escape ? kSize : 1);
  }
  return plain;
}

// What a part refers to.
class Relationships final : public XmlHandler {
 public:
  struct Target {
    std::string part;
    std::string type;  // the last word of its address
  };

  Relationships(const Package& package, const std::filesystem::path& part) : folder_(part.parent_path()) {
    const auto name = folder_ / "_rels" / (part.filename().string() + ".rels");
    package.Parse(name.string(), *this);
  }

  const Target* Find(const std::string& id) const {
    const auto found = targets_.find(id);
    return found == targets_.end() ? nullptr : &found->second;
  }
  std::string PartOfType(string_view type) const {
    for (const auto& [id, target] : targets_) {
      if (target.type == type) return target.part;
    }
    return {};
  }

  void Start(string_view name, const Attributes& attributes) override {
    if (name != "Relationship") return;
    const auto type = Value(attributes, "Type");
    const std::filesystem::path target = std::string(Value(attributes, "Target"));
    const auto part = target.is_absolute() ? target.relative_path() : folder_ / target;
    targets_[std::string(Value(attributes, "Id"))] = {part.lexically_normal().string(),
                                                      std::string(type.substr(type.rfind('/') + 1))};
  }

 private:
  std::filesystem::path folder_;
  std::map<std::string, Target> targets_;
};

// The strings of the cells, one after the other.
class SharedStrings final : public XmlHandler {
 public:
  void Start(string_view name, const Attributes&) override {
    if (name == "si") strings_.emplace_back();
    if (name == "rPh") in_phonetic_ = true;
    in_text_ = name == "t" && !in_phonetic_ && !strings_.empty();
  }
  void End(string_view name) override {
    if (name == "si") strings_.back() = Unescape(strings_.back());
    if (name == "rPh") in_phonetic_ = false;
    if (name == "t") in_text_ = false;
  }
  void Characters(string_view text) override {
    if (in_text_) AppendToCell(strings_.back(), text);
  }

  const std::string& At(std::size_t index) const {
    if (index >= strings_.size()) throw std::runtime_error("A cell without its text");
    return strings_[index];
  }

 private:
  std::vector<std::string> strings_;
  bool in_phonetic_ = false;
  bool in_text_ = false;
};

// The number formats of the cells' styles.
class Styles final : public XmlHandler {
 public:
  void Start(string_view name, const Attributes& attributes) override {
    // Styles of conditional formats (dxf) have a numFmt and an xf of their own.
    if (name == "numFmts" || name == "cellXfs") within_ = name;
    if (name == "numFmt" && within_ == "numFmts") codes_[Id(attributes)] = Value(attributes, "formatCode");
    if (name == "xf" && within_ == "cellXfs") ids_.push_back(Id(attributes));
  }
  void End(string_view name) override {
    if (name == within_) within_.clear();
  }

  // Parsed once a style, when a cell has it.
  const NumberFormat& Format(std::size_t style) const {
    if (style >= ids_.size()) return general_;
    const auto [found, is_new] = formats_.try_emplace(ids_[style]);
    if (is_new) {
      const auto own = codes_.find(found->first);
      found->second =
          NumberFormat(own != codes_.end() ? string_view(own->second) : BuiltinFormat(found->first));
    }
    return found->second;
  }

 private:
  static int Id(const Attributes& attributes) {
    return static_cast<int>(Number(attributes, "numFmtId", 0) & 0xFFFF);
  }

  std::map<int, std::string> codes_;
  std::vector<int> ids_;
  std::string within_;
  mutable std::map<int, NumberFormat> formats_;
  NumberFormat general_;
};

struct Workbook final : XmlHandler {
  void Start(string_view name, const Attributes& attributes) override {
    if (name == "sheet") sheets.emplace_back(Value(attributes, "name"), Value(attributes, "r:id"));
    if (name == "workbookPr") {
      const auto value = Value(attributes, "date1904");
      if (value == "1" || value == "true") calendar = Calendar::Since1904;
    }
  }

  std::vector<std::pair<std::string, std::string>> sheets;  // name, relationship
  Calendar calendar = Calendar::Since1900;
};

class SheetReader final : public XmlHandler {
 public:
  // `first`, `part`: what has been read before, of all, and what this sheet is of it.
  SheetReader(RowBuilder& rows, const SharedStrings& strings, const Styles& styles, Calendar calendar,
              double first, double part)
      : rows_(rows), strings_(strings), styles_(styles), calendar_(calendar), first_(first), part_(part) {}

  void Progress(double fraction) override { rows_.Progress(first_ + part_ * fraction); }

  void Start(string_view name, const Attributes& attributes) override {
    if (name == "row") {
      if (!Value(attributes, "r").empty()) rows_.StartRow(Count(attributes, "r"));
      column_ = 0;
    } else if (name == "c") {
      const auto address = Value(attributes, "r");
      column_ = address.empty() ? column_ + 1 : ColumnOf(address);
      type_ = Value(attributes, "t");
      style_ = Number(attributes, "s", 0);
      value_.clear();
      formula_.reset();
      in_cell_ = true;
    } else if (name == "rPh") {
      in_phonetic_ = true;
    } else if (in_cell_ && name == "f") {
      text_ = &formula_.emplace();
    } else {
      text_ = in_cell_ && (name == "v" || (name == "t" && !in_phonetic_)) ? &value_ : nullptr;
    }
  }

  void End(string_view name) override {
    if (name == "row") {
      rows_.EndRow();
    } else if (name == "c" && in_cell_) {
      in_cell_ = false;
      rows_.Put(column_, Shown());
    } else if (name == "rPh") {
      in_phonetic_ = false;
    } else if (name == "v" || name == "t" || name == "f") {
      text_ = nullptr;
    }
  }

  void Characters(string_view text) override {
    if (text_ != nullptr) AppendToCell(*text_, text);
  }

 private:
  static std::size_t ColumnOf(string_view address) {
    std::size_t column = 0;
    for (const char c : address) {
      if (c < 'A' || c > 'Z' || column > 1'000'000) break;  // further on it is beyond any sheet
      column = column * 26 + static_cast<std::size_t>(c - 'A') + 1;
    }
    return column;
  }
  std::string Shown() const {
    const auto& format = styles_.Format(style_);
    if (value_.empty()) return formula_ && type_ != "str" ? FormulaText(*formula_) : std::string();
    if (type_ == "s") {
      std::size_t index = 0;
      std::from_chars(value_.data(), value_.data() + value_.size(), index);
      return format.Text(strings_.At(index));
    }
    if (type_ == "b") return value_ == "0" ? "FALSE" : "TRUE";
    if (type_ == "str" || type_ == "inlineStr") return format.Text(Unescape(value_));
    if (type_ == "d" && format.IsDate()) {
      if (const auto date = DateNumber(value_, calendar_)) return format.Number(*date, calendar_);
    }
    if (!type_.empty() && type_ != "n") return value_;  // errors, dates in ISO 8601
    const auto number = CellNumber(value_);
    return number ? format.Number(*number, calendar_) : value_;
  }

  RowBuilder& rows_;
  const SharedStrings& strings_;
  const Styles& styles_;
  Calendar calendar_;
  double first_;
  double part_;
  std::size_t column_ = 0;
  std::size_t style_ = 0;
  std::string type_;
  std::string value_;
  std::optional<std::string> formula_;
  std::string* text_ = nullptr;  // where the characters go
  bool in_cell_ = false;
  bool in_phonetic_ = false;
};

}  // namespace

void ReadOfficeOpenXml(const Package& package, SheetSink& sink) {
  const auto main = Relationships(package, "").PartOfType("officeDocument");
  Workbook workbook;
  if (!package.Parse(main, workbook)) throw std::runtime_error("No workbook is in this archive");
  if (workbook.sheets.empty()) throw std::runtime_error("A workbook without sheets");
  const Relationships parts(package, main);
  SharedStrings strings;
  package.Parse(parts.PartOfType("sharedStrings"), strings);
  Styles styles;
  package.Parse(parts.PartOfType("styles"), styles);

  RowBuilder rows(sink);
  const double part = 1 / static_cast<double>(workbook.sheets.size());
  double read = 0;
  for (const auto& [name, id] : workbook.sheets) {
    const auto* target = parts.Find(id);
    if (id.empty() || (target != nullptr && target->type != "worksheet")) continue;  // a module, a chart
    if (target == nullptr || !package.Has(target->part)) {
      throw std::runtime_error("The sheet '" + name + "' is missing");
    }
    rows.StartSheet(name);
    SheetReader reader(rows, strings, styles, workbook.calendar, read, part);
    package.Parse(target->part, reader);
    read += part;
  }
}

}  // namespace rowlark
