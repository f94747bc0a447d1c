#include "settings/SharedState.h"

#include "settings/Product.h"

namespace rowlark {

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
  const auto read = [this](std::u16string_view value) {
    return Registry.GetString(host::Hive::LocalMachine, kProductKey, value, u"");
  };
  HelpDirectory = read(u"HelpPath");
  if (!HelpDirectory.empty() && !HelpDirectory.ends_with(u'\\') && !HelpDirectory.ends_with(u'/')) {
    HelpDirectory += u'\\';
  }
  if (!Foundation->Language) {
    Foundation->Language = std::make_shared<clsVTRLKLang>(clsVTRLKLang::Environment{
        &Platform.Files, Platform.LibraryFolder, [read] { return read(u"SetupLanguage"); },
        [this] { return HelpDirectory; }});
  }
  Language = Foundation->Language;
}

void SharedState::Release() {
  if (--users_ > 0) return;
  Terminating = true;
  ExcelApp = nullptr;
  Language.reset();
}

}  // namespace rowlark
