// Measures loading a table and searching it as one keystroke in the search form does: show all rows, find,
// hide; where a letter is typed, after a search for the text without it.
//   bench_search [--benchmark_...] TABLE...
// For every table (made by make_table) it reports Load/ROWS and, for every query, Search/ROWS/QUERY with the
// number of rows left visible and the longest time between two stop checks.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Queries.h"
#include "csv/CsvFile.h"
#include "forms/FormSet.h"
#include "host/standalone/Application.h"
#include "host/standalone/Headless.h"
#include "runtime/clsVTRLKRuntime.h"
#include "util/Utf.h"

namespace rowlark::bench {
namespace {

struct Table {
  explicit Table(const std::string& path) : file(CsvFile::Open(path, ',')) {
    application->AddWorkbook(ToUtf16(path));
    sheet = static_cast<standalone::Worksheet*>(application->ActiveSheet().get());
    file.ForEachRow([this](std::span<const std::string_view> cells) { sheet->AppendRow(cells); },
                    [this] { sheet->Clear(); });
  }

  int32_t VisibleRows() const {
    return sheet->HiddenRows().Count(1, static_cast<int32_t>(file.RowCount()), false);
  }

  CsvFile file;
  Ref<standalone::Application> application = MakeRef<standalone::Application>();
  Ref<standalone::Worksheet> sheet;
};

// Looks how long messages had to wait, when asked to.
class WatchedMessages final : public host::MessagePump {
 public:
  bool Watches = false;

  void ProcessMessages() noexcept override {
    if (!Watches) return;
    const auto now = std::chrono::steady_clock::now();
    if (last_) longest_ = std::max(longest_, now - *last_);
    last_ = now;
  }
  void WaitForInput(uint32_t) noexcept override {}
  uint32_t TickCount() const noexcept override { return 0; }
  double LongestMilliseconds() const { return std::chrono::duration<double, std::milli>(longest_).count(); }

 private:
  std::optional<std::chrono::steady_clock::time_point> last_;
  std::chrono::steady_clock::duration longest_{};
};

void Load(benchmark::State& state, const std::string& path) {
  while (state.KeepRunning()) {
    const Table table(path);
    benchmark::DoNotOptimize(table.sheet.get());
  }
}

void Search(benchmark::State& state, const Table& table, const Query& query) {
  standalone::Headless none;
  const mclsVTFileSystem files;
  WatchedMessages messages;
  SharedState shared(Platform{messages, none.registry, none.help, none.windows, files, u"", u""});
  FormSet forms(shared);
  clsVTRLKRuntime runtime(shared, forms);
  runtime.SetExcelApp(table.application);
  runtime.SearchOptions->CompareMethod = CompareMode::Text;
  runtime.SearchOptions->SearchWords = query.words;
  runtime.SearchOptions->UseFilter = true;
  runtime.Items->DefaultItem->SearchCols = query.columns;

  std::u16string error;
  while (state.KeepRunning()) {
    state.PauseTiming();
    table.application->Find().Forget();  // what the last round has found
    if (!query.before.empty()) runtime.Search(query.before, error);
    state.ResumeTiming();
    runtime.Search(query.text, error);
  }
  // Once more with a watch, which takes a while at each stop check.
  messages.Watches = true;
  table.application->Find().Forget();
  const bool found = runtime.Search(query.text, error);
  state.counters["longest_wait_ms"] = messages.LongestMilliseconds();
  state.counters["rows"] = found ? table.VisibleRows() : 0;
}

int Run(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  std::vector<std::unique_ptr<const Table>> tables;
  for (const std::string path : std::span(argv + 1, argv + argc)) {
    const Table& table = *tables.emplace_back(std::make_unique<const Table>(path));
    const std::string rows = std::to_string(table.file.RowCount() - 1);
    benchmark::RegisterBenchmark(("Load/" + rows).c_str(), [path](benchmark::State& state) {
      Load(state, path);
    })->Unit(benchmark::kMillisecond);
    for (const Query& query : Queries()) {
      const std::string name = "Search/" + rows + "/" + std::string(query.name);
      benchmark::RegisterBenchmark(name.c_str(), [&](benchmark::State& state) {
        Search(state, table, query);
      })->Unit(benchmark::kMillisecond);
    }
  }
  if (tables.empty()) {
    std::fputs("usage: bench_search [--benchmark_...] TABLE...\n", stderr);
    return EXIT_FAILURE;
  }
  benchmark::RunSpecifiedBenchmarks();
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace rowlark::bench

int main(int argc, char** argv) {
  try {
    return rowlark::bench::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_search: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
