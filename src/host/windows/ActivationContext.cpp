#include "host/windows/ActivationContext.h"

namespace rowlark::windows {

ActivationContext::ActivationContext(HINSTANCE module) {
  constexpr WORD kManifest = 2;
  ACTCTXW description{};
  description.cbSize = sizeof description;
  description.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
  description.hModule = module;
  description.lpResourceName = MAKEINTRESOURCEW(kManifest);
  context_.reset(::CreateActCtxW(&description));
}

ActivationContext::Scope::Scope(const ActivationContext& context) {
  if (context.context_ && ::ActivateActCtx(*context.context_, &cookie_) == 0) cookie_ = 0;
}

ActivationContext::Scope::~Scope() {
  if (cookie_ != 0) ::DeactivateActCtx(0, cookie_);
}

}  // namespace rowlark::windows
