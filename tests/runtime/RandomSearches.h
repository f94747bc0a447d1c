// Random sheets, profiles, filters and options, and a slow and obvious model of what a search must leave
// visible, whatever stands between the runtime and the sheet.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <vector>

#include "Session.h"
#include "util/Text.h"

namespace rowlark::testing::random_searches {

using Connect = std::function<void(Session&)>;

inline constexpr int32_t kRows = 12;  // of the sheet that are looked at
inline constexpr int32_t kColumns = 5;

struct Scenario {
  std::u16string cells[kRows + 1][kColumns + 1];  // from 1
  int32_t start_row = 0, start_column = 0, end_row = 0, end_column = 0, select_column = 0;
  std::set<int32_t> search_columns;  // empty: all
  int32_t filter_column = 0;         // 0: no AutoFilter; -1: one without a criterion
  std::u16string filter_text;
  std::set<int32_t> hidden;
  xeVT_SEARCH_WORDS words = xcVT_SEARCH_WORDS_ALL;
  bool match_case = false;
  bool use_filter = true;
  std::u16string text;
  int32_t late_row = 0;  // of the cells that get their texts after the first letter
};

struct Outcome {
  bool found = false;
  std::set<int32_t> visible;
  int32_t row = 0, column = 0;  // of the active cell, when found
  friend bool operator==(const Outcome&, const Outcome&) = default;
};

struct Used {
  int32_t top = 1, left = 1, bottom = 1, right = 1;
};

inline Used UsedRange(const Scenario& s) {
  Used used{kRows + 1, kColumns + 1, 0, 0};
  for (int32_t r = 1; r <= kRows; ++r) {
    for (int32_t c = 1; c <= kColumns; ++c) {
      if (s.cells[r][c].empty()) continue;
      used = {std::min(used.top, r), std::min(used.left, c), std::max(used.bottom, r),
              std::max(used.right, c)};
    }
  }
  return used.bottom == 0 ? Used{} : used;
}

inline std::vector<std::u16string> Words(const Scenario& s) {
  if (s.words != xcVT_SEARCH_WORDS_ANY) return {s.text};
  std::vector<std::u16string> words(1);
  for (std::size_t i = 0; i < s.text.size(); ++i) {
    if (s.text[i] != u' ') {
      words.back() += s.text[i];
    } else if (i == 0 || s.text[i - 1] != u' ') {
      words.emplace_back();
    }
  }
  return words;
}

inline bool CellMatches(const Scenario& s, std::u16string cell, std::u16string word) {
  if (!s.match_case) cell = FoldCase(cell), word = FoldCase(word);
  if (word.empty()) return cell.empty();
  return s.words == xcVT_SEARCH_WORDS_CELL ? cell == word : cell.find(word) != std::u16string::npos;
}

inline Outcome Predict(const Scenario& s) {
  const Used used = UsedRange(s);
  const bool filtered = s.filter_column != 0;
  Outcome outcome;
  for (int32_t r = 1; r <= kRows + 3; ++r) {
    bool visible = true;
    if (filtered && s.filter_column > 0 && r > used.top && r <= used.bottom) {
      visible = FoldCase(s.cells[r][used.left + s.filter_column - 1]) == FoldCase(s.filter_text);
    }
    if (!s.use_filter && s.hidden.contains(r)) visible = false;
    if (visible) outcome.visible.insert(r);
  }

  int32_t top = s.start_row, left = s.start_column, bottom = s.end_row, right = s.end_column;
  bool automatic = top < 0 && left < 0 && bottom < 0 && right < 0;
  if (filtered) {
    top = used.top + 1, left = used.left, bottom = std::max(used.bottom, used.top + 2), right = used.right;
    if (used.bottom >= used.top + 1) bottom = used.bottom;
    automatic = false;
  } else {
    automatic = top <= 0 && left <= 0 && bottom <= 0 && right <= 0;
    if (top <= 0) top = used.top;
    if (left <= 0) left = used.left;
    if (bottom <= 0) bottom = used.bottom;
    if (right <= 0) right = used.right;
  }
  const int32_t end_row = std::min(bottom, used.bottom + 1);
  const int32_t target = s.select_column >= 1 ? s.select_column : left;

  struct Cell {
    int32_t row, column;
  };
  std::vector<Cell> order;
  for (int32_t r = std::min(top, end_row); r <= std::max(top, end_row); ++r) {
    if (filtered && !outcome.visible.contains(r)) continue;
    for (int32_t c = std::min(left, right); c <= std::max(left, right); ++c) order.push_back({r, c});
  }
  if (order.empty()) return outcome;
  const int32_t first_row = order.front().row;
  std::rotate(order.begin(), order.begin() + 1, order.end());

  std::set<int32_t> rows;
  for (const auto& word : Words(s)) {
    for (const auto& [r, c] : order) {
      const auto text = r <= kRows && c <= kColumns ? s.cells[r][c] : u"";
      if (!outcome.visible.contains(r) || !CellMatches(s, text, word)) continue;
      if (s.search_columns.empty() || s.search_columns.contains(c)) rows.insert(r);
      if (!s.use_filter) break;
    }
  }
  if (rows.empty()) return outcome;
  outcome.found = true;
  outcome.row = *rows.begin();
  outcome.column = target;
  if (!s.use_filter) return outcome;
  for (int32_t r = first_row; r <= std::max(end_row, *rows.rbegin()); ++r) {
    if (!rows.contains(r)) outcome.visible.erase(r);
  }
  if (automatic && *rows.begin() >= 3) {
    for (int32_t r = 1; r < *rows.begin(); ++r) outcome.visible.erase(r);
  }
  return outcome;
}

// The text is typed letter by letter, and after the first one a cell is changed and the filter set.
inline Outcome RunSearch(const Scenario& s, const Connect& connect) {
  Session session("");
  if (connect) connect(session);
  for (int32_t r = 1; r <= kRows; ++r) {
    for (int32_t c = 1; c <= kColumns; ++c) {
      if (!s.cells[r][c].empty()) session.sheet->SetCell(r, c, r == s.late_row ? u"zz" : s.cells[r][c]);
    }
  }
  auto& profile = session.Profile();
  profile.SetBlock({s.start_row, s.start_column, s.end_row, s.end_column});
  profile.SelectCol = s.select_column;
  for (const int32_t c : s.search_columns) {
    profile.SearchCols +=
        (profile.SearchCols.empty() ? u"" : u",") + std::u16string(1, static_cast<char16_t>(u'A' + c - 1));
  }
  session.runtime.SearchOptions->CompareMethod = s.match_case ? CompareMode::Binary : CompareMode::Text;
  session.runtime.SearchOptions->SearchWords = s.words;
  session.runtime.SearchOptions->UseFilter = s.use_filter;
  if (s.text.size() > 1) session.Search(s.text.substr(0, 1));
  for (int32_t c = 1; c <= kColumns && s.late_row > 0; ++c) {
    if (!s.cells[s.late_row][c].empty()) session.sheet->SetCell(s.late_row, c, s.cells[s.late_row][c]);
  }
  if (s.filter_column != 0) {
    host::AutoFilterArguments arguments;
    arguments.Field = std::max(s.filter_column, 1);
    if (s.filter_column > 0) arguments.Criteria1 = s.filter_text;
    session.sheet->UsedRange()->AutoFilter(arguments);
  }
  for (const int32_t r : s.hidden) session.sheet->SetHidden({r, 1, r, 1}, true);
  for (std::size_t size = 1; size < s.text.size(); ++size) session.Search(s.text.substr(0, size));
  if (s.use_filter && s.text.size() % 2 == 0) session.Search(u"b");

  Outcome outcome;
  outcome.found = session.Search(s.text) == "found";
  for (int32_t r = 1; r <= kRows + 3; ++r) {
    if (!session.sheet->HiddenRows().Contains(r)) outcome.visible.insert(r);
  }
  if (outcome.found) {
    outcome.row = session.application->ActiveCell()->Row();
    outcome.column = session.application->ActiveCell()->Column();
  }
  EXPECT_TRUE(session.FlagsRestored());
  EXPECT_EQ(session.runtime.Items->RowsIsGrouped, outcome.found && s.use_filter);
  return outcome;
}

inline std::string Describe(const Scenario& s) {
  std::ostringstream out;
  for (int32_t r = 1; r <= kRows; ++r) {
    for (int32_t c = 1; c <= kColumns; ++c) out << ToUtf8(s.cells[r][c]) << ',';
    out << (s.hidden.contains(r) ? " hidden\n" : "\n");
  }
  out << "rows " << s.start_row << ".." << s.end_row << " columns " << s.start_column << ".." << s.end_column
      << " go to " << s.select_column << " searched";
  for (const int32_t c : s.search_columns) out << ' ' << c;
  out << " filter " << s.filter_column << '=' << ToUtf8(s.filter_text) << " words " << s.words << " case "
      << s.match_case << " hide " << s.use_filter << " late row " << s.late_row << " text \""
      << ToUtf8(s.text) << '"';
  return out.str();
}

inline std::string Describe(const Outcome& o) {
  std::ostringstream out;
  out << (o.found ? "found" : "not found") << " at " << o.row << ',' << o.column << " visible";
  for (const int32_t r : o.visible) out << ' ' << r;
  return out.str();
}

inline Scenario Random(uint32_t seed) {
  std::mt19937 random(seed);
  const auto pick = [&](int32_t n) { return static_cast<int32_t>(random() % static_cast<uint32_t>(n)); };
  const std::u16string_view kTexts[] = {u"", u"", u"a", u"ab", u"Ab", u"b", u"bä", u"Ä", u"c a"};
  const std::u16string_view kSearches[] = {u"a",   u"b",    u"AB", u"ä", u"c a",
                                           u"a b", u"b  ä", u" c", u"",  u"zz"};
  Scenario s;
  const int32_t top = 1 + pick(4), left = 1 + pick(2), bottom = top + pick(kRows - top + 1);
  for (int32_t r = top; r <= bottom; ++r) {
    for (int32_t c = left; c <= kColumns; ++c) s.cells[r][c] = kTexts[pick(std::size(kTexts))];
  }
  const auto bound = [&](int32_t limit) { return pick(3) == 0 ? 1 + pick(limit) : -pick(2); };
  if (pick(2) == 0)
    s.start_row = s.start_column = s.end_row = s.end_column = -1;
  else
    s.start_row = bound(kRows), s.start_column = bound(kColumns), s.end_row = bound(kRows + 3),
    s.end_column = bound(kColumns);
  s.select_column = pick(4) - 1;
  for (int32_t c = 1; c <= kColumns && pick(2) == 0; ++c) s.search_columns.insert(1 + pick(kColumns));
  const Used used = UsedRange(s);
  if (pick(3) == 0 && used.bottom > used.top) {
    s.filter_column = pick(4) == 0 ? -1 : 1 + pick(used.right - used.left + 1);
    s.filter_text = kTexts[2 + pick(4)];
  }
  for (int32_t r = 1; r <= kRows; ++r) {
    if (pick(8) == 0) s.hidden.insert(r);
  }
  s.words = static_cast<xeVT_SEARCH_WORDS>(pick(3));
  s.match_case = pick(2) == 0;
  s.use_filter = pick(3) != 0;
  s.text = kSearches[pick(std::size(kSearches))];
  if (pick(2) == 0) s.late_row = top + pick(bottom - top + 1);
  return s;
}

// What a search leaves visible is what the model says, for that many scenarios.
inline void ExpectAsPredicted(const std::vector<Connect>& hosts, uint32_t first_seed, uint32_t last_seed) {
  uint32_t found = 0;
  for (uint32_t seed = first_seed; seed <= last_seed; ++seed) {
    const Scenario s = Random(seed);
    const Outcome expected = Predict(s);
    found += expected.found ? 1 : 0;
    for (std::size_t host = 0; host < hosts.size(); ++host) {
      const Outcome outcome = RunSearch(s, hosts[host]);
      ASSERT_TRUE(outcome == expected)
          << "seed " << seed << ", host " << host << ":\n"
          << Describe(s) << "\nexpected " << Describe(expected) << "\n     got " << Describe(outcome);
    }
  }
  EXPECT_GT(found, (last_seed - first_seed) / 4) << "most scenarios should find something";
}

}  // namespace rowlark::testing::random_searches
