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

bool Package::Read(const std::string& name, const Take& take) const {
  const auto index = zip_name_locate(archive_->zip, name.c_str(), 0);
  if (index < 0) return false;
  const auto place = static_cast<zip_uint64_t>(index);
  // What the archive says of sizes need not be true.
  zip_stat_t told;
  zip_stat_init(&told);
  const bool tells = zip_stat_index(archive_->zip, place, 0, &told) == 0 && (told.valid & ZIP_STAT_SIZE) != 0;
  const auto size = tells ? static_cast<double>(told.size) : 0;

  const std::unique_ptr<zip_file_t, Close> file(zip_fopen_index(archive_->zip, place, 0));
  if (file == nullptr) throw std::runtime_error("Damaged archive: " + name);
  constexpr std::size_t kPiece = 1 << 18;
  std::string piece(kPiece, '\0');
  double read = 0;
  for (;;) {
    const auto count = zip_fread(file.get(), piece.data(), piece.size());
    if (count < 0) throw std::runtime_error("Damaged archive: " + name);
    if (count == 0) return true;
    read += static_cast<double>(count);
    take(std::string_view(piece).substr(0, static_cast<std::size_t>(count)), read < size ? read / size : 1);
  }
}

bool Package::Parse(const std::string& name, XmlHandler& handler) const {
  XmlParser parser(handler);
  const bool is_there = Read(name, [&](std::string_view piece, double fraction) {
    parser.Take(piece);
    handler.Progress(fraction);
  });
  if (is_there) parser.End();
  return is_there;
}

}  // namespace rowlark
