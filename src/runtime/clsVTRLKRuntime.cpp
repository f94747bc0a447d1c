#include "runtime/clsVTRLKRuntime.h"

#include <utility>

#include "runtime/DetectSearchRange.h"
#include "runtime/ShowAll.h"
#include "runtime/modMain.h"

namespace rowlark {

clsVTRLKRuntime::clsVTRLKRuntime(SharedState& shared, Forms& forms)
    : Items(std::make_shared<clsVTRLKItems>(shared)),
      SearchOptions(std::make_shared<clsVTRLKOptions>()),
      shared_(shared),
      forms_(forms),
      menu_(shared) {
  shared_.Acquire();
  new_language_ =
      shared_.Language->NewLangLoaded().Connect([this](const std::u16string&) { evtLang_NewLangLoaded(); });
}

clsVTRLKRuntime::~clsVTRLKRuntime() {
  forms_.Unload(this);
  shared_.Release();
}

void clsVTRLKRuntime::SetExcelApp(Ref<host::Application> application) {
  shared_.ExcelApp = std::move(application);
}

void clsVTRLKRuntime::Init() {
  const auto& folder = shared_.Platform.ConfigurationFolder;
  if (Items->CfgFileName.empty() && !folder.empty()) Items->CfgFileName = folder + u"rowlark.cfg";
  Items->CfgLoad();
  shared_.Language->LoadLangFile();
}

void clsVTRLKRuntime::OnAddinInstall() { Items->CfgSave(true); }

void clsVTRLKRuntime::MenuCreate() { menu_.Create(); }

void clsVTRLKRuntime::MenuRemove() { menu_.Remove(); }

void clsVTRLKRuntime::evtLang_NewLangLoaded() {
  if (menu_.Made() && !menu_.Building() && shared_.ExcelApp) MenuCreate();
}

std::u16string clsVTRLKRuntime::HelpFile() const { return HelpFilePath(shared_); }

void clsVTRLKRuntime::CallHelp() { ShowHelp(shared_, 0); }

void clsVTRLKRuntime::CallTechSupport() {
  constexpr int32_t kTopic = 1200;
  ShowHelp(shared_, kTopic);
}

bool clsVTRLKRuntime::Search(std::u16string_view strSearch, std::u16string& strErr) {
  if (entry_guard_) return false;
  if (searching_) {
    given_up_ = false;
    if (!EndSearch()) return false;
    if (shared_.Terminating || given_up_) {
      strErr.clear();
      return false;
    }
  }
  stop_request_ = false;
  strErr.clear();
  SearchRun run(shared_, Items, *SearchOptions, stop_request_, strSearch);
  run_ = &run;
  searching_ = true;
  RaiseSearching(true);
  while (Advance(run)) PumpMessages(shared_);
  strErr = run.Error();
  return run.Result();
}

// Takes a run one step farther; false when it has ended. Two calls may drive the same run in turn, but only
// the step that ends it says so.
bool clsVTRLKRuntime::Advance(SearchRun& run) {
  if (run.Done()) return false;
  run.Resume();
  if (!run.Done()) return true;
  run_ = nullptr;
  searching_ = false;
  RaiseSearching(false);
  return false;
}

void clsVTRLKRuntime::RaiseSearching(bool searching) { searching_event_.Raise(searching); }

bool clsVTRLKRuntime::StopSearch() {
  stop_request_ = true;
  given_up_ = entry_guard_;
  PumpMessages(shared_);
  return true;
}

bool clsVTRLKRuntime::EndSearch() {
  if (!searching_) return true;
  // The host has called back from inside an operation; the run that called it can not go on before we return.
  if (run_->OnStack()) return false;
  const bool waiting = std::exchange(entry_guard_, true);
  stop_request_ = true;
  run_->Supersede();
  while (searching_) {
    if (!shared_.Terminating) PumpMessages(shared_);
    if (searching_) Advance(*run_);
  }
  entry_guard_ = waiting;
  return true;
}

void clsVTRLKRuntime::DetectSearchRange(host::Worksheet& objSheet, clsVTRLKItem& objItem) {
  rowlark::DetectSearchRange(objSheet, objItem);
}

bool clsVTRLKRuntime::Unhide(bool CallFromSearch, std::u16string& strErrLog) {
  if (!CallFromSearch && !EndSearch()) return false;
  return ShowAll(shared_, *Items, CallFromSearch, strErrLog);
}

void clsVTRLKRuntime::ShowSearch() { forms_.ShowSearch(*this); }

void clsVTRLKRuntime::ShowOptions() { forms_.ShowOptions(*this); }

void clsVTRLKRuntime::About() { forms_.ShowAbout(*this); }

void clsVTRLKRuntime::StartEdit() {
  forms_.ShowEdit(*this);
  Wait([this] { return shared_.EditFormOpen; });
}

void clsVTRLKRuntime::Wait(const std::function<bool()>& condition) {
  while (condition() && !shared_.Terminating) {
    PumpMessages(shared_);
    if (run_ != nullptr && !run_->OnStack()) {
      Advance(*run_);
    } else {
      shared_.Platform.Pump.WaitForInput(1);
    }
  }
}

void clsVTRLKRuntime::DoStop() {
  shared_.Terminating = true;
  forms_.Unload(nullptr);
}

}  // namespace rowlark
