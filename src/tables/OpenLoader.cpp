#include <array>
#include <fstream>
#include <system_error>

#include "tables/Loader.h"
#include "tables/workbook/WorkbookReader.h"

namespace rowlark {

// What is no regular file (a pipe) can be read once only, so nobody looks at its beginning first.
std::unique_ptr<Loader> OpenLoader(const std::filesystem::path& path, std::optional<char> separator,
                                   const MemoryBound& memory) {
  std::error_code failed;
  if (!std::filesystem::is_regular_file(path, failed)) return LoadCsv(path, separator, memory);
  std::ifstream file(path, std::ios::binary);
  std::array<char, 4096> beginning{};
  file.read(beginning.data(), beginning.size());
  const bool is_workbook = IsWorkbook({beginning.data(), static_cast<std::size_t>(file.gcount())});
  return is_workbook ? LoadWorkbook(path, memory) : LoadCsv(path, separator, memory);
}

}  // namespace rowlark
