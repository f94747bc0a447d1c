// Values of cells and criteria of filters as texts, and back.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "automation/Variant.h"
#include "host/spreadsheet.h"

namespace rowlark::windows {

// The value of one cell as the user knows it: numbers with up to 15 digits and the user's decimal separator,
// errors by their names, empty cells as no text. `shown` asks the cell for the text it shows, which alone has
// the formats of dates and currency and the host's words for truth. Throws host::Error.
std::u16string CellText(const VARIANT& value, const std::function<std::u16string()>& shown);

// A text, or a list of texts as a one-dimensional array. Both throw host::Error.
automation::Variant CriterionValue(const std::optional<host::Criterion>& criterion);  // missing for none
host::Criterion ToCriterion(const VARIANT& value);

}  // namespace rowlark::windows
