#include "host/cells/CellText.h"

#include <algorithm>

#include "host/cells/Scan.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::cells {
namespace {

// Upper case to lower case where all the text is ASCII or separators; false where it is not.
bool FoldAscii(const char* from, std::size_t size, char* to) {
  unsigned other = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const auto c = static_cast<unsigned char>(from[i]);
    other |= static_cast<unsigned>((c >= 0x80) & (c != 0xFF));
    to[i] = static_cast<char>(c + (static_cast<unsigned char>(c - 'A') < 26 ? 32 : 0));
  }
  return other == 0;
}

void AppendFolded(std::string& to, std::string_view row) {
  const auto size = to.size();
  to.resize(size + row.size());
  if (FoldAscii(row.data(), row.size(), to.data() + size)) return;
  to.resize(size);
  while (!row.empty()) {
    const auto c = static_cast<unsigned char>(row.front());
    if (c < 0x80 || c == 0xFF) {
      to += static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c);
      row.remove_prefix(1);
    } else {
      AppendUtf8(to, FoldCase(TakeUtf8(row)));
    }
  }
}

template <class Append>
void AddRow(CellText::Twin& twin, Append append) {
  twin.bytes.resize(twin.start.back());
  append(twin.bytes);
  twin.start.push_back(twin.bytes.size());
  twin.bytes.append(kScanPadding, CellText::kSeparator);
}

// A row at the end.
void AddCells(std::array<CellText::Twin, 2>& twins, std::span<const std::string_view> cells) {
  auto& exact = twins[0];
  AddRow(exact, [&](std::string& bytes) {
    if (cells.empty()) return;
    bytes += CellText::kSeparator;
    for (const auto cell : cells) {
      bytes += cell;
      bytes += CellText::kSeparator;
    }
  });
  const auto row = exact.start.size() - 2;
  AddRow(twins[1], [&](std::string& bytes) {
    AppendFolded(bytes, {exact.Row(row), exact.start[row + 1] - exact.start[row]});
  });
}

std::optional<Block> UsedOf(std::span<const std::string_view> cells, int32_t row) {
  const auto has_text = [](std::string_view cell) { return !cell.empty(); };
  const auto first = std::find_if(cells.begin(), cells.end(), has_text);
  if (first == cells.end()) return std::nullopt;
  const auto last = std::find_if(cells.rbegin(), cells.rend(), has_text);
  return Block{row, static_cast<int32_t>(first - cells.begin()) + 1, row,
               static_cast<int32_t>(cells.rend() - last)};
}

std::string_view Bytes(const CellText::Twin& twin, std::size_t first, std::size_t count) {
  return {twin.Row(first), twin.start[first + count] - twin.start[first]};
}

// Rows that store nothing, up to the one before `row`.
void FillUpTo(CellText::Block& block, std::size_t row) {
  while (static_cast<std::size_t>(block.Rows()) < row) {
    for (auto& twin : block.twins) AddRow(twin, [](std::string&) {});
  }
}

// Puts the rows of another twin in place of `count` rows.
void ReplaceRows(CellText::Twin& twin, std::size_t first, std::size_t count, const CellText::Twin& rows) {
  const auto at = twin.start[first];
  const auto old_size = twin.start[first + count] - at;
  const auto size = rows.start.back();
  twin.bytes.replace(at, old_size, rows.bytes, 0, size);
  const auto begin = twin.start.begin() + static_cast<std::ptrdiff_t>(first);
  const auto behind = twin.start.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
  for (auto start = behind; start != twin.start.end(); ++start) *start += size - old_size;
  const auto added = twin.start.insert(behind, rows.start.begin(), rows.start.end() - 1);
  for (std::size_t i = 0; i + 1 < rows.start.size(); ++i) added[static_cast<std::ptrdiff_t>(i)] += at;
}

}  // namespace

CellText::Block& CellText::BlockFor(int32_t row) {
  const auto index = static_cast<std::size_t>(row - 1) / kBlockRows;
  if (index >= blocks_.size()) blocks_.resize(index + 1);
  if (blocks_[index] == nullptr) {
    blocks_[index] = std::make_unique<Block>();
    for (std::size_t i = 0; i < 2; ++i) {
      auto& twin = blocks_[index]->twins[i];
      twin.start.push_back(0);
      twin.bytes.assign(kScanPadding, kSeparator);
      // Rows of one table are alike: make room for as much as the block before took, and give back what that
      // one did not need.
      if (index > 0 && blocks_[index - 1] != nullptr) {
        auto& before = blocks_[index - 1]->twins[i];
        before.bytes.shrink_to_fit();
        before.start.shrink_to_fit();
        twin.bytes.reserve(before.bytes.size() + before.bytes.size() / 16);
        twin.start.reserve(before.start.size());
      }
    }
  }
  return *blocks_[index];
}

void CellText::Use(const rowlark::Block& rect) { used_ = used_ ? Join(*used_, rect) : rect; }

