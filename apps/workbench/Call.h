// One call of a member: its arguments as the member wants them, and its result.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <oaidl.h>

#include "Members.h"
#include "Object.h"
#include "automation/Variant.h"
#include "host/cells/Range.h"

namespace rowlark::workbench {

// Ends a call with a code of automation's own.
struct Failure {
  HRESULT result;
  const VARIANT* argument = nullptr;  // the one that is wrong
};

// Ends a call with the error that Excel has for nearly everything.
[[noreturn]] inline void Fail(std::u16string description) { throw host::Error(1004, std::move(description)); }

class Call {
 public:
  // Sorts the arguments into their places; null for those left out. The value of a property that is set
  // stands apart. Throws Failure.
  void Bind(const Signature& signature, const DISPPARAMS& parameters, bool put);

  // The object whose member is called.
  Object& Self() const { return *self_; }
  void SetSelf(Object& self) { self_ = &self; }
  template <class T>
  T& Core() const {
    return self_->Core<T>();
  }
  Session& Context() const { return self_->Context(); }
  standalone::Application& Application() const { return Context().Application(); }

  // The i-th argument, from 0; what can not be taken as the type is a type mismatch. With a default: also
  // when it is left out.
  const VARIANT* Argument(std::size_t i) const { return arguments_[i]; }
  bool Has(std::size_t i) const { return arguments_[i] != nullptr; }
  int32_t Int(std::size_t i) const { return ToInt(*arguments_[i]); }
  int32_t Int(std::size_t i, int32_t otherwise) const { return Has(i) ? Int(i) : otherwise; }
  bool Bool(std::size_t i, bool otherwise) const { return Has(i) ? ToBool(*arguments_[i]) : otherwise; }
  bool IsText(std::size_t i) const;
  std::u16string Text(std::size_t i) const { return ToText(*arguments_[i]); }
  standalone::Range& Range(std::size_t i) const;
  // Null for anything that is not a range.
  standalone::Range* AsRange(std::size_t i) const;
  template <class Enumeration>
  std::optional<Enumeration> Enumerated(std::size_t i) const {
    if (!Has(i)) return std::nullopt;
    return static_cast<Enumeration>(Int(i));
  }

  // What a property is set to.
  bool BoolValue() const { return ToBool(*value_); }
  std::u16string TextValue() const { return ToText(*value_); }

  void Return(automation::Variant value) { result_ = std::move(value); }
  // Nothing for a null reference.
  void Return(const Class& type, Ref<RefCounted> core) {
    result_ = automation::Variant(Context().Expose(type, std::move(core)).get());
  }
  automation::Variant& Result() { return result_; }

 private:
  static int32_t ToInt(const VARIANT& value);
  static bool ToBool(const VARIANT& value);
  static std::u16string ToText(const VARIANT& value);

  Object* self_ = nullptr;
  std::array<const VARIANT*, Signature::kMaxArguments> arguments_;  // as many as the signature has
  const VARIANT* value_ = nullptr;
  automation::Variant result_;
};

// The collections' members "Count", "Item" by number, and the error for what is not there.
void CountOfCollection(Call& call);
void ItemOfCollection(Call& call);
[[noreturn]] void SubscriptOutOfRange();

}  // namespace rowlark::workbench
