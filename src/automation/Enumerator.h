// COM's enumerators over a copy of what there was when they were asked for.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include <ocidl.h>

#include "automation/ComPtr.h"
#include "automation/Counted.h"

namespace rowlark::automation {

// `Traits` names the element as clients get it, and how one is copied out of what is held.
template <class Interface, class Traits>
class Enumerator final : public Counted<Interface> {
 public:
  using Held = typename Traits::Held;
  using Element = typename Traits::Element;

  // `owner` is what the elements are of; it lives, and with it the library, while they are enumerated.
  Enumerator(std::vector<Held> elements, ComPtr<IUnknown> owner)
      : owner_(std::move(owner)), elements_(std::move(elements)) {}

  STDMETHODIMP Next(ULONG count, Element* elements, ULONG* fetched) noexcept override {
    if (elements == nullptr || (fetched == nullptr && count != 1)) return E_POINTER;
    ULONG taken = 0;
    for (; taken < count && next_ < elements_.size(); ++taken)
      Traits::Copy(elements_[next_++], elements[taken]);
    if (fetched != nullptr) *fetched = taken;
    return taken == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) noexcept override {
    const std::size_t left = elements_.size() - next_;
    next_ += std::min<std::size_t>(count, left);
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() noexcept override {
    next_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Interface** copy) noexcept override {
    if (copy == nullptr) return E_POINTER;
    *copy = nullptr;
    try {
      auto* made = new Enumerator(elements_, owner_);
      made->next_ = next_;
      made->AddRef();
      *copy = made;
      return S_OK;
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

 private:
  const ComPtr<IUnknown> owner_;
  std::vector<Held> elements_;
  std::size_t next_ = 0;
};

}  // namespace rowlark::automation
