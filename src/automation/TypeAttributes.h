// What a type library tells of a type as a whole.
#pragma once

#include <oaidl.h>

#include "automation/ComPtr.h"
#include "util/Owner.h"

namespace rowlark::automation {

// They belong to the type information, which lives as long as they do.
struct TypeAttributesTraits {
  using Handle = TYPEATTR*;
  static Handle None() noexcept { return nullptr; }
  void Close(Handle attributes) const noexcept { type->ReleaseTypeAttr(attributes); }

  ComPtr<ITypeInfo> type;
};
using TypeAttributes = Owner<TypeAttributesTraits>;

// None where they can not be had.
inline TypeAttributes AttributesOf(ITypeInfo& type) {
  TYPEATTR* attributes = nullptr;
  if (FAILED(type.GetTypeAttr(&attributes))) return {};
  return TypeAttributes(attributes, {ComPtr<ITypeInfo>(&type)});
}

}  // namespace rowlark::automation
