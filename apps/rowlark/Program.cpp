#include "Program.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "lang/Locales.h"
#include "util/FileSystemPlatform.h"
#include "util/Utf.h"
#include "util/posix/Folders.h"

namespace rowlark {
namespace {

std::u16string FullName(const std::filesystem::path& path) {
  std::error_code failed;
  const auto absolute = std::filesystem::absolute(path, failed);
  return platform::ToText(failed ? path : absolute);
}

// As the environment names it: "de_AT.UTF-8" is German.
std::u16string UserLanguage() {
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
    if (value == nullptr || *value == 0) continue;
    return std::u16string(LanguageOfLocale(value));
  }
  return u"";
}

// Where the first language files are found; without any the texts are English.
std::u16string LanguageFolder() {
  const auto folders = platform::DataFolders();
  const auto has_languages = [](const std::filesystem::path& folder) {
    std::error_code missing;
    return std::filesystem::exists(folder / "languages" / "english.lng", missing);
  };
  const auto found = std::ranges::find_if(folders, has_languages);
  return FullName((found != folders.end() ? *found : folders.front()) / "languages");
}

std::u16string ConfigurationFolder() {
  const auto folder = platform::ConfigurationFolder();
  return folder.empty() ? std::u16string() : platform::ToText(folder / "vantrel" / "rowlark" / "");
}

}  // namespace

void ConsoleWindows::MsgBox(std::u16string_view text, host::MsgBoxIcon, std::u16string_view) noexcept {
  std::u16string line(text);
  std::erase(line, u'\r');
  std::ranges::replace(line, u'\n', u' ');
  std::fprintf(stderr, "rowlark: %s\n", ToUtf8(line).c_str());
}

Program::Program(const ProgramArguments& arguments, host::MessagePump& pump, host::WindowSystem& windows,
                 host::Help& help)
    : windows_(windows),
      registry_(host::DefaultRegistryPaths()),
      application_(MakeRef<standalone::Application>()),
      shared_(Platform{pump, registry_, help, windows_, files_, LanguageFolder(), ConfigurationFolder(),
                       arguments.trace, UserLanguage()}),
      forms_(shared_),
      runtime_(shared_, forms_) {
  runtime_.SetExcelApp(application_);
  if (!arguments.config.empty()) Items().CfgFileName = FullName(arguments.config);
  runtime_.Init();
  saved_ = Items().ToString(false);
  if (!arguments.language.empty()) ChooseLanguage(arguments.language);
}

void Program::ChooseLanguage(const std::string& name) {
  auto& language = runtime_.Language();
  if (name == "default") return language.SetLangFile(u"");
  const auto file = ToUtf16(name) + u".lng";
  if (name.find_first_of("/\\") != std::string::npos || language.FileOf(file).empty()) {
    mclsVTDictionary found;
    files_.DirScanFiles(language.Path(), found, false);
    std::string names;
    for (const auto& path : found) {
      const auto base = std::filesystem::path(ToUtf8(path.substr(path.find_last_of(u"\\/") + 1)));
      if (base.extension() == ".lng") names += ", " + base.stem().string();
    }
    throw std::runtime_error("--language: no language '" + name + "' (default" + names + ")");
  }
  language.SetLangFile(file);
}

Ref<standalone::Worksheet> Program::OpenWorkbook(const std::filesystem::path& path) {
  application_->AddWorkbook(FullName(path));
  return static_cast<standalone::Worksheet*>(application_->ActiveSheet().get());
}

std::unique_ptr<Document> Program::OpenDocument(const std::filesystem::path& path,
                                                const InputOptions& options) {
  return std::make_unique<Document>(application_, path, FullName(path), options);
}

std::shared_ptr<clsVTRLKItem> Program::CloneDefault(const std::filesystem::path& workbook) {
  return Items().DefaultItem->Clone(FullName(workbook));
}

bool Program::Save() {
  const auto text = Items().ToString(false);
  if (text == saved_) return true;
  if (Items().CfgSave(false)) {
    saved_ = text;
    return true;
  }
  if (Items().CfgFileName.empty()) return false;  // which has been said
  const auto file = Shown(platform::ToPath(Items().CfgFileName));
  windows_.MsgBox(Text(u"Err.WriteCfg", u"Configuration write error in file\\n%1", {file}),
                  host::MsgBoxIcon::Critical, u"");
  return false;
}

}  // namespace rowlark
