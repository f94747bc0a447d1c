#include "settings/SharedState.h"

#include "settings/Product.h"

namespace rowlark {

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
  Language = std::make_shared<clsVTRLKLang>(
      clsVTRLKLang::Environment{Platform.Files, Platform.LibraryFolder,
                                [read] { return read(u"SetupLanguage"); }, [this] { return HelpDirectory; }});
}

void SharedState::Release() {
  if (--users_ > 0) return;
  Terminating = true;
  ExcelApp = nullptr;
  Language.reset();
}

}  // namespace rowlark
