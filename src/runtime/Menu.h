// The add-in's menu on the host's "Worksheet Menu Bar".
#pragma once

#include "settings/SharedState.h"

namespace rowlark {

// The host's operations may call back, and what they call destroy the runtime object: whoever calls the menu
// holds it.
class Menu {
 public:
  explicit Menu(SharedState& shared) : shared_(shared) {}

  // Removes the menu if there is one, also one that an earlier run has left behind, and builds it with the
  // captions of the present language. Throws host::Error; no half-built menu stays.
  void Create();
  // A menu that is not there is no error.
  void Remove();

  // Whether a menu made here has not been removed from here.
  bool Made() const { return made_; }

  // The texts of a menu may come from a language that is loaded only now; whoever hears of that must not
  // build the menu again while it is being built.
  bool Building() const { return building_; }

 private:
  Ref<host::CommandBar> Bar() const;
  static void RemoveFrom(host::CommandBar& bar);

  SharedState& shared_;
  bool building_ = false;
  bool made_ = false;
};

}  // namespace rowlark
