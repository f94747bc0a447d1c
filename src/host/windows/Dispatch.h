// Calls of automation objects by name.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include <oaidl.h>

#include "automation/ComPtr.h"
#include "automation/Variant.h"

namespace rowlark::windows {

// A member of an automation class. Objects of a class share their dispatch ids, so the name is looked up on
// the first object that is called and never again.
class Member {
 public:
  constexpr explicit Member(const wchar_t* name) : name_(name) {}
  Member(const Member&) = delete;
  Member& operator=(const Member&) = delete;

  // Throws host::Error.
  DISPID Id(IDispatch& object) {
    if (id_ == DISPID_UNKNOWN) id_ = LookUp(object);
    return id_;
  }
  // Whether that very object has the member: tells classes apart. Throws host::Error when the object does not
  // answer.
  bool IsOf(IDispatch& object) const;

 private:
  DISPID LookUp(IDispatch& object) const;

  const wchar_t* name_;
  DISPID id_ = DISPID_UNKNOWN;
};

// The error for a result that says failure; `exception` with DISP_E_EXCEPTION, its texts are freed.
// Numbers are those that Visual Basic gives: 1004 for 0x800A03EC, the result as it stands outside that
// facility.
[[noreturn]] void ThrowError(HRESULT result, EXCEPINFO* exception = nullptr);
// Something that must be there is Nothing.
[[noreturn]] void ThrowNothing();

// A value as another type, with the conventions of a locale: the user's unless the text goes back to the
// host. Throws host::Error.
automation::Variant Converted(const VARIANT& value, VARTYPE type, LCID locale = LOCALE_USER_DEFAULT);

// An argument of a call. An object stays the caller's, who holds it meanwhile; the rest is copied.
class Argument : public automation::Variant {
 public:
  explicit Argument(IDispatch* object) {
    vt = VT_DISPATCH;
    pdispVal = object;
  }
  explicit Argument(const automation::Variant& value) : Variant(value) {}  // no object
  explicit Argument(std::u16string_view text) : Variant(text) {}
  explicit Argument(bool value) : Variant(value) {}
  explicit Argument(int32_t value) : Variant(value) {}
  explicit Argument(std::nullopt_t) : Variant(Missing()) {}
  template <class T>
  explicit Argument(const std::optional<T>& value)
      : Argument(value ? Argument(*value) : Argument(std::nullopt)) {}
  Argument(Argument&&) = default;
  Argument& operator=(Argument&&) = delete;
  ~Argument() {
    if (vt == VT_DISPATCH) vt = VT_EMPTY;
  }
};

// An automation object. Arguments are positional: an int32_t, bool, text, IDispatch* or Variant each, or an
// std::optional of these. What is omitted at the end is not passed at all, and in between it is passed as
// automation's mark for that, as Visual Basic does it; hosts without named arguments take both.
class Dispatch {
 public:
  Dispatch() = default;
  explicit Dispatch(automation::ComPtr<IDispatch> object) : object_(std::move(object)) {}

  IDispatch* get() const { return object_.get(); }
  explicit operator bool() const { return static_cast<bool>(object_); }

  // Reads a property or calls a method for its result. Like all that follow, throws host::Error.
  template <class... Arguments>
  automation::Variant Get(Member& member, const Arguments&... arguments) const {
    automation::Variant result;
    Invoke(member, &result, arguments...);
    return result;
  }
  // The result as an object; Nothing is a null reference.
  template <class... Arguments>
  Dispatch ObjectOrNothing(Member& member, const Arguments&... arguments) const {
    return ToObject(Get(member, arguments...));
  }
  // The same where Nothing is an error.
  template <class... Arguments>
  Dispatch Object(Member& member, const Arguments&... arguments) const {
    Dispatch object = ObjectOrNothing(member, arguments...);
    if (!object) ThrowNothing();
    return object;
  }
  int32_t Long(Member& member) const;
  double Double(Member& member) const;
  bool Bool(Member& member) const;  // Null, which stands for mixed, is false
  std::u16string Text(Member& member) const;

  template <class... Arguments>
  void Call(Member& member, const Arguments&... arguments) const {
    Invoke(member, nullptr, arguments...);
  }
  void Put(Member& member, const automation::Variant& value, LCID locale = automation::kLocale) const;

 private:
  template <class... Arguments>
  void Invoke(Member& member, VARIANT* result, const Arguments&... arguments) const {
    InvokeReversed(member, result, std::tie(arguments...), std::index_sequence_for<Arguments...>());
  }
  // Automation wants the last argument first.
  template <class Tuple, std::size_t... kIndex>
  void InvokeReversed(Member& member, VARIANT* result, const Tuple& arguments,
                      std::index_sequence<kIndex...>) const {
    constexpr std::size_t kCount = sizeof...(kIndex);
    std::array<Argument, kCount> reversed{Argument(std::get<kCount - 1 - kIndex>(arguments))...};
    std::size_t omitted = 0;
    while (omitted < kCount && reversed[omitted].IsMissing()) ++omitted;
    InvokeWith(member, reversed.data() + omitted, kCount - omitted, result);
  }
  // A null `result`: a method whose result is of no interest.
  void InvokeWith(Member& member, VARIANT* arguments, std::size_t count, VARIANT* result) const;
  static Dispatch ToObject(automation::Variant result) {
    if (result.vt != VT_DISPATCH) return ConvertedToObject(result);
    return Dispatch(automation::ComPtr<IDispatch>::Attach(result.Detach().pdispVal));
  }
  static Dispatch ConvertedToObject(const VARIANT& result);

  automation::ComPtr<IDispatch> object_;
};

}  // namespace rowlark::windows
