// What every command stands on: the settings of the user, the texts of a language, and the runtime object,
// composed as every host composes it.
#pragma once

#include <filesystem>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "forms/FormSet.h"
#include "host/fileregistry/FileRegistry.h"
#include "host/standalone/Application.h"
#include "host/standalone/Headless.h"
#include "runtime/clsVTRLKRuntime.h"
#include "tables/Document.h"
#include "util/Trace.h"
#include "util/Utf.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark {

// A path for people to read; what is no text in it is replaced.
inline std::u16string Shown(const std::filesystem::path& path) { return ToUtf16(path.string()); }

struct ProgramArguments {
  std::filesystem::path config;     // empty: the one in the user's configuration folder
  std::string language;             // base name of a language file, or "default"; empty: as configured
  rowlark::Trace* trace = nullptr;  // see util/Trace.h
};

// Messages go to standard error, and there are no windows.
class ConsoleWindows final : public standalone::NoWindows {
 public:
  void MsgBox(std::u16string_view text, host::MsgBoxIcon icon, std::u16string_view title) noexcept override;
};

// What a command without a screen stands on.
struct Console {
  standalone::NoMessages messages;
  ConsoleWindows windows;
  standalone::NoHelp help;
};

class Program {
 public:
  // What it is handed outlives it. Throws std::runtime_error for a language that there is not.
  Program(const ProgramArguments& arguments, host::MessagePump& pump, host::WindowSystem& windows,
          host::Help& help);

  // Opens an empty workbook of that name with one sheet.
  Ref<standalone::Worksheet> OpenWorkbook(const std::filesystem::path& path);
  // Opens a file as the active workbook. Throws std::runtime_error("path: reason").
  std::unique_ptr<Document> OpenDocument(const std::filesystem::path& path, const InputOptions& options = {});

  clsVTRLKRuntime& Runtime() { return runtime_; }
  clsVTRLKItems& Items() { return *runtime_.Items; }
  const Ref<standalone::Application>& Host() const { return application_; }
  const FormSet& Forms() const { return forms_; }
  // In the user's language; `with` takes the places of "%1", "%2".
  std::u16string Text(std::u16string_view key, std::u16string_view text,
                      std::initializer_list<std::u16string> with = {}) const {
    return shared_.Language->GetText(key, text, with);
  }
  const mclsVTFileSystem& Files() const { return files_; }
  // Nothing when nobody asks for one.
  rowlark::Trace* Trace() const { return shared_.Platform.Trace; }

  // Makes a profile for that workbook; its name counts from the last separator on.
  std::shared_ptr<clsVTRLKItem> CloneDefault(const std::filesystem::path& workbook);

  // Writes the configuration if it has changed. A failure is told, in the user's language.
  bool Save();

 private:
  void ChooseLanguage(const std::string& name);

  host::WindowSystem& windows_;
  host::FileRegistry registry_;
  mclsVTFileSystem files_;
  Ref<standalone::Application> application_;
  SharedState shared_;
  FormSet forms_;
  clsVTRLKRuntime runtime_;
  std::u16string saved_;  // the settings as they were loaded or saved last
};

}  // namespace rowlark
