#include "automation/Events.h"

#include <olectl.h>

#include "automation/Enumerator.h"

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
HRESULT Hand(std::vector<typename Traits::Held> elements, Interface** result) {
  auto* made = new Enumerator<Interface, Traits>(std::move(elements));
  made->AddRef();
  *result = made;
  return S_OK;
}

}  // namespace

void EventSource::Fire(DISPID event, VARIANT* arguments, UINT count) noexcept {
  try {
    const auto sinks = sinks_;
    for (const auto& [cookie, sink] : sinks) {
      DISPPARAMS parameters{arguments, nullptr, count, 0};
      VARIANT result;
      VariantInit(&result);
      sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &result, nullptr,
                   nullptr);
      VariantClear(&result);
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory, and nobody to tell
  }
}

HRESULT EventSource::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid == IID_IConnectionPoint) {
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
  }
  // The point is an object of its own; only the container is the owner.
  return owner_.QueryInterface(iid, object);
}

HRESULT EventSource::EnumConnectionPoints(IEnumConnectionPoints** points) noexcept {
  if (points == nullptr) return E_POINTER;
  *points = nullptr;
  try {
    return Hand<IEnumConnectionPoints, PointTraits>({ComPtr<IConnectionPoint>(this)}, points);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT EventSource::FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  if (iid != event_interface_ && iid != IID_IDispatch) return CONNECT_E_NOCONNECTION;
  *point = this;
  AddRef();
  return S_OK;
}

HRESULT EventSource::GetConnectionInterface(IID* iid) noexcept {
  if (iid == nullptr) return E_POINTER;
  *iid = event_interface_;
  return S_OK;
}

HRESULT EventSource::GetConnectionPointContainer(IConnectionPointContainer** container) noexcept {
  if (container == nullptr) return E_POINTER;
  *container = this;
  AddRef();
  return S_OK;
}

HRESULT EventSource::Advise(IUnknown* sink, DWORD* cookie) noexcept {
  if (sink == nullptr || cookie == nullptr) return E_POINTER;
  *cookie = 0;
  ComPtr<IDispatch> dispatch;
  if (FAILED(sink->QueryInterface(event_interface_, reinterpret_cast<void**>(dispatch.Put()))) &&
      FAILED(sink->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(dispatch.Put())))) {
    return CONNECT_E_CANNOTCONNECT;
  }
  try {
    sinks_.emplace(last_cookie_ + 1, dispatch);
    *cookie = ++last_cookie_;
    return S_OK;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT EventSource::Unadvise(DWORD cookie) noexcept {
  const auto found = sinks_.find(cookie);
  if (found == sinks_.end()) return CONNECT_E_NOCONNECTION;
  const auto last_use = found->second;  // it may end this object
  sinks_.erase(found);
  return S_OK;
}

HRESULT EventSource::EnumConnections(IEnumConnections** connections) noexcept {
  if (connections == nullptr) return E_POINTER;
  *connections = nullptr;
  try {
    return Hand<IEnumConnections, ConnectionTraits>({sinks_.begin(), sinks_.end()}, connections);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace rowlark::automation
