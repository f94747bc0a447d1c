// Reads what a file or a pipe holds, where that may take its time, need a library that trips over damage, or
// be another thing than its text: in a process of its own.
#pragma once

#include <filesystem>
#include <string>

#include "tables/Loader.h"
#include "tables/workbook/WorkbookReader.h"

namespace rowlark {

// Whether these first bytes are those of a text as it stands.
bool IsPlainText(std::string_view beginning);

// Reads to the end; waits where there is nothing to read yet. Throws std::exception.
void ReadInput(const std::filesystem::path& path, const InputOptions& options, SheetSink& sink);

}  // namespace rowlark
