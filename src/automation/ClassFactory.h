// Makes the objects of a library's one class.
#pragma once

#include <functional>
#include <utility>

#include <unknwn.h>

#include "automation/ComPtr.h"
#include "automation/Counted.h"

namespace rowlark::automation {

class ClassFactory final : public Counted<IClassFactory> {
 public:
  // Hands out an interface of a new object, or sets it to null and fails. Throws nothing.
  using Create = std::function<HRESULT(REFIID iid, void** object)>;

  // The factory keeps the library loaded, as clients do by `LockServer`: `locks` counts both.
  ClassFactory(volatile LONG& locks, Create create) : locks_(locks), create_(std::move(create)) {
    InterlockedIncrement(&locks_);
  }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return outer != nullptr ? CLASS_E_NOAGGREGATION : create_(iid, object);
  }
  STDMETHODIMP LockServer(BOOL lock) noexcept override {
    if (lock) {
      InterlockedIncrement(&locks_);
    } else {
      InterlockedDecrement(&locks_);
    }
    return S_OK;
  }

 private:
  ~ClassFactory() override { InterlockedDecrement(&locks_); }

  volatile LONG& locks_;
  const Create create_;
};

// What `DllGetClassObject` answers for the class.
inline HRESULT GetClassFactory(volatile LONG& locks, ClassFactory::Create create, REFIID iid,
                               void** object) noexcept {
  try {
    return ComPtr<IClassFactory>(new ClassFactory(locks, std::move(create)))->QueryInterface(iid, object);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace rowlark::automation
