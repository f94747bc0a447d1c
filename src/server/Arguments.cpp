#include "server/Arguments.h"

#include "util/AutomationError.h"

namespace rowlark::server {
namespace {

[[noreturn]] void Mismatch() { throw AutomationError::TypeMismatch(u"VTRLKRuntime"); }

bool Omitted(const VARIANT& argument) {
  return argument.vt == VT_EMPTY || argument.vt == VT_NULL ||
         (argument.vt == VT_ERROR && argument.scode == DISP_E_PARAMNOTFOUND);
}

}  // namespace

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

std::u16string TextOf(const VARIANT& argument) {
  automation::Variant text;
  if (FAILED(VariantChangeType(&text, const_cast<VARIANT*>(&Referred(argument)), 0, VT_BSTR))) Mismatch();
  return std::u16string(automation::View(text.bstrVal));
}

std::vector<std::u16string> TextsOf(const VARIANT& argument) {
  const VARIANT& value = Referred(argument);
  if (Omitted(value)) return {};
  if ((value.vt & VT_ARRAY) == 0) return {TextOf(value)};
  SAFEARRAY* array = (value.vt & VT_BYREF) != 0 ? *value.pparray : value.parray;
  VARTYPE type = VT_EMPTY;
  LONG first = 0;
  LONG last = -1;
  if (array == nullptr) return {};
  if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
      FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last))) {
    Mismatch();
  }
  std::vector<std::u16string> texts;
  for (LONG i = first; i <= last; ++i) {
    automation::Variant element;
    void* storage = type == VT_VARIANT ? static_cast<void*>(&element) : &element.llVal;
    if (FAILED(SafeArrayGetElement(array, &i, storage))) Mismatch();
    if (type != VT_VARIANT) element.vt = type;
    texts.push_back(TextOf(element));
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
