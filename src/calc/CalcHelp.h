// The help, as pages for the browser in the extension's folder.
#pragma once

#include <string>

#include "host/Help.h"
#include "host/calc/forms/Desk.h"

namespace rowlark::calc {

class CalcHelp final : public host::Help {
 public:
  CalcHelp(const Desk::Context& office, std::u16string folder, Trace* trace)
      : office_(office), folder_(std::move(folder)), trace_(trace) {}

  // The file names the language ("vt_rlk_de.chm"): its pages, or else the English ones. 1 when a page was
  // handed to the browser.
  intptr_t HtmlHelp(std::u16string_view file, host::HelpCommand command, int32_t context) noexcept override;

 private:
  const Desk::Context office_;
  const std::u16string folder_;
  Trace* const trace_;
};

}  // namespace rowlark::calc
