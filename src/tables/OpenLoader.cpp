#include <array>
#include <fstream>
#include <system_error>

#include "tables/Charsets.h"
#include "tables/InputReader.h"
#include "tables/Loader.h"

namespace rowlark {
namespace {

// Whether a file is a text that can be read at any place and any time. A pipe can be read once only, and may
// have nothing to read for long, so nobody looks at its beginning here.
bool IsPlainFile(const std::filesystem::path& path, const InputOptions& options) {
  std::error_code failed;
  if (options.descriptor >= 0) return false;
  if (!std::filesystem::exists(path, failed) || std::filesystem::is_directory(path, failed)) return true;
  if (!std::filesystem::is_regular_file(path, failed)) return false;
  std::ifstream file(path, std::ios::binary);
  std::array<char, 4096> beginning{};
  file.read(beginning.data(), beginning.size());
  return IsPlainText({beginning.data(), static_cast<std::size_t>(file.gcount())}) &&
         NamedEncoding(options.encoding).to_convert.empty();
}

}  // namespace

std::unique_ptr<Loader> OpenLoader(const std::filesystem::path& path, const InputOptions& options) {
  if (IsPlainFile(path, options)) return LoadCsv(path, options);
  return LoadSheets(
      path, [&](SheetSink& sink) { ReadInput(path, options, sink); }, options);
}

}  // namespace rowlark
