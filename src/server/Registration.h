// What Windows has to know of the library before anybody can create an object of it.
#pragma once

#include "server/Module.h"

namespace rowlark::server {

enum class Scope {
  Machine,  // for all users; needs the right to write there
  User,     // for this user alone
};

// Registering replaces what is there; where it fails half-way it takes everything back. A newer library,
// going by the versions of the files, is never replaced: ERROR_PRODUCT_VERSION, whose text says that another
// version is installed, and nothing has changed. For a user that is also one that all users have, which would
// be hidden by it. Removing what is not there succeeds; a newer library stays.
HRESULT Register(Module& module, Scope scope) noexcept;
HRESULT Unregister(Module& module, Scope scope) noexcept;

}  // namespace rowlark::server
