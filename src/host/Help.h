// HTML Help.
#pragma once

#include <cstdint>
#include <string_view>

namespace rowlark::host {

// HH_DISPLAY_TOPIC and HH_HELP_CONTEXT of htmlhelp.h.
enum class HelpCommand : int32_t {
  DisplayTopic = 1,  // the default topic
  HelpContext = 15,  // the topic of a context number
};

class Help {
 public:
  virtual ~Help() = default;

  // Opens the help file (full path). The handle of the help window; 0 when it could not be opened.
  virtual intptr_t HtmlHelp(std::u16string_view file, HelpCommand command, int32_t context) noexcept = 0;
};

}  // namespace rowlark::host
