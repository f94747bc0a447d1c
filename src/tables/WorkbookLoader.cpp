// A workbook is read by a process of its own, since the libraries that read it may trip over a damaged file.
// The sheets fill while it reads on.
#include <chrono>
#include <exception>
#include <fstream>
#include <iterator>
#include <list>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tables/ChildProcess.h"
#include "tables/Loader.h"
#include "tables/SheetMessages.h"
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

// Puts what it is told into the sheets of a workbook.
class SheetFiller final : public SheetMessageReader::Sink {
 public:
  explicit SheetFiller(const MemoryBound& memory) : memory_(memory) {}

  // Where the next messages go.
  void Fill(standalone::Workbook& workbook) { workbook_ = &workbook; }
  double Fraction() const { return fraction_; }

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

  void Progress(double fraction) override { fraction_ = fraction; }

 private:
  MemoryBound memory_;
  standalone::Workbook* workbook_ = nullptr;
  Ref<standalone::Worksheet> sheet_;
  double fraction_ = 0;
  std::vector<std::string_view> cells_;
  std::list<std::string> repaired_;
};

class WorkbookLoader final : public Loader {
 public:
  WorkbookLoader(std::string path, const std::function<void(SheetSink&)>& read, const MemoryBound& memory)
      : path_(std::move(path)),
        process_([&read](const ChildProcess::Write& write) { ReadAndTell(read, write); }, memory.OfReader()),
        filler_(memory) {}

  void Stop() noexcept override { process_.Stop(); }

  bool Step(standalone::Workbook& workbook) override {
    constexpr std::chrono::milliseconds kPatience(5);
    const auto bytes = process_.Read(kPatience);
    if (!bytes) Fail("");  // it has ended without a last message
    try {
      filler_.Fill(workbook);
      return messages_.Take(*bytes, filler_);
    } catch (const std::runtime_error& error) {
      Fail(error.what());
    }
  }

  double Fraction() const override { return filler_.Fraction(); }

 private:
  [[noreturn]] void Fail(const std::string& reason) const {
    throw std::runtime_error(path_ + ": " +
                             (reason.empty() ? "The file is damaged: it can not be read" : reason));
  }

  std::string path_;
  ChildProcess process_;
  SheetMessageReader messages_;
  SheetFiller filler_;
};

}  // namespace

std::unique_ptr<Loader> LoadSheets(const std::filesystem::path& path,
                                   const std::function<void(SheetSink&)>& read, const MemoryBound& memory) {
  try {
    return std::make_unique<WorkbookLoader>(path.string(), read, memory);
  } catch (const std::system_error& error) {
    throw std::runtime_error(path.string() + ": " + error.code().message());
  }
}

std::unique_ptr<Loader> LoadWorkbook(const std::filesystem::path& path, const MemoryBound& memory) {
  const auto read = [&path](SheetSink& sink) {
    std::ifstream file(path, std::ios::binary);
    ReadWorkbook(std::string{std::istreambuf_iterator<char>(file), {}}, sink);
  };
  return LoadSheets(path, read, memory);
}

}  // namespace rowlark
