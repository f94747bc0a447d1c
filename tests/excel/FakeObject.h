// An automation object whose members are functions of the test.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <dispex.h>

#include "automation/Counted.h"
#include "automation/Variant.h"
#include "util/Utf.h"

namespace rowlark::testing {

class FakeObject final : public automation::Counted<IDispatchEx> {
 public:
  struct Call {
    WORD flags;
    std::vector<VARIANT> arguments;  // in their order
    VARIANT& result;
    EXCEPINFO& exception;
  };
  using Function = std::function<HRESULT(Call&)>;

  FakeObject() : Counted(IID_IDispatch) {}

  void Method(const std::string& name, Function function) {
    functions_.emplace_back(name, std::move(function));
  }
  // A property that gives the value.
  void Value(const std::string& name, automation::Variant value) {
    Method(name, [value = std::move(value)](Call& call) {
      return VariantCopy(&call.result, const_cast<automation::Variant*>(&value));
    });
  }

  HRESULT NamesFail = S_OK;  // GetIDsOfNames fails with
  int LookUps = 0;           // calls of GetIDsOfNames and GetDispID
  LCID Locale = 0;           // of the last call

  STDMETHODIMP GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID locale, DISPID* ids) noexcept override {
    ++LookUps;
    Locale = locale;
    return FAILED(NamesFail) ? NamesFail : IdOf(names[0], *ids);
  }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                      EXCEPINFO* exception, UINT*) noexcept override {
    Locale = locale;
    automation::Variant ignored;
    Call call{flags,
              {parameters->rgvarg, parameters->rgvarg + parameters->cArgs},
              result != nullptr ? *result : ignored,
              *exception};
    std::reverse(call.arguments.begin(), call.arguments.end());
    return functions_.at(static_cast<std::size_t>(id)).second(call);
  }

  STDMETHODIMP GetDispID(BSTR name, DWORD, DISPID* id) noexcept override {
    ++LookUps;
    return IdOf(name, *id);
  }
  STDMETHODIMP InvokeEx(DISPID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        IServiceProvider*) noexcept override {
    return E_NOTIMPL;
  }
  STDMETHODIMP DeleteMemberByName(BSTR, DWORD) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP DeleteMemberByDispID(DISPID) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP GetMemberProperties(DISPID, DWORD, DWORD*) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP GetMemberName(DISPID, BSTR*) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP GetNextDispID(DWORD, DISPID, DISPID*) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP GetNameSpaceParent(IUnknown**) noexcept override { return E_NOTIMPL; }

 private:
  HRESULT IdOf(const wchar_t* wide, DISPID& id) const {
    const auto name = ToUtf8(windows::AsUtf16(wide));
    for (std::size_t i = 0; i < functions_.size(); ++i) {
      if (functions_[i].first != name) continue;
      id = static_cast<DISPID>(i);
      return S_OK;
    }
    return DISP_E_UNKNOWNNAME;
  }

  std::vector<std::pair<std::string, Function>> functions_;
};

}  // namespace rowlark::testing
