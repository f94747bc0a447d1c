#include "host/cells/Pattern.h"

#include <algorithm>

#include "host/cells/CellText.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::cells {
namespace {

bool IsWildcard(char c) { return c == '*' || c == '?' || c == '~'; }

// Bytes of the UTF-8 character at the front of `text`.
std::size_t CharacterSize(std::string_view text) {
  std::size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) ++size;
  return size;
}

}  // namespace

Pattern::Pattern(std::u16string_view what, bool whole_cell, bool match_case) : match_case_(match_case) {
  if (what.empty()) return;
  const std::string text = ToUtf8(match_case ? std::u16string(what) : FoldCase(what));
  if (!whole_cell) elements_.push_back(kAnyText);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '*') {
      elements_.push_back(kAnyText);
    } else if (text[i] == '?') {
      elements_.push_back(kAnyCharacter);
    } else {
      if (text[i] == '~' && i + 1 < text.size() && IsWildcard(text[i + 1])) ++i;
      elements_.push_back(static_cast<unsigned char>(text[i]));
    }
  }
  if (!whole_cell) elements_.push_back(kAnyText);
  ChooseLiteral();
}

// The longest run of bytes; at an end of the pattern the separator belongs to it.
void Pattern::ChooseLiteral() {
  const auto is_byte = [](uint16_t element) { return element < 256; };
  auto run = elements_.begin();
  std::size_t longest = 0;
  while ((run = std::find_if(run, elements_.end(), is_byte)) != elements_.end()) {
    const auto end = std::find_if_not(run, elements_.end(), is_byte);
    const auto size = static_cast<std::size_t>(end - run);
    if (size > longest) {
      longest = size;
      literal_.clear();
      literal_lead_ = run == elements_.begin() ? 1 : 0;
      if (literal_lead_ == 1) literal_ += CellText::kSeparator;
      std::transform(run, end, std::back_inserter(literal_), [](uint16_t b) { return static_cast<char>(b); });
      if (end == elements_.end()) literal_ += CellText::kSeparator;
    }
    run = end;
  }
  const auto others = elements_.size() - longest;
  literal_suffices_ =
      longest > 0 &&
      (others == 0 || (others == 2 && elements_.front() == kAnyText && elements_.back() == kAnyText));
}

bool Pattern::Matches(std::string_view cell) const {
  if (cell.empty() || elements_.empty()) return cell.empty() && elements_.empty();
  // The usual matching with one place to come back to: the last kAnyText takes one character more.
  std::size_t at = 0;
  std::size_t element = 0;
  std::size_t retry_at = 0;
  std::size_t retry_element = 0;
  bool can_retry = false;
  while (at < cell.size()) {
    const uint16_t wanted = element < elements_.size() ? elements_[element] : uint16_t{512};
    if (wanted == kAnyText) {
      can_retry = true;
      retry_at = at;
      retry_element = ++element;
    } else if (wanted == kAnyCharacter) {
      at += CharacterSize(cell.substr(at));
      ++element;
    } else if (wanted == static_cast<unsigned char>(cell[at])) {
      ++at;
      ++element;
    } else if (can_retry) {
      retry_at += CharacterSize(cell.substr(retry_at));
      at = retry_at;
      element = retry_element;
    } else {
      return false;
    }
  }
  while (element < elements_.size() && elements_[element] == kAnyText) ++element;
  return element == elements_.size();
}

bool Pattern::Implies(const Pattern& other) const {
  if (match_case_ != other.match_case_) return false;
  if (elements_ == other.elements_) return true;
  const bool part_of_cell = other.literal_suffices_ && other.elements_.front() == kAnyText;
  return part_of_cell && literal_.find(other.literal_) != std::string::npos;
}

Pattern::RareBytes Pattern::ChooseRareBytes(const std::array<uint32_t, 256>& counts) const {
  const auto count = [&](std::size_t i) { return counts[static_cast<unsigned char>(literal_[i])]; };
  RareBytes rare;
  for (std::size_t i = 1; i < literal_.size(); ++i) {
    if (count(i) < count(rare.first)) rare.first = i;
  }
  rare.second = rare.first == 0 && literal_.size() > 1 ? 1 : 0;
  for (std::size_t i = 0; i < literal_.size(); ++i) {
    if (i != rare.first && count(i) < count(rare.second)) rare.second = i;
  }
  return rare;
}

}  // namespace rowlark::cells
