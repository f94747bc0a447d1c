// The error that the utility classes raise: a number, the member that raised it and a description.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "util/NumberedError.h"

namespace rowlark {

class AutomationError : public NumberedError {
 public:
  // Run-time error numbers of automation clients.
  static constexpr int32_t kInvalidCall = 5;
  static constexpr int32_t kOverflow = 6;
  static constexpr int32_t kDivisionByZero = 11;
  static constexpr int32_t kTypeMismatch = 13;

  AutomationError(int32_t number, std::u16string source, std::u16string description)
      : NumberedError(number, std::move(description)), source_(std::move(source)) {}

  // The run-time errors; `source` names the member that raises them. Empty: the one that a client has called.
  static AutomationError InvalidCall(std::u16string source) {
    return {kInvalidCall, std::move(source), u"Invalid procedure call or argument"};
  }
  static AutomationError Overflow(std::u16string source) {
    return {kOverflow, std::move(source), u"Overflow"};
  }
  static AutomationError DivisionByZero(std::u16string source) {
    return {kDivisionByZero, std::move(source), u"Division by zero"};
  }
  static AutomationError TypeMismatch(std::u16string source) {
    return {kTypeMismatch, std::move(source), u"Type mismatch"};
  }

  const std::u16string& Source() const noexcept { return source_; }
  const char* what() const noexcept override { return "automation error"; }

 private:
  std::u16string source_;
};

}  // namespace rowlark
