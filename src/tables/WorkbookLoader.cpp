// A workbook, or what else can not be read like a file of text, is read by a process of its own, since the
// libraries that read it may trip over a damaged file, and a pipe may have nothing to read. The sheets fill
// while it reads on.
#include <chrono>
#include <exception>
#include <list>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tables/Charsets.h"
#include "tables/ChildProcess.h"
#include "tables/Loader.h"
#include "tables/SheetMessages.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

void ReadAndTell(const std::function<void(SheetSink&)>& read, const ChildProcess::Write& write) {
  SheetMessageWriter messages(write);
  try {
    read(messages);
    messages.End();
  } catch (const std::bad_alloc&) {
    messages.Error("Too large for the memory");
  } catch (const std::exception& error) {
    messages.Error(error.what());
  }
}

// The text that has been told.
class Feed final : public ByteSource {
 public:
  void Add(std::string_view bytes) { bytes_ += bytes; }
  void End() { ended_ = true; }

  void Read(std::uintmax_t, std::size_t size, std::string& bytes) override {
    bytes.append(bytes_, 0, size);
    bytes_.erase(0, size);
  }
  std::uintmax_t Size() const override { return 0; }
  bool CanGoBack() const override { return false; }
  bool IsGrowing() const override { return !ended_ || !bytes_.empty(); }

 private:
  std::string bytes_;
  bool ended_ = false;
};

// Puts what it is told into the sheets of a workbook.
class SheetFiller final : public SheetMessageReader::Sink {
 public:
  explicit SheetFiller(const MemoryBound& memory) : memory_(memory) {}

  // Where the next messages go.
  void Fill(standalone::Workbook& workbook) { workbook_ = &workbook; }
  double Fraction() const { return fraction_; }
  int32_t CutTexts() const { return cut_texts_; }
  // Called with every part of a text.
  std::function<void(std::string_view bytes)> OnText;

  void Sheet(std::string_view name) override {
    if (!sheet_) {
      sheet_ = workbook_->Worksheets().front();
      sheet_->SetName(ToUtf16(name));
    } else {
      const auto active = workbook_->ActiveSheet();
      sheet_ = workbook_->AddWorksheet(ToUtf16(name));
      workbook_->ActivateSheet(active);
    }
    sheet_->SetLoading(true);
  }

  void Row(int32_t row, std::span<const std::string_view> cells) override {
    memory_.Add(cells);
    while (sheet_->Text().AppendedRows() < row - 1) sheet_->AppendRow({});
    cells_.assign(cells.begin(), cells.end());
    repaired_.clear();
    for (auto& cell : cells_) {
      if (!IsValidUtf8(cell)) cell = repaired_.emplace_back(ToUtf8(ToUtf16(cell)));
    }
    sheet_->AppendRow(cells_);
  }

  void Cut() override { ++cut_texts_; }
  void Progress(double fraction) override { fraction_ = fraction; }
  void Text(std::string_view bytes) override { OnText(bytes); }

 private:
  MemoryBound memory_;
  standalone::Workbook* workbook_ = nullptr;
  Ref<standalone::Worksheet> sheet_;
  double fraction_ = 0;
  int32_t cut_texts_ = 0;
  std::vector<std::string_view> cells_;
  std::list<std::string> repaired_;
};

class WorkbookLoader final : public Loader {
 public:
  WorkbookLoader(const std::filesystem::path& path, const std::function<void(SheetSink&)>& read,
                 const InputOptions& options)
      : path_(path),
        options_(options),
        process_([&read](const ChildProcess::Write& write) { ReadAndTell(read, write); },
                 options.memory.OfReader()),
        filler_(options.memory) {
    filler_.OnText = [this](std::string_view bytes) { AddText(bytes); };
  }

  void Stop() noexcept override {
    process_.Stop();
    if (feed_ != nullptr) feed_->End();
  }

  bool Step(standalone::Workbook& workbook) override {
    const bool has_come = !has_ended_ && Take(workbook);
    if (!csv_) {
      if (reason_) Fail(*reason_);
      waits_ = !has_come;
      return !has_ended_;
    }
    standalone::Worksheet& sheet = *workbook.Worksheets().front();
    sheet.SetName(platform::ToText(path_.stem()));
    const std::size_t rows = csv_->RowCount();
    const auto reading = csv_->ReadRows([&](std::span<const std::string_view> cells) {
      try {
        memory_.Add(cells);
      } catch (const std::runtime_error& error) {
        Fail(error.what());
      }
      sheet.AppendRow(cells);
    });
    if (reading == CsvFile::Reading::Again) {
      sheet.Clear();
      memory_ = options_.memory;
    }
    waits_ = !has_come && csv_->RowCount() == rows;
    if (reading != CsvFile::Reading::Done) return true;
    if (reason_) Fail(*reason_);  // all that came before the damage is there
    return false;
  }

  std::optional<int> WaitsFor() const noexcept override {
    return waits_ && !has_ended_ ? std::optional(process_.ReadEnd()) : std::nullopt;
  }
  double Fraction() const override { return filler_.Fraction(); }
  int32_t CutTexts() const override { return filler_.CutTexts(); }
  CsvFile* Csv() noexcept override { return csv_ ? &*csv_ : nullptr; }

 private:
  // Takes what the process has told, if anything within a moment.
  bool Take(standalone::Workbook& workbook) {
    constexpr std::chrono::milliseconds kPatience(5);
    const auto bytes = process_.Read(kPatience);
    try {
      if (!bytes) throw std::runtime_error("");  // it has ended without a last message
      filler_.Fill(workbook);
      has_ended_ = !messages_.Take(*bytes, filler_);
    } catch (const std::runtime_error& error) {
      reason_ = error.what();
      has_ended_ = true;
    }
    if (has_ended_ && feed_ != nullptr) feed_->End();
    return has_ended_ || !bytes->empty();
  }

  void AddText(std::string_view bytes) {
    if (feed_ == nullptr) {
      auto feed = std::make_unique<Feed>();
      feed_ = feed.get();
      auto encoding = NamedEncoding(options_.encoding).options;
      csv_.emplace(TextReader(path_.string(), std::move(feed), std::move(encoding)), options_.separator);
    }
    feed_->Add(bytes);
  }

  [[noreturn]] void Fail(const std::string& reason) const {
    throw std::runtime_error(path_.string() + ": " +
                             (reason.empty() ? "The file is damaged: it can not be read" : reason));
  }

  std::filesystem::path path_;
  InputOptions options_;
  MemoryBound memory_ = options_.memory;  // of the rows of a text
  ChildProcess process_;
  SheetMessageReader messages_;
  SheetFiller filler_;
  std::optional<CsvFile> csv_;         // once it is known to be a text
  Feed* feed_ = nullptr;               // what that reads from
  bool has_ended_ = false;             // the process, or it has told all
  std::optional<std::string> reason_;  // why it has ended early
  bool waits_ = false;
};

}  // namespace

std::unique_ptr<Loader> LoadSheets(const std::filesystem::path& path,
                                   const std::function<void(SheetSink&)>& read, const InputOptions& options) {
  try {
    return std::make_unique<WorkbookLoader>(path, read, options);
  } catch (const std::system_error& error) {
    throw std::runtime_error(path.string() + ": " + error.code().message());
  }
}

}  // namespace rowlark
