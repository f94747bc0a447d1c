// Fills the sheets of a workbook from a file, in steps.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "csv/CsvFile.h"
#include "host/standalone/Workbook.h"
#include "tables/MemoryBound.h"

namespace rowlark {

class SheetSink;

class Loader {
 public:
  virtual ~Loader() = default;

  // Loads on for a short while; false at the end. The workbook comes with one empty sheet. Throws
  // std::runtime_error("path: reason").
  virtual bool Step(standalone::Workbook& workbook) = 0;
  // How much is loaded, 0 to 1; 0 while that can not be told (a pipe).
  virtual double Fraction() const = 0;
  // Gives back what only loading needs; no step follows.
  virtual void Stop() noexcept {}
  // The file behind the one sheet, if it is a CSV file.
  virtual CsvFile* Csv() noexcept { return nullptr; }
};

// The loader that the file's content asks for. Throws std::runtime_error("path: reason").
std::unique_ptr<Loader> OpenLoader(const std::filesystem::path& path, std::optional<char> separator,
                                   const MemoryBound& memory);

std::unique_ptr<Loader> LoadCsv(const std::filesystem::path& path, std::optional<char> separator,
                                const MemoryBound& memory);
std::unique_ptr<Loader> LoadWorkbook(const std::filesystem::path& path, const MemoryBound& memory);
// What `read` tells, in a process of its own; `path` is for messages.
std::unique_ptr<Loader> LoadSheets(const std::filesystem::path& path,
                                   const std::function<void(SheetSink& sink)>& read,
                                   const MemoryBound& memory = MemoryBound());

}  // namespace rowlark
