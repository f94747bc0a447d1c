// An object that is called by numbers known beforehand, as listeners are.
#pragma once

#include <oaidl.h>

#include "automation/Counted.h"

namespace rowlark::automation {

// It has no type information, and tells nobody the names of its members.
class NamelessDispatch : public Counted<IDispatch> {
 public:
  using Counted::Counted;

  STDMETHODIMP GetTypeInfoCount(UINT* count) noexcept override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) noexcept override {
    if (info != nullptr) *info = nullptr;
    return DISP_E_BADINDEX;
  }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) noexcept override {
    return DISP_E_UNKNOWNNAME;
  }
};

}  // namespace rowlark::automation
