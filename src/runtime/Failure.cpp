#include "runtime/Failure.h"

#include <exception>

#include "util/AutomationError.h"
#include "util/Utf.h"

namespace rowlark {

std::u16string CurrentDescription() {
  try {
    throw;
  } catch (const host::Error& error) {
    return error.Description();
  } catch (const AutomationError& error) {
    return error.Description();
  } catch (const std::exception& error) {
    return ToUtf16(error.what());
  } catch (...) {
    return u"Unspecified error";
  }
}

std::u16string GenericError(clsVTRLKLang& language) {
  return language.GetText(u"Err.Generic", u"Error: %1", CurrentDescription());
}

}  // namespace rowlark
