#include "tables/Compression.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <stdexcept>
#include <utility>

#include "util/Owner.h"

namespace rowlark {
namespace {

using std::string_view;

constexpr string_view kMagics[] = {"\x1F\x8B\x08", "BZh",
                                   "\xFD"
                                   "7zXZ",
                                   "\x28\xB5\x2F\xFD"};

class Decompressor {
 public:
  explicit Decompressor(Chunks chunks) : chunks_(std::move(chunks)) {
    archive* const reader = *reader_;
    ::archive_read_support_filter_gzip(reader);
    ::archive_read_support_filter_bzip2(reader);
    ::archive_read_support_filter_xz(reader);
    ::archive_read_support_filter_zstd(reader);
    ::archive_read_support_format_raw(reader);
    ::archive_read_support_format_empty(reader);
  }

  std::string Next() {
    if (ended_) return {};
    archive_entry* entry = nullptr;
    if (!std::exchange(begun_, true)) {
      Check(::archive_read_open(*reader_, this, nullptr, Read, nullptr));
      const int found = ::archive_read_next_header(*reader_, &entry);
      ended_ = found == ARCHIVE_EOF;
      if (ended_) return {};
      Check(found);
    }
    for (;;) {
      const void* bytes = nullptr;
      std::size_t size = 0;
      la_int64_t place = 0;
      const int result = ::archive_read_data_block(*reader_, &bytes, &size, &place);
      ended_ = result == ARCHIVE_EOF;
      if (ended_) return {};
      Check(result);
      if (size > 0) return {static_cast<const char*>(bytes), size};
    }
  }

 private:
  struct Traits {
    using Handle = archive*;
    static Handle None() noexcept { return nullptr; }
    static void Close(Handle reader) noexcept { ::archive_read_free(reader); }
  };

  // What the library asks for more bytes; no exception may pass through it.
  static la_ssize_t Read(archive* reader, void* self, const void** bytes) {
    auto& own = *static_cast<Decompressor*>(self);
    try {
      own.chunk_ = own.chunks_();
    } catch (const std::exception& error) {
      ::archive_set_error(reader, EIO, "%s", error.what());
      return ARCHIVE_FATAL;
    }
    *bytes = own.chunk_.data();
    return static_cast<la_ssize_t>(own.chunk_.size());
  }

  void Check(int result) {
    if (result >= ARCHIVE_WARN) return;
    ended_ = true;
    const char* const reason = ::archive_error_string(*reader_);
    throw std::runtime_error(std::string("Damaged compressed file: ") + (reason == nullptr ? "" : reason));
  }

  Chunks chunks_;
  std::string chunk_;
  Owner<Traits> reader_{::archive_read_new()};
  bool begun_ = false;
  bool ended_ = false;
};

}  // namespace

bool IsCompressed(string_view beginning) {
  return std::ranges::any_of(kMagics, [&](string_view magic) { return beginning.starts_with(magic); });
}

bool MayBeCompressed(string_view beginning) {
  return std::ranges::any_of(kMagics, [&](string_view magic) { return magic.starts_with(beginning); });
}

Chunks Decompressed(Chunks chunks) {
  const auto decompressor = std::make_shared<Decompressor>(std::move(chunks));
  return [decompressor] { return decompressor->Next(); };
}

}  // namespace rowlark
