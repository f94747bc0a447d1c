// Find and FindNext of the stand-alone sheet: written-down cases, and random ones against a slow and obvious
// model.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Sheet.h"
#include "host/cells/Scan.h"
#include "util/Text.h"

namespace rowlark {
namespace {

using testing::SampleHost;

// Every match in the order in which Find and FindNext give them, "B2 C1".
std::string FindAll(host::Range& range, const host::FindArguments& arguments) {
  std::string all;
  auto cell = range.Find(arguments);
  if (!cell) return all;
  const auto first = cell->Address();
  do {
    all += (all.empty() ? "" : " ") + SampleHost::Plain(*cell);
    cell = range.FindNext(*cell);
  } while (cell && cell->Address() != first);
  return all;
}

// The rows that are found in bulk, "2 1"; `between` is called after each piece.
std::string FindRows(host::Range& range, const host::FindArguments& arguments,
                     const std::optional<std::vector<int32_t>>& columns = std::nullopt,
                     const std::function<void()>& between = {}) {
  std::vector<int32_t> rows;
  const auto search = range.FindRows(arguments, columns);
  while (search->Next(rows) != host::RowSearch::Piece::End) {
    if (between) between();
  }
  std::string all;
  for (const int32_t row : rows) all += (all.empty() ? "" : " ") + std::to_string(row);
  return all;
}

host::FindArguments What(std::u16string_view what, host::XlLookAt look_at = host::xlPart,
                         bool match_case = false) {
  host::FindArguments arguments;
  arguments.What = what;
  arguments.LookIn = host::xlValues;
  arguments.LookAt = look_at;
  arguments.MatchCase = match_case;
  return arguments;
}

TEST(Find, MatchesTextAndWildcards) {
  const char* const cells =
      "Straße,STRASSE,x|a*b,aXb,ab|Ünïcode,ünïcode,|what?,whatever,~tilde|Москва,МОСКВА,Ελλάς|ab,Ab "
      ",\xF0\x9D\x84\x9E";
  const struct {
    std::u16string_view what;
    host::XlLookAt look_at;
    bool match_case;
    const char* found;
  } kCases[] = {
      {u"STRAßE", host::xlPart, false, "A1"},
      {u"ÜNÏ", host::xlPart, false, "A3 B3"},
      {u"ünï", host::xlPart, true, "B3"},
      {u"москва", host::xlWhole, false, "A5 B5"},
      {u"ΕΛΛΆΣ", host::xlWhole, false, "C5"},
      {u"ab", host::xlPart, false, "C2 A6 B6"},
      {u"ab", host::xlWhole, false, "C2 A6"},
      {u"Ab", host::xlPart, true, "B6"},
      {u"a*b", host::xlWhole, false, "A2 B2 C2 A6"},
      {u"a~*b", host::xlPart, false, "A2"},
      {u"a?b", host::xlWhole, false, "A2 B2"},
      {u"what~?", host::xlPart, false, "A4"},
      {u"~~tilde", host::xlWhole, false, "C4"},
      {u"*ever", host::xlWhole, false, "B4"},
      {u"what*", host::xlWhole, false, "A4 B4"},
      {u"?", host::xlWhole, false, "C1 C6"},
      {u"*", host::xlPart, false, "B1 C1 A2 B2 C2 A3 B3 A4 B4 C4 A5 B5 C5 A6 B6 C6 A1"},
      {u"", host::xlPart, false, "C3"},
      {u"x", host::xlPart, false, "C1 B2"},
      {u"nowhere", host::xlPart, false, ""},
  };
  for (const auto& c : kCases) {
    const SampleHost sample(cells);
    EXPECT_EQ(FindAll(*sample.sheet->Range(u"A1:C6"), What(c.what, c.look_at, c.match_case)), c.found)
        << ToUtf8(c.what);
  }
}

TEST(Find, StartsBehindTheFirstCellAndWrapsAround) {
  const SampleHost sample("x,x,|x,,x|,x,");
  EXPECT_EQ(FindAll(*sample.sheet->Range(u"A1:C3"), What(u"x")), "B1 A2 C2 B3 A1");
  EXPECT_EQ(FindAll(*sample.sheet->Range(u"B1:C3"), What(u"x")), "C2 B3 B1");
  EXPECT_EQ(FindAll(*sample.sheet->Range(u"A2:C3,A1:B1"), What(u"x")), "C2 B3 A1 B1 A2");
  const auto after = sample.sheet->Range(u"C2");
  auto arguments = What(u"x");
  arguments.After = after.get();
  EXPECT_EQ(FindAll(*sample.sheet->Range(u"A1:C3"), arguments), "B3 A1 B1 A2 C2");
  arguments.SearchDirection = host::xlPrevious;
  EXPECT_EQ(SampleHost::Plain(*sample.sheet->Range(u"A1:C3")->Find(arguments)), "A2");
  const auto outside = sample.sheet->Range(u"D9");
  arguments.After = outside.get();
  EXPECT_THROW(sample.sheet->Range(u"A1:C3")->Find(arguments), host::Error);
}

TEST(Find, RemembersOrderAndKindOfTheLastSearchButNotItsDirectionOrCase) {
  const SampleHost sample("x,X1|x,x");
  const auto range = sample.sheet->Range(u"A1:B2");
  auto arguments = What(u"X", host::xlWhole, true);
  arguments.SearchOrder = host::xlByColumns;
  arguments.SearchDirection = host::xlPrevious;
  EXPECT_FALSE(range->Find(arguments));
  host::FindArguments again;
  again.What = u"x";
  EXPECT_EQ(FindAll(*range, again), "A2 B2 A1");  // whole cells, by columns, forward, in any case
}

TEST(Find, SeesValuesInVisibleRowsAndFormulasEverywhere) {
  const SampleHost sample("x|x|x|x");
  sample.sheet->Range(u"2:3")->SetEntireRowHidden(true);
  auto arguments = What(u"x");
  EXPECT_EQ(FindAll(*sample.sheet->Range(u"A1:A4"), arguments), "A4 A1");
  arguments.LookIn = host::xlFormulas;
  EXPECT_EQ(FindAll(*sample.sheet->Range(u"A1:A4"), arguments), "A2 A3 A4 A1");
}

// A row is a piece. What a search has found is of use to the next one until a cell changes.
TEST(Find, RowsAreFoundAsTheCellsAreByNow) {
  const std::string filler(300000, '-');
  const auto row = [&](const char* first) { return std::string(first) + "," + filler; };
  const SampleHost sample(row("x") + "|" + row("x") + "|" + row("y") + "|" + row("y") + "|" + row("y"));
  const auto range = sample.sheet->Range(u"A1:B5");
  int32_t pieces = 0;
  EXPECT_EQ(FindRows(*range, What(u"x"), std::nullopt,
                     [&] {
                       if (++pieces != 2) return;
                       sample.sheet->SetCell(1, 1, u"y");
                       sample.sheet->SetCell(3, 1, u"xx");
                       sample.sheet->SetHidden({4, 1, 4, 1}, true);
                       sample.sheet->SetCell(4, 1, u"xx");
                     }),
            "1 2 3");
  EXPECT_GE(pieces, 4);
  EXPECT_EQ(FindRows(*range, What(u"x")), "2 3");
  EXPECT_EQ(FindRows(*range, What(u"xx")), "3");
  sample.sheet->SetHidden({4, 1, 4, 1}, false);
  EXPECT_EQ(FindRows(*range, What(u"xx")), "3 4");
  EXPECT_EQ(FindRows(*range, What(u"xx"), std::nullopt, [&] { sample.sheet->SetCell(5, 1, u"xx"); }),
            "3 4 5");
  const auto book = sample.application->AddWorkbook(u"other");
  EXPECT_EQ(FindRows(*book->ActiveSheet()->Range(u"A1:B4"), What(u"xx")), "");
  const auto search = range->FindRows(What(u"x"), std::nullopt);
  sample.application->Close(sample.book);
  std::vector<int32_t> rows;
  EXPECT_THROW(search->Next(rows), host::Error);
}

TEST(Scan, AgreesWithAnObviousSearch) {
  std::mt19937 random(1);
  const auto pick = [&](std::size_t n) { return static_cast<std::size_t>(random()) % n; };
  for (int round = 0; round < 20000; ++round) {
    std::string text(pick(300), ' ');
    for (auto& c : text) c = "abc"[pick(3)];
    std::string needle(1 + pick(6), ' ');
    for (auto& c : needle) c = "abc"[pick(3)];
    const auto rare1 = pick(needle.size());
    const auto rare2 = needle.size() == 1 ? 0 : (rare1 + 1 + pick(needle.size() - 1)) % needle.size();
    const auto expected = std::min(text.find(needle), text.size());
    std::string padded = text + std::string(standalone::kScanPadding, needle[rare1]);
    for (const auto* kernel : {&standalone::SelectScan(), &standalone::kPortableScan}) {
      const char* end = padded.data() + text.size();
      const auto* found = kernel->find(padded.data(), end, needle.data(), needle.size(), rare1, rare2);
      ASSERT_EQ(static_cast<std::size_t>(found - padded.data()), expected) << needle << " in " << text;
      ASSERT_EQ(kernel->count(padded.data(), end, needle[0]),
                std::count(text.begin(), text.end(), needle[0]));
    }
  }
}

// Random sheets around the end of a block of rows, random patterns, ranges and hidden rows, against a model
// that looks at one cell after the other.
TEST(Find, AgreesWithAnObviousModel) {
  std::mt19937 random(7);
  const auto pick = [&](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint32_t>(n)); };
  constexpr int32_t kTop = standalone::CellText::kBlockRows - 3;
  constexpr int32_t kRows = 7;
  constexpr int32_t kColumns = 4;
  const std::u16string_view kTexts[] = {u"", u"a", u"A", u"ab", u"Ba", u"äb", u"Ä", u"bab", u"жЖ"};
  const std::u16string_view kWhats[] = {u"a", u"b", u"ab", u"Ä", u"ж", u"a*b", u"?", u"a?", u"", u"ba*"};
  for (int round = 0; round < 1000; ++round) {
    const SampleHost sample("");
    std::u16string cells[kRows][kColumns];
    for (int32_t row = 0; row < kRows; ++row) {
      for (int32_t column = 0; column < kColumns; ++column) {
        cells[row][column] = kTexts[pick(std::size(kTexts))];
        if (!cells[row][column].empty()) sample.sheet->SetCell(kTop + row, column + 1, cells[row][column]);
      }
      if (pick(4) == 0) sample.sheet->SetHidden({kTop + row, 1, kTop + row, 1}, true);
    }
    std::vector<Block> areas;
    for (int32_t i = 0; i <= pick(2); ++i) {
      const int32_t row = kTop + (i == 0 ? 0 : 4) + pick(2);
      const int32_t column = 1 + pick(kColumns);
      areas.push_back({row, column, row + 1 + pick(2), std::min(column + pick(3), kColumns)});
    }
    const auto range = sample.sheet->MakeRange(areas);
    auto arguments =
        What(kWhats[pick(std::size(kWhats))], pick(2) == 0 ? host::xlPart : host::xlWhole, pick(2) == 0);
    arguments.SearchOrder = pick(3) == 0 ? host::xlByColumns : host::xlByRows;

    // All cells of the range in order, the first one last.
    std::vector<standalone::Cell> order;
    for (const auto& area : areas) {
      const bool by_rows = arguments.SearchOrder == host::xlByRows;
      for (int32_t i = 0; i < area.Rows() * area.Columns(); ++i) {
        order.push_back(by_rows ? standalone::Cell{area.first_row + i / area.Columns(),
                                                   area.first_column + i % area.Columns()}
                                : standalone::Cell{area.first_row + i % area.Rows(),
                                                   area.first_column + i / area.Rows()});
      }
    }
    std::rotate(order.begin(), order.begin() + 1, order.end());
    const standalone::Pattern pattern(arguments.What, arguments.LookAt == host::xlWhole,
                                      *arguments.MatchCase);
    std::optional<std::vector<int32_t>> columns;
    if (pick(2) == 0) columns = {1, 1 + pick(kColumns)};
    std::set<int32_t> rows;
    std::string expected;
    for (const auto& [row, column] : order) {
      std::u16string text = row < kTop + kRows ? cells[row - kTop][column - 1] : u"";
      if (!*arguments.MatchCase) text = FoldCase(text);
      if (sample.sheet->HiddenRows().Contains(row) || !pattern.Matches(ToUtf8(text))) continue;
      expected += (expected.empty() ? "" : " ") + SampleHost::Plain(*sample.sheet->Cells(row, column));
      if (!columns || std::ranges::count(*columns, column) > 0) rows.insert(row);
    }
    std::ostringstream expected_rows;
    for (const int32_t row : rows) expected_rows << (expected_rows.tellp() > 0 ? " " : "") << row;
    ASSERT_EQ(FindAll(*range, arguments), expected)
        << "round " << round << ": \"" << ToUtf8(arguments.What) << "\" in " << SampleHost::Plain(*range);
    ASSERT_EQ(FindRows(*range, arguments, columns), expected_rows.str())
        << "round " << round << ": \"" << ToUtf8(arguments.What) << "\" in " << SampleHost::Plain(*range);
  }
}

// Texts that are typed letter by letter, taken back, searched for in another way, while cells and rows
// change: what is remembered of the searches before gives no other rows than one cell after the other.
TEST(Find, RowsAreThoseOfEveryCellWhateverWasSearchedBefore) {
  std::mt19937 random(11);
  const auto pick = [&](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint32_t>(n)); };
  constexpr int32_t kRows = 40;
  const auto text = [&] {
    std::u16string letters;
    for (int32_t i = pick(6); i > 0; --i) letters += u"abAä?"[pick(5)];
    return letters;
  };
  for (int round = 0; round < 60; ++round) {
    const SampleHost sample("");
    for (int32_t row = 1; row <= kRows; ++row) {
      for (int32_t column = 1; column <= 3; ++column) sample.sheet->SetCell(row, column, text());
    }
    std::u16string what;
    for (int step = 0; step < 60; ++step) {
      if (pick(4) != 0) {
        what += u"aabä*"[pick(5)];
      } else if (!what.empty()) {
        what.pop_back();
      }
      if (pick(9) == 0) sample.sheet->SetCell(1 + pick(kRows), 1 + pick(3), text());
      if (pick(5) == 0) sample.sheet->SetHidden({1 + pick(kRows), 1, kRows, 1}, pick(2) == 0);
      const auto searched = pick(6) == 0 ? text() : what;
      auto arguments = What(searched, pick(6) == 0 ? host::xlWhole : host::xlPart, pick(6) == 0);
      std::vector<Block> areas{{1, 1, kRows, 3}};
      if (pick(3) == 0) areas = {{2, 1, 10 + pick(9), 3}, {20 + pick(9), 1, kRows, 3 - pick(2)}};
      std::optional<std::vector<int32_t>> columns;
      if (pick(4) == 0) columns = {1 + pick(2), 3};
      const auto range = sample.sheet->MakeRange(areas);
      std::set<int32_t> rows;
      std::u16string first;
      for (auto cell = range->Find(arguments); cell && cell->Address() != first;
           cell = range->FindNext(*cell)) {
        if (first.empty()) first = cell->Address();
        if (!columns || std::ranges::count(*columns, cell->Column()) > 0) rows.insert(cell->Row());
      }
      std::ostringstream expected;
      for (const int32_t row : rows) expected << (expected.tellp() > 0 ? " " : "") << row;
      ASSERT_EQ(FindRows(*range, arguments, columns), expected.str())
          << "round " << round << ", step " << step << ": " << ToUtf8(arguments.What);
    }
  }
}

}  // namespace
}  // namespace rowlark
