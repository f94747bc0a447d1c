// The library's file, loaded as a client loads it.
#pragma once

#include <gtest/gtest.h>

#include <unknwn.h>

#include "automation/ComPtr.h"
#include "util/windows/Handles.h"
#include "vtrlk_runtime_h.h"

namespace rowlark::testing {

class RuntimeLibrary {
 public:
  explicit RuntimeLibrary(const char* file = ROWLARK_RUNTIME) : module_(LoadLibraryA(file)) {}

  HMODULE Module() const { return *module_; }

  template <class Function>
  Function Entry(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(*module_, name)));
  }
  HRESULT Create(automation::ComPtr<_clsVTRLKRuntime>& runtime) const {
    automation::ComPtr<IClassFactory> factory;
    EXPECT_EQ(Entry<decltype(&DllGetClassObject)>("DllGetClassObject")(
                  __uuidof(::clsVTRLKRuntime), IID_IClassFactory, reinterpret_cast<void**>(factory.Put())),
              S_OK);
    return factory->CreateInstance(nullptr, __uuidof(_clsVTRLKRuntime),
                                   reinterpret_cast<void**>(runtime.Put()));
  }
  // S_OK or S_FALSE.
  HRESULT CanUnload() const { return Entry<decltype(&DllCanUnloadNow)>("DllCanUnloadNow")(); }
  void Unload() { module_.reset(); }

 private:
  windows::LoadedLibrary module_;
};

}  // namespace rowlark::testing
