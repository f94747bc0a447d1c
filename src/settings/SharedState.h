// What is one per loaded library, however many runtime objects there are. Whoever composes the program (the
// library, the command line, a test) makes one and hands it down.
#pragma once

#include <memory>
#include <string>

#include "host/Help.h"
#include "host/MessagePump.h"
#include "host/Registry.h"
#include "host/WindowSystem.h"
#include "host/spreadsheet.h"
#include "lang/clsVTRLKLang.h"
#include "settings/HostFlags.h"
#include "settings/mclsVTRegistry.h"
#include "util/Trace.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark {

// What the program stands on; all of it outlives the shared state.
struct Platform {
  host::MessagePump& Pump;
  host::Registry& Registry;
  host::Help& Help;
  host::WindowSystem& Windows;
  const mclsVTFileSystem& Files;
  std::u16string LibraryFolder;  // where the language files lie
  // The user's, with a separator at its end; made when it is first needed. Empty: settings are not kept.
  std::u16string ConfigurationFolder;
  rowlark::Trace* Trace = nullptr;   // hears of failures that nobody is told of; nothing when nobody asks
  std::u16string UserLanguage = {};  // base name of the language file to use where set-up has named none
};

// What the settings objects stand on. They share it by count, since a client may hold a profile, the
// collection or the history longer than any runtime object, and longer than the program behind them.
struct Foundation {
  const rowlark::Platform* Platform = nullptr;  // nothing when the program has gone: no files any more
  Ref<host::Application> ExcelApp;
  std::shared_ptr<clsVTRLKLang> Language;  // nothing before the first runtime object
  bool HistoryCleared = false;             // a temporary history has been emptied in this run of the host

  rowlark::Trace* Trace() const { return Platform != nullptr ? Platform->Trace : nullptr; }
};

class SharedState {
 public:
  explicit SharedState(const rowlark::Platform& platform);
  SharedState(const SharedState&) = delete;
  SharedState& operator=(const SharedState&) = delete;
  ~SharedState();

  // Every runtime object holds the state: the first one sets it up, the last one releases it.
  void Acquire();
  void Release();

  // Gives the host the flags that it would not take back before; to be called wherever it may be free again.
  void GiveBackFlags() noexcept {
    if (const auto application = ExcelApp) Flags.GiveBack(*application);
  }

  const rowlark::Platform Platform;
  const mclsVTRegistry Registry;
  const std::shared_ptr<rowlark::Foundation> Foundation;
  // Nothing until the add-in has set it. Calls of the host may come back and replace it: hold a copy
  // meanwhile.
  Ref<host::Application>& ExcelApp;
  HostFlags Flags{Platform.Trace};
  std::shared_ptr<clsVTRLKLang> Language;  // present while a runtime object lives
  std::u16string HelpDirectory;            // with a separator at its end
  intptr_t HelpWindow = 0;                 // of the last help that was opened; 0 when that failed
  bool Terminating = false;                // every wait and long loop ends when it is set

  // Raised and lowered by the forms when they are loaded and unloaded.
  bool SearchFormLoaded = false;
  bool EditFormOpen = false;
  bool OptionsFormOpen = false;

 private:
  int users_ = 0;
};

}  // namespace rowlark
