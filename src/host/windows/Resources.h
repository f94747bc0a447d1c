// What lies in the resources of the library, or program, that this code is linked into.
#pragma once

#include <windows.h>

#include <string_view>

#include "util/windows/Handles.h"

namespace rowlark::windows {

// Of pictures on controls, in pixels at 96 an inch.
inline constexpr int kPictureSize = 16;

class Resources {
 public:
  Resources();

  HINSTANCE Module() const { return module_; }
  // A picture by its name, in whatever case; null when there is none.
  Icon LoadPicture(std::u16string_view name, int pixels) const;

 private:
  HINSTANCE module_ = nullptr;
};

}  // namespace rowlark::windows
