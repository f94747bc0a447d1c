// Arguments as clients pass them: by value or by reference, as variants or as typed variables.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "automation/ComPtr.h"
#include "automation/Variant.h"

namespace rowlark::server {

// The arguments of a late-bound call with copies of those that are passed by value: these stay the caller's,
// also where a member takes them for a variable of its own to write to.
class OwnArguments {
 public:
  HRESULT Copy(const DISPPARAMS& given) noexcept;
  DISPPARAMS& Get() { return parameters_; }

 private:
  std::vector<automation::Variant> values_;
  DISPPARAMS parameters_{};
};

// What a reference to a variant refers to; the argument itself when it is none.
const VARIANT& Referred(const VARIANT& argument);

// The object that an argument holds, or null for Nothing, Empty and an omitted one. Raises a type mismatch.
automation::ComPtr<IDispatch> ObjectOf(const VARIANT& argument);

// What replaces "%1", "%2" ...: the texts of an array or of a single value, none for an omitted one. What has
// no text replaces nothing.
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
