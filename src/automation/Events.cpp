#include "automation/Events.h"

#include <utility>
#include <vector>

#include <olectl.h>

#include "automation/Enumerator.h"
#include "automation/Variant.h"

namespace rowlark::automation {
namespace {

struct PointTraits {
  using Held = ComPtr<IConnectionPoint>;
  using Element = IConnectionPoint*;
  static void Copy(const Held& held, Element& element) { element = Held(held).Detach(); }
};

struct ConnectionTraits {
  using Held = std::pair<DWORD, ComPtr<IDispatch>>;
  using Element = CONNECTDATA;
  static void Copy(const Held& held, Element& element) {
    element.dwCookie = held.first;
    element.pUnk = ComPtr<IDispatch>(held.second).Detach();
  }
};

template <class Interface, class Traits>
HRESULT Hand(std::vector<typename Traits::Held> elements, IUnknown& owner, Interface** result) {
  auto* made = new Enumerator<Interface, Traits>(std::move(elements), ComPtr<IUnknown>(&owner));
  made->AddRef();
  *result = made;
  return S_OK;
}

void CallSink(IDispatch& sink, DISPID event, DISPPARAMS parameters, Trace* trace) {
  Variant discarded;
  const HRESULT result =
      sink.Invoke(event, IID_NULL, kLocale, DISPATCH_METHOD, &parameters, &discarded, nullptr, nullptr);
  if (FAILED(result) && result != DISP_E_MEMBERNOTFOUND) TraceNumber(trace, result);
}

}  // namespace

void EventSource::Fire(DISPID event, VARIANT* arguments, UINT count) noexcept {
  const ComPtr<IUnknown> keep(&owner_);  // a sink may let go of it
  Attempt(trace_, [&] {
    const auto sinks = sinks_;
    for (const auto& [cookie, sink] : sinks) {
      if (sinks_.contains(cookie)) CallSink(*sink, event, {arguments, nullptr, count, 0}, trace_);
    }
  });
}

HRESULT EventSource::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
  if (points == nullptr) return E_POINTER;
  *points = nullptr;
  try {
    return Hand<IEnumConnectionPoints, PointTraits>({ComPtr<IConnectionPoint>(&point_)}, owner_, points);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT EventSource::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  if (iid != event_interface_ && iid != IID_IDispatch) return CONNECT_E_NOCONNECTION;
  *point = ComPtr<IConnectionPoint>(&point_).Detach();
  return S_OK;
}

HRESULT EventSource::Point::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IConnectionPoint) return E_NOINTERFACE;
  *object = ComPtr<IConnectionPoint>(this).Detach();
  return S_OK;
}

HRESULT EventSource::Point::GetConnectionInterface(IID* iid) noexcept {
  if (iid == nullptr) return E_POINTER;
  *iid = source_.event_interface_;
  return S_OK;
}

HRESULT EventSource::Point::GetConnectionPointContainer(IConnectionPointContainer** container) noexcept {
  if (container == nullptr) return E_POINTER;
  *container = ComPtr<IConnectionPointContainer>(&source_).Detach();
  return S_OK;
}

HRESULT EventSource::Point::Advise(IUnknown* sink, DWORD* cookie) noexcept {
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  *cookie = 0;
  ComPtr<IDispatch> dispatch;
  const auto answers = [&](const IID& iid) {
    return SUCCEEDED(sink->QueryInterface(iid, reinterpret_cast<void**>(dispatch.Put())));
  };
  if (!answers(source_.event_interface_) && (source_.accepted_ == Sinks::Named || !answers(IID_IDispatch))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  try {
    source_.sinks_.emplace(source_.last_cookie_ + 1, dispatch);
    *cookie = ++source_.last_cookie_;
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT EventSource::Point::Unadvise(DWORD cookie) noexcept {
  const auto found = source_.sinks_.find(cookie);
  if (found == source_.sinks_.end()) return CONNECT_E_NOCONNECTION;
  const auto last_use = found->second;  // it may end this object
  source_.sinks_.erase(found);
  return S_OK;
}

HRESULT EventSource::Point::EnumConnections(IEnumConnections** connections) noexcept {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  try {
    return Hand<IEnumConnections, ConnectionTraits>({source_.sinks_.begin(), source_.sinks_.end()},
                                                    source_.owner_, connections);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace rowlark::automation
