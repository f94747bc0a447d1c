#include "tables/Loader.h"
#include "util/FileSystemPlatform.h"

namespace rowlark {
namespace {

class CsvLoader final : public Loader {
 public:
  CsvLoader(const std::filesystem::path& path, std::optional<char> separator)
      : name_(platform::ToText(path.stem())), file_(CsvFile::Open(path, separator)) {}

  bool Step(standalone::Workbook& workbook) override {
    standalone::Worksheet& sheet = *workbook.Worksheets().front();
    sheet.SetName(name_);
    const auto reading =
        file_.ReadRows([&](std::span<const std::string_view> cells) { sheet.AppendRow(cells); });
    if (reading == CsvFile::Reading::Again) sheet.Clear();
    return reading != CsvFile::Reading::Done;
  }
  double Fraction() const override { return file_.Fraction(); }
  CsvFile* Csv() noexcept override { return &file_; }

 private:
  std::u16string name_;
  CsvFile file_;
};

}  // namespace

std::unique_ptr<Loader> LoadCsv(const std::filesystem::path& path, std::optional<char> separator) {
  return std::make_unique<CsvLoader>(path, separator);
}

}  // namespace rowlark
