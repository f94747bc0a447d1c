// Fills the sheets of a workbook from a file, in steps.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "csv/CsvFile.h"
#include "host/standalone/Workbook.h"
#include "tables/MemoryBound.h"

namespace rowlark {

class SheetSink;

// What is known of a file before it is read.
struct InputOptions {
  std::optional<char> separator;  // found by itself when not given
  std::string encoding;           // its name, as iconv has it; found by itself when empty
  int descriptor = -1;            // read from here, an open file; its path is a name alone then
  MemoryBound memory = MemoryBound();
};

class Loader {
 public:
  virtual ~Loader() = default;

  // Loads on for a short while; false at the end. The workbook comes with one empty sheet. Throws
  // std::runtime_error("path: reason").
  virtual bool Step(standalone::Workbook& workbook) = 0;
  // How much is loaded, 0 to 1; 0 while that can not be told (a pipe).
  virtual double Fraction() const = 0;
  // After a step that found nothing to load: what becomes readable when there is something.
  virtual std::optional<int> WaitsFor() const noexcept { return std::nullopt; }
  // How many texts so far were longer than a cell holds and have been cut.
  virtual int32_t CutTexts() const { return 0; }
  // Gives back what only loading needs; no step follows.
  virtual void Stop() noexcept {}
  // The text behind the one sheet, if that is CSV.
  virtual CsvFile* Csv() noexcept { return nullptr; }
  // Whether that text stands in the file as it is, so the file can be written anew.
  virtual bool IsPlain() const noexcept { return false; }
};

// The loader that the file's content asks for. Throws std::runtime_error("path: reason").
std::unique_ptr<Loader> OpenLoader(const std::filesystem::path& path, const InputOptions& options);

std::unique_ptr<Loader> LoadCsv(const std::filesystem::path& path, const InputOptions& options);
// What `read` tells, in a process of its own; `path` is for messages.
std::unique_ptr<Loader> LoadSheets(const std::filesystem::path& path,
                                   const std::function<void(SheetSink& sink)>& read,
                                   const InputOptions& options = {});

}  // namespace rowlark
