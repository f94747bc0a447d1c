#include "host/cells/Sheet.h"

#include <utility>

#include "host/cells/Range.h"

namespace rowlark::cells {
namespace {

[[noreturn]] void Fail(std::u16string_view description) {
  throw host::Error(1004, std::u16string(description));
}

}  // namespace

Sheet::~Sheet() {
  while (free_ranges_ != nullptr) delete std::exchange(free_ranges_, free_ranges_->next_free_);
}

Ref<host::Range> Sheet::MakeRange(const Block& area) const {
  RequireOpen();
  auto* range = free_ranges_;
  if (range == nullptr) {
    range = new cells::Range();
  } else {
    free_ranges_ = range->next_free_;
  }
  range->sheet_ = const_cast<Sheet*>(this);
  range->first_ = area;
  return range;
}

Ref<host::Range> Sheet::MakeRange(std::vector<Block> areas) const {
  auto range = MakeRange(areas.front());
  if (areas.size() > 1) {
    static_cast<cells::Range&>(*range).areas_ = std::make_shared<const std::vector<Block>>(std::move(areas));
  }
  return range;
}

void Sheet::Recycle(cells::Range* range) const noexcept {
  range->next_free_ = free_ranges_;
  free_ranges_ = range;
}

Ref<host::Range> Sheet::Range(std::u16string_view address) const {
  if (const auto area = ParseArea(address, Size())) return MakeRange(*area);
  std::vector<Block> areas;
  if (!ParseAddress(address, areas, Size())) Fail(u"Method 'Range' of object '_Worksheet' failed");
  return MakeRange(std::move(areas));
}

Ref<host::Range> Sheet::Range(const host::Range& cell1, const host::Range& cell2) const {
  return MakeRange(Join(Block::Of(cell1), Block::Of(cell2)));
}

Ref<host::Range> Sheet::Cells() const { return MakeRange(Block{1, 1, Size().rows, Size().columns}); }

Ref<host::Range> Sheet::Cells(int32_t row, int32_t column) const {
  if (!IsCell(row, column, Size())) Fail(u"Application-defined or object-defined error");
  return MakeRange(Block::OfCell(row, column));
}

}  // namespace rowlark::cells
