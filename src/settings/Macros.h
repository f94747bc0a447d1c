// The macros of the add-in workbook, which the menu and the hotkeys run; each forwards to an operation of the
// runtime object.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

namespace rowlark {

enum class Macro : uint8_t { ShowSearch, Unhide, ShowOptions, CallHelp, CallTechSupport, ShowAbout };

// In the order of the enumeration.
inline constexpr std::u16string_view kMacroNames[] = {u"VantrelRLK_ShowSearch",      u"VantrelRLK_Unhide",
                                                      u"VantrelRLK_ShowOptions",     u"VantrelRLK_CallHelp",
                                                      u"VantrelRLK_CallTechSupport", u"VantrelRLK_ShowAbout"};

constexpr std::u16string_view NameOf(Macro macro) { return kMacroNames[static_cast<std::size_t>(macro)]; }

// Nothing for a name that is not one of ours.
constexpr std::optional<Macro> MacroOf(std::u16string_view name) {
  const auto* const found = std::ranges::find(kMacroNames, name);
  if (found == std::end(kMacroNames)) return std::nullopt;
  return static_cast<Macro>(found - std::begin(kMacroNames));
}

}  // namespace rowlark
