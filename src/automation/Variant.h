// Automation's texts and values.
#pragma once

#include <cstdint>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include <oaidl.h>
#include <oleauto.h>

#include "automation/ComPtr.h"
#include "util/Owner.h"
#include "util/windows/WideText.h"

namespace rowlark::automation {

// The locale of every call, English (United States), as Visual Basic passes it: Excel takes that one in each
// of its languages, and refuses the user's where Excel and Windows speak different ones.
inline constexpr LCID kLocale = 0x0409;

// A null text is an empty one.
inline std::u16string_view View(BSTR text) {
  return text == nullptr ? std::u16string_view()
                         : std::u16string_view(windows::AsUtf16(text), SysStringLen(text));
}

// The caller frees it; throws std::bad_alloc.
inline BSTR NewBstr(std::u16string_view text) {
  BSTR made = SysAllocStringLen(windows::AsWide(text.data()), static_cast<UINT>(text.size()));
  if (made == nullptr) throw std::bad_alloc();
  return made;
}

struct BstrTraits {
  using Handle = BSTR;
  static Handle None() noexcept { return nullptr; }
  static void Close(Handle text) noexcept { SysFreeString(text); }
};

class Bstr : public Owner<BstrTraits> {
 public:
  Bstr() = default;
  explicit Bstr(std::u16string_view text) : Owner(NewBstr(text)) {}
  std::u16string_view View() const { return automation::View(get()); }
};

class Variant : public VARIANT {
 public:
  Variant() : VARIANT{} { vt = VT_EMPTY; }
  Variant(bool value) : Variant() {
    vt = VT_BOOL;
    boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  }
  Variant(int32_t value) : Variant() {
    vt = VT_I4;
    lVal = value;
  }
  Variant(double value) : Variant() {
    vt = VT_R8;
    dblVal = value;
  }
  Variant(std::u16string_view text) : Variant() {
    bstrVal = NewBstr(text);
    vt = VT_BSTR;
  }
  Variant(const char16_t* text) : Variant(std::u16string_view(text)) {}
  Variant(const std::u16string& text) : Variant(std::u16string_view(text)) {}
  Variant(IDispatch* object) : Variant() {
    vt = VT_DISPATCH;
    pdispVal = object;
    if (object != nullptr) object->AddRef();
  }
  Variant(const Variant& other) : Variant() {
    if (FAILED(VariantCopy(this, const_cast<Variant*>(&other)))) throw std::bad_alloc();
  }
  Variant(Variant&& other) noexcept : VARIANT(other) { other.vt = VT_EMPTY; }
  Variant& operator=(Variant other) noexcept {
    std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
    return *this;
  }
  ~Variant() {
    // What is plain needs no call of the system: every call of an object makes a few of them.
    const bool plain = vt <= VT_DATE || vt == VT_BOOL || vt == VT_ERROR;
    if (!plain) VariantClear(this);
  }

  // Stands for an optional argument that is left out.
  static Variant Missing() {
    Variant value;
    value.vt = VT_ERROR;
    value.scode = DISP_E_PARAMNOTFOUND;
    return value;
  }
  bool IsMissing() const { return vt == VT_ERROR && scode == DISP_E_PARAMNOTFOUND; }

  // For an out-parameter; what is held goes.
  VARIANT* Put() {
    VariantClear(this);
    return this;
  }
  VARIANT Detach() {
    VARIANT value = *this;
    vt = VT_EMPTY;
    return value;
  }
};

}  // namespace rowlark::automation
