// The library that makes the sheet model creatable by name, as Excel is: vtrlk_workbench.Application.
#include <memory>
#include <new>
#include <string>

#include <windows.h>

#include <olectl.h>

#include "AutomationHost.h"
#include "automation/ClassFactory.h"

namespace rowlark::workbench {
namespace {

constexpr wchar_t kClassKey[] = L"Software\\Classes\\CLSID\\{3D8F6C1A-52B7-4E0D-8B6E-2794D15C0FA3}";
constexpr wchar_t kProgIdKey[] = L"Software\\Classes\\vtrlk_workbench.Application";

// What COM forces to be one per library.
struct Module {
  HINSTANCE instance = nullptr;
  volatile LONG locks = 0;  // by LockServer, by factories, and one for each application that is in use
} module;

std::shared_ptr<void> Lock() {
  InterlockedIncrement(&module.locks);
  return {nullptr, [](void*) { InterlockedDecrement(&module.locks); }};
}

HRESULT Create(REFIID iid, void** object) noexcept {
  try {
    return ExposeApplication(MakeRef<standalone::Application>(), Lock())->QueryInterface(iid, object);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

bool SetText(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, text.c_str(),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

HRESULT Unregister() {
  for (const auto* key : {kClassKey, kProgIdKey}) {
    const LSTATUS status = RegDeleteTreeW(HKEY_LOCAL_MACHINE, key);
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) return SELFREG_E_CLASS;
  }
  return S_OK;
}

HRESULT Register() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(module.instance, path, MAX_PATH);
  if (length == 0 || length == MAX_PATH) return SELFREG_E_CLASS;
  const std::wstring class_key = kClassKey;
  const bool done =
      SetText(class_key, nullptr, L"Rowlark Workbench Application") &&
      SetText(class_key + L"\\InprocServer32", nullptr, path) &&
      SetText(class_key + L"\\InprocServer32", L"ThreadingModel", L"Apartment") &&
      SetText(class_key + L"\\ProgID", nullptr, kApplicationProgId) &&
      SetText(std::wstring(kProgIdKey) + L"\\CLSID", nullptr, class_key.substr(class_key.find(L'{')));
  if (done) return S_OK;
  Unregister();
  return SELFREG_E_CLASS;
}

}  // namespace
}  // namespace rowlark::workbench

using namespace rowlark::workbench;  // NOLINT(google-build-using-namespace): what follows is C

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) {
    DisableThreadLibraryCalls(instance);
    module.instance = instance;
  }
  return TRUE;
}

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID class_id, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (class_id != kApplicationClass) return CLASS_E_CLASSNOTAVAILABLE;
  return rowlark::automation::GetClassFactory(module.locks, Create, iid, object);
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return module.locks == 0 ? S_OK : S_FALSE; }

extern "C" HRESULT WINAPI DllRegisterServer() {
  try {
    return Register();
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

extern "C" HRESULT WINAPI DllUnregisterServer() { return Unregister(); }
