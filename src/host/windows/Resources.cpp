#include "host/windows/Resources.h"

#include "util/windows/WideText.h"

namespace rowlark::windows {
namespace {

const char kInside = 0;

}  // namespace

Resources::Resources() {
  ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&kInside), &module_);
}

Icon Resources::LoadPicture(std::u16string_view name, int pixels) const {
  if (name.empty()) return {};
  return Icon(static_cast<HICON>(
      ::LoadImageW(module_, ToWide(name).c_str(), IMAGE_ICON, pixels, pixels, LR_DEFAULTCOLOR)));
}

}  // namespace rowlark::windows
