#include "host/windows/ActivationContext.h"

namespace rowlark::windows {

ActivationContext::ActivationContext(HINSTANCE module) {
  constexpr WORD kManifest = 2;
  ACTCTXW description{};
  description.cbSize = sizeof description;
  description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
  description.hModule = module;
  description.lpResourceName = MAKEINTRESOURCEW(kManifest);
  handle_ = ::CreateActCtxW(&description);
}

ActivationContext::~ActivationContext() {
  if (handle_ != INVALID_HANDLE_VALUE) ::ReleaseActCtx(handle_);
}

ActivationContext::Scope::Scope(const ActivationContext& context) {
  if (context.handle_ != INVALID_HANDLE_VALUE && ::ActivateActCtx(context.handle_, &cookie_) == 0)
    cookie_ = 0;
}

ActivationContext::Scope::~Scope() {
  if (cookie_ != 0) ::DeactivateActCtx(0, cookie_);
}

}  // namespace rowlark::windows
