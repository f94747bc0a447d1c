// The language files that are delivered: each complete, all of one shape, and English true to the sources.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "TempFolder.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

const std::filesystem::path kFolder = ROWLARK_FOLDER;

// The letters are those that the language's keyboard types without AltGr, so that Alt reaches them.
struct Language {
  std::string_view file, name, own_name, help_file;
  std::u32string_view letters = U"abcdefghijklmnopqrstuvwxyz";
};
const Language kLanguages[] = {
    {"english.lng", "English", "English", "vt_rlk_en.chm"},
    {"french.lng", "French", "Français", "vt_rlk_fr.chm"},
    {"german.lng", "German", "Deutsch", "vt_rlk_de.chm"},
    {"polish.lng", "Polish", "Polski", "vt_rlk_pl.chm"},
    {"russian.lng", "Russian", "Русский", "vt_rlk_ru.chm", U"абвгдежзийклмнопрстуфхцчшщъыьэюя"},
    {"spanish.lng", "Spanish", "Español", "vt_rlk_es.chm"}};

// Captions that are on the screen together, by their keys.
const std::regex kTogether[] = {
    std::regex(R"((Terminal\.)?Menu\.(?!Root).*)"),
    std::regex(R"(Search\.UI\.(?!BtnMode\.Edit).*)"),  // the mode button goes to the cell
    std::regex(R"(Search\.UI\.(?!BtnMode\.Jump).*)"),  // or edits it
    std::regex(R"(Edit\.UI\..*)"),                     // also the buttons of every question
    std::regex(R"(Options\.UI\.Toolbar\..*\.Caption)"),
    std::regex(R"(Terminal\.Copy\..*)"),
    std::regex(R"(Terminal\.Save\..*|Edit\.UI\.BtnClose)"),
    std::regex(R"(Terminal\.Reload\..*|Terminal\.Save\.Discard|Edit\.UI\.BtnClose)"),
    std::regex(R"(Terminal\.Recovery\..*|Terminal\.Save\.Discard)")};

// The sources give these keys two default texts; this one is not the file's.
const Texts kOtherDefaults = {{"Err.SearchHide", "Error #%1: Can't show/hide rows %2"},
                              {"Options.UI.Tree.Books", "Books"},
                              {"Options.UI.Tree.Edit", "Edit"}};

// Key and text of every line that is not a comment. One text has no key and begins with the "=".
Texts ReadTexts(std::string_view file) {
  static const std::regex form("(?:([A-Za-z0-9_.]+) )?= ([^ ;\t\r]([^;\t\r]*[^ ;\t\r])?)");
  const std::string bytes = ReadBytes(kFolder / "languages" / file);
  EXPECT_TRUE(IsValidUtf8(bytes) && !bytes.starts_with("\xEF\xBB\xBF") && bytes.ends_with('\n'));
  Texts texts;
  std::istringstream lines(bytes);
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (std::regex_match(line, match, form)) {
      texts.emplace_back(match.str(1), match.str(2));
    } else {
      EXPECT_TRUE(line.empty() || line.starts_with("; ")) << line;
    }
  }
  return texts;
}

// What a text shares with its English twin: placeholders, line breaks, whether it has an accelerator.
std::multiset<std::string> Shape(const std::string& text) {
  static const std::regex mark(R"(%\d*|\\.?|&)");
  return {std::sregex_token_iterator(text.begin(), text.end(), mark), std::sregex_token_iterator()};
}

TEST(LanguageFiles, HaveTheSameKeysAndShapes) {
  const Texts english = ReadTexts("english.lng");
  std::set<std::u16string> keys;
  for (const auto& [key, text] : english) EXPECT_TRUE(keys.insert(FoldCase(ToUtf16(key))).second) << key;
  for (const Language& language : kLanguages) {
    SCOPED_TRACE(language.file);
    const Texts texts = ReadTexts(language.file);
    ASSERT_EQ(texts.size(), english.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
      ASSERT_EQ(texts[i].first, english[i].first) << "the order is English's";
      EXPECT_EQ(Shape(texts[i].second), Shape(english[i].second)) << texts[i].first;
    }
    std::map<std::string, std::string> header(texts.begin(), texts.end());
    EXPECT_EQ(header["PRG_KEY"], "VTRLK 1.x");
    EXPECT_EQ(header["LANGUAGE_NAME"], language.own_name);
    EXPECT_EQ(header["LANGUAGE_NAME_ENG"], language.name);
    EXPECT_EQ(header["HELP_FILE_NAME"], language.help_file);
  }
  const std::filesystem::directory_iterator files(kFolder / "languages");
  const auto is_language = [](const auto& file) { return file.path().extension() == ".lng"; };
  EXPECT_EQ(std::count_if(begin(files), end(files), is_language), std::ssize(kLanguages));
}

