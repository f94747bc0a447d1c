#include "tables/InputReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tables/Charsets.h"
#include "tables/Compression.h"
#include "util/posix/Descriptor.h"

namespace rowlark {
namespace {

using std::string_view;

constexpr std::size_t kChunk = 1 << 16;

[[noreturn]] void ThrowSystemError() {
  throw std::runtime_error(std::error_code(errno, std::generic_category()).message());
}

Chunks Opened(const std::filesystem::path& path, int descriptor) {
  const auto file = std::make_shared<Descriptor>();
  if (descriptor < 0) {
    file->reset(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!*file) ThrowSystemError();
    descriptor = **file;
  }
  return [file, descriptor] {
    std::string bytes(kChunk, '\0');
    ssize_t count = -1;
    while ((count = ::read(descriptor, bytes.data(), bytes.size())) < 0) {
      if (errno != EINTR) ThrowSystemError();
    }
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
  };
}

// Reads on as long as more bytes may tell more; what was read comes once more.
template <class MayTellMore>
std::string Beginning(Chunks& chunks, const MayTellMore& may_tell_more) {
  std::string beginning = chunks();
  for (std::string more; !beginning.empty() && may_tell_more(beginning); beginning += more) {
    more = chunks();
    if (more.empty()) break;
  }
  chunks = [first = beginning, rest = std::move(chunks)]() mutable {
    return first.empty() ? rest() : std::exchange(first, {});
  };
  return beginning;
}

}  // namespace

bool IsPlainText(string_view beginning) { return !IsWorkbook(beginning) && !IsCompressed(beginning); }

void ReadInput(const std::filesystem::path& path, const InputOptions& options, SheetSink& sink) {
  Chunks chunks = Opened(path, options.descriptor);
  if (IsCompressed(Beginning(chunks, MayBeCompressed))) chunks = Decompressed(std::move(chunks));
  if (IsWorkbook(Beginning(chunks, MayBeWorkbook))) {
    std::string bytes;
    for (std::string chunk = chunks(); !chunk.empty(); chunk = chunks()) bytes += chunk;
    return ReadWorkbook(bytes, sink);
  }
  const NamedEncoding encoding(options.encoding);
  if (!encoding.to_convert.empty()) chunks = Converted(std::move(chunks), encoding.to_convert);
  sink.Text("");  // a text, even if nothing is in it
  for (std::string chunk = chunks(); !chunk.empty(); chunk = chunks()) sink.Text(chunk);
}

}  // namespace rowlark
