#include "server/Arguments.h"

#include <cstdint>
#include <new>

#include "util/AutomationError.h"
#include "util/Scope.h"
#include "util/Utf.h"

namespace rowlark::server {
namespace {

[[noreturn]] void Mismatch() { throw AutomationError::TypeMismatch({}); }

bool Omitted(const VARIANT& argument) {
  return argument.vt == VT_EMPTY || argument.vt == VT_NULL ||
         (argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND);
}

// A mark that is replaced by itself stays.
std::u16string TextOrMark(const VARIANT& value, std::size_t index) {
  auto& source = const_cast<VARIANT&>(Referred(value));
  automation::Variant text;
  const bool dangling = (source.vt & VT_BYREF) != 0 && source.byref == nullptr;
  if (!dangling && SUCCEEDED(VariantChangeType(&text, &source, 0, VT_BSTR))) {
    return std::u16string(automation::View(text.bstrVal));
  }
  return u"%" + ToUtf16(std::to_string(index));
}

}  // namespace

HRESULT OwnArguments::Copy(const DISPPARAMS& given) noexcept try {
  if (given.cArgs > 0 && given.rgvarg == nullptr) return E_POINTER;
  values_.resize(given.cArgs);
  for (UINT i = 0; i < given.cArgs; ++i) {
    const VARIANT& argument = given.rgvarg[i];
    if ((argument.vt & VT_BYREF) != 0) {
      static_cast<VARIANT&>(values_[i]) = argument;
    } else if (const HRESULT result = VariantCopy(&values_[i], const_cast<VARIANT*>(&argument));
               FAILED(result)) {
      return result;
    }
  }
  parameters_ = given;
  parameters_.rgvarg = values_.data();
  return S_OK;
} catch (const std::bad_alloc&) {
  return E_OUTOFMEMORY;
}

const VARIANT& Referred(const VARIANT& argument) {
  const VARIANT* value = &argument;
  while (value->vt == (VT_VARIANT | VT_BYREF) && value->pvarVal != nullptr) value = value->pvarVal;
  return *value;
}

automation::ComPtr<IDispatch> ObjectOf(const VARIANT& argument) {
  const VARIANT& value = Referred(argument);
  IUnknown* object = nullptr;
  switch (value.vt) {
    case VT_DISPATCH:
    case VT_UNKNOWN:
      object = value.punkVal;
      break;
    case VT_DISPATCH | VT_BYREF:
    case VT_UNKNOWN | VT_BYREF:
      object = value.ppunkVal != nullptr ? *value.ppunkVal : nullptr;
      break;
    default:
      if (!Omitted(value)) Mismatch();
  }
  if (object == nullptr) return {};
  auto dispatch = automation::ComPtr<IDispatch>::From(object);
  if (!dispatch) Mismatch();
  return dispatch;
}

std::vector<std::u16string> TextsOf(const VARIANT& argument) {
  const VARIANT& value = Referred(argument);
  if (Omitted(value)) return {};
  if ((value.vt & VT_ARRAY) == 0) return {TextOrMark(value, 1)};
  SAFEARRAY* array = (value.vt & VT_BYREF) == 0 ? value.parray
                     : value.pparray != nullptr ? *value.pparray
                                                : nullptr;
  LONG first = 0;
  LONG last = -1;
  if (array == nullptr || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &first)) ||
      FAILED(SafeArrayGetUBound(array, 1, &last))) {
    return {};
  }
  // It stays as it is while its elements are read.
  if (FAILED(SafeArrayLock(array))) return {};
  const ScopeExit unlock([array] { SafeArrayUnlock(array); });
  VARTYPE type = VT_EMPTY;
  if (FAILED(SafeArrayGetVartype(array, &type))) return {};
  std::vector<std::u16string> texts;
  for (int64_t i = first; i <= last; ++i) {
    auto index = static_cast<LONG>(i);
    VARIANT element{};
    element.vt = static_cast<VARTYPE>(VT_BYREF | type);
    if (FAILED(SafeArrayPtrOfIndex(array, &index, &element.byref))) element.vt = VT_NULL;
    texts.push_back(TextOrMark(element, texts.size() + 1));
  }
  return texts;
}

TextReference::TextReference(VARIANT* argument) {
  if (argument == nullptr) return;
  VARIANT& value = const_cast<VARIANT&>(Referred(*argument));
  if (value.vt == (VT_BSTR | VT_BYREF)) {
    text_ = value.pbstrVal;
  } else if ((value.vt & VT_BYREF) != 0) {
    Mismatch();
  } else if (value.vt != VT_ERROR || value.scode != DISP_E_PARAMNOTFOUND) {
    variant_ = &value;
  }
}

void TextReference::Write(std::u16string_view text) const {
  if (!Given()) return;
  automation::Variant written(text);
  if (variant_ != nullptr) {
    VariantClear(variant_);
    *variant_ = written.Detach();
  } else {
    SysFreeString(*text_);
    *text_ = written.Detach().bstrVal;
  }
}

}  // namespace rowlark::server
