#include "calc/CalcHelp.h"

#include <osl/file.hxx>

#include <filesystem>
#include <string_view>

#include "host/calc/Strings.h"
#include "host/calc/forms/CalcWindowSystem.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"

namespace rowlark::calc {

namespace {

// "de" of "vt_rlk_de.chm".
std::u16string_view LanguageOf(std::u16string_view file) {
  const auto name = file.substr(file.find_last_of(u"\\/") + 1);
  const auto stem = name.substr(0, name.find_last_of(u'.'));
  return stem.substr(stem.find_last_of(u'_') + 1);
}

}  // namespace

// The English pages lie in the folder itself, those of other languages below it; a page that has a topic's
// number lies beside them under that number too.
intptr_t CalcHelp::HtmlHelp(std::u16string_view, host::HelpCommand command, int32_t context) noexcept {
  return AttemptOr(trace_, intptr_t{0}, [&]() -> intptr_t {
    const auto name =
        command == host::HelpCommand::HelpContext ? std::to_string(context) + ".html" : "index.html";
    const auto english = platform::ToPath(folder_);
    const auto file = LanguageFile ? LanguageFile() : std::u16string();
    for (const auto& folder : {english / platform::ToPath(LanguageOf(file)), english}) {
      const auto page = folder / name;
      std::error_code failed;
      if (!std::filesystem::exists(page, failed)) continue;
      rtl::OUString url;
      osl::FileBase::getFileURLFromSystemPath(ToOffice(platform::ToText(page)), url);
      OpenWithSystem(office_, url);
      return 1;
    }
    return 0;
  });
}

}  // namespace rowlark::calc
