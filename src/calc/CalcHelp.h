// The help, as pages for the browser in the extension's folder.
#pragma once

#include <functional>
#include <string>

#include "host/Help.h"
#include "host/calc/forms/Desk.h"

namespace rowlark::calc {

class CalcHelp final : public host::Help {
 public:
  CalcHelp(const Desk::Context& office, std::u16string folder, Trace* trace)
      : office_(office), folder_(std::move(folder)), trace_(trace) {}

  // The help file that the chosen language names ("vt_rlk_de.chm"), if there is one or not: what it calls its
  // language is the folder of that language's pages.
  std::function<std::u16string()> LanguageFile;

  // The pages of the chosen language, or else the English ones. 1 when one was handed to the browser.
  intptr_t HtmlHelp(std::u16string_view, host::HelpCommand command, int32_t context) noexcept override;

 private:
  const Desk::Context office_;
  const std::u16string folder_;
  Trace* const trace_;
};

}  // namespace rowlark::calc
