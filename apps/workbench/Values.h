// Cell texts as automation values and back.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "automation/Variant.h"
#include "host/cells/Address.h"
#include "host/cells/CellText.h"
#include "host/spreadsheet.h"

namespace rowlark::workbench {

// A text that a number, a truth value or an error would show is that value; no text is VT_EMPTY.
automation::Variant ToValue(std::string_view cell);
// A block of cells as a two-dimensional array, from 1. Throws std::bad_alloc.
automation::Variant ToValues(const cells::CellText& text, const Block& block);

// What a cell shows when the value is typed into it. Throws Failure for what is no single value.
std::u16string ToCellText(const VARIANT& value);

// A text, or a list of texts as a one-dimensional array from 1.
automation::Variant FromCriterion(const host::Criterion& criterion);
host::Criterion ToCriterion(const VARIANT& value);

}  // namespace rowlark::workbench
