// The help's topics as text, for where no help window is.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "util/mclsVTFileSystem.h"

namespace rowlark {

struct HelpText {
  int32_t context = 0;  // 0: a topic that nothing asks for by its number
  std::u16string title;
  std::u16string text;  // which begins with the title; a paragraph a line
};

// The topics that lie as text beside a help file: "rowlark.txt" beside "rowlark.chm". None where there is no
// such file, or where it can not be read.
std::vector<HelpText> ReadHelpTexts(const mclsVTFileSystem& files, std::u16string_view help_file);

}  // namespace rowlark
