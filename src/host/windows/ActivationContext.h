// Version 6 of the common controls, whatever version the host uses.
#pragma once

#include <windows.h>

#include "util/Owner.h"

namespace rowlark::windows {

// Made from the manifest (resource 2) of a module. Where that is missing, the host's version is used.
class ActivationContext {
 public:
  explicit ActivationContext(HINSTANCE module);

  // Windows that are created within a scope are of that version.
  class [[nodiscard]] Scope {
   public:
    explicit Scope(const ActivationContext& context);
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope();

   private:
    ULONG_PTR cookie_ = 0;
  };

 private:
  struct Traits {
    using Handle = HANDLE;
    static Handle None() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Handle context) noexcept { ::ReleaseActCtx(context); }
  };
  Owner<Traits> context_;
};

}  // namespace rowlark::windows
