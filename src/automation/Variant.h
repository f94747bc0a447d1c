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

namespace rowlark::automation {

// The locale of every call, English (United States), as Visual Basic passes it: Excel takes that one in each
// of its languages, and refuses the user's where Excel and Windows speak different ones.
inline constexpr LCID kLocale = 0x0409;

// wchar_t is a UTF-16 unit here.
inline const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
inline const char16_t* Narrow(const wchar_t* text) { return reinterpret_cast<const char16_t*>(text); }

// A null text is an empty one.
inline std::u16string_view View(BSTR text) {
  return text == nullptr ? std::u16string_view() : std::u16string_view(Narrow(text), SysStringLen(text));
}

// The caller frees it; throws std::bad_alloc.
inline BSTR NewBstr(std::u16string_view text) {
  BSTR made = SysAllocStringLen(Wide(text.data()), static_cast<UINT>(text.size()));
  if (made == nullptr) throw std::bad_alloc();
  return made;
}

class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::u16string_view text) : text_(NewBstr(text)) {}
  Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
  Bstr& operator=(Bstr other) noexcept {
    std::swap(text_, other.text_);
    return *this;
  }
  ~Bstr() { SysFreeString(text_); }

  BSTR get() const { return text_; }
  BSTR* Put() {
    *this = Bstr();
    return &text_;
  }
  std::u16string_view View() const { return automation::View(text_); }

 private:
  BSTR text_ = nullptr;
};

class Variant : public VARIANT {
 public:
  Variant() : VARIANT{} {}
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
