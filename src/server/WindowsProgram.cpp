#include "server/WindowsProgram.h"

#include <utility>

#include "util/FileSystemPlatform.h"

namespace rowlark::server {
namespace {

std::u16string FolderOf(std::u16string_view file_name) {
  return std::u16string(file_name.substr(0, file_name.find_last_of(u'\\')));
}

std::u16string ConfigurationFolder() {
  const auto folder = platform::ConfigurationFolder();
  return folder.empty() ? std::u16string() : platform::ToText(folder / "Vantrel" / "Rowlark" / "");
}

}  // namespace

WindowsProgram::WindowsProgram(std::u16string_view file_name, std::function<void()> idle)
    : windows_(std::move(idle), trace_.get()),
      Shared(Platform{pump_, registry_, help_, windows_, files_, FolderOf(file_name), ConfigurationFolder(),
                      trace_.get()}) {}

}  // namespace rowlark::server
