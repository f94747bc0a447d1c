#include "server/Objects.h"
#include "server/Arguments.h"
#include "server/WindowsProgram.h"

namespace rowlark::server {

using automation::NewBstr;
using automation::View;

// Options

HRESULT OptionsObject::get_CompareMethod(long* result) noexcept {
  return Get(result, [this] { return static_cast<long>(core_->CompareMethod); });
}
HRESULT OptionsObject::put_CompareMethod(long value) noexcept {
  return Do([&] { core_->CompareMethod = static_cast<CompareMode>(value); });
}
HRESULT OptionsObject::get_SearchWords(::xeVT_SEARCH_WORDS* result) noexcept {
  return Get(result, [this] { return static_cast<::xeVT_SEARCH_WORDS>(core_->SearchWords); });
}
HRESULT OptionsObject::put_SearchWords(::xeVT_SEARCH_WORDS value) noexcept {
  return Do([&] {
    if (value < ::xcVT_SEARCH_WORDS_ALL || value > ::xcVT_SEARCH_WORDS_CELL) {
      throw AutomationError::InvalidCall({});
    }
    core_->SearchWords = static_cast<rowlark::xeVT_SEARCH_WORDS>(value);
  });
}
HRESULT OptionsObject::get_ExtSearch(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->ExtSearch); });
}
HRESULT OptionsObject::put_ExtSearch(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->ExtSearch = value != VARIANT_FALSE; });
}
HRESULT OptionsObject::get_UseFilter(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->UseFilter); });
}
HRESULT OptionsObject::put_UseFilter(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->UseFilter = value != VARIANT_FALSE; });
}
HRESULT OptionsObject::get_UnhideOnEsc(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->UnhideOnEsc); });
}
HRESULT OptionsObject::put_UnhideOnEsc(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->UnhideOnEsc = value != VARIANT_FALSE; });
}

// Item

HRESULT ItemObject::get_UsingAutoRange(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->UsingAutoRange); });
}
HRESULT ItemObject::put_UsingAutoRange(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->UsingAutoRange = value != VARIANT_FALSE; });
}
HRESULT ItemObject::get_UnhideJumpFirstRow(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->UnhideJumpFirstRow); });
}
HRESULT ItemObject::put_UnhideJumpFirstRow(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->UnhideJumpFirstRow = value != VARIANT_FALSE; });
}
HRESULT ItemObject::get_DontSaveChanges(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->DontSaveChanges); });
}
HRESULT ItemObject::put_DontSaveChanges(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->DontSaveChanges = value != VARIANT_FALSE; });
}
HRESULT ItemObject::get_SearchCols(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->SearchCols); });
}
HRESULT ItemObject::put_SearchCols(BSTR value) noexcept {
  return Do([&] { core_->SearchCols = View(value); });
}
HRESULT ItemObject::get_SelectCol(long* result) noexcept {
  return Get(result, [this] { return long{core_->SelectCol}; });
}
HRESULT ItemObject::put_SelectCol(long value) noexcept {
  return Do([&] { core_->SelectCol = static_cast<int32_t>(value); });
}
HRESULT ItemObject::get_SearchRange(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->SearchRange()); });
}
HRESULT ItemObject::get_StartCol(long* result) noexcept {
  return Get(result, [this] { return long{core_->StartCol()}; });
}
HRESULT ItemObject::put_StartCol(long value) noexcept {
  return Do([&] { core_->SetStartCol(static_cast<int32_t>(value)); });
}
HRESULT ItemObject::get_StartRow(long* result) noexcept {
  return Get(result, [this] { return long{core_->StartRow()}; });
}
HRESULT ItemObject::put_StartRow(long value) noexcept {
  return Do([&] { core_->SetStartRow(static_cast<int32_t>(value)); });
}
HRESULT ItemObject::get_EndCol(long* result) noexcept {
  return Get(result, [this] { return long{core_->EndCol()}; });
}
HRESULT ItemObject::put_EndCol(long value) noexcept {
  return Do([&] { core_->SetEndCol(static_cast<int32_t>(value)); });
}
HRESULT ItemObject::get_EndRow(long* result) noexcept {
  return Get(result, [this] { return long{core_->EndRow()}; });
}
HRESULT ItemObject::put_EndRow(long value) noexcept {
  return Do([&] { core_->SetEndRow(static_cast<int32_t>(value)); });
}
HRESULT ItemObject::get_FileFullName(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->FileFullName()); });
}
HRESULT ItemObject::put_FileFullName(BSTR value) noexcept {
  return Do([&] { core_->SetFileFullName(View(value)); });
}
HRESULT ItemObject::get_Name(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->Name()); });
}
HRESULT ItemObject::ToString(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->ToString()); });
}
HRESULT ItemObject::ToObject(BSTR data, VARIANT_BOOL* result) noexcept {
  return Get(result, [&] { return Flag(core_->ToObject(View(data))); });
}
HRESULT ItemObject::Clone(BSTR file_full_name, _clsVTRLKItem** result) noexcept {
  return Get(result,
             [&] { return Wrap<ItemObject, _clsVTRLKItem>(module_, core_->Clone(View(file_full_name))); });
}

