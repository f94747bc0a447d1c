// Files opened, edited and saved.
#include "tables/Document.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "TempFolder.h"
#include "host/Error.h"
#include "samples/Archive.h"
#include "tables/Charsets.h"
#include "tables/workbook/WorkbookReader.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

InputOptions Within(std::uint64_t memory) {
  InputOptions options;
  options.memory = MemoryBound(memory);
  return options;
}

using namespace std::string_literals;
using Reason = SaveRefused::Reason;

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
      {Utf16(u"имя,a\r\nb,\"ж\"\r\n", true), {{u"B1", u"😀"}}, Utf16(u"имя,😀\r\nb,\"ж\"\r\n", true)},
      {"\xCA\xE8\xE5\xE2,\xCC\xEE\xF1\xEA\xE2\xE0;\x98;a\n",
       {{u"C1", u"я"}},
       "\xCA\xE8\xE5\xE2,\xCC\xEE\xF1\xEA\xE2\xE0;\x98;\xFF\n"},  // Windows-1251
      {"\xA3ukasz;Stanis\xB3"
       "aw;imi\xEA;Gda\xF1sk;a\n",  // ISO 8859-2
       {{u"E1", u"Ż"}},
       "\xA3ukasz;Stanis\xB3"
       "aw;imi\xEA;Gda\xF1sk;\xAF\n"},
      {"a\0,b\0\0\n"s, {{u"B1", std::u16string_view(u"c\0d", 3)}}, "a\0,c\0d\n"s},
      {"\xFE\xFF" + Utf16(u"ä,b\nc,d", false) + "\0"s,
       {{u"A1", u"x"}},
       "\xFE\xFF" + Utf16(u"x,b\nc,d", false) + "\0"s}};
  const TempFolder folder;
  for (const auto& [before, edits, after] : kCases) {
    const auto path = folder.Write("table.csv", before);
    Opened document(path);
    for (const auto& [cell, text] : edits) document.Set(cell, text);
    EXPECT_EQ(document.IsModified(), before != after) << before;
    EXPECT_TRUE(document.Save({}));
    EXPECT_EQ(ReadBytes(path), after) << before;
    EXPECT_FALSE(document.IsModified());
    // What was saved is what is there, and can be saved again.
    Opened again(path);
    for (const auto& [cell, text] : edits) {
      if (text == u"\xD800") continue;  // of which U+FFFD was saved
      EXPECT_EQ(again.Get(cell), document.Get(cell)) << before;
    }
  }
}

TEST(Document, AsksBeforeItOverwritesOrConverts) {
  const TempFolder folder;
  const auto path = folder.Write("ansi.csv", "M\xFCnchen,a\n");
  Opened document(path);
  document.Set(u"B1", u"жж");
  EXPECT_EQ(document.Refusal(), Reason::NotEncodable);
  EXPECT_EQ(document.message, path.string() + ": B1: 'ж' is no character of Windows-1252");
  EXPECT_EQ(document.Refusal({.path = folder.Write("other.csv", "x")}), Reason::FileExists);
  EXPECT_EQ(ReadBytes(path), "M\xFCnchen,a\n");
  EXPECT_TRUE(document.IsModified());
  EXPECT_TRUE(document.Save({.as_utf8 = true}));
  EXPECT_EQ(ReadBytes(path), "\xEF\xBB\xBFMünchen,жж\n");
  document.Set(u"B1", u"ж");
  EXPECT_EQ(document.Refusal(), std::nullopt);  // it is UTF-8 by now
  EXPECT_EQ(ReadBytes(path), "\xEF\xBB\xBFMünchen,ж\n");

  // Written by another program: what is saved then is made of the cells alone.
  folder.Write("ansi.csv", "x");
  EXPECT_TRUE(document.ChangedOnDisk());
  EXPECT_EQ(document.Refusal(), Reason::FileChanged);
  EXPECT_TRUE(document.Save({.overwrite = true}));
  EXPECT_EQ(ReadBytes(path), "\xEF\xBB\xBFMünchen,ж\n");
  EXPECT_FALSE(document.ChangedOnDisk());
  std::filesystem::remove(path);
  EXPECT_EQ(document.Refusal(), Reason::FileChanged);
  EXPECT_EQ(document.Refusal({.overwrite = true}), std::nullopt);
  EXPECT_EQ(ReadBytes(path), "\xEF\xBB\xBFMünchen,ж\n");

  // What would be read as another encoding.
  Opened tricky(folder.Write("tricky.csv", "\xC3\xBC,\xFC\n"));
  EXPECT_EQ(tricky.Get(u"A1"), "Ã¼");
  tricky.Set(u"B1", u"u");
  EXPECT_EQ(tricky.Refusal(), Reason::NotEncodable);

  Opened stopped(folder.Write("stopped.csv", "a\n"));
  stopped.Set(u"A1", u"b");
  EXPECT_FALSE(stopped.Save({}, [](double) { return false; }));
  EXPECT_TRUE(stopped.IsModified());
  EXPECT_EQ(ReadBytes(stopped.Path()), "a\n");
}

