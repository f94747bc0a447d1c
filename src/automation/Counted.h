// What every small COM object does: counts its references, ends with the last, and knows its interfaces.
#pragma once

#include <unknwn.h>

namespace rowlark::automation {

// An object of one interface, made with new and held by a ComPtr.
template <class Interface>
class Counted : public Interface {
 public:
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) noexcept override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (iid != IID_IUnknown && iid != __uuidof(Interface) && iid != also_) return E_NOINTERFACE;
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() noexcept override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  // `also` is one more name of the interface: what it derives from, or that of the events it hears.
  explicit Counted(const IID& also = IID_IUnknown) : also_(also) {}
  virtual ~Counted() = default;

 private:
  const IID also_;
  ULONG references_ = 0;
};

}  // namespace rowlark::automation
