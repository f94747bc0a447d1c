// The sheet model as an automation host, seen through the adapter.
#pragma once

#include <cstdint>
#include <map>
#include <sstream>
#include <string>

#include "AutomationHost.h"
#include "host/windows/Dispatch.h"
#include "host/windows/ExcelAdapter.h"
#include "util/Utf.h"

namespace rowlark::testing {

class Excel {
 public:
  explicit Excel(const Ref<standalone::Application>& model)
      : object(workbench::ExposeApplication(model)), application(windows::WrapExcel(object.get())) {}

  void StartCounting() {
    call_counts_.Id(*object.get());  // looked up now, so that this is not counted
    object.Put(count_calls_, true);
  }
  // Calls of each member, as in "Range.FindNext".
  std::map<std::string, int> Calls() {
    std::map<std::string, int> calls;
    const auto text = ToUtf8(object.Text(call_counts_));
    std::istringstream lines(text);
    std::string name;
    for (int count = 0; lines >> name >> count;) calls[name] = count;
    return calls;
  }
  int64_t CallCount() { return object.Long(call_count_); }
  // After `after` more calls, so many fail; -1: all.
  void Refuse(int32_t count, HRESULT result, int32_t after = 0) {
    object.Call(refuse_calls_, count, static_cast<int32_t>(result), after);
  }

  windows::Dispatch object;
  Ref<host::Application> application;

 private:
  windows::Member count_calls_{L"CountCalls"};
  windows::Member call_counts_{L"CallCounts"};
  windows::Member call_count_{L"CallCount"};
  windows::Member refuse_calls_{L"RefuseCalls"};
};

}  // namespace rowlark::testing
