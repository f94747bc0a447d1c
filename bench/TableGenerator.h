// Made-up business tables for measurements: the same bytes on every platform for the same number of rows.
#pragma once

#include <cstddef>
#include <ostream>

namespace rowlark::bench {

// Writes a header and `rows` rows as CSV (UTF-8, LF), about 150 bytes a row, in the columns
//   A id, B date, C first name, D last name, E company, F city, G country, H e-mail, I amount, J status, K
//   note
// The words that the queries of Queries.h look for are planted here in known shares.
void WriteTable(std::ostream& out, std::size_t rows);

}  // namespace rowlark::bench
