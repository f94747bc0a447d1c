// Topics of the help.
#pragma once

#include <cstdint>

namespace rowlark {

// By the context numbers that docs/help/contents.xml gives them.
enum class HelpTopic : int32_t {
  Default = 0,
  Search = 1000,
  Edit = 1010,
  SelectRange = 1020,
  Options = 1030,
  About = 1040,
  Troubleshooting = 1100,
  TechSupport = 1200,
};

}  // namespace rowlark
