// Arguments as clients pass them: by value or by reference, as variants or as typed variables.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "automation/ComPtr.h"
#include "automation/Variant.h"

namespace rowlark::server {

// What a reference to a variant refers to; the argument itself when it is none.
const VARIANT& Referred(const VARIANT& argument);

// The object that an argument holds, or null for Nothing, Empty and an omitted one. Raises a type mismatch.
automation::ComPtr<IDispatch> ObjectOf(const VARIANT& argument);

// The text of a value, as automation converts it. Raises a type mismatch.
std::u16string TextOf(const VARIANT& argument);

// The texts of an array or of a single value; none for an omitted one. Raises a type mismatch.
std::vector<std::u16string> TextsOf(const VARIANT& argument);

// An optional text that is passed by reference: a typed text variable, a variant variable or nothing.
class TextReference {
 public:
  // Raises a type mismatch for a variable that can not take a text.
  explicit TextReference(VARIANT* argument);

  bool Given() const { return text_ != nullptr || variant_ != nullptr; }
  void Write(std::u16string_view text) const;

 private:
  BSTR* text_ = nullptr;
  VARIANT* variant_ = nullptr;
};

}  // namespace rowlark::server
