// Hiding rows and making them visible again.
#pragma once

#include <memory>
#include <string>

#include "host/spreadsheet.h"
#include "settings/SharedState.h"
#include "settings/clsVTRLKItems.h"

namespace rowlark {

// Hides the rows of the range, or shows rows again: all of the range's on a sheet without an AutoFilter; on a
// sheet with one, those around the filter's data, and of its data those that pass the filters. False, and the
// host's own words in `error`, when the host refuses.
bool HideRows(host::Worksheet& sheet, host::Range& range, bool hide, Trace* trace, std::u16string& error);

// Shows all rows of the active sheet and goes to the place that the workbook's profile asks for. False, and a
// localised text in `error`, when that failed. Called from a search it leaves the screen switched off.
// `screen` is the caller's hold on ScreenUpdating. The host may call back: the caller holds what it passes.
bool ShowAll(SharedState& shared, const host::Application& application, FlagScope& screen,
             clsVTRLKItems& items, bool call_from_search, std::u16string& error);

// The profile of the active workbook, or the default profile. Throws host::Error.
std::shared_ptr<clsVTRLKItem> ActiveProfile(const host::Application& application, clsVTRLKItems& items);

}  // namespace rowlark
