#include "calc/AddIn.h"

#include <com/sun/star/beans/NamedValue.hpp>
#include <com/sun/star/configuration/theDefaultProvider.hpp>
#include <com/sun/star/container/XNameAccess.hpp>

#include <utility>

#include "host/calc/Strings.h"
#include "lang/Locales.h"
#include "runtime/Menu.h"
#include "settings/Product.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"

namespace rowlark::calc {
namespace {

using css::uno::Reference;

std::u16string ConfigurationFolder() {
  const auto folder = platform::ConfigurationFolder();
  return folder.empty() ? std::u16string() : platform::ToText(folder / "vantrel" / "rowlark" / "");
}

// The base name of the language file for the language that the office speaks; empty where there is none.
std::u16string OfficeLanguage(const Desk::Context& office, Trace* trace) {
  return AttemptOr(trace, std::u16string(), [&] {
    css::uno::Sequence<css::uno::Any> arguments(1);
    arguments.getArray()[0] <<=
        css::beans::NamedValue(rtl::OUString::createFromAscii("nodepath"),
                               css::uno::Any(rtl::OUString::createFromAscii("/org.openoffice.Setup/L10N")));
    const Reference<css::container::XNameAccess> settings(
        css::configuration::theDefaultProvider::get(office)->createInstanceWithArguments(
            rtl::OUString::createFromAscii("com.sun.star.configuration.ConfigurationAccess"), arguments),
        css::uno::UNO_QUERY_THROW);
    rtl::OUString locale;
    settings->getByName(rtl::OUString::createFromAscii("ooLocale")) >>= locale;
    return std::u16string(LanguageOfLocale(ToUtf8(ViewOf(locale))));
  });
}

std::u16string InFolder(const std::u16string& folder, std::string_view name) {
  return platform::ToText(platform::ToPath(folder) / name);
}

}  // namespace

AddIn::AddIn(const Desk::Context& office, const std::u16string& folder, std::function<void()> idle,
             std::function<void()> captions_changed)
    : pump_(office, trace_.get()),
      registry_(host::DefaultRegistryPaths()),
      help_(office, InFolder(folder, "help"), trace_.get()),
      windows_(office, InFolder(folder, "icons"), std::move(idle), trace_),
      short_cuts_(office),
      application_(MakeRef<calc::Application>(office, trace_.get())),
      shared_(Platform{pump_, registry_, help_, windows_, files_, InFolder(folder, "languages"),
                       ConfigurationFolder(), trace_.get(), OfficeLanguage(office, trace_.get())}) {
  application_->Keys = [this](std::u16string_view key, std::optional<std::u16string_view> macro) {
    short_cuts_.OnKey(key, macro);
  };
  help_.LanguageFile = [this] { return runtime_.Language().HelpFile(); };
  runtime_.SetExcelApp(application_);
  runtime_.Init();
  evt_lang_ = runtime_.Language().NewLangLoaded().Connect(
      [changed = std::move(captions_changed)](const std::u16string&) { changed(); });
  Attempt(trace_.get(), [this] { application_->StartReadingAhead(); });
  AssignHotKeys(*application_, HotKeys(*runtime_.Items), trace_.get());
}

AddIn::~AddIn() { application_->Keys = nullptr; }

void AddIn::Run(Macro macro) noexcept {
  Attempt(trace_.get(), [&] {
    switch (macro) {
      case Macro::ShowSearch:
        return runtime_.ShowSearch();
      case Macro::Unhide: {
        std::u16string error;
        if (!runtime_.Unhide(false, error) && !error.empty()) {
          windows_.MsgBox(error, host::MsgBoxIcon::Exclamation, kProductTitle);
        }
        return;
      }
      case Macro::ShowOptions:
        return runtime_.ShowOptions();
      case Macro::CallHelp:
        return runtime_.CallHelp();
      case Macro::CallTechSupport:
        return runtime_.CallTechSupport();
      case Macro::ShowAbout:
        return runtime_.About();
    }
  });
}

std::u16string AddIn::CaptionOf(Macro macro) {
  for (const auto& entry : kMenuEntries) {
    if (entry.macro == macro) return runtime_.Language().GetText(entry.key, entry.caption);
  }
  return {};
}

// Each of them ends, whatever becomes of the others.
void AddIn::Stop() noexcept {
  Attempt(trace_.get(), [this] { runtime_.DoStop(); });
  application_->Stop();
  Attempt(trace_.get(), [this] { windows_.Stop(pump_); });
}

}  // namespace rowlark::calc
