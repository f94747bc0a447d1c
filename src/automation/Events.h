// The outgoing interface of an object and the sinks that listen to it.
#pragma once

#include <map>

#include <ocidl.h>

#include "automation/ComPtr.h"
#include "util/Trace.h"

namespace rowlark::automation {

// Sinks answer to the name of the event interface, or at least to IDispatch; strict sources take the first
// kind alone.
enum class Sinks { Named, AnyDispatch };

// The container of an object's one connection point, a part of the object that owns it: it has the owner's
// identity. The point has one of its own, as proxies demand, and its references count for the owner.
class EventSource final : public IConnectionPointContainer {
 public:
  // The trace, which may be null, is told of sinks that fail.
  EventSource(IUnknown& owner, const IID& event_interface, Trace* trace, Sinks accepted = Sinks::AnyDispatch)
      : owner_(owner), event_interface_(event_interface), trace_(trace), accepted_(accepted) {}
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;

  const IID& EventInterface() const { return event_interface_; }

  // Calls the event on every sink; the `count` arguments stand in automation's order, the last one first. A
  // sink that fails is the sink's affair, also one that does not know the event. Sinks may connect and
  // disconnect meanwhile, themselves and others: a sink that has been disconnected hears nothing more.
  void Fire(DISPID event, VARIANT* arguments, UINT count) noexcept;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
    return owner_.QueryInterface(iid, object);
  }
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return owner_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() noexcept override { return owner_.Release(); }

  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) noexcept override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) noexcept override;

 private:
  class Point final : public IConnectionPoint {
   public:
    explicit Point(EventSource& source) : source_(source) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override;
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return source_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() noexcept override { return source_.Release(); }

    STDMETHODIMP GetConnectionInterface(IID* iid) noexcept override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) noexcept override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) noexcept override;
    STDMETHODIMP Unadvise(DWORD cookie) noexcept override;
    STDMETHODIMP EnumConnections(IEnumConnections** connections) noexcept override;

   private:
    EventSource& source_;
  };

  IUnknown& owner_;
  const IID event_interface_;
  Trace* const trace_;
  const Sinks accepted_;
  Point point_{*this};
  std::map<DWORD, ComPtr<IDispatch>> sinks_;
  DWORD last_cookie_ = 0;
};

}  // namespace rowlark::automation
