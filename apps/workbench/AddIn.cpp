#include "AddIn.h"

#include <string>
#include <utility>

#include <windows.h>

#include "automation/Variant.h"
#include "host/Error.h"
#include "settings/Macros.h"

namespace rowlark::workbench {
namespace {

using automation::ComPtr;
using automation::Variant;
using windows::Dispatch;
using windows::Member;

constexpr wchar_t kMessageTitle[] = L"Vantrel Rowlark";

// The operation of the runtime object that a macro forwards to.
constexpr const wchar_t* OperationOf(Macro macro) {
  constexpr const wchar_t* kOperations[] = {L"ShowSearch", L"Unhide",          L"ShowOptions",
                                            L"CallHelp",   L"CallTechSupport", L"About"};
  return kOperations[static_cast<std::size_t>(macro)];
}

Dispatch CreateRuntime() {
  CLSID id;
  if (FAILED(CLSIDFromProgID(L"vtrlk_runtime.clsVTRLKRuntime", &id))) {
    throw host::Error(429,
                      u"The add-in's library is not registered, so there is only the sheet.\n\n"
                      u"To register it, run as an administrator: regsvr32 vtrlk_runtime.dll");
  }
  ComPtr<IDispatch> runtime;
  const HRESULT result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                          reinterpret_cast<void**>(runtime.Put()));
  if (FAILED(result)) windows::ThrowError(result);
  return Dispatch(std::move(runtime));
}

void Call(const Dispatch& object, const wchar_t* operation) {
  Member member(operation);
  object.Call(member);
}

void Put(const Dispatch& object, const wchar_t* property, const Variant& value) {
  Member member(property);
  object.Put(member, value);
}

}  // namespace

void AddIn::Open() {
  runtime_ = CreateRuntime();
  try {
    Put(runtime_, L"ExcelApp", application_.get());
    Call(runtime_, L"Init");
    Call(runtime_, L"MenuCreate");
    AssignHotKeys(model_, KeysOf(runtime_), trace_);
  } catch (...) {
    Close();
    throw;
  }
}

void AddIn::Close() noexcept {
  if (!runtime_) return;
  const Dispatch runtime = std::exchange(runtime_, {});
  Attempt(trace_, [&] { ReleaseHotKeys(model_, KeysOf(runtime), trace_); });
  Attempt(trace_, [&] { Call(runtime, L"MenuRemove"); });
  Attempt(trace_, [&] { Call(runtime, L"DoStop"); });
  Attempt(trace_, [&] { Put(runtime, L"ExcelApp", static_cast<IDispatch*>(nullptr)); });
}

void AddIn::Run(std::u16string_view name) {
  const auto macro = MacroOf(name);
  if (!runtime_ || !macro) return;
  if (macro == Macro::Unhide) return Unhide();
  const Dispatch keep = runtime_;  // the program may be closed meanwhile
  Call(keep, OperationOf(*macro));
}

void AddIn::Unhide() {
  Member unhide(OperationOf(Macro::Unhide));
  Variant reason(u"");
  VARIANT by_reference{};
  by_reference.vt = VT_BYREF | VT_VARIANT;
  by_reference.pvarVal = &reason;
  Variant arguments[2];
  static_cast<VARIANT&>(arguments[0]) = by_reference;
  arguments[1] = false;
  const Dispatch keep = runtime_;
  DISPPARAMS parameters{arguments, nullptr, 2, 0};
  Variant done;
  EXCEPINFO exception{};
  const HRESULT result = keep.get()->Invoke(unhide.Id(*keep.get()), IID_NULL, automation::kLocale,
                                            DISPATCH_METHOD, &parameters, &done, &exception, nullptr);
  if (FAILED(result)) windows::ThrowError(result, &exception);
  if (done.vt == VT_BOOL && done.boolVal == VARIANT_FALSE && reason.vt == VT_BSTR &&
      SysStringLen(reason.bstrVal) > 0) {
    MessageBoxW(GetActiveWindow(), reason.bstrVal, kMessageTitle, MB_OK | MB_ICONEXCLAMATION);
  }
}

HotKeys AddIn::KeysOf(const Dispatch& runtime) {
  Member items_member(L"Items");
  Member search(L"HotKeySearch");
  Member unhide(L"HotKeyUnhide");
  const Dispatch items = runtime.Object(items_member);
  return {items.Text(search), items.Text(unhide)};
}

}  // namespace rowlark::workbench
