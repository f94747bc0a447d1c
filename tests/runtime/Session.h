// A runtime object over a small sheet, composed as every host composes it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "FaultyHost.h"
#include "Library.h"
#include "Sheet.h"
#include "runtime/clsVTRLKRuntime.h"

namespace rowlark::testing {

// A host that does not find rows in bulk, and hides one run of rows at a time.
class CellByCell final : public host::Forwarding {
 public:
  void OnCall(std::string_view) override {}
  bool FindsRows() const override { return false; }
  std::size_t RunsAtOnce() const override { return 1; }
};

struct Session : SampleHost, TestLibrary {
  explicit Session(std::string_view cells, std::u16string_view version = u"16.0", bool read_only = false)
      : SampleHost(cells, u"C:\\Data\\Book1.xls", version, read_only), runtime(shared, forms) {
    runtime.SetExcelApp(host);
    runtime.SearchOptions->CompareMethod = CompareMode::Text;
    runtime.SearchOptions->UseFilter = true;
    searching = runtime.SearchingEvent().Connect([this](bool& on) { events += on ? 'T' : 'F'; });
  }
  ~Session() { watched.Hear = nullptr; }

  // "found", or the error text.
  std::string Search(std::u16string_view text) {
    if (BeforeSearch) BeforeSearch();
    std::u16string error = u"untouched";
    const auto result = runtime.Search(text, error) ? "found" : ToUtf8(error);
    if (AfterSearch) AfterSearch();
    return result;
  }
  // "shown", or the error text.
  std::string ShowAll() {
    std::u16string error = u"untouched";
    const bool shown = runtime.Unhide(false, error);
    return (shown ? "shown" : "") + ToUtf8(error);
  }
  // From now on every operation of the host is told of before it is done.
  void Watch(std::function<void(std::string_view operation)> hear) {
    watched.Hear = std::move(hear);
    runtime.SetExcelApp(watched.Wrap(host));
  }
  // From now on the host finds and hides no rows in bulk.
  void FindCellByCell() {
    host = cell_by_cell.Wrap(host);
    runtime.SetExcelApp(host);
  }
  clsVTRLKItem& Profile() { return *runtime.Items->DefaultItem; }
  bool FlagsRestored() const {
    return application->ScreenUpdating() && application->EnableEvents() && application->EnableAnimations();
  }
  void Filter(std::u16string_view range, int32_t field, std::u16string_view criterion) {
    host::AutoFilterArguments arguments;
    arguments.Field = field;
    arguments.Criteria1 = std::u16string(criterion);
    sheet->Range(range)->AutoFilter(arguments);
  }

  std::function<void()> BeforeSearch, AfterSearch;  // where the runtime searches another host
  CellByCell cell_by_cell;
  WatchedHost watched;
  Ref<host::Application> host = application;  // as the runtime sees it
  clsVTRLKRuntime runtime;
  std::string events;  // of Searching: T at the start, F at the end
  Connection searching;
};

}  // namespace rowlark::testing
