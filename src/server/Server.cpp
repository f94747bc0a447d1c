// The entry points of the library.
#include <new>

#include "server/Objects.h"
#include "server/Registration.h"

namespace rowlark::server {
namespace {

// COM asks a library, not an object: this is the one thing that can not be handed down.
Module* module = nullptr;

class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(Module& of) : module_(of) { module_.Lock(); }
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != IID_IClassFactory) return E_NOINTERFACE;
    *object = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() noexcept override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    HRESULT found = E_FAIL;
    const HRESULT made = Guard(__uuidof(_clsVTRLKRuntime), u"clsVTRLKRuntime", [&] {
      const automation::ComPtr<_clsVTRLKRuntime> runtime(new RuntimeObject(module_));
      found = runtime->QueryInterface(iid, object);
    });
    return FAILED(made) ? made : found;
  }
  STDMETHODIMP LockServer(BOOL lock) noexcept override {
    if (lock) {
      module_.Lock();
    } else {
      module_.Unlock();
    }
    return S_OK;
  }

 private:
  ~ClassFactory() { module_.Unlock(); }

  Module& module_;
  ULONG references_ = 0;
};

}  // namespace
}  // namespace rowlark::server

using namespace rowlark::server;  // NOLINT(google-build-using-namespace): what follows is C

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(instance);
    module = new (std::nothrow) Module(instance);
    return module != nullptr;
  }
  if (reason == DLL_PROCESS_DETACH) {
    // At the end of the process nothing that objects refer to is sure to be there any more.
    if (module->CanUnload()) delete module;
    module = nullptr;
  }
  return TRUE;
}

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (class_id != __uuidof(::clsVTRLKRuntime)) return CLASS_E_CLASSNOTAVAILABLE;
  const rowlark::automation::ComPtr<IClassFactory> factory(new (std::nothrow) ClassFactory(*module));
  return factory ? factory->QueryInterface(iid, object) : E_OUTOFMEMORY;
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return module->CanUnload() ? S_OK : S_FALSE; }

extern "C" HRESULT WINAPI DllRegisterServer() { return Register(*module, Scope::Machine); }

extern "C" HRESULT WINAPI DllUnregisterServer() { return Unregister(*module, Scope::Machine); }

// regsvr32 /n /i:user
extern "C" HRESULT WINAPI DllInstall(BOOL install, const wchar_t* command) {
  const Scope scope = command != nullptr && _wcsicmp(command, L"user") == 0 ? Scope::User : Scope::Machine;
  return install ? Register(*module, scope) : Unregister(*module, scope);
}
