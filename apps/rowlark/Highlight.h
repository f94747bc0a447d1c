// Where what was searched for last stands on a sheet.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/cells/Address.h"
#include "host/cells/Pattern.h"
#include "runtime/clsVTRLKOptions.h"

namespace rowlark {

// Offsets in the text of a cell, in UTF-16 units, the end not included.
struct TextSpan {
  std::size_t begin = 0;
  std::size_t end = 0;
};

class Highlight {
 public:
  Highlight() = default;
  // `columns` are those searched, in ascending order; empty: all of `area`.
  Highlight(std::u16string_view text, const clsVTRLKOptions& options, const Block& area,
            std::vector<int32_t> columns);

  const Block& Area() const { return area_; }
  bool Covers(int32_t row, int32_t column) const;
  // Whether a cell counts, by its text as the sheet stores it: folded, where letter case is of no matter.
  bool Matches(std::string_view stored) const;
  bool Folded() const { return mode_ == CompareMode::Text; }
  // In ascending order. With wildcards the whole cell counts.
  std::vector<TextSpan> In(std::u16string_view cell) const;

 private:
  struct Word {
    std::u16string text;
    bool literal;
    cells::Pattern pattern;
  };

  CompareMode mode_ = CompareMode::Text;
  std::vector<Word> words_;
  Block area_;
  std::vector<int32_t> columns_;
};

}  // namespace rowlark
