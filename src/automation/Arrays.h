// Automation's arrays of values.
#pragma once

#include <new>
#include <span>
#include <string>
#include <string_view>

#include <oleauto.h>

#include "automation/Variant.h"

namespace rowlark::automation {

// An array of empty values. Throws std::bad_alloc.
inline Variant NewArray(std::span<SAFEARRAYBOUND> bounds) {
  Variant array;
  array.parray = SafeArrayCreate(VT_VARIANT, static_cast<UINT>(bounds.size()), bounds.data());
  if (array.parray == nullptr) throw std::bad_alloc();
  array.vt = VT_ARRAY | VT_VARIANT;
  return array;
}

// The elements of such an array, column after column.
inline VARIANT* Elements(const Variant& array) { return static_cast<VARIANT*>(array.parray->pvData); }

// The texts, counted from `first` on.
inline Variant ArrayOf(std::span<const std::u16string> texts, LONG first) {
  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(texts.size()), first}};
  Variant array = NewArray(bounds);
  VARIANT* place = Elements(array);
  for (const auto& text : texts) *place++ = Variant(std::u16string_view(text)).Detach();
  return array;
}

}  // namespace rowlark::automation