// Recent items

HRESULT RecentItemsObject::get_Use(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->Use); });
}
HRESULT RecentItemsObject::put_Use(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->Use = value != VARIANT_FALSE; });
}
HRESULT RecentItemsObject::get_IsTemporary(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->IsTemporary); });
}
HRESULT RecentItemsObject::put_IsTemporary(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->IsTemporary = value != VARIANT_FALSE; });
}
HRESULT RecentItemsObject::get_MaxItemsCount(long* result) noexcept {
  return Get(result, [this] { return long{core_->MaxItemsCount}; });
}
HRESULT RecentItemsObject::put_MaxItemsCount(long value) noexcept {
  return Do([&] { core_->MaxItemsCount = static_cast<int32_t>(value); });
}
HRESULT RecentItemsObject::Add(BSTR item) noexcept {
  return Do([&] { core_->Add(View(item)); });
}
HRESULT RecentItemsObject::Clear() noexcept {
  return Do([this] { core_->Clear(); });
}
HRESULT RecentItemsObject::get_count(long* result) noexcept {
  return Get(result, [this] { return long{core_->count()}; });
}
HRESULT RecentItemsObject::Exists(BSTR text, VARIANT_BOOL* result) noexcept {
  return Get(result, [&] { return Flag(core_->Exists(View(text))); });
}
HRESULT RecentItemsObject::get_Item(long index, BSTR* result) noexcept {
  return Get(result, [&] { return NewBstr(core_->Item(static_cast<int32_t>(index))); });
}
HRESULT RecentItemsObject::ToString(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->ToString()); });
}
HRESULT RecentItemsObject::ToObject(BSTR data) noexcept {
  return Do([&] { core_->ToObject(View(data)); });
}

// Items

