#include "runtime/clsVTRLKRuntime.h"

#include <utility>

#include "runtime/DetectSearchRange.h"
#include "runtime/ShowAll.h"
#include "runtime/modMain.h"

namespace rowlark {
namespace {

// As the automation interface tells it: a text that is the caller's stays where nothing was begun.
bool Tell(OperationResult result, std::u16string& error) {
  if (result.outcome != Outcome::Refused) error = std::move(result.error);
  return result.outcome == Outcome::Done;
}

}  // namespace

clsVTRLKRuntime::clsVTRLKRuntime(SharedState& shared, Forms& forms)
    : Items(std::make_shared<clsVTRLKItems>(shared)),
      SearchOptions(std::make_shared<clsVTRLKOptions>()),
      shared_(shared),
      forms_(forms),
      searches_(std::make_shared<Searches>(shared)),
      menu_(std::make_shared<Menu>(shared)) {
  shared_.Acquire();
  new_language_ = shared_.Language->NewLangLoaded().Connect([this](const std::u16string&) {
    Attempt(shared_.Platform.Trace, [this] { evtLang_NewLangLoaded(); });
  });
}

clsVTRLKRuntime::~clsVTRLKRuntime() {
  forms_.Unload(this);
  gone_event_.Raise();
  searches_->Abandon();
  shared_.Release();
}

void clsVTRLKRuntime::SetExcelApp(Ref<host::Application> application) {
  shared_.GiveBackFlags();
  shared_.ExcelApp = std::move(application);
}

void clsVTRLKRuntime::Init() {
  const auto& folder = shared_.Platform.ConfigurationFolder;
  if (Items->CfgFileName.empty() && !folder.empty()) Items->CfgFileName = folder + u"rowlark.cfg";
  Items->CfgLoad();
  shared_.Language->LoadLangFile();
}

void clsVTRLKRuntime::OnAddinInstall() { Items->CfgSave(true); }

// From a call of the host that comes back the object may be destroyed.
void clsVTRLKRuntime::MenuCreate() {
  const auto menu = menu_;
  menu->Create();
}

void clsVTRLKRuntime::MenuRemove() {
  const auto menu = menu_;
  menu->Remove();
}

void clsVTRLKRuntime::evtLang_NewLangLoaded() {
  if (menu_->Made() && !menu_->Building() && shared_.ExcelApp) MenuCreate();
}

std::u16string clsVTRLKRuntime::HelpFile() const { return HelpFilePath(shared_); }

void clsVTRLKRuntime::CallHelp() { ShowHelp(shared_, HelpTopic::Default); }

void clsVTRLKRuntime::CallTechSupport() { ShowHelp(shared_, HelpTopic::TechSupport); }

// From here on messages are processed, which may destroy the object: what is used after that is held.

bool clsVTRLKRuntime::Search(std::u16string_view strSearch, std::u16string& strErr) {
  return Tell(RunSearch(strSearch), strErr);
}

OperationResult clsVTRLKRuntime::RunSearch(std::u16string_view text) {
  const auto searches = searches_;
  const auto items = Items;
  const auto options = SearchOptions;
  return searches->Search(items, options, text);
}

bool clsVTRLKRuntime::StopSearch() {
  const auto searches = searches_;
  searches->Stop();
  return true;
}

bool clsVTRLKRuntime::EndSearch() {
  const auto searches = searches_;
  return searches->End(false);
}

bool clsVTRLKRuntime::FinishSearch() {
  const auto searches = searches_;
  return searches->Finish();
}

void clsVTRLKRuntime::DetectSearchRange(host::Worksheet& objSheet, clsVTRLKItem& objItem) {
  const auto detected = rowlark::DetectSearchRange(objSheet, objItem.Block());
  if (detected.filtered || detected.block != objItem.Block()) objItem.SetBlock(detected.block);
  objItem.UsingAutoRange = detected.automatic;
}

bool clsVTRLKRuntime::Unhide(bool CallFromSearch, std::u16string& strErrLog) {
  return Tell(ShowAllRows(CallFromSearch), strErrLog);
}

OperationResult clsVTRLKRuntime::ShowAllRows(bool called_from_search) {
  auto& shared = shared_;
  const auto searches = searches_;
  const auto items = Items;
  if (!called_from_search && !searches->End(true)) return {Outcome::Refused, {}};
  const auto application = shared.ExcelApp;
  if (!application) return {Outcome::Done, {}};
  FlagScope screen(shared.Flags, application, HostFlag::ScreenUpdating, true);
  shared.GiveBackFlags();
  OperationResult result;
  if (ShowAll(shared, *application, screen, *items, called_from_search, result.error) != Shown::Unknown) {
    result.outcome = Outcome::Done;
    if (called_from_search) screen.Leave();
  }
  return result;
}

void clsVTRLKRuntime::ShowSearch() { forms_.ShowSearch(*this); }

void clsVTRLKRuntime::ShowOptions() { forms_.ShowOptions(*this); }

void clsVTRLKRuntime::About() { forms_.ShowAbout(*this); }

void clsVTRLKRuntime::StartEdit() {
  auto& shared = shared_;
  const auto searches = searches_;
  forms_.ShowEdit(*this);
  if (!searches->Abandoned()) Wait([&shared] { return shared.EditFormOpen; });
}

void clsVTRLKRuntime::Wait(const std::function<bool()>& condition) {
  auto& shared = shared_;
  const auto searches = searches_;
  while (!searches->Abandoned() && !shared.Terminating && condition()) {
    PumpMessages(shared);
    searches->Wait();
  }
}

void clsVTRLKRuntime::DoStop() {
  auto& shared = shared_;
  shared.Terminating = true;
  forms_.Unload(nullptr);
  shared.GiveBackFlags();
}

}  // namespace rowlark
