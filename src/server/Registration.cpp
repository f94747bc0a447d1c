#include "server/Registration.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "automation/TypeAttributes.h"
#include "automation/Variant.h"
#include "util/windows/Handles.h"
#include "vtrlk_runtime_h.h"

namespace rowlark::server {
namespace {

using automation::Bstr;
using automation::ComPtr;
using windows::AsWide;

constexpr std::u16string_view kProgId = u"vtrlk_runtime.clsVTRLKRuntime";
constexpr std::u16string_view kVersion = u"1.0";
// vtrlk_runtime.idl
constexpr GUID kTypeLibrary = {0xcbee3ab9, 0x089d, 0x4353, {0xb4, 0x90, 0x64, 0xe1, 0x5a, 0xab, 0xa2, 0xdc}};
// The system's marshalling of what a type library describes: dual interfaces, and events.
constexpr std::u16string_view kDualProxy = u"{00020424-0000-0000-C000-000000000046}";
constexpr std::u16string_view kEventsProxy = u"{00020420-0000-0000-C000-000000000046}";

std::u16string Braced(const GUID& guid) {
  wchar_t text[40] = {};
  StringFromGUID2(guid, text, 40);
  return windows::AsUtf16(text);
}

std::u16string ClassKey() { return u"CLSID\\" + Braced(__uuidof(::clsVTRLKRuntime)); }

std::u16string TypeLibraryKey() { return u"TypeLib\\" + Braced(kTypeLibrary); }

// Below the key of a version stand the languages (0: any) and below them the systems.
std::u16string TypeLibraryFilesKey() { return TypeLibraryKey() + u"\\" + std::u16string(kVersion) + u"\\0"; }

std::u16string TypeLibraryFileKey() {
  return TypeLibraryFilesKey() + (sizeof(void*) == 8 ? u"\\win64" : u"\\win32");
}

struct Interface {
  std::u16string key;
  std::u16string name;
  bool dual;
};

// All interfaces that the type library describes.
std::vector<Interface> Interfaces(ITypeLib& library) {
  std::vector<Interface> interfaces;
  for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> type;
    Bstr name;
    if (FAILED(library.GetTypeInfo(i, type.Put()))) continue;
    const auto attributes = automation::AttributesOf(*type);
    if (!attributes) continue;
    if (attributes->typekind == TKIND_DISPATCH) {
      library.GetDocumentation(static_cast<INT>(i), name.Put(), nullptr, nullptr, nullptr);
      interfaces.push_back({u"Interface\\" + Braced(attributes->guid), std::u16string(name.View()),
                            (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0});
    }
  }
  return interfaces;
}

struct Refused {
  HRESULT result;
};

void Check(LSTATUS status) {
  if (status != ERROR_SUCCESS) throw Refused{HRESULT_FROM_WIN32(status)};
}

constexpr wchar_t kClassesPath[] = L"Software\\Classes";

HKEY RootOf(Scope scope) { return scope == Scope::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

// The key below which classes are registered. Everything throws Refused.
class Classes {
 public:
  explicit Classes(Scope scope) : root_(RootOf(scope)) {
    Check(RegCreateKeyExW(root_, kClassesPath, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key_.Put(), nullptr));
  }

  void Set(const std::u16string& path, const wchar_t* name, std::u16string_view text) const {
    windows::RegistryKey key;
    Check(RegCreateKeyExW(key_.get(), AsWide(path.c_str()), 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Put(),
                          nullptr));
    const std::u16string value(text);
    Check(RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                         static_cast<DWORD>((value.size() + 1) * sizeof(char16_t))));
  }
  void Remove(const std::u16string& path) const {
    const LSTATUS status = RegDeleteTreeW(key_.get(), AsWide(path.c_str()));
    if (status != ERROR_FILE_NOT_FOUND) Check(status);
  }
  // Whether the library of the other bitness has written the key. Programs of either bitness have classes and
  // interfaces of their own, while names of classes and type libraries are common to both.
  bool HasInOtherView(const std::u16string& path) const {
    constexpr REGSAM kOther = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    windows::RegistryKey key;
    const std::wstring full = std::wstring(kClassesPath) + L'\\' + AsWide(path.c_str());
    return RegOpenKeyExW(root_, full.c_str(), 0, KEY_READ | kOther, key.Put()) == ERROR_SUCCESS;
  }
  bool HasChildren(const std::u16string& path) const {
    windows::RegistryKey key;
    DWORD children = 0;
    if (RegOpenKeyExW(key_.get(), AsWide(path.c_str()), 0, KEY_READ, key.Put()) == ERROR_SUCCESS) {
      RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &children, nullptr, nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr);
    }
    return children > 0;
  }

 private:
  HKEY root_;  // the system's own, which is never closed
  windows::RegistryKey key_;
};

// Four numbers of 16 bits, the first one highest; 0 where the file tells none.
uint64_t VersionOf(HMODULE library) {
  // Before the fixed part stand three lengths and types and "VS_VERSION_INFO", filled up to a multiple of 4.
  constexpr DWORD kFixedPart = 40;
  VS_FIXEDFILEINFO info{};
  const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(VS_VERSION_INFO), MAKEINTRESOURCEW(16));
  if (found == nullptr || SizeofResource(library, found) < kFixedPart + sizeof info) return 0;
  const auto* resource = static_cast<const BYTE*>(LockResource(LoadResource(library, found)));
  std::memcpy(&info, resource + kFixedPart, sizeof info);
  if (info.dwSignature != VS_FFI_SIGNATURE) return 0;
  return uint64_t{info.dwFileVersionMS} << 32 | info.dwFileVersionLS;
}