HRESULT ItemsObject::get_UnhideOnEsc(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->UnhideOnEsc); });
}
HRESULT ItemsObject::put_UnhideOnEsc(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->UnhideOnEsc = value != VARIANT_FALSE; });
}
HRESULT ItemsObject::get_RowsIsGrouped(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->RowsIsGrouped); });
}
HRESULT ItemsObject::put_RowsIsGrouped(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->RowsIsGrouped = value != VARIANT_FALSE; });
}
HRESULT ItemsObject::get_EditAutoClose(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->EditAutoClose); });
}
HRESULT ItemsObject::put_EditAutoClose(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->EditAutoClose = value != VARIANT_FALSE; });
}
HRESULT ItemsObject::get_AutoDetectSearchText(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->AutoDetectSearchText); });
}
HRESULT ItemsObject::put_AutoDetectSearchText(VARIANT_BOOL value) noexcept {
  return Do([&] { core_->AutoDetectSearchText = value != VARIANT_FALSE; });
}
HRESULT ItemsObject::get_CfgFileName(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->CfgFileName); });
}
HRESULT ItemsObject::put_CfgFileName(BSTR value) noexcept {
  return Do([&] { core_->CfgFileName = View(value); });
}
HRESULT ItemsObject::get_mstrHotKeyUnhide(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->mstrHotKeyUnhide); });
}
HRESULT ItemsObject::put_mstrHotKeyUnhide(BSTR value) noexcept {
  return Do([&] { core_->mstrHotKeyUnhide = View(value); });
}
HRESULT ItemsObject::get_DefaultItem(_clsVTRLKItem** result) noexcept {
  return Get(result, [this] { return Wrap<ItemObject, _clsVTRLKItem>(module_, core_->DefaultItem); });
}
HRESULT ItemsObject::put_DefaultItem(_clsVTRLKItem* value) noexcept {
  return Do([&] { core_->DefaultItem = Unwrap<::clsVTRLKItem, clsVTRLKItem>(value); });
}
HRESULT ItemsObject::get_RecentItems(_clsVTRLKRecentItems** result) noexcept {
  return Get(result,
             [this] { return Wrap<RecentItemsObject, _clsVTRLKRecentItems>(module_, core_->RecentItems); });
}
HRESULT ItemsObject::put_RecentItems(_clsVTRLKRecentItems* value) noexcept {
  return Do([&] { core_->RecentItems = Unwrap<::clsVTRLKRecentItems, clsVTRLKRecentItems>(value); });
}
HRESULT ItemsObject::get_HotKeySearch(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->HotKeySearch()); });
}
HRESULT ItemsObject::put_HotKeySearch(BSTR value) noexcept {
  return Do([&] { core_->SetHotKeySearch(View(value)); });
}
HRESULT ItemsObject::get_HotKeyUnhide(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->HotKeyUnhide()); });
}
HRESULT ItemsObject::put_HotKeyUnhide(BSTR value) noexcept {
  return Do([&] { core_->SetHotKeyUnhide(View(value)); });
}
HRESULT ItemsObject::Add(_clsVTRLKItem* item, VARIANT_BOOL* result) noexcept {
  return Get(result, [&] { return Flag(core_->Add(Unwrap<::clsVTRLKItem, clsVTRLKItem>(item))); });
}
HRESULT ItemsObject::Remove(BSTR name) noexcept {
  return Do([&] { core_->Remove(View(name)); });
}
HRESULT ItemsObject::Clear() noexcept {
  return Do([this] { core_->Clear(); });
}
HRESULT ItemsObject::get_count(long* result) noexcept {
  return Get(result, [this] { return long{core_->count()}; });
}
HRESULT ItemsObject::get_ByName(BSTR name, _clsVTRLKItem** result) noexcept {
  return Get(result, [&] { return Wrap<ItemObject, _clsVTRLKItem>(module_, core_->ByName(View(name))); });
}
HRESULT ItemsObject::put_ByName(BSTR name, _clsVTRLKItem* value) noexcept {
  return Do([&] { core_->SetByName(View(name), Unwrap<::clsVTRLKItem, clsVTRLKItem>(value)); });
}
HRESULT ItemsObject::get_Item(long index, _clsVTRLKItem** result) noexcept {
  return Get(result, [&] {
    return Wrap<ItemObject, _clsVTRLKItem>(module_, core_->Item(static_cast<int32_t>(index)));
  });
}
HRESULT ItemsObject::put_Item(long index, _clsVTRLKItem* value) noexcept {
  return Do(
      [&] { core_->SetItem(static_cast<int32_t>(index), Unwrap<::clsVTRLKItem, clsVTRLKItem>(value)); });
}
HRESULT ItemsObject::Exists(BSTR name, VARIANT_BOOL* result) noexcept {
  return Get(result, [&] { return Flag(core_->Exists(View(name))); });
}
HRESULT ItemsObject::ToString(VARIANT_BOOL reset_lang_file, BSTR* result) noexcept {
  return Get(result, [&] { return NewBstr(core_->ToString(reset_lang_file != VARIANT_FALSE)); });
}
HRESULT ItemsObject::ToObject(BSTR data, VARIANT_BOOL* result) noexcept {
  return Get(result, [&] { return Flag(core_->ToObject(View(data))); });
}
HRESULT ItemsObject::CfgSave(VARIANT_BOOL reset_lang_file, VARIANT_BOOL* result) noexcept {
  return Get(result, [&] { return Flag(core_->CfgSave(reset_lang_file != VARIANT_FALSE)); });
}
HRESULT ItemsObject::CfgLoad(VARIANT_BOOL* result) noexcept {
  return Get(result, [this] { return Flag(core_->CfgLoad()); });
}

// Language

LangObject::LangObject(Module& module, std::shared_ptr<clsVTRLKLang> core)
    : DualObject(module, u"clsVTRLKLang", std::move(core)) {
  events_ = std::make_unique<automation::EventSource>(*static_cast<_clsVTRLKLang*>(this),
                                                      __uuidof(__clsVTRLKLang), module.Program().Trace());
  new_language_ = core_->NewLangLoaded().Connect([this](const std::u16string& file) {
    automation::Variant argument(file);
    events_->Fire(1, &argument, 1);
  });
}
HRESULT LangObject::get_Path(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->Path()); });
}
HRESULT LangObject::put_Path(BSTR value) noexcept {
  return Do([&] { core_->SetPath(View(value)); });
}
HRESULT LangObject::get_HelpFile(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->HelpFile()); });
}
HRESULT LangObject::get_LangFile(BSTR* result) noexcept {
  return Get(result, [this] { return NewBstr(core_->LangFile()); });
}
HRESULT LangObject::put_LangFile(BSTR value) noexcept {
  return Do([&] { core_->SetLangFile(View(value)); });
}
HRESULT LangObject::LoadLangFile() noexcept {
  return Do([this] { core_->LoadLangFile(); });
}
HRESULT LangObject::GetText(BSTR key, BSTR default_text, VARIANT replace_array, VARIANT* accelerator,
                            BSTR* result) noexcept {
  return Get(result, [&] {
    const TextReference reference(accelerator);
    std::u16string letter;
    const auto text = core_->GetText(View(key), View(default_text), TextsOf(replace_array),
                                     reference.Given() ? &letter : nullptr);
    reference.Write(letter);
    return NewBstr(text);
  });
}

}  // namespace rowlark::server
