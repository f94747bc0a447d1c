#include "host/windows/ExcelValues.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "automation/Arrays.h"
#include "automation/ErrorValues.h"
#include "host/windows/Dispatch.h"

namespace rowlark::windows {
namespace {

using automation::kErrorValues;
using automation::Variant;

std::u16string PlainText(const VARIANT& value, LCID locale = LOCALE_USER_DEFAULT) {
  if (value.vt == VT_EMPTY || value.vt == VT_NULL) return {};
  if (value.vt == VT_BSTR) return std::u16string(automation::View(value.bstrVal));
  return std::u16string(automation::View(Converted(value, VT_BSTR, locale).bstrVal));
}

// A column too narrow for a date shows a row of these.
bool IsFiller(std::u16string_view text) { return text.find_first_not_of(u'#') == std::u16string_view::npos; }

Variant Element(SAFEARRAY* array, VARTYPE type, LONG index) {
  Variant element;
  HRESULT result = DISP_E_TYPEMISMATCH;
  if (type == VT_VARIANT) {
    result = SafeArrayGetElement(array, &index, &element);
  } else if (type == VT_BSTR) {
    element.vt = VT_BSTR;
    element.bstrVal = nullptr;
    result = SafeArrayGetElement(array, &index, &element.bstrVal);
  }
  if (FAILED(result)) ThrowError(result);
  return element;
}

}  // namespace

std::u16string CellText(const VARIANT& value, const std::function<std::u16string()>& shown) {
  switch (value.vt) {
    case VT_ERROR: {
      const auto* error = std::ranges::find(kErrorValues, value.scode, &automation::ErrorValue::code);
      return error != std::end(kErrorValues) ? std::u16string(error->text) : shown();
    }
    case VT_DATE:
    case VT_CY:
    case VT_BOOL: {
      auto text = shown();
      return IsFiller(text) ? PlainText(value) : text;
    }
    default:
      return PlainText(value);
  }
}

Variant CriterionValue(const std::optional<host::Criterion>& criterion) {
  if (!criterion) return Variant::Missing();
  if (const auto* text = std::get_if<std::u16string>(&*criterion)) return std::u16string_view(*text);
  return automation::ArrayOf(std::get<std::vector<std::u16string>>(*criterion), 0);
}

// A criterion is read to be set again: its numbers are written as the host reads them then.
host::Criterion ToCriterion(const VARIANT& value) {
  if ((value.vt & VT_ARRAY) == 0) return PlainText(value, automation::kLocale);
  SAFEARRAY* array = (value.vt & VT_BYREF) != 0 ? *value.pparray : value.parray;
  LONG first = 0;
  LONG last = -1;
  const HRESULT result = SafeArrayGetLBound(array, 1, &first);
  if (FAILED(result) || SafeArrayGetDim(array) != 1) ThrowError(DISP_E_TYPEMISMATCH);
  SafeArrayGetUBound(array, 1, &last);
  std::vector<std::u16string> texts;
  for (LONG i = first; i <= last; ++i) {
    texts.push_back(PlainText(Element(array, value.vt & VT_TYPEMASK, i), automation::kLocale));
  }
  return texts;
}

}  // namespace rowlark::windows
