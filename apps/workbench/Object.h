// The one automation object: late-bound, described by the table of its class.
#pragma once

#include <memory>
#include <utility>

#include <ocidl.h>

#include "Members.h"
#include "Session.h"
#include "automation/ComPtr.h"
#include "automation/Events.h"
#include "automation/NamelessDispatch.h"
#include "util/Event.h"
#include "util/Ref.h"

namespace rowlark::workbench {

// Answered by our own objects alone, with themselves.
inline constexpr IID kOwnObject = {
    0x6e0b7f52, 0x3f8c, 0x4b1e, {0x9a, 0x55, 0x1d, 0x0c, 0x7a, 0x62, 0xe4, 0x93}};

class Object final : public automation::NamelessDispatch {
 public:
  Object(Session& session, const Class& type, Ref<RefCounted> core)
      : session_(&session), type_(type), core_(std::move(core)) {}

  Session& Context() const { return *session_; }
  const Class& Type() const { return type_; }
  template <class T>
  T& Core() const {
    return static_cast<T&>(*core_);
  }

  // For Class::listen.
  void Raise(std::unique_ptr<automation::EventSource> events, Connection connection) {
    events_ = std::move(events);
    connection_ = std::move(connection);
  }
  automation::EventSource& Events() const { return *events_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override;

  STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                             DISPID* ids) noexcept override;
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* exception, UINT* bad_argument) noexcept override;

 private:
  ~Object() override;

  const Member* Find(DISPID id) const;
  // Runs a member without counting it. Throws Failure and host::Error.
  void Run(const Member& member, WORD flags, const DISPPARAMS& parameters, Call& call);
  void RunEnumerator(Call& call);

  Ref<Session> session_;
  const Class& type_;
  Ref<RefCounted> core_;
  std::unique_ptr<automation::EventSource> events_;
  Connection connection_;  // to the core's event
};

}  // namespace rowlark::workbench
