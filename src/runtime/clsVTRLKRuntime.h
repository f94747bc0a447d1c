// The public class of the library and the spine of the add-in: the add-in workbook creates one when it opens,
// hands it the host application, and its macros forward to the operations here.
//
// All calls come on the host's user-interface thread. Operations may be called again from messages that are
// processed in the middle of a search.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "host/spreadsheet.h"
#include "runtime/Forms.h"
#include "runtime/Menu.h"
#include "runtime/Outcome.h"
#include "runtime/Searches.h"
#include "runtime/clsVTRLKOptions.h"
#include "settings/SharedState.h"
#include "settings/clsVTRLKItems.h"
#include "util/Event.h"

namespace rowlark {

class clsVTRLKRuntime {
 public:
  clsVTRLKRuntime(SharedState& shared, Forms& forms);
  clsVTRLKRuntime(const clsVTRLKRuntime&) = delete;
  clsVTRLKRuntime& operator=(const clsVTRLKRuntime&) = delete;
  ~clsVTRLKRuntime();

  // Replaceable by the add-in and the forms; never null.
  std::shared_ptr<clsVTRLKItems> Items;
  std::shared_ptr<clsVTRLKOptions> SearchOptions;

  // Where the host application is kept, one for the whole library.
  void SetExcelApp(Ref<host::Application> application);
  clsVTRLKLang& Language() const { return *shared_.Language; }

  // Loads the configuration and then the language file that it decides on; both may be missing.
  void Init();
  // Saves the configuration without a language: the next start takes the one chosen at set-up.
  void OnAddinInstall();

  // The add-in's menu on the host's "Worksheet Menu Bar". Creating it removes a menu that is there already,
  // also one left by an earlier run of the host; the menu that this object has made is made anew when another
  // language is loaded. Throw host::Error.
  void MenuCreate();
  void MenuRemove();

  // Full path of the help file; opening it at its default topic and at that of the technical support.
  std::u16string HelpFile() const;
  void CallHelp();
  void CallTechSupport();

  // Looks for the text in the active sheet as `SearchOptions` say. True when a row was found; otherwise
  // `strErr` tells why in the user's language. While a search runs (the call then comes from a message that
  // it processes), that search is stopped first and returns false with an empty `strErr`; a further call made
  // during that wait is refused: false, `strErr` untouched.
  bool Search(std::u16string_view strSearch, std::u16string& strErr);

  // The same with what became of it.
  OperationResult RunSearch(std::u16string_view text);

  // Asks the search under way to end at its next stop check; does not wait for that. True.
  bool StopSearch();

  bool Searching() const { return searches_->Searching(); }
  // Raised with true at the start and with false at the end of every search.
  Event<bool&>& SearchingEvent() { return searches_->SearchingEvent(); }

  // Stops the search under way and brings it to its end, whoever began it. False when that is not possible,
  // because this is called from inside an operation of the host.
  bool EndSearch();
  // Lets the search under way come to its own end, whoever began it. True when there was none, or when it
  // found rows; false also when it can not go on, because this is called from inside an operation of the
  // host.
  bool FinishSearch();

  // Completes the open bounds of a profile from the sheet. Throws host::Error.
  void DetectSearchRange(host::Worksheet& objSheet, clsVTRLKItem& objItem);

  // Shows all rows of the active sheet, after ending a search under way. False when that failed, with the
  // reason in `strErrLog`, which is left untouched when the search could not be ended.
  bool Unhide(bool CallFromSearch, std::u16string& strErrLog);
  OperationResult ShowAllRows(bool called_from_search);

  // The forms. The search form and the options form stay open; the other two are waited for.
  void ShowSearch();
  void ShowOptions();
  void About();
  void StartEdit();

  // Processes messages while the condition holds and the library does not end. A search that lies beneath on
  // the stack goes on meanwhile.
  void Wait(const std::function<bool()>& condition);

  // The library ends: every wait and long loop does so soon, and the forms are unloaded.
  void DoStop();

  // Raised when the object is destroyed, for whoever keeps a pointer to it.
  Event<>& GoneEvent() { return gone_event_; }

 private:
  void evtLang_NewLangLoaded();

  SharedState& shared_;
  Forms& forms_;
  const std::shared_ptr<Searches> searches_;
  const std::shared_ptr<Menu> menu_;
  Connection new_language_;
  Event<> gone_event_;
};

}  // namespace rowlark
