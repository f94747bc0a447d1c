#include <stdexcept>

#include "tables/Charsets.h"
#include "tables/Loader.h"
#include "util/FileSystemPlatform.h"

namespace rowlark {
namespace {

class CsvLoader final : public Loader {
 public:
  CsvLoader(const std::filesystem::path& path, const InputOptions& options)
      : path_(path.string()),
        name_(platform::ToText(path.stem())),
        file_(CsvFile::Open(path, options.separator, NamedEncoding(options.encoding).options)),
        bound_(options.memory),
        memory_(options.memory) {}

  bool Step(standalone::Workbook& workbook) override {
    standalone::Worksheet& sheet = *workbook.Worksheets().front();
    sheet.SetName(name_);
    const auto reading = file_.ReadRows([&](std::span<const std::string_view> cells) {
      try {
        memory_.Add(cells);
      } catch (const std::runtime_error& error) {
        throw std::runtime_error(path_ + ": " + error.what());
      }
      sheet.AppendRow(cells);
    });
    if (reading == CsvFile::Reading::Again) {
      sheet.Clear();
      memory_ = bound_;
    }
    return reading != CsvFile::Reading::Done;
  }
  double Fraction() const override { return file_.Fraction(); }
  CsvFile* Csv() noexcept override { return &file_; }
  bool IsPlain() const noexcept override { return true; }

 private:
  std::string path_;
  std::u16string name_;
  CsvFile file_;
  MemoryBound bound_;  // as it is at the beginning
  MemoryBound memory_;
};

}  // namespace

std::unique_ptr<Loader> LoadCsv(const std::filesystem::path& path, const InputOptions& options) {
  return std::make_unique<CsvLoader>(path, options);
}

}  // namespace rowlark
