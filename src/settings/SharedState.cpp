#include "settings/SharedState.h"

#include "settings/Product.h"
#include "util/PathMap.h"

namespace rowlark {
namespace {

bool IsSeparator(char16_t c) { return PathMap::kSeparators.find(c) != PathMap::kSeparators.npos; }

// With a separator at its end; nothing stays nothing.
std::u16string Folder(std::u16string path) {
  if (!path.empty() && !IsSeparator(path.back())) path += PathMap::Separator(path);
  return path;
}

bool IsAbsolute(std::u16string_view path) {
  path.remove_prefix(PathMap::RootName(path).size());
  return !path.empty() && IsSeparator(path.front());
}

}  // namespace

SharedState::SharedState(const rowlark::Platform& platform)
    : Platform(platform),
      Registry(platform.Registry),
      Foundation(std::make_shared<rowlark::Foundation>()),
      ExcelApp(Foundation->ExcelApp) {
  Foundation->Platform = &Platform;
}

SharedState::~SharedState() {
  Foundation->Platform = nullptr;
  ExcelApp = nullptr;
  if (Foundation->Language) Foundation->Language->Detach();
}

void SharedState::Acquire() {
  if (users_++ > 0) return;
  Terminating = false;
  // A set-up for one user alone may have no right to write for the machine.
  const auto read = [this](std::u16string_view value, std::u16string_view otherwise = u"") {
    return Registry.GetString(host::Hive::LocalMachine, kProductKey, value,
                              Registry.GetString(host::Hive::CurrentUser, kProductKey, value, otherwise));
  };
  // Beside the library unless set-up has chosen another folder; what depends on the host's current folder,
  // which anybody may fill, is below it as well.
  HelpDirectory = Folder(read(u"HelpPath"));
  if (!IsAbsolute(HelpDirectory)) HelpDirectory = Folder(Platform.LibraryFolder) + HelpDirectory;
  if (!Foundation->Language) {
    Foundation->Language = std::make_shared<clsVTRLKLang>(
        clsVTRLKLang::Environment{&Platform.Files, Platform.LibraryFolder,
                                  [this, read] { return read(u"SetupLanguage", Platform.UserLanguage); },
                                  [this] { return HelpDirectory; }, Platform.Trace});
  }
  Language = Foundation->Language;
}

void SharedState::Release() {
  if (--users_ > 0) return;
  Terminating = true;
  GiveBackFlags();
  ExcelApp = nullptr;
  Language.reset();
}

}  // namespace rowlark
