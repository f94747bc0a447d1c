// An error with a run-time number and a description, as automation tells its clients.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace rowlark {

class NumberedError : public std::exception {
 public:
  NumberedError(int32_t number, std::u16string description)
      : number_(number), description_(std::move(description)) {}

  int32_t Number() const noexcept { return number_; }
  // May quote what the user works on.
  const std::u16string& Description() const noexcept { return description_; }
  // The kind of error alone.
  const char* what() const noexcept override = 0;

 private:
  int32_t number_;
  std::u16string description_;
};

}  // namespace rowlark
