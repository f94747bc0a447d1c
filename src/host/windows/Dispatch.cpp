#include "host/windows/Dispatch.h"

#include <cwchar>
#include <optional>

#include <dispex.h>
#include <windows.h>

#include "host/Error.h"

namespace rowlark::windows {
namespace {

using automation::Bstr;
using automation::ComPtr;
using automation::kLocale;
using automation::Variant;

// What Excel answers in-process while a cell is being edited.
constexpr HRESULT kVbaIgnore = static_cast<HRESULT>(0x800AC472u);

// The run-time error of a member that an object does not have.
constexpr int32_t kNoSuchMember = 438;

// The id that an object gives to a name; nothing when it has no such member.
std::optional<DISPID> IdOfName(IDispatch& object, const wchar_t* name) {
  DISPID id = DISPID_UNKNOWN;
  auto* text = const_cast<wchar_t*>(name);
  HRESULT result = object.GetIDsOfNames(IID_NULL, &text, 1, kLocale, &id);
  if (result == E_NOTIMPL) {  // objects of script engines
    const auto extended = ComPtr<IDispatchEx>::From(&object);
    if (extended) {
      result = extended->GetDispID(Bstr(windows::AsUtf16(name)).get(), fdexNameCaseInsensitive, &id);
    }
  }
  if (result == DISP_E_UNKNOWNNAME || result == DISP_E_MEMBERNOTFOUND) return std::nullopt;
  if (FAILED(result)) ThrowError(result);
  return id;
}

// The system's words for a result, in the user's language.
std::u16string SystemText(HRESULT result) {
  wchar_t* buffer = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
  std::u16string text;
  if (length > 0) text.assign(windows::AsUtf16(buffer), length);
  LocalFree(buffer);
  text.resize(text.find_last_not_of(u" \r\n") + 1);
  return text;
}

std::u16string Describe(HRESULT result) {
  switch (result) {
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
      return u"Object doesn't support this property or method";
    case RPC_E_CALL_REJECTED:
    case RPC_E_SERVERCALL_RETRYLATER:
    case kVbaIgnore: {  // one and the same to the user
      auto text = SystemText(RPC_E_SERVERCALL_RETRYLATER);
      return text.empty() ? u"The application is busy" : text;
    }
    default:
      break;
  }
  auto text = SystemText(result);
  if (!text.empty()) return text;
  if (HRESULT_FACILITY(result) == FACILITY_CONTROL) return u"Application-defined or object-defined error";
  wchar_t number[32];
  std::swprintf(number, std::size(number), L"Automation error 0x%08lX", static_cast<unsigned long>(result));
  return windows::AsUtf16(number);
}

int32_t NumberOf(HRESULT result) {
  if (result == DISP_E_UNKNOWNNAME || result == DISP_E_MEMBERNOTFOUND) return kNoSuchMember;
  return HRESULT_FACILITY(result) == FACILITY_CONTROL ? HRESULT_CODE(result) : result;
}

}  // namespace

bool Member::IsOf(IDispatch& object) const { return IdOfName(object, name_).has_value(); }

DISPID Member::LookUp(IDispatch& object) const {
  const auto id = IdOfName(object, name_);
  if (!id) ThrowError(DISP_E_UNKNOWNNAME);
  return *id;
}

void ThrowError(HRESULT result, EXCEPINFO* exception) {
  if (result != DISP_E_EXCEPTION || exception == nullptr) {
    throw host::Error(NumberOf(result), Describe(result));
  }
  if (exception->pfnDeferredFillIn != nullptr) exception->pfnDeferredFillIn(exception);
  Bstr source;
  Bstr description;
  Bstr help_file;
  *source.Put() = exception->bstrSource;
  *description.Put() = exception->bstrDescription;
  *help_file.Put() = exception->bstrHelpFile;
  const HRESULT code = exception->scode != 0 ? exception->scode : result;
  const int32_t number = exception->scode == 0 && exception->wCode != 0 ? exception->wCode : NumberOf(code);
  if (description.View().empty()) throw host::Error(number, Describe(code));
  throw host::Error(number, std::u16string(description.View()));
}

void ThrowNothing() { throw host::Error(91, u"Object variable or With block variable not set"); }

Variant Converted(const VARIANT& value, VARTYPE type, LCID locale) {
  Variant converted;
  const HRESULT result = VariantChangeTypeEx(&converted, const_cast<VARIANT*>(&value), locale, 0, type);
  if (FAILED(result)) ThrowError(result);
  return converted;
}

// What is read may be a property or a method; late-bound callers leave that to the object.
void Dispatch::InvokeWith(Member& member, VARIANT* arguments, std::size_t count, VARIANT* result) const {
  IDispatch& object = *object_;
  DISPPARAMS parameters{arguments, nullptr, static_cast<UINT>(count), 0};
  EXCEPINFO exception{};
  const auto flags =
      static_cast<WORD>(result == nullptr ? DISPATCH_METHOD : DISPATCH_METHOD | DISPATCH_PROPERTYGET);
  const HRESULT outcome =
      object.Invoke(member.Id(object), IID_NULL, kLocale, flags, &parameters, result, &exception, nullptr);
  if (FAILED(outcome)) ThrowError(outcome, &exception);
}

void Dispatch::Put(Member& member, const Variant& value, LCID locale) const {
  IDispatch& object = *object_;
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS parameters{const_cast<Variant*>(&value), &named, 1, 1};
  EXCEPINFO exception{};
  const HRESULT outcome = object.Invoke(member.Id(object), IID_NULL, locale, DISPATCH_PROPERTYPUT,
                                        &parameters, nullptr, &exception, nullptr);
  if (FAILED(outcome)) ThrowError(outcome, &exception);
}

Dispatch Dispatch::ConvertedToObject(const VARIANT& result) {
  if (result.vt == VT_EMPTY || result.vt == VT_NULL) return {};
  return Dispatch(ComPtr<IDispatch>(Converted(result, VT_DISPATCH).pdispVal));
}

int32_t Dispatch::Long(Member& member) const {
  Variant result;
  InvokeWith(member, nullptr, 0, &result);
  return result.vt == VT_I4 ? result.lVal : Converted(result, VT_I4).lVal;
}

double Dispatch::Double(Member& member) const {
  const Variant result = Get(member);
  return result.vt == VT_R8 ? result.dblVal : Converted(result, VT_R8).dblVal;
}

bool Dispatch::Bool(Member& member) const {
  Variant result;
  InvokeWith(member, nullptr, 0, &result);
  if (result.vt == VT_NULL) return false;
  return (result.vt == VT_BOOL ? result.boolVal : Converted(result, VT_BOOL).boolVal) != VARIANT_FALSE;
}

std::u16string Dispatch::Text(Member& member) const {
  const Variant result = Get(member);
  if (result.vt == VT_EMPTY || result.vt == VT_NULL) return {};
  if (result.vt == VT_BSTR) return std::u16string(automation::View(result.bstrVal));
  return std::u16string(automation::View(Converted(result, VT_BSTR).bstrVal));
}

}  // namespace rowlark::windows
