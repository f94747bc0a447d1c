// The place of a call, as the default of a parameter: std::source_location, which not every compiler that
// checks this code has yet.
#pragma once

namespace rowlark {

struct SourceLocation {
  const char* function;  // its name alone
  const char* file;
  int line;

  static constexpr SourceLocation Current(const char* function = __builtin_FUNCTION(),
                                          const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return {function, file, line};
  }
};

}  // namespace rowlark
