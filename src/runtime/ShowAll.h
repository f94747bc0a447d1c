// Hiding rows and making them visible again.
#pragma once

#include <memory>
#include <string>

#include "host/spreadsheet.h"
#include "settings/SharedState.h"
#include "settings/clsVTRLKItems.h"

namespace rowlark {

// Which rows of the sheet are visible afterwards.
enum class Shown : uint8_t {
  Unknown,  // it failed
  Passing,  // all that no AutoFilter hides
  Every,
};

// What a search has asked the host by the time it shows all rows.
struct SearchedSheet {
  Ref<host::Worksheet> sheet;  // the active one
  std::shared_ptr<clsVTRLKItem> profile;
  int32_t used_column = 0;  // the first one of the used range, where the profile fixes none; 0: not asked
};

// Shows all rows of the active sheet and goes to the place that the workbook's profile asks for. A localised
// text in `error` when that failed. Called from a search it leaves the screen switched off. `screen` is the
// caller's hold on ScreenUpdating. The host may call back: the caller holds what it passes.
Shown ShowAll(SharedState& shared, const host::Application& application, FlagScope& screen,
              clsVTRLKItems& items, bool call_from_search, std::u16string& error,
              const SearchedSheet* searched = nullptr);

// The profile of the active workbook, or the default profile. Throws host::Error.
std::shared_ptr<clsVTRLKItem> ActiveProfile(const host::Application& application, clsVTRLKItems& items);

}  // namespace rowlark
