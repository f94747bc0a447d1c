#include "Highlight.h"

#include <algorithm>
#include <utility>

#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {

Highlight::Highlight(std::u16string_view text, const clsVTRLKOptions& options, const Block& area,
                     std::vector<int32_t> columns)
    : mode_(options.CompareMethod), area_(area), columns_(std::move(columns)) {
  const bool any = options.SearchWords == xcVT_SEARCH_WORDS_ANY;
  const bool whole = options.SearchWords == xcVT_SEARCH_WORDS_CELL;
  for (const auto word : any ? Pieces(text, u" ") : std::vector{text}) {
    if (word.empty()) continue;
    const bool literal = !whole && word.find_first_of(u"*?~") == word.npos;
    words_.push_back(
        {std::u16string(word), literal, cells::Pattern(word, whole, mode_ == CompareMode::Binary)});
  }
}

bool Highlight::Covers(int32_t row, int32_t column) const {
  return !words_.empty() && area_.Contains(row, column) &&
         (columns_.empty() || std::ranges::binary_search(columns_, column));
}

bool Highlight::Matches(std::string_view stored) const {
  return std::ranges::any_of(words_, [&](const Word& word) { return word.pattern.Matches(stored); });
}

std::vector<TextSpan> Highlight::In(std::u16string_view cell) const {
  std::vector<TextSpan> spans;
  for (const auto& word : words_) {
    if (!word.literal) {
      const auto text = ToUtf8(mode_ == CompareMode::Binary ? std::u16string(cell) : FoldCase(cell));
      if (word.pattern.Matches(text)) return {{0, cell.size()}};
      continue;
    }
    for (std::size_t at = 0; (at = Find(cell, word.text, at, mode_)) != cell.npos;) {
      spans.push_back({at, at + word.text.size()});
      at += word.text.size();
    }
  }
  std::ranges::sort(spans, {}, &TextSpan::begin);
  return spans;
}

}  // namespace rowlark
