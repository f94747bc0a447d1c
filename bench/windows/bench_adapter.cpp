// Measures what the Excel adapter adds to a search: a search through automation beside a bare loop that makes
// the same calls of the same host with the same arguments, the dispatch ids known.
//   bench_adapter [ROWS [RUNS]]
// Prints, for sheets with few and with many matches, the calls, the best times of the loop, of the search and
// of the search with the message loop that it serves between its calls, and the medians of the ratios of
// both to the loop in runs that follow each other.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <oaidl.h>
#include <oleauto.h>

#include "AutomationHost.h"
#include "automation/ComPtr.h"
#include "automation/Counted.h"
#include "automation/Variant.h"
#include "forms/FormSet.h"
#include "host/standalone/Application.h"
#include "host/standalone/Headless.h"
#include "host/windows/ExcelAdapter.h"
#include "host/windows/WindowsMessagePump.h"
#include "runtime/clsVTRLKRuntime.h"

namespace rowlark::bench {
namespace {

using automation::ComPtr;

constexpr std::size_t kMaxArguments = 8;
constexpr std::size_t kNoSlot = static_cast<std::size_t>(-1);

// A call, or the release of an object. Objects stand in slots.
struct Step {
  bool release = false;
  std::size_t object = 0;
  DISPID id = 0;
  WORD flags = 0;
  std::vector<VARIANT> arguments{};    // last one first
  std::vector<std::size_t> objects{};  // the slots of arguments that are objects, otherwise kNoSlot
  DISPID named = DISPID_PROPERTYPUT;
  UINT named_count = 0;
  bool wants_result = false;
  std::size_t result = kNoSlot;
};

// The calls of one search. Values of arguments stay for as long as the program runs.
class Recording {
 public:
  std::vector<Step> Steps;

  std::size_t TakeSlot() {
    if (free_.empty()) return count_++;
    const std::size_t slot = free_.back();
    free_.pop_back();
    return slot;
  }
  void Release(std::size_t slot) {
    Steps.push_back({.release = true, .object = slot});
    free_.push_back(slot);
  }

  // Makes the calls; slot 0 is the application.
  void Replay(IDispatch* application) {
    std::vector<IDispatch*> slots(count_);
    slots[0] = application;
    for (auto& step : Steps) {
      if (step.release) {
        slots[step.object]->Release();
        continue;
      }
      // Texts are made for each call, as every caller must.
      VARIANT arguments[kMaxArguments];
      for (std::size_t i = 0; i < step.objects.size(); ++i) {
        arguments[i] = step.arguments[i];
        if (step.objects[i] != kNoSlot) arguments[i].pdispVal = slots[step.objects[i]];
        if (arguments[i].vt == VT_BSTR) {
          arguments[i].bstrVal = SysAllocStringLen(arguments[i].bstrVal, SysStringLen(arguments[i].bstrVal));
        }
      }
      DISPPARAMS parameters{arguments, step.named_count > 0 ? &step.named : nullptr,
                            static_cast<UINT>(step.arguments.size()), step.named_count};
      VARIANT result{};
      EXCEPINFO exception{};
      const HRESULT outcome =
          slots[step.object]->Invoke(step.id, IID_NULL, automation::kLocale, step.flags, &parameters,
                                     step.wants_result ? &result : nullptr, &exception, nullptr);
      for (std::size_t i = 0; i < step.objects.size(); ++i) {
        if (arguments[i].vt == VT_BSTR) SysFreeString(arguments[i].bstrVal);
      }
      if (FAILED(outcome)) throw std::runtime_error("a repeated call failed");
      if (step.result != kNoSlot) {
        slots[step.result] = result.pdispVal;
      } else if (result.vt == VT_BSTR) {
        SysFreeString(result.bstrVal);
      }
    }
  }

