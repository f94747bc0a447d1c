// Prints the rows of a CSV file that hold a text: search_table FILE TEXT
#include <rowlark/csv/CsvFile.h>
#include <rowlark/forms/FormSet.h>
#include <rowlark/host/standalone/Application.h>
#include <rowlark/host/standalone/Headless.h>
#include <rowlark/runtime/clsVTRLKRuntime.h>
#include <rowlark/util/Utf.h>

#include <exception>
#include <iostream>

using namespace rowlark;

int main(int argc, char** argv) try {
  if (argc != 3) return std::cerr << "search_table FILE TEXT\n", 2;
  // A sheet with the rows of the file.
  auto file = CsvFile::Open(argv[1]);
  const auto application = MakeRef<standalone::Application>();
  const auto sheet = application->AddWorkbook(ToUtf16(argv[1]))->Worksheets().front();
  file.ForEachRow([&](auto cells) { sheet->AppendRow(cells); }, [&] { sheet->Clear(); });

  // The add-in, without a screen, a registry, languages and settings.
  standalone::Headless none;
  const mclsVTFileSystem files;
  SharedState shared({none.messages, none.registry, none.help, none.windows, files, u"/nowhere", u""});
  FormSet forms(shared);
  clsVTRLKRuntime runtime(shared, forms);
  runtime.SetExcelApp(application);
  runtime.SearchOptions->CompareMethod = CompareMode::Text;
  runtime.SearchOptions->UseFilter = true;

  std::u16string error;
  if (!runtime.Search(ToUtf16(argv[2]), error)) return std::cerr << ToUtf8(error) << '\n', 1;
  for (int32_t row = 1; row <= sheet->UsedBlock().last_row; ++row) {
    if (!sheet->HiddenRows().Contains(row)) std::cout << row << ": " << file.RowText(row - 1) << '\n';
  }
} catch (const std::exception& error) {
  return std::cerr << error.what() << '\n', 2;
}
