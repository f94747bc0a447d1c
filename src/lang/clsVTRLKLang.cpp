#include "lang/clsVTRLKLang.h"

#include <cstdint>
#include <utility>

#include "util/AutomationError.h"
#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

// Escapes go before the replacements, so that a backslash in a replaced value (a path) stays what it is.
std::u16string Prepare(std::u16string_view text, std::span<const std::u16string> replace_array) {
  std::u16string prepared = mclsVTString::Replace(text, u"\\n", u"\r\n", CompareMode::Text);
  prepared = mclsVTString::Replace(prepared, u"\\t", u"    ", CompareMode::Text);
  int32_t number = 0;
  for (const std::u16string& value : replace_array) {
    prepared = mclsVTString::Replace(prepared, u"%" + ToText(++number), value);
  }
  return prepared;
}

std::u16string TakeAccelerator(std::u16string& text) {
  std::u16string accelerator;
  const std::size_t mark = text.find(u'&');
  if (mark != text.npos) accelerator = text.substr(mark + 1, 1);
  std::erase(text, u'&');
  return accelerator;
}

}  // namespace

clsVTRLKLang::clsVTRLKLang(Environment environment) : environment_(std::move(environment)) {
  SetPath(environment_.LibraryFolder);
  lang_file_ = environment_.SetupLanguage() + u".lng";
  Load(false);
}

void clsVTRLKLang::SetPath(std::u16string_view path) {
  while (path.ends_with(u'\\')) path.remove_suffix(1);
  path_ = path;
  path_ += u'\\';
  loaded_ = false;
}

void clsVTRLKLang::SetLangFile(std::u16string_view name) {
  loaded_ = false;
  is_default_ = name.empty();
  const bool other = Compare(name, lang_file_, CompareMode::Text) != 0;
  lang_file_ = name;
  if (other) Load(true);
}

void clsVTRLKLang::SetDefault() {
  const auto language = SetupLanguage();
  SetLangFile(language.empty() ? language : language + u".lng");
  is_default_ = true;
}

std::u16string clsVTRLKLang::SetupLanguage() const {
  return environment_.SetupLanguage ? environment_.SetupLanguage() : std::u16string();
}

std::u16string clsVTRLKLang::FileOf(std::u16string_view name) const {
  if (environment_.Files == nullptr) return {};
  auto exact = path_ + std::u16string(name);
  if (environment_.Files->IsFileExists(exact)) return exact;
  mclsVTDictionary files;
  // What was listed before an error counts.
  Attempt(environment_.Trace, [&] { environment_.Files->DirScanFiles(path_, files, false); });
  for (const auto& file : files) {
    const auto own = std::u16string_view(file).substr(file.find_last_of(PathMap::kSeparators) + 1);
    if (Compare(own, name, CompareMode::Text) == 0) return file;
  }
  return {};
}

void clsVTRLKLang::Detach() {
  environment_ = {};
  texts_.reset();
  help_file_.clear();
}

void clsVTRLKLang::Load(bool raise) {
  help_file_.clear();
  if (lang_file_.empty()) {
    const auto language = SetupLanguage();
    lang_file_ = (language.empty() ? u"english" : language) + u".lng";
  }
  texts_.reset();
  if (!Attempt(environment_.Trace, [this] {
        if (const auto file = FileOf(lang_file_); !file.empty()) {
          texts_ = std::make_unique<mclsVTIniFile>(*environment_.Files);
          texts_->SetSepComment(u";");
          texts_->SetFullName(file);
        }
      })) {
    texts_.reset();  // gone in the meantime
  }
  if (const auto file = LookUp(u"HELP_FILE_NAME"); !file.empty()) {
    help_file_ = environment_.HelpDirectory() + file;
  }
  loaded_ = true;
  if (raise) new_lang_loaded_.Raise(lang_file_);
}

std::u16string clsVTRLKLang::LookUp(std::u16string_view key) const {
  if (!texts_) return {};
  return AttemptOr(environment_.Trace, std::u16string(),
                   [&] { return texts_->GetData(key, u"").value_or(u""); });
}

std::u16string clsVTRLKLang::GetText(std::u16string_view key, std::u16string_view default_text,
                                     std::span<const std::u16string> replace_array,
                                     std::u16string* accelerator) {
  if (!loaded_) Load(true);
  const auto found = LookUp(key);
  std::u16string text = Prepare(found.empty() ? default_text : found, replace_array);
  if (accelerator != nullptr) *accelerator = TakeAccelerator(text);
  return text;
}

}  // namespace rowlark
