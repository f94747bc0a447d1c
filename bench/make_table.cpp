// make_table ROWS FILE: writes a generated table.
// make_table --queries: prints the queries, one a line: name and patterns, separated by tabs.
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string_view>
#include <system_error>

#include "Queries.h"
#include "TableGenerator.h"

int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]) == "--queries") {
    for (const rowlark::bench::Query& query : rowlark::bench::Queries()) {
      std::cout << query.name;
      for (const std::string_view pattern : query.patterns) std::cout << '\t' << pattern;
      std::cout << '\n';
    }
    return EXIT_SUCCESS;
  }
  std::size_t rows = 0;
  const std::string_view digits = argc == 3 ? argv[1] : "";
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), rows);
  if (digits.empty() || error != std::errc() || end != digits.data() + digits.size()) {
    std::cerr << "usage: make_table ROWS FILE | make_table --queries\n";
    return EXIT_FAILURE;
  }
  std::ofstream out(argv[2], std::ios::binary);
  rowlark::bench::WriteTable(out, rows);
  out.close();
  if (!out) {
    std::cerr << "make_table: can not write " << argv[2] << '\n';
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
