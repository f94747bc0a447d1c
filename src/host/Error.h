// A host operation that failed.
#pragma once

#include <cstdint>

#include "util/NumberedError.h"

namespace rowlark::host {

// `Number` is the host's run-time error number (1004: application-defined), `Description` its own text.
class Error : public NumberedError {
 public:
  using NumberedError::NumberedError;
  const char* what() const noexcept override { return "host error"; }
};

}  // namespace rowlark::host
