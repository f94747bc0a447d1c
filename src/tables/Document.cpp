#include "tables/Document.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "csv/CsvWriter.h"
#include "util/FileSystemPlatform.h"
#include "util/Scope.h"
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
    : path_(path),
      stamp_(FileStamp::Of(path)),
      source_(path),
      source_stamp_(stamp_),
      loader_(OpenLoader(path, options)),
      host_(std::move(host)) {
  workbook_ = host_->AddWorkbook(full_name);
  changes_ =
      workbook_->OnSheetChange([this](standalone::Worksheet& sheet, int32_t row, int32_t column,
                                      const std::string& before) { Changed(sheet, row, column, before); });
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
  bool is_edited = false;
  for (auto edit = sheet.Changes().lower_bound({row, 1});
       edit != sheet.Changes().end() && edit->first.row == row; ++edit) {
    is_edited |= edit->second.loaded != edit->second.text;
  }
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

// Calls visit(cell, text) for the cells of a sheet whose texts are not saved, as long as that returns true;
// whether it always did.
template <class Visit>
bool Document::ForEachUnsaved(const standalone::Worksheet& sheet, Visit visit) const {
  const auto saved = saved_.find(&sheet);
  for (const auto& [cell, change] : sheet.Changes()) {
    const std::string* before = change.loaded ? &*change.loaded : nullptr;
    if (saved != saved_.end()) {
      const auto text = saved->second.texts.find(cell);
      if (text != saved->second.texts.end()) before = &text->second;
    }
    const bool is_saved = before != nullptr && *before == change.text;
    if (!is_saved && !visit(cell, change.text)) return false;
  }
  return true;
}

std::vector<Recovery::Edit> Document::Unsaved() const {
  std::vector<Recovery::Edit> edits;
  for (const auto& sheet : Sheets()) {
    ForEachUnsaved(*sheet, [&](const standalone::Cell& cell, const std::string& text) {
      edits.push_back({sheet->Name(), cell.row, cell.column, ToUtf16(text)});
      return true;
    });
  }
  return edits;
}

bool Document::IsModified(const standalone::Worksheet& sheet) const {
  return !ForEachUnsaved(sheet, [](const auto&, const auto&) { return false; });
}

bool Document::IsModified() const {
  return std::ranges::any_of(Sheets(), [this](const auto& sheet) { return IsModified(*sheet); });
}

void Document::Changed(standalone::Worksheet& sheet, int32_t row, int32_t column, const std::string& before) {
  const std::string after(sheet.Text().Cell(row, column));
  if (!repeating_) {
    edits_.resize(made_);
    edits_.push_back({{Ref(&sheet), row, column}, before, after});
    made_ = edits_.size();
  }
  if (!kept_ || recovering_) return;
  if (kept_->Continues() && IsModified()) {
    kept_->Append({sheet.Name(), row, column, ToUtf16(after)});
  } else {
    KeepAll();
  }
}

std::optional<Document::Place> Document::Repeat(const Edit& edit, const std::string& text) {
  const ScopedFlag repeating(repeating_);
  edit.place.sheet->Cells(edit.place.row, edit.place.column)->SetValue(ToUtf16(text));
  return edit.place;
}

std::optional<Document::Place> Document::Undo() {
  if (made_ == 0) return std::nullopt;
  auto place = Repeat(edits_[made_ - 1], edits_[made_ - 1].before);
  --made_;
  return place;
}

std::optional<Document::Place> Document::Redo() {
  if (made_ == edits_.size()) return std::nullopt;
  auto place = Repeat(edits_[made_], edits_[made_].after);
  ++made_;
  return place;
}

std::filesystem::path Document::SavePath() const {
  if (loader_->IsPlain()) return path_;
  const auto saved = saved_.find(&ActiveSheet());
  if (saved != saved_.end()) return saved->second.path;
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
  const bool is_plain = loader_->IsPlain();
  const auto is_same = [](const std::filesystem::path& one, const std::filesystem::path& other) {
    std::error_code missing;
    return one == other || std::filesystem::equivalent(one, other, missing);
  };
  standalone::Worksheet& sheet = ActiveSheet();
  const auto saved = saved_.find(&sheet);
  // The file as this document knows it; without one, any that is there is somebody else's.
  std::optional<FileStamp> known;
  if (is_plain && is_same(path, path_)) known = stamp_;
  if (!is_plain && saved != saved_.end() && is_same(path, saved->second.path)) known = saved->second.stamp;
  std::error_code missing;
  if (!options.overwrite && known && FileStamp::Of(path) != *known) {
    throw SaveRefused(SaveRefused::Reason::FileChanged, path.string() + ": Changed by another program");
  }
  if (!options.overwrite && !known && std::filesystem::exists(path, missing)) {
    throw SaveRefused(SaveRefused::Reason::FileExists, path.string() + ": The file exists");
  }
  const bool as_utf8 = options.as_utf8 || saved_as_utf8_;
  if (!Write(path, as_utf8, progress)) return false;

  const auto stamp = FileStamp::Of(path);
  if (is_same(path, source_)) source_stamp_ = stamp;
  Saved& now = saved_[&sheet];
  now = {{}, path, stamp};
  for (const auto& [cell, change] : sheet.Changes()) now.texts[cell] = change.text;
  saved_as_utf8_ = as_utf8;
  if (is_plain) {
    const bool moves = !is_same(path, path_);
    path_ = path;
    stamp_ = stamp;
    if (moves && kept_) {
      kept_->Remove();
      kept_ = std::make_unique<RecoveryFile>(kept_->In(), path_);
    }
  }
  KeepAll();
  return true;
}

// The active sheet, into a file; false when `progress` stopped it.
bool Document::Write(const std::filesystem::path& path, bool as_utf8, const Progress& progress) {
  const auto& sheet = ActiveSheet();
  CsvFile* const csv = loader_->Csv();
  // Once the file has changed, the places of its records are not those that were read.
  const bool changed = FileStamp::Of(source_) != source_stamp_;
  keeps_records_ = keeps_records_ && !(changed && loader_->IsPlain());
  if (csv != nullptr && keeps_records_) {
    CsvRewriter::Edits edits;
    for (const auto& [cell, change] : sheet.Changes()) {
      if (change.text == change.loaded) continue;
      edits[static_cast<std::size_t>(cell.row) - 1][static_cast<std::size_t>(cell.column) - 1] = change.text;
    }
    CsvRewriter writer(*csv, std::move(edits), as_utf8);
    return WriteFile(path, writer, progress);
  }
  if (state_ == State::Stopped) {
    throw std::runtime_error(path_.string() + ": Not loaded to its end" +
                             (csv != nullptr ? ", and changed by another program" : ""));
  }
  CsvFormat format;
  if (csv != nullptr) format = FormatOf(*csv, as_utf8);
  SheetWriter writer(sheet.Text(), format);
  return WriteFile(path, writer, progress);
}

Leftovers Document::KeepEdits(Folders folders) {
  kept_ = std::make_unique<RecoveryFile>(std::move(folders), path_);
  KeepAll();
  return FindLeftovers(kept_->In(), path_, kept_->Path());
}

void Document::KeepAll() {
  if (!kept_) return;
  if (const auto unsaved = Unsaved(); !unsaved.empty()) {
    kept_->Write(stamp_, unsaved);
  } else {
    kept_->Clear();
  }
}

void Document::KeepAgain() {
  if (kept_ && IsModified() && !kept_->Continues()) KeepAll();
}

void Document::Discard() {
  if (kept_) kept_->Remove();
  kept_ = nullptr;
}

std::optional<std::size_t> Document::Recover(const std::vector<Recovery::Edit>& edits,
                                             const Progress& progress) {
  while (Step()) {
    if (progress && !progress(Fraction())) return std::nullopt;
  }
  std::size_t refused = 0;
  {
    const ScopedFlag recovering(recovering_);
    for (const auto& edit : edits) {
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
  }
  KeepAll();
  return refused;
}

}  // namespace rowlark