// The text in the encoding of that name.
std::string Encoded(const char* name, std::string_view text) {
  std::string bytes;
  EXPECT_EQ(NamedEncoding(name).options.charset->Append(bytes, text), 0u) << name;
  return bytes;
}

TEST(Charset, IsGuessed) {
  const std::pair<std::string, std::vector<const char*>> kCases[] = {
      {"name,city\nann,München\nbob,Berlin\n", {"CP1252"}},
      {"nom;ville\nHélène;Orléans\nFrançois;5 €\n", {"CP1252"}},
      {"ciutat\nLluís\n", {"CP1252"}},
      {"imię;miasto\nŁukasz;Łódź\nStanisław;Gdańsk\n", {"CP1250", "ISO-8859-2"}},
      {"имя;город\nАнна;Москва\nИван;Киев\n", {"CP1251", "KOI8-R", "IBM866", "ISO-8859-5"}},
      {"ім'я;місто\nІван;Київ\nОлена;Львів\n", {"CP1251"}},
      {"όνομα;πόλη\nΓιώργος;Αθήνα\nΆννα;Πάτρα\n", {"CP1253", "ISO-8859-7"}},
      {"名前,市\n田中,東京\nすずき,おおさか\n", {"CP932", "EUC-JP"}}};
  for (const auto& [text, encodings] : kCases) {
    for (const auto* encoding : encodings) {
      EXPECT_EQ(GuessCharset(Encoded(encoding, text))->ToUtf8(Encoded(encoding, text)), text) << encoding;
    }
  }
  const auto japanese = NamedEncoding("CP932").options.charset;
  EXPECT_TRUE(japanese->Tells(',') && !japanese->Tells('|'));  // which ends other characters there
  EXPECT_EQ(NamedEncoding("utf-32").to_convert, "utf-32");
  EXPECT_THROW(NamedEncoding("klingon"), std::runtime_error);
}

