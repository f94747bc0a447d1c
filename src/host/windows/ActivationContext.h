// Version 6 of the common controls, whatever version the host uses.
#pragma once

#include <windows.h>

namespace rowlark::windows {

// Made from the manifest (resource 2) of a module. Where that is missing, the host's version is used.
class ActivationContext {
 public:
  explicit ActivationContext(HINSTANCE module);
  ActivationContext(const ActivationContext&) = delete;
  ActivationContext& operator=(const ActivationContext&) = delete;
  ~ActivationContext();

  // Windows that are created within a scope are of that version.
  class Scope {
   public:
    explicit Scope(const ActivationContext& context);
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope();

   private:
    ULONG_PTR cookie_ = 0;
  };

 private:
  HANDLE handle_;
};

}  // namespace rowlark::windows
