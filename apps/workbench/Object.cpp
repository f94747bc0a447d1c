#include "Object.h"

#include <algorithm>
#include <new>
#include <vector>

#include "Call.h"
#include "automation/Enumerator.h"
#include "automation/ErrorValues.h"
#include "automation/Variant.h"
#include "host/Error.h"

namespace rowlark::workbench {
namespace {

using automation::ComPtr;
using automation::Variant;

struct VariantTraits {
  using Held = Variant;
  using Element = VARIANT;
  static void Copy(const Held& held, Element& element) {
    VariantInit(&element);
    VariantCopy(&element, const_cast<Variant*>(&held));
  }
};

// Names of members and arguments are ASCII.
bool SameName(std::u16string_view known, std::u16string_view asked) {
  const auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; };
  return std::ranges::equal(known, asked, {}, lower, lower);
}

BSTR Copy(std::u16string_view text) noexcept {
  return SysAllocStringLen(windows::AsWide(text.data()), static_cast<UINT>(text.size()));
}

// As a host that speaks another language than the system: it takes Visual Basic's locale, and those with
// which scripts ask, the user's by its number and none at all, but no placeholder for the user's.
bool Speaks(LCID locale) {
  return locale == automation::kLocale || locale == LOCALE_NEUTRAL || locale == GetUserDefaultLCID();
}

HRESULT Report(const host::Error& error, EXCEPINFO* exception) noexcept {
  if (error.Number() < 0) return error.Number();
  if (exception != nullptr) {
    exception->scode = automation::ErrorCode(error.Number());
    exception->bstrSource = Copy(u"Microsoft Excel");
    exception->bstrDescription = Copy(error.Description());
  }
  return DISP_E_EXCEPTION;
}

HRESULT Report(const Failure& failure, const DISPPARAMS& parameters, UINT* bad_argument) noexcept {
  if (bad_argument != nullptr && failure.argument != nullptr) {
    for (UINT i = 0; i < parameters.cArgs; ++i) {
      const VARIANT& given = parameters.rgvarg[i];
      const bool refers = given.vt == (VT_BYREF | VT_VARIANT) && given.pvarVal == failure.argument;
      if (&given == failure.argument || refers) *bad_argument = i;
    }
  }
  return failure.result;
}

}  // namespace

Object::~Object() {
  if (type_.identity) session_->Forget(core_.get());
}

