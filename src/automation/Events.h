// The outgoing interfaces of an object and the sinks that listen to them.
#pragma once

#include <map>
#include <vector>

#include <ocidl.h>

#include "automation/ComPtr.h"

namespace rowlark::automation {

// The one connection point of an object, and the container that hands it out. Both live and die with the
// object that owns them.
class EventSource final : public IConnectionPointContainer, public IConnectionPoint {
 public:
  EventSource(IUnknown& owner, const IID& event_interface)
      : owner_(owner), event_interface_(event_interface) {}
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;

  // Calls the event on every sink; the `count` arguments stand in automation's order, the last one first. A
  // sink that fails is the sink's affair, and sinks may connect and disconnect meanwhile.
  void Fire(DISPID event, VARIANT* arguments, UINT count) noexcept;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override;
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return owner_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() noexcept override { return owner_.Release(); }

  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override;

  STDMETHODIMP GetConnectionInterface(IID* iid) noexcept override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) noexcept override;
  STDMETHODIMP Unadvise(DWORD cookie) noexcept override;
  STDMETHODIMP EnumConnections(IEnumConnections** connections) noexcept override;

 private:
  IUnknown& owner_;
  const IID event_interface_;
  std::map<DWORD, ComPtr<IDispatch>> sinks_;
  DWORD last_cookie_ = 0;
};

}  // namespace rowlark::automation
