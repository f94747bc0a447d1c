#include "calc/CalcHelp.h"

#include <osl/file.hxx>

#include <filesystem>
#include <string_view>

#include "host/calc/Strings.h"
#include "host/calc/forms/CalcWindowSystem.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"

namespace rowlark::calc {

intptr_t CalcHelp::HtmlHelp(std::u16string_view file, host::HelpCommand command, int32_t context) noexcept {
  return AttemptOr(trace_, intptr_t{0}, [&]() -> intptr_t {
    // "de" of "vt_rlk_de.chm".
    const auto name = file.substr(file.find_last_of(u"\\/") + 1);
    const auto stem = name.substr(0, name.find_last_of(u'.'));
    const auto language = stem.substr(stem.find_last_of(u'_') + 1);
    const auto folder = platform::ToPath(folder_);
    std::error_code failed;
    for (const std::u16string_view one : {language, std::u16string_view(u"en")}) {
      auto page = folder / platform::ToPath(one) / "index.html";
      if (command == host::HelpCommand::HelpContext) {
        const auto topic = page.parent_path() / (std::to_string(context) + ".html");
        if (std::filesystem::exists(topic, failed)) page = topic;
      }
      if (!std::filesystem::exists(page, failed)) continue;
      rtl::OUString url;
      osl::FileBase::getFileURLFromSystemPath(ToOffice(ToUtf16(page.string())), url);
      OpenWithSystem(office_, url);
      return 1;
    }
    return 0;
  });
}

}  // namespace rowlark::calc
