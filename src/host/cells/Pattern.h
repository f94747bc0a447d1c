// What a cell is compared with: the text of a search or of a filter's criterion, with its wildcards.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark::cells {

// `*` stands for any text, `?` for one character, `~` takes the meaning from the one that follows. An empty
// pattern matches empty cells and nothing else; any other pattern matches cells with a text only.
class Pattern {
 public:
  Pattern() = default;
  Pattern(std::u16string_view what, bool whole_cell, bool match_case);

  bool MatchCase() const { return match_case_; }
  bool IsEmpty() const { return elements_.empty(); }

  // `cell` comes from the folded twin unless the pattern matches case.
  bool Matches(std::string_view cell) const;

  // Whether every cell that matches this pattern is known to match the other one as well.
  bool Implies(const Pattern& other) const;

  // A literal that stands in the row of every matching cell, separators included; empty when there is none.
  const std::string& Literal() const { return literal_; }
  // Whether a cell in which the literal stands needs no further look.
  bool LiteralSuffices() const { return literal_suffices_; }
  // How many bytes of the literal stand before the cell's own text (0 or 1, a separator).
  std::size_t LiteralLead() const { return literal_lead_; }

  // Offsets in the literal of the two bytes that are rarest by `counts`.
  struct RareBytes {
    std::size_t first = 0;
    std::size_t second = 0;
  };
  RareBytes ChooseRareBytes(const std::array<uint32_t, 256>& counts) const;

 private:
  static constexpr uint16_t kAnyCharacter = 256;
  static constexpr uint16_t kAnyText = 257;

  void ChooseLiteral();

  std::vector<uint16_t> elements_;  // bytes and the two wildcards; a part of a cell has kAnyText at both ends
  std::string literal_;
  bool literal_suffices_ = false;
  std::size_t literal_lead_ = 0;
  bool match_case_ = false;
};

}  // namespace rowlark::cells
