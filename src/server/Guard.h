// Where exceptions end: every entry of the library runs inside a guard, which makes them automation errors.
#pragma once

#include <string_view>

#include <oaidl.h>

#include "util/SourceLocation.h"

namespace rowlark::server {

// The member that an entry runs: the class, and the function that is its outside ("put_StartRow").
struct Entry {
  const IID& interface_id;
  std::u16string_view class_name;
  SourceLocation function;
};

// The exception that is being handled as an error object of this thread, and as the result of the call. Its
// source is "VTRLKRuntime." with class and member, unless the exception names one.
HRESULT ReportException(const Entry& entry) noexcept;

template <class Action>
HRESULT Guard(const Entry& entry, Action action) noexcept {
  try {
    action();
    return S_OK;
  } catch (...) {
    return ReportException(entry);
  }
}

}  // namespace rowlark::server
