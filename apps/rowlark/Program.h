// What every command stands on: the settings of the user, the texts of a language, and the runtime object,
// composed as every host composes it.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Document.h"
#include "forms/FormSet.h"
#include "host/standalone/Application.h"
#include "host/standalone/FileRegistry.h"
#include "host/standalone/ScriptedMessagePump.h"
#include "runtime/clsVTRLKRuntime.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark {

struct ProgramArguments {
  std::filesystem::path config;  // empty: the one in the user's configuration folder
  std::string language;          // base name of a language file, or "default"; empty: as configured
};

// Messages go to standard error, and there are no windows.
class ConsoleWindows final : public host::WindowSystem {
 public:
  bool Realise(controls::Form&) noexcept override { return false; }
  void MsgBox(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title) noexcept override;
  bool Ask(std::u16string_view, std::u16string_view) noexcept override { return false; }
  void OpenLink(controls::Form&, std::u16string_view) noexcept override {}
  void Beep() noexcept override {}
  std::vector<controls::Rect> Screens() const noexcept override { return {}; }
  intptr_t WindowOfClass(std::u16string_view) const noexcept override { return 0; }
};

// No help viewer.
class NoHelp final : public host::Help {
 public:
  intptr_t HtmlHelp(std::u16string_view, host::HelpCommand, int32_t) noexcept override { return 0; }
};

// What a program without a screen stands on.
struct Console {
  standalone::ScriptedMessagePump pump;
  ConsoleWindows windows;
  NoHelp help;
};

class Program {
 public:
  // What it is handed outlives it. Throws std::runtime_error for a language that there is not.
  Program(const ProgramArguments& arguments, host::MessagePump& pump, host::WindowSystem& windows,
          host::Help& help);

  // Opens an empty workbook of that name with one sheet.
  Ref<standalone::Worksheet> OpenWorkbook(const std::filesystem::path& path);
  // Opens a file as the active workbook. Throws std::runtime_error("path: reason").
  std::unique_ptr<Document> OpenDocument(const std::filesystem::path& path,
                                         std::optional<char> separator = std::nullopt);

  clsVTRLKRuntime& Runtime() { return runtime_; }
  clsVTRLKItems& Items() { return *runtime_.Items; }
  const Ref<standalone::Application>& Host() const { return application_; }
  const FormSet& Forms() const { return forms_; }

  // Makes a profile for that workbook; its name counts from the last separator on.
  std::shared_ptr<clsVTRLKItem> CloneDefault(const std::filesystem::path& workbook);

  // Writes the configuration if it has changed. A failure is told, in the user's language.
  bool Save();

 private:
  void ChooseLanguage(const std::string& name);

  host::WindowSystem& windows_;
  standalone::FileRegistry registry_;
  mclsVTFileSystem files_;
  Ref<standalone::Application> application_;
  SharedState shared_;
  FormSet forms_;
  clsVTRLKRuntime runtime_;
  bool reset_language_ = false;  // the language is to be that of the set-up again
  std::u16string saved_;         // the configuration as it lies in its file
};

}  // namespace rowlark
