// What the error traps of the operations have in common.
#pragma once

#include <string>
#include <utility>

#include "host/Error.h"
#include "lang/clsVTRLKLang.h"
#include "util/Ref.h"

namespace rowlark {

// The description of the exception that is being handled.
std::u16string CurrentDescription();

// "Error: ..." with the description of the exception that is being handled, in the user's language.
std::u16string GenericError(clsVTRLKLang& language);

// The object that a host operation returned; fails as automation does where there is nothing.
template <class T>
Ref<T> Require(Ref<T> object) {
  if (!object) throw host::Error(91, u"Object variable or With block variable not set");
  return object;
}

}  // namespace rowlark
