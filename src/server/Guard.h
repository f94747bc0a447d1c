// Where exceptions end: every entry of the library runs inside a guard, which makes them automation errors.
#pragma once

#include <string_view>

#include <oaidl.h>

namespace rowlark::server {

// The exception that is being handled as an error object of this thread ("VTRLKRuntime." and the member as
// its source unless the exception names one) and as the result of the call.
HRESULT ReportException(const IID& interface_id, std::u16string_view member) noexcept;

template <class Action>
HRESULT Guard(const IID& interface_id, std::u16string_view member, Action action) noexcept {
  try {
    action();
    return S_OK;
  } catch (...) {
    return ReportException(interface_id, member);
  }
}

}  // namespace rowlark::server
