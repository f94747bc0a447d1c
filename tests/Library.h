// A platform with the forms, for runtime objects.
#pragma once

#include "Platform.h"
#include "forms/FormSet.h"

namespace rowlark::testing {

struct TestLibrary : TestPlatform {
  using TestPlatform::TestPlatform;
  FormSet forms{shared};
};

}  // namespace rowlark::testing
