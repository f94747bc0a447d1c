#include "Values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

#include "Call.h"
#include "automation/Arrays.h"
#include "automation/ErrorValues.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::workbench {
namespace {

using automation::kErrorValues;
using automation::Variant;

std::string NumberText(double number) {
  std::array<char, 40> digits;
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), number, std::chars_format::general, 15);
  std::string text(digits.data(), end.ptr);
  std::ranges::replace(text, 'e', 'E');
  return text;
}

// Only where the number shows as that very text: "007" and "1.50" stay texts, so that nothing is lost.
std::optional<double> Number(std::string_view text) {
  if (text.empty() || text.size() > 20 || (text.back() > '9' || text.back() < '0')) return std::nullopt;
  double number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
  if (end.ec != std::errc() || end.ptr != text.data() + text.size()) return std::nullopt;
  if (!std::isfinite(number) || NumberText(number) != text || text == "-0") return std::nullopt;
  return number;
}

// The one-dimensional array in a value; null when there is none.
SAFEARRAY* List(const VARIANT& value) {
  if ((value.vt & VT_ARRAY) == 0) return nullptr;
  SAFEARRAY* array = (value.vt & VT_BYREF) != 0 ? *value.pparray : value.parray;
  const VARTYPE type = value.vt & VT_TYPEMASK;
  if (array == nullptr || SafeArrayGetDim(array) != 1 || (type != VT_VARIANT && type != VT_BSTR)) {
    throw Failure{DISP_E_TYPEMISMATCH, &value};
  }
  return array;
}

}  // namespace

Variant ToValue(std::string_view cell) {
  if (cell.empty()) return {};
  if (cell == "TRUE" || cell == "FALSE") return cell == "TRUE";
  if (cell.front() == '#') {
    const auto* error = std::ranges::find(kErrorValues, ToUtf16(cell), &automation::ErrorValue::text);
    if (error != std::end(kErrorValues)) {
      Variant value;
      value.vt = VT_ERROR;
      value.scode = error->code;
      return value;
    }
  }
  if (const auto number = Number(cell)) return *number;
  return std::u16string_view(ToUtf16(cell));
}

Variant ToValues(const cells::CellText& text, const Block& block) {
  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(block.Rows()), 1}, {static_cast<ULONG>(block.Columns()), 1}};
  Variant array = automation::NewArray(bounds);
  VARIANT* place = automation::Elements(array);
  for (int32_t column = block.first_column; column <= block.last_column; ++column) {
    for (int32_t row = block.first_row; row <= block.last_row; ++row) {
      *place++ = ToValue(text.Cell(row, column)).Detach();
    }
  }
  return array;
}

std::u16string ToCellText(const VARIANT& value) {
  Variant plain;
  if (value.vt == VT_BSTR) return std::u16string(automation::View(value.bstrVal));
  if (FAILED(VariantCopyInd(&plain, const_cast<VARIANT*>(&value))))
    throw Failure{DISP_E_TYPEMISMATCH, &value};
  switch (plain.vt) {
    case VT_BSTR:
      return std::u16string(automation::View(plain.bstrVal));
    case VT_EMPTY:
      return {};
    case VT_BOOL:
      return plain.boolVal != VARIANT_FALSE ? u"TRUE" : u"FALSE";
    case VT_R8:
      return ToUtf16(NumberText(plain.dblVal));
    case VT_ERROR:
      for (const auto& [code, text] : kErrorValues) {
        if (plain.scode == code) return std::u16string(text);
      }
      break;
    default:
      if ((plain.vt & VT_ARRAY) == 0 && SUCCEEDED(VariantChangeType(&plain, &plain, 0, VT_BSTR))) {
        return std::u16string(automation::View(plain.bstrVal));
      }
  }
  throw Failure{DISP_E_TYPEMISMATCH, &value};
}

Variant FromCriterion(const host::Criterion& criterion) {
  if (const auto* text = std::get_if<std::u16string>(&criterion)) return std::u16string_view(*text);
  return automation::ArrayOf(std::get<std::vector<std::u16string>>(criterion), 1);
}

host::Criterion ToCriterion(const VARIANT& value) {
  SAFEARRAY* list = List(value);
  if (list == nullptr) return ToCellText(value);
  LONG first = 0;
  LONG last = -1;
  SafeArrayGetLBound(list, 1, &first);
  SafeArrayGetUBound(list, 1, &last);
  std::vector<std::u16string> texts;
  for (LONG i = first; i <= last; ++i) {
    Variant element;
    if ((value.vt & VT_TYPEMASK) == VT_BSTR) {
      element.vt = VT_BSTR;
      SafeArrayGetElement(list, &i, &element.bstrVal);
    } else {
      SafeArrayGetElement(list, &i, &element);
    }
    try {
      texts.push_back(ToCellText(element));
    } catch (const Failure&) {
      throw Failure{DISP_E_TYPEMISMATCH, &value};
    }
  }
  return texts;
}

}  // namespace rowlark::workbench