 private:
  std::vector<std::size_t> free_;
  std::size_t count_ = 0;
};

// Forwards to an object of the host and notes its calls.
class Recorder final : public automation::Counted<IDispatch> {
 public:
  Recorder(Recording& recording, ComPtr<IDispatch> inner)
      : recording_(recording), inner_(std::move(inner)), slot_(recording.TakeSlot()) {}
  STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override { return inner_->GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) noexcept override {
    return inner_->GetTypeInfo(index, locale, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) noexcept override {
    return inner_->GetIDsOfNames(iid, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* exception, UINT* wrong) noexcept override {
    Step step{.object = slot_, .id = id, .flags = flags, .named_count = parameters->cNamedArgs};
    step.wants_result = result != nullptr;
    for (UINT i = 0; i < parameters->cArgs; ++i) {
      VARIANT& given = parameters->rgvarg[i];
      const auto* object = given.vt == VT_DISPATCH ? static_cast<Recorder*>(given.pdispVal) : nullptr;
      step.objects.push_back(object != nullptr ? object->slot_ : kNoSlot);
      if (object != nullptr) {
        step.arguments.push_back(given);
        step.arguments.back().pdispVal = object->inner_.get();
      } else {
        step.arguments.emplace_back();
        VariantCopy(&step.arguments.back(), &given);
      }
    }
    DISPPARAMS inner = *parameters;
    inner.rgvarg = step.arguments.data();
    const HRESULT outcome = inner_->Invoke(id, iid, locale, flags, &inner, result, exception, wrong);
    if (SUCCEEDED(outcome) && result != nullptr && result->vt == VT_DISPATCH && result->pdispVal != nullptr) {
      auto given = ComPtr<IDispatch>::Attach(std::exchange(result->pdispVal, nullptr));
      // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): without memory there is nothing to measure
      ComPtr<Recorder> wrapped(new Recorder(recording_, std::move(given)));
      step.result = wrapped->slot_;
      result->pdispVal = wrapped.Detach();
    }
    recording_.Steps.push_back(std::move(step));
    return outcome;
  }

 private:
  ~Recorder() override { recording_.Release(slot_); }

  Recording& recording_;
  ComPtr<IDispatch> inner_;
  std::size_t slot_;
};

// Every `period`-th row of the sheet holds the text; 0: none.
struct Sheet {
  Sheet(int32_t rows, int32_t period) {
    application->AddWorkbook(u"C:\\Bench.csv");
    auto& sheet = static_cast<standalone::Worksheet&>(*application->ActiveSheet());
    for (int32_t row = 1; row <= rows; ++row) {
      const bool match = row == rows || (period > 0 && row % period == 0);
      const auto number = std::to_string(row);
      const std::string_view cells[] = {number, "Alexanderplatz", match ? "needle" : "haystack",
                                        "1999-12-31"};
      sheet.AppendRow(cells);
    }
  }
  Ref<standalone::Application> application = MakeRef<standalone::Application>();
};

template <class Action>
double Milliseconds(Action action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// The least of so many times, which the rest of the machine disturbed least; the first time warms up.
struct Best {
  double time = std::numeric_limits<double>::max();
  void Take(double another) { time = std::min(time, another); }
};

double Median(std::vector<double>& values) {
  const auto middle = values.begin() + std::ssize(values) / 2;
  std::ranges::nth_element(values, middle);
  return *middle;
}

// A runtime over a message loop, searching through the adapter.
class Searcher {
 public:
  explicit Searcher(host::MessagePump& pump)
      : shared_(Platform{pump, none_.registry, none_.help, none_.windows, files_, u"", u""}) {
    runtime_.SearchOptions->CompareMethod = CompareMode::Text;
    runtime_.SearchOptions->UseFilter = true;
  }
  void Connect(IDispatch* host) { runtime_.SetExcelApp(windows::WrapExcel(host)); }
  void Search() {
    std::u16string error;
    if (!runtime_.Search(u"needle", error)) throw std::runtime_error("nothing found");
  }

 private:
  standalone::Headless none_;
  const mclsVTFileSystem files_;
  SharedState shared_;
  FormSet forms_{shared_};
  clsVTRLKRuntime runtime_{shared_, forms_};
};

void Measure(const char* name, int32_t rows, int32_t period, int runs) {
  const Sheet sheet(rows, period);
  const auto host = workbench::ExposeApplication(sheet.application);
  standalone::NoMessages no_messages;
  windows::WindowsMessagePump messages;
  Searcher alone(no_messages);
  Searcher with_messages(messages);

  Recording recording;
  {
    const ComPtr<IDispatch> recorder(new Recorder(recording, host));
    alone.Connect(recorder.get());
    alone.Search();  // from now on the sheet looks the same before and after a search
    recording.Steps.clear();
    alone.Search();
    alone.Connect(nullptr);
  }
  // The last step would release the application, which is ours.
  std::erase_if(recording.Steps, [](const Step& step) { return step.release && step.object == 0; });
  const auto calls = std::ranges::count_if(recording.Steps, [](const Step& step) { return !step.release; });

  alone.Connect(host.get());
  with_messages.Connect(host.get());
  Best ours;
  Best bare;
  Best ours_with_messages;
  std::vector<double> ratios;
  std::vector<double> ratios_with_messages;
  for (int run = 0; run < runs; ++run) {
    const double search = Milliseconds([&] { alone.Search(); });
    const double loop = Milliseconds([&] { recording.Replay(host.get()); });
    const double search_with_messages = Milliseconds([&] { with_messages.Search(); });
    ours.Take(search);
    bare.Take(loop);
    ours_with_messages.Take(search_with_messages);
    ratios.push_back(search / loop);
    ratios_with_messages.push_back(search_with_messages / loop);
  }
  alone.Connect(nullptr);
  with_messages.Connect(nullptr);
  std::printf("%-18s %9lld %10.2f %10.2f %7.3f %14.2f %7.3f\n", name, static_cast<long long>(calls),
              bare.time, ours.time, Median(ratios), ours_with_messages.time, Median(ratios_with_messages));
}

}  // namespace
}  // namespace rowlark::bench

int main(int argc, char** argv) {
  try {
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100000;
    const int runs = argc > 2 ? std::atoi(argv[2]) : 50;
    if (rows < 1 || rows > 1000000 || runs < 1) {
      std::fputs("usage: bench_adapter [ROWS [RUNS]]\n", stderr);
      return EXIT_FAILURE;
    }
    std::printf("%d rows\n%-18s %9s %10s %10s %7s %14s %7s\n", rows, "matches", "calls", "loop/ms",
                "search/ms", "ratio", "w. messages/ms", "ratio");
    rowlark::bench::Measure("one", rows, 0, runs);
    rowlark::bench::Measure("1 % of the rows", rows, 100, runs);
    rowlark::bench::Measure("half of the rows", rows, 2, runs);
    rowlark::bench::Measure("every row", rows, 1, runs);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_adapter: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
