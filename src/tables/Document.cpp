#include "tables/Document.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "csv/CsvWriter.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

struct SavingStopped {};

std::string CellName(std::size_t row, std::size_t column) {
  return ToUtf8(ColumnLetters(static_cast<int32_t>(column) + 1)) + std::to_string(row + 1);
}

// Writes the cells of a sheet.
class SheetWriter {
 public:
  SheetWriter(const standalone::CellText& text, const CsvFormat& format)
      : text_(text), writer_(format), used_(text.Used().value_or(Block{1, 1, 0, 0})) {}

  std::string Next() {
    std::string bytes = writer_.Take();
    while (row_ < Rows() && bytes.size() < TextReader::kPiece) {
      const auto cells = text_.Cells(static_cast<int32_t>(row_) + 1);
      for (column_ = 0; column_ < static_cast<std::size_t>(used_.last_column); ++column_) {
        writer_.Cell(column_ < cells.size() ? cells[column_] : std::string_view());
      }
      writer_.EndRecord();
      ++row_;
      bytes += writer_.Take();
    }
    if (row_ == Rows()) writer_.CheckEncoding();
    return bytes;
  }
  double Fraction() const {
    return static_cast<double>(row_) / static_cast<double>(std::max(Rows(), std::size_t{1}));
  }
  std::size_t Row() const { return row_; }
  std::size_t Column() const { return column_; }

 private:
  std::size_t Rows() const { return static_cast<std::size_t>(used_.last_row); }

  const standalone::CellText& text_;
  CsvWriter writer_;
  Block used_;
  std::size_t row_ = 0;
  std::size_t column_ = 0;
};

// Replaces a file by what `writer` gives; false when `progress` stopped it.
template <class Writer>
bool WriteFile(const std::filesystem::path& path, Writer& writer, const Document::Progress& progress) {
  std::string piece;
  const auto next = [&]() -> std::string_view {
    if (progress && !progress(writer.Fraction())) throw SavingStopped{};
    piece = writer.Next();
    return piece;
  };
  const auto at_cell = [&](const std::runtime_error& error) {
    return path.string() + ": " + CellName(writer.Row(), writer.Column()) + ": " + error.what();
  };
  try {
    const auto failed = platform::ReplaceContent(path, next, platform::Access::Ordinary, [] {});
    if (failed) throw std::runtime_error(path.string() + ": " + failed.message());
  } catch (const SavingStopped&) {
    return false;
  } catch (const NotEncodable& error) {
    throw SaveRefused(SaveRefused::Reason::NotEncodable, at_cell(error));
  }
  return true;
}

}  // namespace

Document::Document(Ref<standalone::Application> host, const std::filesystem::path& path,
                   std::u16string_view full_name, const InputOptions& options)
    : path_(path), stamp_(FileStamp::Of(path)), loader_(OpenLoader(path, options)), host_(std::move(host)) {
  workbook_ = host_->AddWorkbook(full_name);
  for (const auto& sheet : Sheets()) sheet->SetLoading(true);
  try {
    Step();
  } catch (...) {
    host_->Close(workbook_);
    throw;
  }
}

Document::~Document() {
  const auto& open = host_->Workbooks();
  if (std::ranges::find(open, workbook_) != open.end()) host_->Close(workbook_);
}

bool Document::Step() {
  if (state_ != State::Loading) return false;
  try {
    if (loader_->Step(*workbook_)) return true;
  } catch (...) {
    Stop();
    throw;
  }
  state_ = State::Loaded;
  loader_->Stop();
  for (const auto& sheet : Sheets()) sheet->SetLoading(false);
  return false;
}

void Document::Stop() {
  if (state_ != State::Loading) return;
  state_ = State::Stopped;
  loader_->Stop();
}

double Document::Fraction() const { return state_ == State::Loaded ? 1 : loader_->Fraction(); }

standalone::Worksheet& Document::ActiveSheet() const {
  return static_cast<standalone::Worksheet&>(*workbook_->ActiveSheet());
}

std::string Document::RowText(const standalone::Worksheet& sheet, int32_t row) {
  CsvFile* const csv = loader_->Csv();
  const auto edit = sheet.Changes().lower_bound({row, 1});
  const bool is_edited = edit != sheet.Changes().end() && edit->first.row == row;
  const auto index = static_cast<std::size_t>(row) - 1;
  if (csv != nullptr && !is_edited && index < csv->RowCount()) return csv->RowText(index);

  CsvWriter writer({csv != nullptr ? csv->Separator() : ',', "", Encoding::Utf8, false});
  const auto cells = sheet.Text().Cells(row);
  const auto columns = sheet.UsedBlock().last_column;
  for (std::size_t i = 0; i < static_cast<std::size_t>(columns); ++i) {
    writer.Cell(i < cells.size() ? cells[i] : std::string_view());
  }
  return writer.Take();
}

std::string_view Document::LineEnd() const {
  return loader_->Csv() != nullptr ? loader_->Csv()->LineEnd() : "\n";
}

