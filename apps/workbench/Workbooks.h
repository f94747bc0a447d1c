// Opening and finding workbooks.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/standalone/Application.h"

namespace rowlark {
class CsvFile;
}

namespace rowlark::workbench {

// Opens a CSV file as a workbook; one that may not be written opens read-only. Without a separator the file
// tells it. Throws host::Error.
Ref<standalone::Workbook> OpenWorkbook(standalone::Application& application, std::u16string_view file,
                                       std::optional<char> separator = std::nullopt, bool read_only = false);

// Opens what has been read already, under a name of its own.
Ref<standalone::Workbook> AddWorkbook(standalone::Application& application, CsvFile& file,
                                      std::u16string_view full_name, bool read_only = false);

// An empty one with the first of the names "Book1", "Book2" that is free.
Ref<standalone::Workbook> NewWorkbook(standalone::Application& application);

// The open workbook of that name (without its folder), letter case ignored; null without one.
Ref<standalone::Workbook> FindWorkbook(const standalone::Application& application, std::u16string_view name);

}  // namespace rowlark::workbench
