#include "tables/workbook/Package.h"

#include <zip.h>

#include <stdexcept>

namespace rowlark {
namespace {

struct Close {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};

}  // namespace

struct Package::Archive {
  explicit Archive(std::string_view bytes) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
    if (source != nullptr) zip = zip_open_from_source(source, ZIP_RDONLY, &error);
    if (source != nullptr && zip == nullptr) zip_source_free(source);
    const std::string reason = zip_error_strerror(&error);
    zip_error_fini(&error);
    if (zip == nullptr) throw std::runtime_error("Damaged archive: " + reason);
  }
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;
  ~Archive() { zip_discard(zip); }

  zip_t* zip = nullptr;
};

Package::Package(std::string_view bytes) : archive_(std::make_unique<Archive>(bytes)) {}

Package::~Package() = default;

bool Package::Has(const std::string& name) const {
  return zip_name_locate(archive_->zip, name.c_str(), 0) >= 0;
}

std::optional<std::string> Package::Read(const std::string& name) const {
  if (!Has(name)) return std::nullopt;
  const std::unique_ptr<zip_file_t, Close> file(zip_fopen(archive_->zip, name.c_str(), 0));
  std::string content;
  zip_int64_t count = file == nullptr ? -1 : 1;
  while (count > 0) {  // in pieces: what the archive says of sizes need not be true
    constexpr std::size_t kPiece = 1 << 18;
    const auto size = content.size();
    content.resize(size + kPiece);
    count = zip_fread(file.get(), content.data() + size, kPiece);
    content.resize(size + (count > 0 ? static_cast<std::size_t>(count) : 0));
  }
  if (count < 0) throw std::runtime_error("Damaged archive: " + name);
  return content;
}

}  // namespace rowlark
