#include "Workbooks.h"

#include <stdexcept>

#include "csv/CsvFile.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::workbench {
namespace {

[[noreturn]] void FailToFind(std::u16string_view file) {
  throw host::Error(1004, u"Sorry, we couldn't find " + std::u16string(file) +
                              u". Is it possible it was moved, renamed or deleted?");
}

}  // namespace

Ref<standalone::Workbook> OpenWorkbook(standalone::Application& application, std::u16string_view file,
                                       std::optional<char> separator, bool read_only) {
  try {
    const auto path = std::filesystem::absolute(std::filesystem::path(file));
    auto table = CsvFile::Open(path, separator);
    const auto writable = std::filesystem::status(path).permissions() & std::filesystem::perms::owner_write;
    return AddWorkbook(application, table, path.u16string(),
                       read_only || writable == std::filesystem::perms::none);
  } catch (const std::filesystem::filesystem_error&) {
    FailToFind(file);
  } catch (const std::runtime_error& error) {
    std::error_code unknown;
    if (!std::filesystem::exists(std::filesystem::path(file), unknown)) FailToFind(file);
    throw host::Error(1004, ToUtf16(error.what()));
  }
}

Ref<standalone::Workbook> AddWorkbook(standalone::Application& application, CsvFile& file,
                                      std::u16string_view full_name, bool read_only) {
  auto book = application.AddWorkbook(full_name, read_only);
  try {
    auto& sheet = *book->Worksheets().front();
    file.ForEachRow([&](std::span<const std::string_view> cells) { sheet.AppendRow(cells); },
                    [&] { sheet.Clear(); });
  } catch (...) {
    application.Close(book);
    throw;
  }
  return book;
}

Ref<standalone::Workbook> NewWorkbook(standalone::Application& application) {
  std::u16string name;
  int32_t number = 0;
  do {
    name = u"Book" + ToText(++number);
  } while (FindWorkbook(application, name));
  return application.AddWorkbook(name);
}

Ref<standalone::Workbook> FindWorkbook(const standalone::Application& application, std::u16string_view name) {
  for (const auto& book : application.Workbooks()) {
    if (Compare(book->Name(), name, CompareMode::Text) == 0) return book;
  }
  return nullptr;
}

}  // namespace rowlark::workbench
