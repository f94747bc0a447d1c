// The objects that clients hold: thin, one member for one of the core's.
#pragma once

#include <memory>

#include "lang/clsVTRLKLang.h"
#include "runtime/clsVTRLKRuntime.h"
#include "server/DualObject.h"
#include "settings/clsVTRLKItem.h"
#include "settings/clsVTRLKItems.h"
#include "settings/clsVTRLKRecentItems.h"

namespace rowlark::server {

class OptionsObject final : public DualObject<_clsVTRLKOptions, ::clsVTRLKOptions, clsVTRLKOptions> {
 public:
  OptionsObject(Module& module, std::shared_ptr<clsVTRLKOptions> core)
      : DualObject(module, u"clsVTRLKOptions", std::move(core)) {}

  STDMETHODIMP get_CompareMethod(long* result) noexcept override;
  STDMETHODIMP put_CompareMethod(long value) noexcept override;
  STDMETHODIMP get_SearchWords(::xeVT_SEARCH_WORDS* result) noexcept override;
  STDMETHODIMP put_SearchWords(::xeVT_SEARCH_WORDS value) noexcept override;
  STDMETHODIMP get_ExtSearch(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_ExtSearch(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_UseFilter(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_UseFilter(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_UnhideOnEsc(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_UnhideOnEsc(VARIANT_BOOL value) noexcept override;
};

class ItemObject final : public DualObject<_clsVTRLKItem, ::clsVTRLKItem, clsVTRLKItem> {
 public:
  ItemObject(Module& module, std::shared_ptr<clsVTRLKItem> core)
      : DualObject(module, u"clsVTRLKItem", std::move(core)) {}

  STDMETHODIMP get_UsingAutoRange(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_UsingAutoRange(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_UnhideJumpFirstRow(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_UnhideJumpFirstRow(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_DontSaveChanges(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_DontSaveChanges(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_SearchCols(BSTR* result) noexcept override;
  STDMETHODIMP put_SearchCols(BSTR value) noexcept override;
  STDMETHODIMP get_SelectCol(long* result) noexcept override;
  STDMETHODIMP put_SelectCol(long value) noexcept override;
  STDMETHODIMP get_SearchRange(BSTR* result) noexcept override;
  STDMETHODIMP get_StartCol(long* result) noexcept override;
  STDMETHODIMP put_StartCol(long value) noexcept override;
  STDMETHODIMP get_StartRow(long* result) noexcept override;
  STDMETHODIMP put_StartRow(long value) noexcept override;
  STDMETHODIMP get_EndCol(long* result) noexcept override;
  STDMETHODIMP put_EndCol(long value) noexcept override;
  STDMETHODIMP get_EndRow(long* result) noexcept override;
  STDMETHODIMP put_EndRow(long value) noexcept override;
  STDMETHODIMP get_FileFullName(BSTR* result) noexcept override;
  STDMETHODIMP put_FileFullName(BSTR value) noexcept override;
  STDMETHODIMP get_Name(BSTR* result) noexcept override;
  STDMETHODIMP ToString(BSTR* result) noexcept override;
  STDMETHODIMP ToObject(BSTR data, VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP Clone(BSTR file_full_name, _clsVTRLKItem** result) noexcept override;
};

class RecentItemsObject final
    : public DualObject<_clsVTRLKRecentItems, ::clsVTRLKRecentItems, clsVTRLKRecentItems> {
 public:
  RecentItemsObject(Module& module, std::shared_ptr<clsVTRLKRecentItems> core)
      : DualObject(module, u"clsVTRLKRecentItems", std::move(core)) {}

  STDMETHODIMP get_Use(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_Use(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_IsTemporary(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_IsTemporary(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_MaxItemsCount(long* result) noexcept override;
  STDMETHODIMP put_MaxItemsCount(long value) noexcept override;
  STDMETHODIMP Add(BSTR item) noexcept override;
  STDMETHODIMP Clear() noexcept override;
  STDMETHODIMP get_count(long* result) noexcept override;
  STDMETHODIMP Exists(BSTR text, VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP get_Item(long index, BSTR* result) noexcept override;
  STDMETHODIMP ToString(BSTR* result) noexcept override;
  STDMETHODIMP ToObject(BSTR data) noexcept override;
};

class ItemsObject final : public DualObject<_clsVTRLKItems, ::clsVTRLKItems, clsVTRLKItems> {
 public:
  ItemsObject(Module& module, std::shared_ptr<clsVTRLKItems> core)
      : DualObject(module, u"clsVTRLKItems", std::move(core)) {}

  STDMETHODIMP get_UnhideOnEsc(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_UnhideOnEsc(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_RowsIsGrouped(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_RowsIsGrouped(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_EditAutoClose(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_EditAutoClose(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_AutoDetectSearchText(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP put_AutoDetectSearchText(VARIANT_BOOL value) noexcept override;
  STDMETHODIMP get_CfgFileName(BSTR* result) noexcept override;
  STDMETHODIMP put_CfgFileName(BSTR value) noexcept override;
  STDMETHODIMP get_mstrHotKeyUnhide(BSTR* result) noexcept override;
  STDMETHODIMP put_mstrHotKeyUnhide(BSTR value) noexcept override;
  STDMETHODIMP get_DefaultItem(_clsVTRLKItem** result) noexcept override;
  STDMETHODIMP put_DefaultItem(_clsVTRLKItem* value) noexcept override;
  STDMETHODIMP putref_DefaultItem(_clsVTRLKItem* value) noexcept override { return put_DefaultItem(value); }
  STDMETHODIMP get_RecentItems(_clsVTRLKRecentItems** result) noexcept override;
  STDMETHODIMP put_RecentItems(_clsVTRLKRecentItems* value) noexcept override;
  STDMETHODIMP putref_RecentItems(_clsVTRLKRecentItems* value) noexcept override {
    return put_RecentItems(value);
  }
  STDMETHODIMP get_HotKeySearch(BSTR* result) noexcept override;
  STDMETHODIMP put_HotKeySearch(BSTR value) noexcept override;
  STDMETHODIMP get_HotKeyUnhide(BSTR* result) noexcept override;
  STDMETHODIMP put_HotKeyUnhide(BSTR value) noexcept override;
  STDMETHODIMP Add(_clsVTRLKItem* item, VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP Remove(BSTR name) noexcept override;
  STDMETHODIMP Clear() noexcept override;
  STDMETHODIMP get_count(long* result) noexcept override;
  STDMETHODIMP get_ByName(BSTR name, _clsVTRLKItem** result) noexcept override;
  STDMETHODIMP put_ByName(BSTR name, _clsVTRLKItem* value) noexcept override;
  STDMETHODIMP putref_ByName(BSTR name, _clsVTRLKItem* value) noexcept override {
    return put_ByName(name, value);
  }
  STDMETHODIMP get_Item(long index, _clsVTRLKItem** result) noexcept override;
  STDMETHODIMP put_Item(long index, _clsVTRLKItem* value) noexcept override;
  STDMETHODIMP putref_Item(long index, _clsVTRLKItem* value) noexcept override {
    return put_Item(index, value);
  }
  STDMETHODIMP Exists(BSTR name, VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP ToString(VARIANT_BOOL reset_lang_file, BSTR* result) noexcept override;
  STDMETHODIMP ToObject(BSTR data, VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP CfgSave(VARIANT_BOOL reset_lang_file, VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP CfgLoad(VARIANT_BOOL* result) noexcept override;
};

class LangObject final : public DualObject<_clsVTRLKLang, ::clsVTRLKLang, clsVTRLKLang> {
 public:
  LangObject(Module& module, std::shared_ptr<clsVTRLKLang> core);

  STDMETHODIMP get_Path(BSTR* result) noexcept override;
  STDMETHODIMP put_Path(BSTR value) noexcept override;
  STDMETHODIMP get_HelpFile(BSTR* result) noexcept override;
  STDMETHODIMP get_LangFile(BSTR* result) noexcept override;
  STDMETHODIMP put_LangFile(BSTR value) noexcept override;
  STDMETHODIMP LoadLangFile() noexcept override;
  STDMETHODIMP GetText(BSTR key, BSTR default_text, VARIANT replace_array, VARIANT* accelerator,
                       BSTR* result) noexcept override;

 private:
  Connection new_language_;
};

class RuntimeObject final : public DualObject<_clsVTRLKRuntime, ::clsVTRLKRuntime, clsVTRLKRuntime> {
 public:
  explicit RuntimeObject(Module& module);

  STDMETHODIMP get_Items(_clsVTRLKItems** result) noexcept override;
  STDMETHODIMP put_Items(_clsVTRLKItems* value) noexcept override;
  STDMETHODIMP putref_Items(_clsVTRLKItems* value) noexcept override { return put_Items(value); }
  STDMETHODIMP get_SearchOptions(_clsVTRLKOptions** result) noexcept override;
  STDMETHODIMP put_SearchOptions(_clsVTRLKOptions* value) noexcept override;
  STDMETHODIMP putref_SearchOptions(_clsVTRLKOptions* value) noexcept override {
    return put_SearchOptions(value);
  }
  STDMETHODIMP put_ExcelApp(VARIANT value) noexcept override;
  STDMETHODIMP putref_ExcelApp(VARIANT value) noexcept override { return put_ExcelApp(value); }
  STDMETHODIMP get_Language(_clsVTRLKLang** result) noexcept override;
  STDMETHODIMP OnAddinInstall() noexcept override;
  STDMETHODIMP get_Searching(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP StopSearch(VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP Search(BSTR search, VARIANT* error, VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP DetectSearchRange(VARIANT* sheet, VARIANT* item) noexcept override;
  STDMETHODIMP Unhide(VARIANT_BOOL call_from_search, VARIANT* error_log,
                      VARIANT_BOOL* result) noexcept override;
  STDMETHODIMP About() noexcept override;
  STDMETHODIMP ShowOptions() noexcept override;
  STDMETHODIMP ShowSearch() noexcept override;
  STDMETHODIMP DoStop() noexcept override;
  STDMETHODIMP CallTechSupport() noexcept override;
  STDMETHODIMP CallHelp() noexcept override;
  STDMETHODIMP MenuCreate() noexcept override;
  STDMETHODIMP MenuRemove() noexcept override;
  STDMETHODIMP StartEdit() noexcept override;
  STDMETHODIMP Init() noexcept override;
  STDMETHODIMP get_HelpFile(BSTR* result) noexcept override;
  STDMETHODIMP put_Ribbon(VARIANT value) noexcept override;
  STDMETHODIMP putref_Ribbon(VARIANT value) noexcept override { return put_Ribbon(value); }

 private:
  void LetGo() noexcept override;

  Connection searching_;
  Connection new_language_;  // holds the ribbon
};

}  // namespace rowlark::server
