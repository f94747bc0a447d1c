// The add-in's menu on the host's "Worksheet Menu Bar".
#pragma once

#include <string_view>

#include "settings/Macros.h"
#include "settings/SharedState.h"

namespace rowlark {

struct MenuEntry {
  std::u16string_view key;  // of its text
  std::u16string_view caption;
  Macro macro;
  bool begin_group;
};

inline constexpr MenuEntry kMenuEntries[] = {
    {u"Menu.Find", u"S&earch...", Macro::ShowSearch, false},
    {u"Menu.Unhide", u"&Show All", Macro::Unhide, false},
    {u"Menu.Preferences", u"&Options...", Macro::ShowOptions, true},
    {u"Menu.Help", u"&Help...", Macro::CallHelp, true},
    {u"Menu.TechSupport", u"&Technical Support", Macro::CallTechSupport, false},
    {u"Menu.About", u"&About...", Macro::ShowAbout, true},
};

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
