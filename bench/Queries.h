// What the benchmarks type into the search box, and the patterns that line-oriented search tools get for the
// same question.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "runtime/clsVTRLKOptions.h"

namespace rowlark::bench {

struct Query {
  std::string_view name;
  std::u16string_view text;
  std::u16string_view before = {};  // searched for just before, unmeasured: a letter is typed behind it
  xeVT_SEARCH_WORDS words = xcVT_SEARCH_WORDS_ALL;
  std::u16string_view columns = {};  // as in a profile's SearchCols; empty: all
  // Fixed texts, letter case ignored; a line that holds one of them counts.
  std::vector<std::string_view> patterns;
};

std::span<const Query> Queries();

}  // namespace rowlark::bench
