#include "HelpText.h"

#include <algorithm>

#include "util/Text.h"
#include "util/Trace.h"

namespace rowlark {
namespace {

// Taken from the front of a text, which loses it and the character behind it.
std::u16string_view Take(std::u16string_view& text, char16_t end) {
  const auto taken = text.substr(0, text.find(end));
  text.remove_prefix(std::min(taken.size() + 1, text.size()));
  return taken;
}

}  // namespace

// A form feed begins a topic, its context number is a line of its own.
std::vector<HelpText> ReadHelpTexts(const mclsVTFileSystem& files, std::u16string_view help_file) {
  std::vector<HelpText> topics;
  Attempt(nullptr, [&] {
    const auto name = std::u16string(help_file.substr(0, help_file.rfind(u'.'))) + u".txt";
    if (!files.IsFileExists(name)) return;
    const auto content = files.StringRead(name);
    std::u16string_view rest = content;
    Take(rest, u'\f');
    while (!rest.empty()) {
      auto text = Take(rest, u'\f');
      const auto context = ToInteger(Take(text, u'\n')).value_or(0);
      topics.push_back({context, std::u16string(text.substr(0, text.find(u'\n'))), std::u16string(text)});
    }
  });
  return topics;
}

}  // namespace rowlark