void CellText::Rows::Append(std::span<const std::string_view> cells) {
  AddCells(block_.twins, cells);
  if (const auto used = UsedOf(cells, block_.Rows())) used_ = used_ ? Join(*used_, *used) : used;
}

void CellText::AppendRow(std::span<const std::string_view> cells) {
  AddCells(BlockFor(++appended_rows_).twins, cells);
  if (const auto used = UsedOf(cells, appended_rows_)) Use(*used);
  ++version_;
}

bool CellText::Replace(int32_t first, const Rows& rows) {
  auto& block = BlockFor(first);
  const auto index = RowInBlock(first);
  FillUpTo(block, index);
  const auto count = static_cast<std::size_t>(rows.block_.Rows());
  const auto present = std::min(count, static_cast<std::size_t>(block.Rows()) - index);
  if (present == count && Bytes(block.twins[0], index, count) == Bytes(rows.block_.twins[0], 0, count)) {
    return false;
  }
  for (std::size_t i = 0; i < 2; ++i) ReplaceRows(block.twins[i], index, present, rows.block_.twins[i]);
  appended_rows_ = std::max(appended_rows_, first + static_cast<int32_t>(count) - 1);
  if (rows.used_) {
    auto used = *rows.used_;
    used.first_row += first - 1;
    used.last_row += first - 1;
    Use(used);
  }
  ++version_;
  return true;
}

void CellText::Clear() {
  blocks_.clear();
  used_.reset();
  appended_rows_ = 0;
  ++version_;
}

const CellText::Block* CellText::BlockOf(int32_t row) const {
  const auto index = static_cast<std::size_t>(row - 1) / kBlockRows;
  return index < blocks_.size() ? blocks_[index].get() : nullptr;
}

std::optional<CellText::Piece> CellText::PieceOf(int32_t first, int32_t last) const {
  last = std::min(last, static_cast<int32_t>(blocks_.size()) * kBlockRows);
  while (first <= last) {
    const auto index = RowInBlock(first);
    const int32_t before = first - 1 - static_cast<int32_t>(index);
    const auto* block = BlockOf(first);
    if (block != nullptr && static_cast<int32_t>(index) < block->Rows()) {
      return Piece{block, before, index, static_cast<std::size_t>(std::min(block->Rows(), last - before))};
    }
    first = before + kBlockRows + 1;
  }
  return std::nullopt;
}

std::string_view CellText::Row(int32_t row, bool folded) const {
  const auto* block = BlockOf(row);
  const auto index = RowInBlock(row);
  if (block == nullptr || index >= static_cast<std::size_t>(block->Rows())) return {};
  const auto& twin = block->twins[folded ? 1 : 0];
  return {twin.Row(index), twin.start[index + 1] - twin.start[index]};
}

std::string_view CellText::Cell(int32_t row, int32_t column, bool folded) const {
  return CellReader(*this, folded).Cell(row, column);
}

std::string_view CellReader::Cell(int32_t row, int32_t column) {
  if (row != row_ || column < column_) {
    row_ = row;
    column_ = 1;
    rest_ = text_->Row(row, folded_);
  }
  for (; column_ < column && rest_.size() > 1; ++column_) {
    rest_.remove_prefix(std::min(rest_.find(CellText::kSeparator, 1), rest_.size()));
  }
  if (column_ < column || rest_.size() <= 1) return {};
  return rest_.substr(1, rest_.find(CellText::kSeparator, 1) - 1);
}

std::vector<std::string_view> CellText::Cells(int32_t row) const {
  std::vector<std::string_view> cells;
  for (auto rest = Row(row); rest.size() > 1;) {
    rest.remove_prefix(1);
    const auto end = rest.find(kSeparator);
    cells.push_back(rest.substr(0, end));
    rest.remove_prefix(end);
  }
  return cells;
}

void CellText::SetCell(int32_t row, int32_t column, std::string_view text) {
  auto& block = BlockFor(row);
  const auto index = RowInBlock(row);
  FillUpTo(block, index + 1);
  auto cells = Cells(row);
  if (cells.size() < static_cast<std::size_t>(column)) cells.resize(static_cast<std::size_t>(column));
  cells[static_cast<std::size_t>(column) - 1] = text;
  Rows one;
  one.Append(cells);
  for (std::size_t i = 0; i < 2; ++i) ReplaceRows(block.twins[i], index, 1, one.block_.twins[i]);
  appended_rows_ = std::max(appended_rows_, row);
  if (!text.empty()) Use(rowlark::Block::OfCell(row, column));
  ++version_;
}

std::array<uint32_t, 256> CellText::SampleBytes(bool folded) const {
  constexpr std::size_t kPerBlock = 1024;
  std::array<uint32_t, 256> counts{};
  for (const auto& block : blocks_) {
    if (block == nullptr) continue;
    const auto& twin = block->twins[folded ? 1 : 0];
    const auto end = std::min(twin.start.back() / 2 + kPerBlock, twin.start.back());
    for (auto i = twin.start.back() / 2; i < end; ++i) ++counts[static_cast<unsigned char>(twin.bytes[i])];
  }
  return counts;
}

}  // namespace rowlark::cells
