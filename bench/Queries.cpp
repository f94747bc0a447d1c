#include "Queries.h"

namespace rowlark::bench {

std::span<const Query> Queries() {
  static const std::vector<Query> kQueries = {
      {.name = "no hit", .text = u"Quetzal", .patterns = {"Quetzal"}},
      {.name = "ten hits", .text = u"zephyrine", .patterns = {"zephyrine"}},
      {.name = "1 % of the rows", .text = u"REMINDER", .patterns = {"REMINDER"}},
      {.name = "1 % of the rows (Cyrillic)", .text = u"ДОГОВОР", .patterns = {"ДОГОВОР"}},
      {.name = "half of the rows", .text = u"Invoice", .patterns = {"Invoice"}},
      {.name = "any of three words",
       .text = u"Express Fragile Insured",
       .words = xcVT_SEARCH_WORDS_ANY,
       .patterns = {"Express", "Fragile", "Insured"}},
      {.name = "whole cell in one column",
       .text = u"Paid",
       .words = xcVT_SEARCH_WORDS_CELL,
       .columns = u"J",
       .patterns = {",Paid,"}},
      {.name = "a letter of nearly every cell", .text = u"e", .patterns = {"e"}},
      {.name = "first letter: r", .text = u"r", .patterns = {"r"}},
      {.name = "next letter: re", .text = u"re", .before = u"r", .patterns = {"re"}},
      {.name = "next letter: rem", .text = u"rem", .before = u"re", .patterns = {"rem"}},
      {.name = "next letter: remi", .text = u"remi", .before = u"rem", .patterns = {"remi"}},
      {.name = "last letter: reminder", .text = u"reminder", .before = u"reminde", .patterns = {"reminder"}},
  };
  return kQueries;
}

}  // namespace rowlark::bench
