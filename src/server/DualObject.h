// The outside of a core object: a dual interface whose late-bound half is made from the type library.
#pragma once

#include <memory>
#include <string_view>
#include <utility>

#include <ocidl.h>

#include "automation/Events.h"
#include "automation/Variant.h"
#include "server/Arguments.h"
#include "server/Guard.h"
#include "server/Module.h"
#include "util/AutomationError.h"
#include "vtrlk_runtime_h.h"

namespace rowlark::server {

// What only our own objects answer, so that a client can not slip in one of its own making.
inline constexpr IID kOwnObject = {
    0x01cbd14e, 0x9a08, 0x4d24, {0x9c, 0x07, 0x5f, 0xa5, 0x8d, 0x2c, 0x3b, 0x8b}};
struct IOwnObject : IUnknown {
  virtual const CLSID& ClassId() const noexcept = 0;
  virtual std::shared_ptr<void> Core() const noexcept = 0;
};

inline constexpr VARIANT_BOOL Flag(bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; }

// `Interface` is the class's dual interface, `Class` its coclass, `Core_` what it stands for.
template <class Interface, class Class, class Core_>
class DualObject : public Interface, public ISupportErrorInfo, public IProvideClassInfo2, public IOwnObject {
 public:
  DualObject(const DualObject&) = delete;
  DualObject& operator=(const DualObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == __uuidof(Interface)) {
      *object = static_cast<Interface*>(this);
    } else if (iid == IID_ISupportErrorInfo) {
      *object = static_cast<ISupportErrorInfo*>(this);
    } else if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2) {
      *object = static_cast<IProvideClassInfo2*>(this);
    } else if (iid == kOwnObject) {
      *object = static_cast<IOwnObject*>(this);
    } else if (events_ && iid == IID_IConnectionPointContainer) {
      *object = static_cast<IConnectionPointContainer*>(events_.get());
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() noexcept override {
    const ULONG left = --references_;
    if (left == 0) {
      if (module_.Keep(static_cast<Interface*>(this))) {
        LetGo();
        return 0;
      }
      Module& module = module_;
      // Sinks that end with the object may count it once more, or ask for its like.
      module.Forget(core_.get(), static_cast<Interface*>(this));
      references_ = 1;
      delete this;
      module.ObjectGone();
    }
    return left;
  }

  STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) noexcept override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    *info = automation::ComPtr<ITypeInfo>(type_info_).Detach();
    return *info != nullptr ? S_OK : TYPE_E_CANTLOADLIBRARY;
  }
  STDMETHODIMP GetIDsOfNames(REFIID iid, OLECHAR** names, UINT count, LCID, DISPID* ids) noexcept override {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || ids == nullptr) return E_POINTER;
    return type_info_ ? DispGetIDsOfNames(type_info_.get(), names, count, ids) : TYPE_E_CANTLOADLIBRARY;
  }
  STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* wrong_argument) noexcept override {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (arguments == nullptr) return E_POINTER;
    if (!type_info_) return TYPE_E_CANTLOADLIBRARY;
    OwnArguments own;
    if (const HRESULT copied = own.Copy(*arguments); FAILED(copied)) return copied;
    return DispInvoke(static_cast<Interface*>(this), type_info_.get(), id, flags, &own.Get(), result,
                      exception, wrong_argument);
  }

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
    return iid == __uuidof(Interface) ? S_OK : S_FALSE;
  }

  STDMETHODIMP GetClassInfo(ITypeInfo** info) noexcept override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    const HRESULT result = Do([&] { *info = module_.TypeInfo(__uuidof(Class)).Detach(); });
    return SUCCEEDED(result) && *info == nullptr ? TYPE_E_CANTLOADLIBRARY : result;
  }
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) noexcept override {
    if (guid == nullptr) return E_POINTER;
    *guid = GUID_NULL;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID || !events_) return E_INVALIDARG;
    *guid = events_->EventInterface();
    return S_OK;
  }

  const CLSID& ClassId() const noexcept override { return __uuidof(Class); }
  std::shared_ptr<void> Core() const noexcept override { return core_; }

 protected:
  // `name` is the class's, for the source of errors.
  DualObject(Module& module, std::u16string_view name, std::shared_ptr<Core_> core)
      : module_(module),
        name_(name),
        core_(std::move(core)),
        type_info_(module.TypeInfo(__uuidof(Interface))) {
    module_.Remember(core_.get(), static_cast<Interface*>(this));
    module_.ObjectMade();
  }
  virtual ~DualObject() {
    if (core_) module_.Forget(core_.get(), static_cast<Interface*>(this));
  }

  // Its last client has let go of the object, which lives on for a while.
  virtual void LetGo() noexcept {}

  // Runs a member, the function that calls this. The object lives until it has ended, whatever the client
  // releases meanwhile.
  template <class Action>
  HRESULT Do(Action action, const SourceLocation& member = SourceLocation::Current()) noexcept {
    const automation::ComPtr<IUnknown> keep(static_cast<Interface*>(this));
    return Guard({__uuidof(Interface), name_, member}, action);
  }
  // The same for a member with a result, which is empty in case of an error.
  template <class Result, class Action>
  HRESULT Get(Result* result, Action action,
              const SourceLocation& member = SourceLocation::Current()) noexcept {
    if (result == nullptr) return E_POINTER;
    *result = Result{};
    return Do([&] { *result = action(); }, member);
  }

  Module& module_;
  const std::u16string_view name_;
  std::shared_ptr<Core_> core_;
  std::unique_ptr<automation::EventSource> events_;

 private:
  automation::ComPtr<ITypeInfo> type_info_;
  ULONG references_ = 0;
};

// The object that stands for a core object, with a reference for the caller; null for none.
template <class Outside, class Interface, class Core>
Interface* Wrap(Module& module, const std::shared_ptr<Core>& core) {
  if (!core) return nullptr;
  auto* object = static_cast<Interface*>(module.Find(core.get()));
  if (object == nullptr) object = new Outside(module, core);
  object->AddRef();
  return object;
}

// The core object behind one of ours. Raises a type mismatch for anything else.
template <class Class, class Core>
std::shared_ptr<Core> Unwrap(IUnknown* object) {
  automation::ComPtr<IOwnObject> own;
  if (object != nullptr) object->QueryInterface(kOwnObject, reinterpret_cast<void**>(own.Put()));
  if (!own || own->ClassId() != __uuidof(Class)) {
    throw AutomationError::TypeMismatch({});
  }
  return std::static_pointer_cast<Core>(own->Core());
}

}  // namespace rowlark::server