HRESULT Object::QueryInterface(REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (iid == IID_IUnknown || iid == IID_IDispatch || iid == kOwnObject) {
    *object = this;
  } else if (iid == IID_IConnectionPointContainer && type_.listen != nullptr) {
    try {
      if (!events_) type_.listen(*this);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
    *object = static_cast<IConnectionPointContainer*>(events_.get());
  } else {
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

HRESULT Object::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) noexcept {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!Speaks(locale)) return TYPE_E_INVDATAREAD;
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  session_->CountNames();
  std::fill_n(ids, count, DISPID_UNKNOWN);
  const std::u16string_view name = windows::AsUtf16(names[0]);
  if (type_.count != nullptr && SameName(u"_NewEnum", name)) {
    ids[0] = DISPID_NEWENUM;
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }
  const auto member = std::ranges::find_if(type_.members, [&](const Member& known) {
    return known.since <= session_->Version() && SameName(known.signature.Name(), name);
  });
  if (member == type_.members.end()) return DISP_E_UNKNOWNNAME;
  ids[0] =
      &*member == Find(DISPID_VALUE) ? DISPID_VALUE : static_cast<DISPID>(member - type_.members.begin()) + 1;
  HRESULT result = S_OK;
  const auto arguments = member->signature.Arguments();
  for (UINT i = 1; i < count; ++i) {
    const auto argument = std::ranges::find_if(
        arguments, [&](std::u16string_view known) { return SameName(known, windows::AsUtf16(names[i])); });
    if (argument == arguments.end()) {
      result = DISP_E_UNKNOWNNAME;
    } else {
      ids[i] = static_cast<DISPID>(argument - arguments.begin());
    }
  }
  return result;
}

const Member* Object::Find(DISPID id) const {
  const auto& members = type_.members;
  if (id == DISPID_VALUE) {
    const auto first = members.front().signature.Name();
    return first == u"_Default" || first == u"Item" ? &members.front() : nullptr;
  }
  return id >= 1 && static_cast<std::size_t>(id) <= members.size()
             ? &members[static_cast<std::size_t>(id) - 1]
             : nullptr;
}

HRESULT Object::Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                       VARIANT* result, EXCEPINFO* exception, UINT* bad_argument) noexcept {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!Speaks(locale)) return TYPE_E_INVDATAREAD;
  if (parameters == nullptr) return E_INVALIDARG;
  if (result != nullptr) VariantInit(result);
  if (exception != nullptr) *exception = {};
  const ComPtr<Object> keep(this);
  try {
    Call call;
    if (id == DISPID_NEWENUM && type_.count != nullptr) {
      RunEnumerator(call);
    } else {
      const Member* member = Find(id);
      if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
      if (!member->test_switch) {
        const HRESULT admitted =
            session_->Admit(type_, *member, (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0);
        if (admitted == DISP_E_EXCEPTION) Fail(u"Application-defined or object-defined error");
        if (FAILED(admitted)) return admitted;
      }
      Run(*member, flags, *parameters, call);
      if (member->method != nullptr || (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
        session_->Changed();
      }
    }
    if (result != nullptr) *result = call.Result().Detach();
    return S_OK;
  } catch (const Failure& failure) {
    return Report(failure, *parameters, bad_argument);
  } catch (const host::Error& error) {
    return Report(error, exception);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// Arguments of a property that takes none belong to the default member of the object it gives: Cells(2, 3),
// Rows(5), CommandBars("..."). So does the value that such an object is set to: Range("A1") = 5.
void Object::Run(const Member& member, WORD flags, const DISPPARAMS& parameters, Call& call) {
  call.SetSelf(*this);
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  if (put) {
    if ((flags & DISPATCH_PROPERTYPUT) == 0) throw Failure{DISP_E_MEMBERNOTFOUND};
    if (parameters.cArgs == 0 || parameters.cNamedArgs == 0 ||
        parameters.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT) {
      throw Failure{DISP_E_PARAMNOTOPTIONAL};
    }
  }
  const bool has_arguments = parameters.cArgs > (put ? 1u : 0u);
  const bool pass_on = has_arguments && member.signature.Arguments().empty();
  Function function = nullptr;
  if (put && member.put != nullptr && !pass_on) {
    function = member.put;
  } else if (put) {
    function = member.get;
  } else if ((flags & DISPATCH_METHOD) != 0 && member.method != nullptr) {
    function = member.method;
  } else if ((flags & DISPATCH_PROPERTYGET) != 0) {
    function = member.get;
  }
  if (function == nullptr) throw Failure{DISP_E_MEMBERNOTFOUND};
  if (pass_on && function == member.method) throw Failure{DISP_E_BADPARAMCOUNT};

  call.Bind(member.signature, pass_on ? DISPPARAMS{} : parameters, put && !pass_on);
  function(call);
  if (!pass_on && (!put || function == member.put)) return;

  const Variant object = std::move(call.Result());
  if (object.vt != VT_DISPATCH) throw Failure{put ? DISP_E_MEMBERNOTFOUND : DISP_E_BADPARAMCOUNT};
  const ComPtr<Object> target(static_cast<Object*>(object.pdispVal));
  const Member* next = target ? target->Find(DISPID_VALUE) : nullptr;
  if (next == nullptr) throw Failure{DISP_E_MEMBERNOTFOUND};
  if (pass_on) {
    target->Run(*next, flags, parameters, call);
  } else {  // the arguments are used up; the value goes on
    target->Run(*next, flags, {parameters.rgvarg, parameters.rgdispidNamedArgs, 1, 1}, call);
  }
}

void Object::RunEnumerator(Call& call) {
  std::vector<Variant> elements;
  const int64_t count = type_.count(*this);
  if (count > standalone::kMaxRow) throw std::bad_alloc();  // whole columns may be walked, no whole sheet
  call.SetSelf(*this);
  for (int64_t i = 1; i <= count; ++i) {
    type_.item(call, i);
    elements.push_back(std::move(call.Result()));
  }
  VARIANT enumerator;
  VariantInit(&enumerator);
  enumerator.vt = VT_UNKNOWN;
  enumerator.punkVal =
      new automation::Enumerator<IEnumVARIANT, VariantTraits>(std::move(elements), ComPtr<IUnknown>(this));
  enumerator.punkVal->AddRef();
  static_cast<VARIANT&>(call.Result()) = enumerator;
}

}  // namespace rowlark::workbench
