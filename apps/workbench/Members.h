// What an automation class is made of: a table of members, each with its signature as the object model
// documents it and the functions behind it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace rowlark::workbench {

class Call;
class Object;

// "Find(What, [After], [LookIn])": the member's name and those of its arguments; the ones in brackets may be
// left out.
class Signature {
 public:
  static constexpr std::size_t kMaxArguments = 16;

  consteval Signature(const char16_t* text) {
    std::u16string_view rest = text;
    name_ = rest.substr(0, rest.find(u'('));
    rest.remove_prefix(name_.size());
    while (rest.size() > 1) {  // "(" or ", " before the argument
      rest.remove_prefix(rest.front() == u',' ? 2 : 1);
      const auto whole = rest.substr(0, rest.find_first_of(u",)"));
      rest.remove_prefix(whole.size());
      const bool optional = whole.front() == u'[';
      arguments_[count_++] = optional ? whole.substr(1, whole.size() - 2) : whole;
      if (!optional) required_ = count_;
    }
  }

  constexpr std::u16string_view Name() const { return name_; }
  constexpr std::span<const std::u16string_view> Arguments() const { return {arguments_.data(), count_}; }
  constexpr std::size_t Required() const { return required_; }

 private:
  std::u16string_view name_;
  std::array<std::u16string_view, kMaxArguments> arguments_{};
  std::size_t count_ = 0;
  std::size_t required_ = 0;
};

using Function = void (*)(Call& call);

struct Member {
  Signature signature;
  Function get = nullptr;     // reads the property
  Function put = nullptr;     // writes it
  Function method = nullptr;  // or calls the method
  int32_t since = 0;          // the host's version that brought it
  bool test_switch = false;   // a switch for tests: neither counted nor refused
};

consteval Member Get(Signature signature, Function get, int32_t since = 0) {
  return {.signature = signature, .get = get, .since = since};
}
consteval Member GetPut(Signature signature, Function get, Function put, int32_t since = 0) {
  return {.signature = signature, .get = get, .put = put, .since = since};
}
consteval Member Method(Signature signature, Function method, int32_t since = 0) {
  return {.signature = signature, .method = method, .since = since};
}
consteval Member TestSwitch(Member member) {
  member.test_switch = true;
  return member;
}

struct Class {
  std::u16string_view name;
  std::span<const Member> members;  // "_Default", or else "Item", is the default member
  // A collection's size and its element as the call's result, from 1: what For Each goes through.
  int64_t (*count)(Object& collection) = nullptr;
  void (*item)(Call& call, int64_t index) = nullptr;
  // One object for one core object, however often it is asked for.
  bool identity = false;
  // Begins to raise the object's events.
  void (*listen)(Object& object) = nullptr;
};

}  // namespace rowlark::workbench
