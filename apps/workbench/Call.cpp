#include "Call.h"

#include <algorithm>

#include "Values.h"
#include "host/Error.h"

namespace rowlark::workbench {
namespace {

using automation::ComPtr;
using automation::Variant;

const VARIANT* Dereferenced(const VARIANT& given) {
  return given.vt == (VT_BYREF | VT_VARIANT) ? given.pvarVal : &given;
}

bool IsMissing(const VARIANT& given) { return given.vt == VT_ERROR && given.scode == DISP_E_PARAMNOTFOUND; }

Variant Converted(const VARIANT& value, VARTYPE type) {
  Variant converted;
  if (FAILED(VariantChangeType(&converted, const_cast<VARIANT*>(&value), 0, type))) {
    throw Failure{DISP_E_TYPEMISMATCH, &value};
  }
  return converted;
}

// A counted reference to one of our objects; null for anything else.
ComPtr<Object> OwnObject(const VARIANT& value) {
  IUnknown* object = nullptr;
  if (value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) {
    object = value.punkVal;
  } else if (value.vt == (VT_BYREF | VT_DISPATCH) || value.vt == (VT_BYREF | VT_UNKNOWN)) {
    object = *value.ppunkVal;
  }
  ComPtr<Object> own;
  if (object != nullptr) object->QueryInterface(kOwnObject, reinterpret_cast<void**>(own.Put()));
  return own;
}

}  // namespace

void Call::Bind(const Signature& signature, const DISPPARAMS& parameters, bool put) {
  const auto names = signature.Arguments();
  std::fill_n(arguments_.begin(), names.size(), nullptr);
  const UINT value_count = put ? 1 : 0;  // the value comes as the first of the named arguments
  if (put) value_ = Dereferenced(parameters.rgvarg[0]);
  if (parameters.cArgs - value_count > names.size()) throw Failure{DISP_E_BADPARAMCOUNT};

  const UINT positional = parameters.cArgs - parameters.cNamedArgs;
  for (UINT i = 0; i < positional; ++i) arguments_[i] = &parameters.rgvarg[parameters.cArgs - 1 - i];
  for (UINT i = value_count; i < parameters.cNamedArgs; ++i) {
    const VARIANT& given = parameters.rgvarg[i];
    const auto place = static_cast<std::size_t>(parameters.rgdispidNamedArgs[i]);
    if (place >= names.size() || arguments_[place] != nullptr) throw Failure{DISP_E_PARAMNOTFOUND, &given};
    arguments_[place] = &given;
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (arguments_[i] == nullptr) continue;
    arguments_[i] = Dereferenced(*arguments_[i]);
    if (IsMissing(*arguments_[i])) arguments_[i] = nullptr;
  }
  for (std::size_t i = 0; i < signature.Required(); ++i) {
    if (arguments_[i] == nullptr) throw Failure{DISP_E_PARAMNOTOPTIONAL};
  }
}

int32_t Call::ToInt(const VARIANT& value) {
  if (value.vt == VT_I4) return value.lVal;
  if (value.vt == VT_I2) return value.iVal;
  return Converted(value, VT_I4).lVal;
}

bool Call::ToBool(const VARIANT& value) {
  if (value.vt == VT_BOOL) return value.boolVal != VARIANT_FALSE;
  return Converted(value, VT_BOOL).boolVal != VARIANT_FALSE;
}

std::u16string Call::ToText(const VARIANT& value) { return ToCellText(value); }

bool Call::IsText(std::size_t i) const { return Has(i) && (arguments_[i]->vt & ~VT_BYREF) == VT_BSTR; }

standalone::Range* Call::AsRange(std::size_t i) const {
  if (!Has(i)) return nullptr;
  // The caller's argument keeps the object alive.
  const auto object = OwnObject(*arguments_[i]);
  return object && object->Type().name == u"Range" ? &object->Core<standalone::Range>() : nullptr;
}

standalone::Range& Call::Range(std::size_t i) const {
  auto* range = AsRange(i);
  if (range == nullptr) throw Failure{DISP_E_TYPEMISMATCH, arguments_[i]};
  return *range;
}

void CountOfCollection(Call& call) {
  const int64_t count = call.Self().Type().count(call.Self());
  if (count > INT32_MAX) throw host::Error(6, u"Overflow");
  call.Return(static_cast<int32_t>(count));
}

void ItemOfCollection(Call& call) {
  const int32_t index = call.Int(0);
  const auto& type = call.Self().Type();
  if (index < 1 || index > type.count(call.Self())) SubscriptOutOfRange();
  type.item(call, index);
}

void SubscriptOutOfRange() { throw host::Error(9, u"Subscript out of range"); }

}  // namespace rowlark::workbench
