// The hotkeys, as short cuts of the office in windows of spreadsheets. They are set for the session only:
// nothing of them is left in the user's profile.
#pragma once

#include <optional>
#include <string_view>

#include <com/sun/star/awt/KeyEvent.hpp>

#include "host/calc/forms/Desk.h"

namespace rowlark::calc {

// The URL that stands for a macro, before its name.
inline constexpr std::u16string_view kProtocol = u"org.rowlark:";

// The key that a code as in "+^f" or "{F5}" names; nothing for one that the office does not have.
std::optional<com::sun::star::awt::KeyEvent> KeyOf(std::u16string_view code);

class ShortCuts {
 public:
  explicit ShortCuts(const Desk::Context& office) : office_(office) {}

  // Has the key run the macro; without one, the key means again what it means to the office. Throws what the
  // office throws.
  void OnKey(std::u16string_view code, std::optional<std::u16string_view> macro);

 private:
  struct Replaced {
    com::sun::star::awt::KeyEvent key;
    rtl::OUString command;  // empty: none of the spreadsheets' own
  };

  const Desk::Context office_;
  std::vector<Replaced> replaced_;
};

}  // namespace rowlark::calc
