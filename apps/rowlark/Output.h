// Writes to a stream of the C library and reports what can not be written (a full disk).
#pragma once

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace rowlark {

class Output {
 public:
  explicit Output(std::FILE* stream) : stream_(stream) {}

  // Both throw std::runtime_error.
  void Write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) Fail();
  }
  void Flush() {
    if (std::fflush(stream_) != 0) Fail();
  }

 private:
  [[noreturn]] static void Fail() {
    throw std::runtime_error("standard output: " + std::error_code(errno, std::generic_category()).message());
  }

  std::FILE* stream_;
};

}  // namespace rowlark
