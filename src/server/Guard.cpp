#include "server/Guard.h"

#include <new>
#include <string>

#include "automation/Variant.h"
#include "host/Error.h"
#include "runtime/Failure.h"
#include "util/AutomationError.h"

namespace rowlark::server {
namespace {

// Run-time errors of automation clients are numbered within FACILITY_CONTROL; larger numbers are results as
// they stand.
HRESULT Result(int32_t number) {
  if (number < 0) return number;
  return number > 0 && number <= 0xFFFF ? MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, number) : E_FAIL;
}

// "VTRLKRuntime.clsVTRLKItem.StartRow" for "put_StartRow".
std::u16string SourceOf(const Entry& entry) {
  std::string_view member = entry.function.function;
  for (const std::string_view accessor : {"get_", "putref_", "put_"}) {
    if (member.starts_with(accessor)) member.remove_prefix(accessor.size());
  }
  std::u16string source(u"VTRLKRuntime.");
  source += entry.class_name;
  source += u'.';
  source.append(member.begin(), member.end());
  return source;
}

void SetErrorObject(const IID& interface_id, std::u16string_view source, std::u16string_view description) {
  automation::ComPtr<ICreateErrorInfo> error;
  if (FAILED(CreateErrorInfo(error.Put()))) return;
  error->SetGUID(interface_id);
  error->SetSource(automation::Bstr(source).get());
  error->SetDescription(automation::Bstr(description).get());
  if (const auto info = automation::ComPtr<IErrorInfo>::From(error.get())) SetErrorInfo(0, info.get());
}

}  // namespace

HRESULT ReportException(const Entry& entry) noexcept {
  HRESULT result = E_FAIL;
  try {
    std::u16string source = SourceOf(entry);
    try {
      throw;
    } catch (const host::Error& error) {
      result = Result(error.Number());
    } catch (const AutomationError& error) {
      result = Result(error.Number());
      if (!error.Source().empty()) source = error.Source();
    } catch (const std::bad_alloc&) {
      result = E_OUTOFMEMORY;
    } catch (...) {  // NOLINT(bugprone-empty-catch): described below
    }
    std::u16string description;
    try {
      throw;
    } catch (...) {
      description = CurrentDescription();
    }
    SetErrorObject(entry.interface_id, source, description);
  } catch (...) {  // NOLINT(bugprone-empty-catch): then without a description
  }
  return result;
}

}  // namespace rowlark::server
