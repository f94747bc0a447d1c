#include "host/windows/Dispatch.h"
#include "host/windows/ExcelAdapter.h"
#include "server/Arguments.h"
#include "server/Objects.h"
#include "server/WindowsProgram.h"

namespace rowlark::server {
namespace {

using automation::NewBstr;
using automation::View;

// Calls an operation that tells in a text why it failed. Where nothing was begun the caller's text stays.
template <class Operation>
VARIANT_BOOL Try(VARIANT* error, Operation operation) {
  const TextReference reference(error);
  const OperationResult result = operation();
  if (result.outcome != Outcome::Refused) reference.Write(result.error);
  return Flag(result.outcome == Outcome::Done);
}

}  // namespace

RuntimeObject::RuntimeObject(Module& module)
    : DualObject(module, u"clsVTRLKRuntime",
                 std::make_shared<clsVTRLKRuntime>(module.Program().Shared, module.Program().Forms)) {
  events_ = std::make_unique<automation::EventSource>(*static_cast<_clsVTRLKRuntime*>(this),
                                                      __uuidof(__clsVTRLKRuntime), module.Program().Trace());
  searching_ = core_->SearchingEvent().Connect([this](bool& searching) {
    VARIANT_BOOL flag = Flag(searching);
    VARIANT argument;
    VariantInit(&argument);
    argument.vt = VT_BOOL | VT_BYREF;
    argument.pboolVal = &flag;
    events_->Fire(1, &argument, 1);
    searching = flag != VARIANT_FALSE;
  });
}

// Its forms go at once, and end what they wait for.
void RuntimeObject::LetGo() noexcept {
  new_language_.Release();
  module_.Program().Forms.Unload(core_.get());
}

HRESULT RuntimeObject::get_Items(_clsVTRLKItems** result) noexcept {
  return Get(result, [this] { return Wrap<ItemsObject, _clsVTRLKItems>(module_, core_->Items); });
}
HRESULT RuntimeObject::put_Items(_clsVTRLKItems* value) noexcept {
  return Do([&] { core_->Items = Unwrap<::clsVTRLKItems, clsVTRLKItems>(value); });
}
HRESULT RuntimeObject::get_SearchOptions(_clsVTRLKOptions** result) noexcept {
  return Get(result, [this] { return Wrap<OptionsObject, _clsVTRLKOptions>(module_, core_->SearchOptions); });
}
HRESULT RuntimeObject::put_SearchOptions(_clsVTRLKOptions* value) noexcept {
  return Do([&] { core_->SearchOptions = Unwrap<::clsVTRLKOptions, clsVTRLKOptions>(value); });
}
HRESULT RuntimeObject::put_ExcelApp(VARIANT value) noexcept {
  return Do([&] {
    const auto application = ObjectOf(value);
    core_->SetExcelApp(application ? windows::WrapExcel(application.get(), module_.Program().Trace())
                                   : nullptr);
  });
}
HRESULT RuntimeObject::get_Language(_clsVTRLKLang** result) noexcept {
  return Get(result,
             [this] { return Wrap<LangObject, _clsVTRLKLang>(module_, module_.Program().Shared.Language); });
}
HRESULT RuntimeObject::OnAddinInstall() noexcept {
  return Do([this] { core_->OnAddinInstall(); });
}
HRESULT RuntimeObject::get_Searching(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->Searching()); });
}
HRESULT RuntimeObject::StopSearch(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->StopSearch()); });
}
HRESULT RuntimeObject::Search(BSTR search, VARIANT* error, VARIANT_BOOL* result) noexcept {
  return Get(result, [&] { return Try(error, [&] { return core_->RunSearch(View(search)); }); });
}
HRESULT RuntimeObject::DetectSearchRange(VARIANT* sheet, VARIANT* item) noexcept {
  if (sheet == nullptr || item == nullptr) return E_POINTER;
  return Do([&] {
    const auto profile = Unwrap<::clsVTRLKItem, clsVTRLKItem>(ObjectOf(*item).get());
    const auto worksheet = ObjectOf(*sheet);
    if (!worksheet) throw AutomationError::TypeMismatch({});
    core_->DetectSearchRange(*windows::WrapWorksheet(worksheet.get()), *profile);
  });
}
HRESULT RuntimeObject::Unhide(VARIANT_BOOL call_from_search, VARIANT* error_log,
                              VARIANT_BOOL* result) noexcept {
  return Get(result, [&] {
    return Try(error_log, [&] { return core_->ShowAllRows(call_from_search != VARIANT_FALSE); });
  });
}
HRESULT RuntimeObject::About() noexcept {
  return Do([this] { core_->About(); });
}
HRESULT RuntimeObject::ShowOptions() noexcept {
  return Do([this] { core_->ShowOptions(); });
}
HRESULT RuntimeObject::ShowSearch() noexcept {
  return Do([this] { core_->ShowSearch(); });
}
HRESULT RuntimeObject::DoStop() noexcept {
  return Do([this] { core_->DoStop(); });
}
HRESULT RuntimeObject::CallTechSupport() noexcept {
  return Do([this] { core_->CallTechSupport(); });
}
HRESULT RuntimeObject::CallHelp() noexcept {
  return Do([this] { core_->CallHelp(); });
}
HRESULT RuntimeObject::MenuCreate() noexcept {
  return Do([this] { core_->MenuCreate(); });
}
HRESULT RuntimeObject::MenuRemove() noexcept {
  return Do([this] { core_->MenuRemove(); });
}
HRESULT RuntimeObject::StartEdit() noexcept {
  return Do([this] { core_->StartEdit(); });
}
HRESULT RuntimeObject::Init() noexcept {
  return Do([this] { core_->Init(); });
}
HRESULT RuntimeObject::get_HelpFile(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->HelpFile()); });
}
// The ribbon asks its owner for the labels anew, at once and with each new language.
HRESULT RuntimeObject::put_Ribbon(VARIANT value) noexcept {
  return Do([&] {
    new_language_.Release();
    const windows::Dispatch ribbon(ObjectOf(value));
    if (!ribbon) return;
    const auto renew = [ribbon](const std::u16string&) {
      windows::Member invalidate(L"Invalidate");
      ribbon.Call(invalidate);
    };
    renew({});
    new_language_ = module_.Program().Shared.Language->NewLangLoaded().Connect(renew);
  });
}

}  // namespace rowlark::server
