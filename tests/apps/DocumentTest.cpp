// Files opened, edited and saved.
#include "Document.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "TempFolder.h"
#include "host/Error.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using namespace std::string_literals;
using Reason = SaveRefused::Reason;

std::string Read(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

struct Opened : Document {
  explicit Opened(const std::filesystem::path& path, bool load = true)
      : Document(MakeRef<standalone::Application>(), path, ToUtf16(path.string())) {
    while (load && Step()) {
    }
  }
  void Set(std::u16string_view cell, std::u16string_view text) { ActiveSheet().Range(cell)->SetValue(text); }
  std::string Get(std::u16string_view cell) const { return ToUtf8(ActiveSheet().Range(cell)->Value()); }
  std::optional<Reason> Refusal(const SaveOptions& options = {}) {
    try {
      Save(options);
    } catch (const SaveRefused& refused) {
      message = refused.what();
      return refused.Why();
    }
    return std::nullopt;
  }
  std::string message;
};

std::string Utf16(std::u16string_view text, bool is_little) {
  std::string bytes;
  for (const char16_t unit : text) {
    const char halves[] = {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    bytes += halves[is_little ? 0 : 1];
    bytes += halves[is_little ? 1 : 0];
  }
  return bytes;
}

TEST(Document, SavesNothingButWhatWasEdited) {
  struct Case {
    std::string before;
    std::vector<std::pair<std::u16string_view, std::u16string_view>> edits;
    std::string after;
  };
  const Case kCases[] = {
      {"a, b ,\"c\"\r\n\"d\"\"\" x,\"e\r\nf\"\n\n\rlast;",
       {},
       "a, b ,\"c\"\r\n\"d\"\"\" x,\"e\r\nf\"\n\n\rlast;"},
      {"a, b ,\"c\"\r\n\"d\",e\n", {{u"B1", u"x"}}, "a,x,\"c\"\r\n\"d\",e\n"},
      {"a,\"b\",c\r\nd", {{u"B1", u"x"}, {u"B1", u"b"}}, "a,\"b\",c\r\nd"},  // and back again
      {"a;b\nc;d\n",
       {{u"A2", u"1;2"}, {u"B1", u"\"q\""}, {u"B2", u"x\r\ny"}},
       "a;\"\"\"q\"\"\"\n\"1;2\";\"x\r\ny\"\n"},
      {"a\tb\nc\td\n", {{u"A1", u"1,2;3 "}}, "1,2;3 \tb\nc\td\n"},
      {"a,b\n\nc,d", {{u"C2", u"x"}, {u"B3", u""}}, "a,b\n,,x\nc,"},
      {"a,b\r\nc,d", {{u"A3", u"x"}, {u"B5", u"y"}}, "a,b\r\nc,d\r\nx\r\n\r\n,y"},
      {"a,b\rc,d\r", {{u"A3", u"x"}}, "a,b\rc,d\rx\r"},
      {"", {{u"B2", u"x"}}, "\n,x\n"},
      {"a,\"b", {{u"A1", u"x"}}, "x,\"b"},  // a quote that is never closed
      {"a,\"b\nc", {{u"C1", u"x"}, {u"A2", u"y"}}, "a,\"b\nc\",x\ny"},
      {"\xEF\xBB\xBFä,b\n", {{u"B1", u"ж"}}, "\xEF\xBB\xBFä,ж\n"},
      {"\xEF\xBB\xBF\xFFä,b\xC3,c\n", {{u"C1", u"ж"}}, "\xEF\xBB\xBF\xFFä,b\xC3,ж\n"},  // damaged
      {"a,b\n", {{u"A1", u"\uFEFFx"}, {u"B1", u"\xD800"}}, "\"\uFEFFx\",\uFFFD\n"},
      {"M\xFCnchen, \x80\x81,x\n", {{u"C1", u"Œ€\x81"}}, "M\xFCnchen, \x80\x81,\x8C\x80\x81\n"},
      {"\xFF\xFE" + Utf16(u"ä, b\r\n\xD800,\"ж\"\r\n", true),
       {{u"A1", u"😀"}},
       "\xFF\xFE" + Utf16(u"😀, b\r\n\xD800,\"ж\"\r\n", true)},
      {"\xFE\xFF" + Utf16(u"ä,b\nc,d", false) + "\0"s,
       {{u"A1", u"x"}},
       "\xFE\xFF" + Utf16(u"x,b\nc,d", false) + "\0"s}};
  const TempFolder folder;
  for (const auto& [before, edits, after] : kCases) {
    const auto path = folder.Write("table.csv", before);
    Opened document(path);
    for (const auto& [cell, text] : edits) document.Set(cell, text);
    EXPECT_EQ(document.IsModified(), !edits.empty()) << before;
    EXPECT_TRUE(document.Save({}));
    EXPECT_EQ(Read(path), after) << before;
    EXPECT_FALSE(document.IsModified());
    // What was saved is what is there, and can be saved again.
    Opened again(path);
    for (const auto& [cell, text] : edits) {
      if (text == u"\xD800") continue;  // of which U+FFFD was saved
      EXPECT_EQ(again.Get(cell), document.Get(cell)) << before;
    }
  }
}

}  // namespace
}  // namespace rowlark
