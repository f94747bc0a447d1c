// What the office throws, as errors of the host. Its own messages name files and lines of its sources, so the
// words are ours.
#pragma once

#include <com/sun/star/uno/Exception.hpp>

#include <string_view>
#include <utility>

#include "host/Error.h"

namespace rowlark::calc {

// The host's number for what an application refuses.
inline constexpr int32_t kRefused = 1004;

[[noreturn]] inline void Refuse(std::u16string_view description) {
  throw host::Error(kRefused, std::u16string(description));
}

// Does what the office may refuse, which is a host::Error of that description then.
template <class Action>
decltype(auto) OrRefuse(std::u16string_view description, Action&& action) {
  try {
    return std::forward<Action>(action)();
  } catch (const com::sun::star::uno::Exception&) {
    Refuse(description);
  }
}

}  // namespace rowlark::calc
