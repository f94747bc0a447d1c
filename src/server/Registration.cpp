#include "server/Registration.h"

#include <string>

#include "automation/Variant.h"
#include "vtrlk_runtime_h.h"

// In oleaut32 since Windows Vista, but missing from the headers.
extern "C" HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* help_folder);
extern "C" HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID guid, WORD major, WORD minor, LCID locale,
                                                   SYSKIND system);

namespace rowlark::server {
namespace {

using automation::ComPtr;
using automation::Wide;

#ifdef _WIN64
constexpr SYSKIND kSystem = SYS_WIN64;
#else
constexpr SYSKIND kSystem = SYS_WIN32;
#endif

constexpr std::u16string_view kProgId = u"vtrlk_runtime.clsVTRLKRuntime";
constexpr std::u16string_view kVersion = u"1.0";
// vtrlk_runtime.idl
constexpr GUID kTypeLibrary = {0xcbee3ab9, 0x089d, 0x4353, {0xb4, 0x90, 0x64, 0xe1, 0x5a, 0xab, 0xa2, 0xdc}};

class Key {
 public:
  Key() = default;
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  HKEY get() const { return key_; }
  HKEY* Put() { return &key_; }

 private:
  HKEY key_ = nullptr;
};

std::u16string Braced(const GUID& guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return automation::Narrow(text);
}

std::u16string ClassKey() { return u"CLSID\\" + Braced(__uuidof(::clsVTRLKRuntime)); }

// Where classes are registered.
HRESULT OpenClasses(Scope scope, Key& classes) {
  const HKEY root = scope == Scope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
  return HRESULT_FROM_WIN32(RegCreateKeyExW(root, L"Software\\Classes", 0, nullptr, 0, KEY_ALL_ACCESS,
                                            nullptr, classes.Put(), nullptr));
}

HRESULT SetText(HKEY classes, const std::u16string& path, const wchar_t* name, std::u16string_view text) {
  Key key;
  LSTATUS status =
      RegCreateKeyExW(classes, Wide(path.c_str()), 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Put(), nullptr);
  if (status == ERROR_SUCCESS) {
    const std::u16string value(text);
    status = RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                            static_cast<DWORD>((value.size() + 1) * sizeof(char16_t)));
  }
  return HRESULT_FROM_WIN32(status);
}

HRESULT RegisterTypeLibrary(Module& module, Scope scope) {
  auto path = module.FileName();
  ComPtr<ITypeLib> library;
  const HRESULT loaded = LoadTypeLibEx(Wide(path.c_str()), REGKIND_NONE, library.Put());
  if (FAILED(loaded)) return loaded;
  auto* text = reinterpret_cast<wchar_t*>(path.data());
  return scope == Scope::User ? RegisterTypeLibForUser(library.get(), text, nullptr)
                              : RegisterTypeLib(library.get(), text, nullptr);
}

HRESULT UnregisterTypeLibrary(Scope scope) {
  const HRESULT result = scope == Scope::User
                             ? UnRegisterTypeLibForUser(kTypeLibrary, 1, 0, LOCALE_NEUTRAL, kSystem)
                             : UnRegisterTypeLib(kTypeLibrary, 1, 0, LOCALE_NEUTRAL, kSystem);
  const bool missing = result == TYPE_E_REGISTRYACCESS || result == TYPE_E_LIBNOTREGISTERED ||
                       result == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
  return missing ? S_OK : result;
}

HRESULT WriteAll(Module& module, Scope scope) {
  Key classes;
  HRESULT result = OpenClasses(scope, classes);
  const auto set = [&](const std::u16string& path, const wchar_t* name, std::u16string_view text) {
    if (SUCCEEDED(result)) result = SetText(classes.get(), path, name, text);
  };
  const auto class_key = ClassKey();
  set(class_key, nullptr, kProgId);
  set(class_key + u"\\InprocServer32", nullptr, module.FileName());
  set(class_key + u"\\InprocServer32", L"ThreadingModel", u"Apartment");
  set(class_key + u"\\ProgID", nullptr, kProgId);
  set(class_key + u"\\TypeLib", nullptr, Braced(kTypeLibrary));
  set(class_key + u"\\Version", nullptr, kVersion);
  set(class_key + u"\\Programmable", nullptr, u"");
  set(std::u16string(kProgId), nullptr, kProgId);
  set(std::u16string(kProgId) + u"\\Clsid", nullptr, Braced(__uuidof(::clsVTRLKRuntime)));
  return SUCCEEDED(result) ? RegisterTypeLibrary(module, scope) : result;
}

HRESULT RemoveAll(Scope scope) {
  HRESULT result = UnregisterTypeLibrary(scope);
  Key classes;
  HRESULT opened = OpenClasses(scope, classes);
  if (FAILED(opened)) return opened;
  for (const auto& path : {ClassKey(), std::u16string(kProgId)}) {
    const LSTATUS status = RegDeleteTreeW(classes.get(), Wide(path.c_str()));
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) result = HRESULT_FROM_WIN32(status);
  }
  return result;
}

}  // namespace

HRESULT Register(Module& module, Scope scope) noexcept {
  HRESULT result = E_FAIL;
  try {
    result = WriteAll(module, scope);
  } catch (...) {
    result = E_OUTOFMEMORY;
  }
  if (FAILED(result)) Unregister(module, scope);
  return SUCCEEDED(result) ? S_OK : result;
}

HRESULT Unregister(Module&, Scope scope) noexcept {
  try {
    return RemoveAll(scope);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace rowlark::server