bool Document::IsModified() const {
  for (std::size_t i = 0; i < Sheets().size(); ++i) {
    if (Sheets()[i]->Edits() != (i < saved_edits_.size() ? saved_edits_[i] : 0)) return true;
  }
  return false;
}

std::filesystem::path Document::SavePath() const {
  if (loader_->IsPlain()) return path_;
  std::error_code failed;
  if (!std::filesystem::is_regular_file(path_, failed)) {
    return path_ == "-" ? "stdin.csv" : path_.filename().concat(".csv");
  }
  auto path = path_;
  if (loader_->Csv() != nullptr) {
    // "table.csv.gz" has a name below its own; what was converted must not take its place.
    if (path.stem().has_extension()) return path.replace_extension();
    return path.replace_extension(path.extension() == ".csv" ? ".utf-8.csv" : ".csv");
  }
  if (Sheets().size() == 1) return path.replace_extension(".csv");
  auto sheet = ActiveSheet().Name();
  std::ranges::replace(sheet, u'/', u'_');
  return path.replace_extension(platform::ToPath(u"." + sheet + u".csv"));
}

bool Document::ChangedOnDisk() const { return FileStamp::Of(path_) != stamp_; }

bool Document::Save(const SaveOptions& options, const Progress& progress) {
  while (Step()) {
    if (progress && !progress(0)) return false;
  }
  const auto path = options.path.empty() ? SavePath() : options.path;
  CsvFile* const csv = loader_->Csv();
  const bool changed = ChangedOnDisk();
  std::error_code missing;
  const bool is_own =
      loader_->IsPlain() && (path == path_ || std::filesystem::equivalent(path, path_, missing));
  if (is_own && changed && !options.overwrite) {
    throw SaveRefused(SaveRefused::Reason::FileChanged, path.string() + ": Changed by another program");
  }
  if (!is_own && !options.overwrite && std::filesystem::exists(path, missing)) {
    throw SaveRefused(SaveRefused::Reason::FileExists, path.string() + ": The file exists");
  }
  // Once the file has changed, the places of its records are not those that were read.
  keeps_records_ = keeps_records_ && !(changed && loader_->IsPlain());

  standalone::Worksheet& sheet = ActiveSheet();
  const bool as_utf8 = options.as_utf8 || (is_own && saved_as_utf8_);
  bool is_done = false;
  if (csv != nullptr && keeps_records_) {
    CsvRewriter::Edits edits;
    for (const auto& [cell, text] : sheet.Changes()) {
      edits[static_cast<std::size_t>(cell.row) - 1][static_cast<std::size_t>(cell.column) - 1] = text;
    }
    CsvRewriter writer(*csv, std::move(edits), as_utf8);
    is_done = WriteFile(path, writer, progress);
  } else {
    if (state_ == State::Stopped) {
      throw std::runtime_error(path_.string() + ": Not loaded to its end" +
                               (csv != nullptr ? ", and changed by another program" : ""));
    }
    CsvFormat format;
    if (csv != nullptr) format = FormatOf(*csv, as_utf8);
    SheetWriter writer(sheet.Text(), format);
    is_done = WriteFile(path, writer, progress);
  }
  if (!is_done) return false;
  if (is_own) {
    stamp_ = FileStamp::Of(path_);
    saved_as_utf8_ = as_utf8;
  }
  saved_edits_.resize(Sheets().size());
  for (std::size_t i = 0; i < Sheets().size(); ++i) {
    if (Sheets()[i].get() == &sheet) saved_edits_[i] = sheet.Edits();
  }
  return true;
}

void Document::WriteRecovery(const std::filesystem::path& folder) const {
  if (!IsModified()) return;
  Recovery recovery{path_, stamp_, {}, false};
  for (const auto& sheet : Sheets()) {
    for (const auto& [cell, text] : sheet->Changes()) {
      recovery.edits.push_back({sheet->Name(), cell.row, cell.column, ToUtf16(text)});
    }
  }
  rowlark::WriteRecovery(RecoveryFile(folder, path_), recovery);
}

std::optional<Recovery> Document::FindRecovery(const std::filesystem::path& folder) const {
  return ReadRecovery(RecoveryFile(folder, path_), path_);
}

std::size_t Document::Recover(const Recovery& recovery) {
  while (Step()) {
  }
  std::size_t refused = 0;
  for (const auto& edit : recovery.edits) {
    const auto sheet = std::ranges::find(Sheets(), edit.sheet, [](const auto& s) { return s->Name(); });
    try {
      if (sheet == Sheets().end()) {
        ++refused;
      } else {
        (*sheet)->Cells(edit.row, edit.column)->SetValue(edit.text);
      }
    } catch (const host::Error&) {
      ++refused;
    }
  }
  return refused;
}

void Document::RemoveRecovery(const std::filesystem::path& folder) const {
  std::error_code ignored;
  std::filesystem::remove(RecoveryFile(folder, path_), ignored);
}

}  // namespace rowlark
