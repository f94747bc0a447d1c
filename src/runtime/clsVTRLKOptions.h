// How the next search matches and what it does with the rows.
#pragma once

#include <cstdint>

#include "util/Text.h"

namespace rowlark {

enum xeVT_SEARCH_WORDS : int32_t {
  xcVT_SEARCH_WORDS_ALL = 0,   // the whole text, as one piece, inside a cell
  xcVT_SEARCH_WORDS_ANY = 1,   // any of its words, cut at single spaces, inside a cell
  xcVT_SEARCH_WORDS_CELL = 2,  // the whole text equals the whole cell
};

class clsVTRLKOptions {
 public:
  CompareMode CompareMethod = CompareMode::Binary;  // Binary matches case, anything else does not
  xeVT_SEARCH_WORDS SearchWords = xcVT_SEARCH_WORDS_ALL;
  bool ExtSearch = false;    // kept for the forms
  bool UseFilter = false;    // hide the rows without a match; otherwise only go to the first match
  bool UnhideOnEsc = false;  // kept for the forms
};

}  // namespace rowlark