// What does not stand in the file as it is saved beside it, and the file stays.
TEST(Document, SavesWhatIsNoPlainTextBesideIt) {
  const TempFolder folder;
  const auto run = [&](const std::string& command) {
    EXPECT_EQ(std::system(("cd '" + folder.Path().string() + "' && " + command).c_str()), 0);
  };
  folder.Write("t.csv", "a;\"ж\"\r\nb;c");
  run("gzip -k t.csv && bzip2 -k t.csv && xz -k t.csv && zstd -q t.csv && rm t.csv");
  for (const auto* name : {"t.csv.gz", "t.csv.bz2", "t.csv.xz", "t.csv.zst"}) {
    const auto compressed = ReadBytes(folder.Path() / name);
    Opened document(folder.Path() / name);
    document.Set(u"A2", u"x");
    EXPECT_EQ(document.SavePath(), folder.Path() / "t.csv");
    EXPECT_TRUE(document.Save({}));
    EXPECT_EQ(ReadBytes(folder.Path() / "t.csv"), "a;\"ж\"\r\nx;c");
    EXPECT_EQ(ReadBytes(folder.Path() / name), compressed);
    EXPECT_TRUE(document.Save({})) << "its own file by now";
    EXPECT_EQ(Opened(folder.Path() / name).Refusal(), Reason::FileExists);
    std::filesystem::remove(folder.Path() / "t.csv");
  }

  // What came before the damage is there.
  std::string rows;
  for (int i = 0; i < 100'000; ++i) rows += std::to_string(i * 7919) + ",text\n";
  folder.Write("long.csv", rows);
  run("gzip long.csv && truncate -s 100000 long.csv.gz");
  Opened damaged(folder.Path() / "long.csv.gz", false);
  try {
    while (damaged.Step()) {
    }
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(error.what(), damaged.Path().string() + ": Damaged compressed file: truncated gzip input");
  }
  EXPECT_EQ(damaged.Get(u"A1000"), std::to_string(999 * 7919));
  EXPECT_EQ(damaged.LoadState(), Document::State::Stopped);

  // A pipe that is never filled, and one that is filled a little.
  const auto pipe = folder.Path() / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  Opened waiting(pipe, false);
  while (!waiting.WaitsFor()) waiting.Step();
  std::ofstream writer(pipe);
  writer << "a,b\n" << std::flush;
  while (waiting.Get(u"B1").empty()) EXPECT_TRUE(waiting.Step());
  EXPECT_EQ(waiting.SavePath(), "pipe.csv");
  waiting.Set(u"A1", u"x");
  writer << "1," << std::flush;
  while (!waiting.WaitsFor()) waiting.Step();
  waiting.Stop();
  EXPECT_TRUE(waiting.Save({.path = folder.Path() / "part.csv"}));
  EXPECT_TRUE(ReadBytes(folder.Path() / "part.csv").starts_with("x,b\n"));
}

// Another program writes into the file that is open: its records are not those that were read any more, also
// not once ours has taken its place.
TEST(Document, SavesItsCellsWhereTheFileWasWrittenInto) {
  std::string rows = "a,b\r\n";
  while (rows.size() < 3 * TextReader::kPiece) rows += "\"some\",text\r\n";
  const TempFolder folder;
  const auto path = folder.Write("table.csv", rows);
  Opened document(path);
  folder.Write("table.csv", std::string(rows.size() + 1, 'x'));
  document.Set(u"A1", u"first");
  EXPECT_TRUE(document.Save({.overwrite = true}));
  EXPECT_TRUE(ReadBytes(path).starts_with("first,b\r\nsome,text\r\n"));
  document.Set(u"A1", u"second");
  EXPECT_TRUE(document.Save({}));
  EXPECT_TRUE(ReadBytes(path).starts_with("second,b\r\nsome,text\r\n"));
}

TEST(Document, LoadsInStepsAndCanBeStopped) {
  std::string rows;
  for (int i = 1; i <= 100'000; ++i) rows += std::to_string(i) + ",some text\n";
  const TempFolder folder;
  const auto path = folder.Write("long.csv", rows + "\"last\",\xFC");  // Windows-1252 only at its end
  Opened document(path, false);
  EXPECT_EQ(document.LoadState(), Document::State::Loading);
  EXPECT_EQ(document.Get(u"A1000"), "1000");
  const double fraction = document.Fraction();
  EXPECT_TRUE(fraction > 0.1 && fraction < 0.9) << fraction;
  document.Step();
  document.Set(u"B2", u"edited");
  EXPECT_THROW(document.Set(u"A100001", u"x"), host::Error);
  document.Stop();
  EXPECT_FALSE(document.Step());
  EXPECT_EQ(document.Get(u"A100001"), "");
  document.Set(u"B3", u"ö");
  EXPECT_TRUE(document.Save({}));
  auto expected = rows + "\"last\",\xFC";
  expected.replace(expected.find("some text", expected.find("\n2,")), 9, "edited");
  expected.replace(expected.find("some text", expected.find("\n3,")), 9, "\xF6");
  EXPECT_TRUE(ReadBytes(path) == expected);

  // Read on, the first rows turn out to have been read in the wrong encoding; edits stay.
  Opened again(folder.Write("late.csv", "\xC3\xBC\nb\n" + rows + "\xFC"), false);
  EXPECT_EQ(again.Get(u"A1"), "ü");
  again.Set(u"A2", u"edited");
  while (again.Step()) {
  }
  EXPECT_EQ(again.Get(u"A1") + again.Get(u"A2") + again.Get(u"A100002"), "Ã¼edited100000");
  EXPECT_EQ(again.Get(u"A100003"), "ü");
  EXPECT_EQ(again.ActiveSheet().UsedRange()->RowsCount(), 100'003);
}

TEST(Document, OpensWorkbooksAndSavesThemAsCsv) {
  const TempFolder folder;
  const auto path = folder.Write(
      "book.xlsx", samples::Archive(samples::XlsxParts({{"One", "<row r='2'><c r='B2'><v>1.5</v></c></row>"},
                                                        {"T/wo", "<row><c><v>2</v></c></row>"}})));
  Opened document(path);
  ASSERT_EQ(document.Sheets().size(), 2u);
  EXPECT_EQ(document.RowText(document.ActiveSheet(), 2), ",1.5");
  document.Workbook()->ActivateSheet(document.Sheets()[1]);
  EXPECT_EQ(document.Get(u"A1"), "2");
  document.Set(u"B1", u"a,b");
  EXPECT_EQ(document.SavePath(), folder.Path() / "book.T_wo.csv");
  EXPECT_TRUE(document.Save({}));
  EXPECT_EQ(ReadBytes(folder.Path() / "book.T_wo.csv"),
            "\xEF\xBB\xBF"
            "2,\"a,b\"\r\n");
  EXPECT_EQ(std::filesystem::status(document.SavePath()).permissions(),
            std::filesystem::status(folder.Write("any", "")).permissions());
  EXPECT_FALSE(document.IsModified());
  EXPECT_EQ(document.Refusal(), std::nullopt);  // it is ours by now
  folder.Write("book.T_wo.csv", "x");
  EXPECT_EQ(document.Refusal(), Reason::FileChanged);

  for (const auto* bytes :
       {"PK\x03\x04", "PK\x03\x04garbage",
        "<?xml version='1.0'?><x xmlns='urn:schemas-microsoft-com:office:spreadsheet'>"}) {
    const auto damaged = folder.Write("damaged", bytes);
    try {
      const Opened opened(damaged);
      ADD_FAILURE() << bytes;
    } catch (const std::runtime_error& error) {
      const std::string message = error.what();
      EXPECT_TRUE(message.starts_with(damaged.string() + ": ") &&
                  message.size() > damaged.string().size() + 5)
          << message;
    }
  }
}

// What tells of the rest of the rows may crash, and then these are not all.
TEST(Loader, TellsAProcessThatEndsFromTheEndOfTheFile) {
  const std::vector<std::string> cells = {std::string(100'000, 'x')};  // more than is kept back
  const auto load = [&](const std::function<void()>& end) {
    const auto host = MakeRef<standalone::Application>();
    const auto book = host->AddWorkbook(u"book");
    const auto read = [&](SheetSink& sink) {
      sink.Sheet("Sheet");
      sink.Row(2, cells);
      end();
    };
    const auto loader = LoadSheets("book", read, Within(64 << 20));
    std::string outcome = "loaded";
    try {
      while (loader->Step(*book)) {
      }
    } catch (const std::runtime_error& error) {
      outcome = error.what();
    }
    const auto cell = book->Worksheets().front()->Text().Cell(2, 1);
    EXPECT_EQ(cell.size(), cells.front().size()) << outcome;
    return outcome;
  };
  EXPECT_EQ(load([] {}), "loaded");
  EXPECT_EQ(load([] { throw std::runtime_error("reason"); }), "book: reason");
  EXPECT_EQ(load([] { ::raise(SIGKILL); }), "book: The file is damaged: it can not be read");
  EXPECT_TRUE(load([] { const std::string large(256 << 20, 'x'); }).starts_with("book: "));
}

TEST(Document, LoadsWhatTheMemoryHolds) {
  const TempFolder folder;
  const auto ods = samples::Archive(
      {{"content.xml",
        samples::OdsContent(
            "<table:table table:name='S'><table:table-row table:number-rows-repeated='1000000'>"
            "<table:table-cell table:number-columns-repeated='100'><text:p>text</text:p>"
            "</table:table-cell></table:table-row></table:table>")}});
  std::string csv;
  for (int i = 0; i < 100'000; ++i) csv += "some text,more\n";
  // The process that reads the one may need some room of its own.
  const std::pair<std::filesystem::path, uint64_t> files[] = {{folder.Write("large.ods", ods), 32 << 20},
                                                              {folder.Write("large.csv", csv), 4 << 20}};
  for (const auto& [path, memory] : files) {
    Document document(MakeRef<standalone::Application>(), path, u"large", Within(memory));
    std::string reason;
    try {
      while (document.Step()) {
      }
    } catch (const std::runtime_error& error) {
      reason = error.what();
    }
    EXPECT_TRUE(reason.starts_with(path.string() + ": Too large")) << reason;
    EXPECT_EQ(document.LoadState(), Document::State::Stopped);
    EXPECT_GT(document.ActiveSheet().Text().AppendedRows(), 1000);
  }
}

TEST(Document, UndoesAndRedoesExactly) {
  const TempFolder folder;
  const std::string before = "a,\"b\"\r\nc";
  const auto path = folder.Write("table.csv", before);
  Opened document(path);
  EXPECT_FALSE(document.Undo() || document.Redo());
  document.Set(u"B1", u"x");
  document.Set(u"D5", u"y");  // beyond the table
  document.Set(u"B1", u"z");
  const auto place = document.Undo();
  EXPECT_TRUE(place && place->row == 1 && place->column == 2);
  EXPECT_EQ(document.Get(u"B1"), "x");
  EXPECT_TRUE(document.Undo() && document.Undo() && !document.Undo());
  EXPECT_FALSE(document.IsModified());
  EXPECT_TRUE(document.Save({}));
  EXPECT_EQ(ReadBytes(path), before);
  EXPECT_TRUE(document.Redo() && document.Redo() && document.IsModified());
  document.Set(u"A1", u"new");  // what was taken back is gone
  EXPECT_FALSE(document.Redo());
  EXPECT_TRUE(document.Save({}));
  EXPECT_EQ(ReadBytes(path), "new,x\r\nc\r\n\r\n\r\n,,,y");
  // Now the saved text is the one without changes.
  EXPECT_TRUE(document.Undo() && document.IsModified());
  EXPECT_TRUE(document.Redo() && !document.IsModified());
  // No row of a file that is still being read is changed twice.
  std::string rows = "\xC3\xBC\n";
  while (rows.size() < 3 * TextReader::kPiece) rows += "some text\n";
  Opened late(folder.Write("late.csv", rows + "\xFC"), false);
  late.Set(u"A1", u"x");
  while (late.Step()) {
  }
  late.Set(u"A1", u"Ã¼");
  EXPECT_FALSE(late.IsModified());
}

TEST(Document, SavesElsewhereAndStaysThere) {
  const TempFolder folder;
  std::string rows = "a,b\n";
  while (rows.size() < 3 * TextReader::kPiece) rows += "\"some\",text\n";
  const auto path = folder.Write("table.csv", rows);
  const auto other = folder.Path() / "other.csv";
  const auto recovery = folder.Path() / "recovery";
  Opened document(path);
  document.KeepEdits({recovery});
  document.Set(u"A1", u"x");
  const auto before = document.KeptIn();
  EXPECT_TRUE(document.Save({.path = other}));
  EXPECT_FALSE(std::filesystem::exists(before));
  EXPECT_NE(document.KeptIn(), before);
  EXPECT_TRUE(ReadBytes(path) == rows && ReadBytes(other) == "x" + rows.substr(1));
  EXPECT_EQ(document.SavePath(), other);
  // What was read lies in the first file still.
  folder.Write("table.csv", std::string(rows.size() + 1, 'x'));
  document.Set(u"A1", u"y");
  EXPECT_TRUE(document.Save({}));
  EXPECT_TRUE(ReadBytes(other).starts_with("y,b\nsome,text\n"));
  folder.Write("other.csv", "");
  EXPECT_EQ(document.Refusal(), Reason::FileChanged);
}

TEST(Document, KeepsEditsThatAreNotSaved) {
  const TempFolder folder;
  const std::string name = "ta\\ble\xFF.csv";
  const auto path = "/" + folder.Write(name, "a,b\nc,d\n").string();
  const auto unfit = folder.Write("file", "") / "below";
  const auto fit = folder.Path() / "set\\ti\xFFngs" / "rowlark";
  const Folders folders = {unfit, fit};
  const auto kept = [](const Opened& document) { return ParseRecovery(ReadBytes(document.KeptIn())); };
  std::string bytes;
  {
    Opened document(path);
    auto found = document.KeepEdits(folders);
    EXPECT_TRUE(found.left.empty() && !found.is_open_elsewhere);
    EXPECT_EQ(document.KeptIn().parent_path(), fit);
    for (const auto& made : {fit, fit.parent_path(), document.KeptIn()}) {
      EXPECT_EQ(std::filesystem::status(made).permissions() & std::filesystem::perms(077),
                std::filesystem::perms::none);
    }
    document.Set(u"A1", u"Ω\r\n\xD800");
    EXPECT_EQ(kept(document).edits.size(), 1u);  // at once
    document.Set(u"C9", u"new");
    document.Undo();
    EXPECT_EQ(kept(document).edits.back().text, u"");
    document.Undo();
    EXPECT_EQ(ReadBytes(document.KeptIn()), "");  // nothing is to be kept
    document.Redo();
    std::filesystem::remove(document.KeptIn());  // others clean up
    document.Redo();
    document.Set(u"B2", u"");
    EXPECT_EQ(kept(document).edits.size(), 3u);
    // Another instance, by another name of the same file: it has a file of its own and leaves this one alone.
    std::filesystem::create_symlink(path, folder.Path() / "link");
    Opened second(folder.Path() / "link");
    found = second.KeepEdits(folders);
    EXPECT_TRUE(found.left.empty() && found.is_open_elsewhere);
    EXPECT_NE(second.KeptIn(), document.KeptIn());
    second.Set(u"A1", u"second");
    EXPECT_TRUE(second.Save({}));
    folder.Write(name, "a,b\nc,d\n");
    bytes = ReadBytes(document.KeptIn());
  }
  Opened document(path);
  auto found = document.KeepEdits(folders);
  ASSERT_TRUE(found.left.size() == 1 && !found.is_open_elsewhere);
  const auto& recovery = found.left[0].recovery;
  EXPECT_FALSE(recovery.damaged);
  EXPECT_NE(recovery.stamp, FileStamp::Of(path));
  EXPECT_EQ(document.Recover(recovery.edits), 0u);
  EXPECT_EQ(document.ActiveSheet().Range(u"A1")->Value(), u"Ω\r\n\xD800");
  EXPECT_EQ(document.Get(u"B2") + document.Get(u"C9"), "new");
  EXPECT_EQ(kept(document).edits.size(), 3u);  // here as well, and there until somebody removes it
  EXPECT_EQ(ReadBytes(found.left[0].file.Path()), bytes);
  EXPECT_EQ(document.Recover({{u"other", 1, 1, u"x"}}), 1u);
  document.Discard();
  EXPECT_EQ(document.KeptIn(), "");

  // Cut off or changed anywhere, it gives the edits before; but for a cut between two of them it says so.
  std::size_t silent = 0;
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    const auto cut = ParseRecovery(bytes.substr(0, size));
    EXPECT_LT(cut.edits.size(), 3u) << size;
    silent += cut.damaged ? 0 : 1;
    auto changed = bytes;
    changed[size] = static_cast<char>(changed[size] ^ 1);
    EXPECT_TRUE(ParseRecovery(changed).damaged) << size;
  }
  EXPECT_EQ(silent, 3u);

  // Of a workbook, what was saved in one sheet leaves the others' edits.
  Opened book(folder.Write("book.xlsx", samples::Archive(samples::XlsxParts(
                                            {{"One", "<row><c><v>1</v></c></row>"}, {"Two", ""}}))));
  book.KeepEdits({fit});
  book.Set(u"A1", u"one");
  book.Sheets()[1]->Range(u"A1")->SetValue(u"two");
  EXPECT_TRUE(book.Save({}));
  ASSERT_EQ(kept(book).edits.size(), 1u);
  EXPECT_EQ(kept(book).edits[0].sheet + kept(book).edits[0].text, u"Twotwo");
  book.Workbook()->ActivateSheet(book.Sheets()[1]);
  EXPECT_TRUE(book.Save({}));
  EXPECT_EQ(ReadBytes(book.KeptIn()), "");
}

}  // namespace
}  // namespace rowlark
