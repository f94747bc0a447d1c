// What Windows has to know of the library before anybody can create an object of it.
#pragma once

#include "server/Module.h"

namespace rowlark::server {

enum class Scope {
  Machine,  // for all users; needs the right to write there
  User,     // for this user alone
};

// Registering replaces what is there; where it fails half-way it takes everything back. Removing what is not
// there succeeds.
HRESULT Register(Module& module, Scope scope) noexcept;
HRESULT Unregister(Module& module, Scope scope) noexcept;

}  // namespace rowlark::server