// Of the library that the class is registered with; 0 also where there is none.
uint64_t RegisteredVersion(Scope scope) {
  const std::wstring key =
      std::wstring(kClassesPath) + L'\\' + AsWide(ClassKey().c_str()) + L"\\InprocServer32";
  std::wstring file(MAX_PATH, L'\0');
  LSTATUS status = ERROR_MORE_DATA;
  while (status == ERROR_MORE_DATA) {
    file.resize(file.size() * 2);
    auto size = static_cast<DWORD>(file.size() * sizeof(wchar_t));
    status = RegGetValueW(RootOf(scope), key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, file.data(), &size);
  }
  if (status != ERROR_SUCCESS) return 0;
  // As data: nothing of it runs.
  const windows::LoadedLibrary library(
      LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
  return library ? VersionOf(*library) : 0;
}

bool IsOlderThanRegistered(const Module& module, Scope scope) {
  return VersionOf(module.Instance()) < RegisteredVersion(scope);
}

ComPtr<ITypeLib> Load(const std::u16string& file) {
  ComPtr<ITypeLib> library;
  const HRESULT result = LoadTypeLibEx(AsWide(file.c_str()), REGKIND_NONE, library.Put());
  if (FAILED(result)) throw Refused{result};
  return library;
}

void WriteClass(const Classes& classes, const std::u16string& file) {
  const auto class_key = ClassKey();
  classes.Set(class_key, nullptr, kProgId);
  classes.Set(class_key + u"\\InprocServer32", nullptr, file);
  classes.Set(class_key + u"\\InprocServer32", L"ThreadingModel", u"Apartment");
  classes.Set(class_key + u"\\ProgID", nullptr, kProgId);
  classes.Set(class_key + u"\\TypeLib", nullptr, Braced(kTypeLibrary));
  classes.Set(class_key + u"\\Version", nullptr, kVersion);
  classes.Set(class_key + u"\\Programmable", nullptr, u"");
  classes.Set(std::u16string(kProgId), nullptr, kProgId);
  classes.Set(std::u16string(kProgId) + u"\\Clsid", nullptr, Braced(__uuidof(::clsVTRLKRuntime)));
}

// What RegisterTypeLib writes, which knows no single user on every system.
void WriteTypeLibrary(const Classes& classes, const std::u16string& file) {
  const auto library = Load(file);
  Bstr description;
  library->GetDocumentation(MEMBERID_NIL, nullptr, description.Put(), nullptr, nullptr);
  const auto version_key = TypeLibraryKey() + u"\\" + std::u16string(kVersion);
  classes.Set(version_key, nullptr, description.View());
  classes.Set(version_key + u"\\FLAGS", nullptr, u"0");
  classes.Set(TypeLibraryFileKey(), nullptr, file);
  for (const auto& [key, name, dual] : Interfaces(*library)) {
    classes.Set(key, nullptr, name);
    classes.Set(key + u"\\ProxyStubClsid32", nullptr, dual ? kDualProxy : kEventsProxy);
    classes.Set(key + u"\\TypeLib", nullptr, Braced(kTypeLibrary));
    classes.Set(key + u"\\TypeLib", L"Version", kVersion);
  }
}

void RemoveAll(const Classes& classes, const std::u16string& file) {
  classes.Remove(ClassKey());
  if (!classes.HasInOtherView(ClassKey())) classes.Remove(std::u16string(kProgId));
  for (const auto& interface_entry : Interfaces(*Load(file))) classes.Remove(interface_entry.key);
  // The library of the other bitness shares the keys above the file's.
  classes.Remove(TypeLibraryFileKey());
  if (!classes.HasChildren(TypeLibraryFilesKey())) classes.Remove(TypeLibraryKey());
}

template <class Action>
HRESULT Outcome(Action action) noexcept {
  try {
    action();
    return S_OK;
  } catch (const Refused& refused) {
    return refused.result;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace

HRESULT Register(Module& module, Scope scope) noexcept {
  return Outcome([&] {
    if (IsOlderThanRegistered(module, scope) || IsOlderThanRegistered(module, Scope::Machine)) {
      throw Refused{HRESULT_FROM_WIN32(ERROR_PRODUCT_VERSION)};
    }
    const HRESULT written = Outcome([&] {
      const Classes classes(scope);
      WriteClass(classes, module.FileName());
      WriteTypeLibrary(classes, module.FileName());
    });
    if (FAILED(written)) {
      Unregister(module, scope);
      throw Refused{written};
    }
  });
}

HRESULT Unregister(Module& module, Scope scope) noexcept {
  return Outcome([&] {
    if (!IsOlderThanRegistered(module, scope)) RemoveAll(Classes(scope), module.FileName());
  });
}

}  // namespace rowlark::server
