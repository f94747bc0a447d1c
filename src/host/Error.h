// A host operation that failed.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace rowlark::host {

class Error : public std::exception {
 public:
  // `number` is the host's run-time error number (1004: application-defined), `description` its own text.
  Error(int32_t number, std::u16string description) : number_(number), description_(std::move(description)) {}

  int32_t Number() const noexcept { return number_; }
  const std::u16string& Description() const noexcept { return description_; }
  const char* what() const noexcept override { return "host error"; }

 private:
  int32_t number_;
  std::u16string description_;
};

}  // namespace rowlark::host
