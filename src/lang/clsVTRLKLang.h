// The catalogue of every text that the user sees: a language file, and English where it has none.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "lang/mclsVTIniFile.h"
#include "util/Event.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark {

// No operation fails: what can not be read is English.
class clsVTRLKLang {
 public:
  struct Environment {
    const mclsVTFileSystem* Files;
    std::u16string LibraryFolder;                   // where the language files lie at first
    std::function<std::u16string()> SetupLanguage;  // base name of the file chosen at set-up; may be empty
    std::function<std::u16string()> HelpDirectory;  // with a separator at its end
    rowlark::Trace* Trace = nullptr;                // see util/Trace.h
  };

  // Loads the language chosen at set-up; the event is not raised.
  explicit clsVTRLKLang(Environment environment);
  clsVTRLKLang(const clsVTRLKLang&) = delete;
  clsVTRLKLang& operator=(const clsVTRLKLang&) = delete;

  // Folder of the language files, with exactly one "\" at its end. A new one counts from the next GetText on.
  const std::u16string& Path() const { return path_; }
  void SetPath(std::u16string_view path);

  // Name of the language file, without folder ("english.lng"); the file is found in whatever letter case it
  // has. A name that differs in more than that is loaded at once. An empty one stands for the default: the
  // language chosen at set-up, or English.
  const std::u16string& LangFile() const { return lang_file_; }
  void SetLangFile(std::u16string_view name);

  // Nobody has chosen the present language: it is the default, whatever file that is.
  bool IsDefault() const { return is_default_; }
  void SetDefault();

  // Full path of a language file, in its own letter case; empty when there is none of that name.
  std::u16string FileOf(std::u16string_view name) const;

  // Full path of the help file that the language names; empty when it names none.
  const std::u16string& HelpFile() const { return help_file_; }

  // Reads the file again, without the event.
  void LoadLangFile() { Load(false); }

  // The text of a dotted key ("Err.SearchTextNotFound"), or `default_text`, ready to be shown: "\n"
  // (backslash, n) becomes a line break (CR LF) and "\t" four spaces, then "%1", "%2" ... the elements of
  // `replace_array`, which are taken as they are. With `accelerator` it receives the character behind the
  // first "&" (empty when there is none) and the text loses every "&"; without it the marks stay.
  std::u16string GetText(std::u16string_view key, std::u16string_view default_text,
                         std::span<const std::u16string> replace_array = {},
                         std::u16string* accelerator = nullptr);
  std::u16string GetText(std::u16string_view key, std::u16string_view default_text,
                         std::initializer_list<std::u16string> replace_array,
                         std::u16string* accelerator = nullptr) {
    return GetText(key, default_text, std::span(replace_array.begin(), replace_array.size()), accelerator);
  }
  // A single value stands for every "%1".
  std::u16string GetText(std::u16string_view key, std::u16string_view default_text,
                         const std::u16string& value, std::u16string* accelerator = nullptr) {
    return GetText(key, default_text, std::span(&value, 1), accelerator);
  }

  // The program behind the catalogue ends: it goes on without files, in English.
  void Detach();

  // Raised with the new LangFile when it was changed, or when a look-up found the catalogue unloaded.
  Event<const std::u16string&>& NewLangLoaded() { return new_lang_loaded_; }

 private:
  void Load(bool raise);
  std::u16string SetupLanguage() const;
  std::u16string LookUp(std::u16string_view key) const;

  Environment environment_;
  std::u16string path_;
  std::u16string lang_file_;
  std::u16string help_file_;
  bool is_default_ = true;
  bool loaded_ = false;
  std::unique_ptr<mclsVTIniFile> texts_;
  Event<const std::u16string&> new_lang_loaded_;  // without a trace, which the catalogue may outlive
};

}  // namespace rowlark
