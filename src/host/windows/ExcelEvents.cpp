#include "host/windows/ExcelEvents.h"

#include <memory>
#include <utility>

#include <ocidl.h>

#include "automation/ComPtr.h"
#include "automation/NamelessDispatch.h"
#include "automation/TypeAttributes.h"
#include "automation/Variant.h"
#include "host/Error.h"
#include "host/windows/Dispatch.h"

namespace rowlark::windows {
namespace {

using automation::ComPtr;

// Excel's type library: the source interface of its workbooks, and the event's id in it.
constexpr IID kWorkbookEvents = {0x00024412, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr DISPID kSheetSelectionChange = 0x616;

// What an object tells of the events it raises.
struct Source {
  IID interface_id = kWorkbookEvents;
  ComPtr<ITypeInfo> type;  // null when it can not be had
};

// The default source interface in the type information of a class.
ComPtr<ITypeInfo> DefaultSource(ITypeInfo& type) {
  constexpr int kDefaultSource = IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE;
  ComPtr<ITypeInfo> source;
  const auto attributes = automation::AttributesOf(type);
  for (UINT i = 0; attributes && i < attributes->cImplTypes && !source; ++i) {
    int flags = 0;
    HREFTYPE reference = 0;
    if (SUCCEEDED(type.GetImplTypeFlags(i, &flags)) && (flags & kDefaultSource) == kDefaultSource &&
        SUCCEEDED(type.GetRefTypeOfImplType(i, &reference))) {
      type.GetRefTypeInfo(reference, source.Put());
    }
  }
  return source;
}

// An interface of the library that describes the object.
ComPtr<ITypeInfo> InLibraryOf(IDispatch& object, const IID& interface_id) {
  ComPtr<ITypeInfo> type;
  ComPtr<ITypeLib> library;
  ComPtr<ITypeInfo> found;
  UINT index = 0;
  if (SUCCEEDED(object.GetTypeInfo(0, automation::kLocale, type.Put())) && type &&
      SUCCEEDED(type->GetContainingTypeLib(library.Put(), &index))) {
    library->GetTypeInfoOfGuid(interface_id, found.Put());
  }
  return found;
}

Source SourceOf(IDispatch& object) {
  Source source;
  ComPtr<ITypeInfo> type;
  if (const auto info = ComPtr<IProvideClassInfo>::From(&object);
      info && SUCCEEDED(info->GetClassInfo(type.Put())) && type) {
    source.type = DefaultSource(*type);
  }
  if (source.type) {
    if (const auto attributes = automation::AttributesOf(*source.type)) {
      source.interface_id = attributes->guid;
      return source;
    }
  }
  if (const auto info = ComPtr<IProvideClassInfo2>::From(&object)) {
    GUID given;
    if (SUCCEEDED(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &given))) source.interface_id = given;
  }
  source.type = InLibraryOf(object, source.interface_id);
  return source;
}

DISPID EventId(const Source& source) {
  DISPID id = DISPID_UNKNOWN;
  wchar_t name[] = L"SheetSelectionChange";
  wchar_t* names = name;
  if (source.type && SUCCEEDED(source.type->GetIDsOfNames(&names, 1, &id))) return id;
  return kSheetSelectionChange;
}

// The object in an argument; null for anything else.
IDispatch* ObjectIn(const VARIANT& argument) {
  if (argument.vt == (VT_BYREF | VT_VARIANT)) return ObjectIn(*argument.pvarVal);
  if (argument.vt == (VT_BYREF | VT_DISPATCH)) return *argument.ppdispVal;
  return argument.vt == VT_DISPATCH ? argument.pdispVal : nullptr;
}

class SelectionSink final : public automation::NamelessDispatch {
 public:
  using Handler = std::function<void(IDispatch& sheet, IDispatch& target)>;

  SelectionSink(const Source& source, Handler handler, Trace* trace)
      : NamelessDispatch(source.interface_id),
        event_(EventId(source)),
        handler_(std::move(handler)),
        trace_(trace) {}

  // Nothing is heard of any more, also from a source that lets go of its sinks late.
  void Mute() { muted_ = true; }

  // A source calls the sink with all its events; those of no interest succeed as well.
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                      UINT*) noexcept override {
    if (id != event_ || muted_ || parameters == nullptr || parameters->cArgs != 2) return S_OK;
    const ComPtr<SelectionSink> keep(this);  // the handler may end the connection
    const ComPtr<IDispatch> sheet(ObjectIn(parameters->rgvarg[1]));
    const ComPtr<IDispatch> target(ObjectIn(parameters->rgvarg[0]));
    if (!sheet || !target) return S_OK;
    Attempt(trace_, [&] { handler_(*sheet, *target); });  // failing or not is no affair of the source
    return S_OK;
  }

 private:
  const DISPID event_;
  const Handler handler_;
  Trace* const trace_;
  bool muted_ = false;
};

// A sink on a connection point; it lets go when it is destroyed.
class Advice {
 public:
  Advice(ComPtr<IConnectionPoint> point, ComPtr<SelectionSink> sink)
      : point_(std::move(point)), sink_(std::move(sink)) {
    if (const HRESULT result = point_->Advise(sink_.get(), &cookie_); FAILED(result)) ThrowError(result);
  }
  Advice(const Advice&) = delete;
  Advice& operator=(const Advice&) = delete;
  ~Advice() {
    sink_->Mute();
    point_->Unadvise(cookie_);
  }

 private:
  ComPtr<IConnectionPoint> point_;
  ComPtr<SelectionSink> sink_;
  DWORD cookie_ = 0;
};

}  // namespace

Connection ListenToSelection(IDispatch& workbook,
                             std::function<void(IDispatch& sheet, IDispatch& target)> handler, Trace* trace) {
  const auto container = ComPtr<IConnectionPointContainer>::From(&workbook);
  const Source source = SourceOf(workbook);
  ComPtr<IConnectionPoint> point;
  if (!container || FAILED(container->FindConnectionPoint(source.interface_id, point.Put()))) {
    throw host::Error(459, u"Object or class does not support the set of events");
  }
  return Connection(std::make_shared<Advice>(
      point, ComPtr<SelectionSink>(new SelectionSink(source, std::move(handler), trace))));
}

}  // namespace rowlark::windows
