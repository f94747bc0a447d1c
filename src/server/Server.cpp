// The entry points of the library.
#include <new>

#include "automation/ClassFactory.h"
#include "server/Objects.h"
#include "server/Registration.h"

namespace rowlark::server {
namespace {

// COM asks a library, not an object: this is the one thing that can not be handed down.
Module* module = nullptr;

HRESULT Create(REFIID iid, void** object) noexcept {
  HRESULT found = E_FAIL;
  const Entry entry{__uuidof(_clsVTRLKRuntime), u"clsVTRLKRuntime", SourceLocation::Current()};
  const HRESULT made = Guard(entry, [&] {
    const Module::Visit visit(*module);
    // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): the guard takes what is thrown
    const automation::ComPtr<_clsVTRLKRuntime> runtime(new RuntimeObject(*module));
    found = runtime->QueryInterface(iid, object);
  });
  return FAILED(made) ? made : found;
}

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
  return rowlark::automation::GetClassFactory(module->Locks(), Create, iid, object);
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return module->CanUnload() ? S_OK : S_FALSE; }

extern "C" HRESULT WINAPI DllRegisterServer() { return Register(*module, Scope::Machine); }

extern "C" HRESULT WINAPI DllUnregisterServer() { return Unregister(*module, Scope::Machine); }

// regsvr32 /n /i:user
extern "C" HRESULT WINAPI DllInstall(BOOL install, const wchar_t* command) {
  const Scope scope = command != nullptr && _wcsicmp(command, L"user") == 0 ? Scope::User : Scope::Machine;
  return install ? Register(*module, scope) : Unregister(*module, scope);
}