// The letter that chooses a caption with Alt; 0 where none does. On a terminal buttons of a tool bar are
// chosen by their first letter.
char32_t Accelerator(const std::string& key, std::string_view text) {
  const std::size_t mark = text.find('&');
  if (mark != text.npos) {
    text.remove_prefix(mark + 1);
  } else if (!key.starts_with("Options.UI.Toolbar.")) {
    return 0;
  }
  return ToLower(TakeUtf8(text));
}

TEST(LanguageFiles, AcceleratorsOfAFormAreTypeableAndDiffer) {
  for (const Language& language : kLanguages) {
    const Texts texts = ReadTexts(language.file);
    std::set<std::string> alone;
    for (const auto& [key, text] : texts) {
      if (text.find('&') != text.npos) alone.insert(key);
    }
    alone.erase("Menu.Root");  // the product's name, between the host's own menus
    for (const std::regex& group : kTogether) {
      std::set<char32_t> taken;
      for (const auto& [key, text] : texts) {
        const char32_t letter = std::regex_match(key, group) ? Accelerator(key, text) : 0;
        if (letter == 0) continue;
        EXPECT_NE(language.letters.find(letter), language.letters.npos) << language.file << ' ' << key;
        EXPECT_TRUE(taken.insert(letter).second) << language.file << ' ' << key << ": taken";
        alone.erase(key);
      }
    }
    EXPECT_EQ(alone, std::set<std::string>()) << "stand with which others?";
  }
}

// What Excel's texts in the language look like, and translators forget.
TEST(LanguageFiles, KeepToTheSpellingOfExcel) {
  constexpr std::string_view kNoBreak = "\u00A0";
  for (const auto& [key, text] : ReadTexts("french.lng")) {
    for (auto at = text.find_first_of(":?!"); at != text.npos; at = text.find_first_of(":?!", at + 1)) {
      const bool spaced = std::string_view(text).substr(0, at).ends_with(kNoBreak);
      EXPECT_TRUE(spaced || text.substr(at, 3) == "://") << key << " = " << text;
    }
  }
  for (const auto& [key, text] : ReadTexts("russian.lng")) {
    EXPECT_EQ(FoldCase(ToUtf16(text)).find(u'ё'), std::u16string::npos) << key << " = " << text;
  }
}

// In the sources a key and its default text stand side by side, in calls of GetText and in tables.
TEST(LanguageFiles, EnglishIsWhatTheSourcesSay) {
  const std::regex pair(R"re((?:GetText\(\s*u?"([^"]*)"|u"((?:[A-Z][A-Za-z0-9]*\.)+[A-Z][A-Za-z0-9]*)"),)re"
                        R"re(\s*u?"((?:[^"\\]|\\.|"\s+u")*)")re");
  const Texts texts = ReadTexts("english.lng");
  std::set<std::pair<std::string, std::string>> known(texts.begin(), texts.end());
  known.insert(kOtherDefaults.begin(), kOtherDefaults.end());
  std::set<std::string> used;
  for (const char* folder : {"src", "apps", "addin"}) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(kFolder / folder)) {
      if (!std::regex_match(entry.path().extension().string(), std::regex(R"(\.(cpp|h|bas))"))) continue;
      const std::string source = ReadBytes(entry.path());
      for (std::sregex_iterator it(source.begin(), source.end(), pair), end; it != end; ++it) {
        const std::string key = it->str(1) + it->str(2);
        const std::string joined = std::regex_replace(it->str(3), std::regex(R"re("\s+u")re"), "");
        const std::string text = std::regex_replace(joined, std::regex(R"(\\(.))"), "$1");
        EXPECT_TRUE(known.contains({key, text})) << entry.path() << ": " << key << " = " << text;
        used.insert(key);
      }
    }
  }
  // And nothing is left over. Keys without a dot tell what the file is.
  for (const auto& [key, text] : texts) EXPECT_TRUE(used.contains(key) || key.find('.') == key.npos) << key;
}

}  // namespace
}  // namespace rowlark
