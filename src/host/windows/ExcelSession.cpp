#include "host/windows/ExcelSession.h"

#include <utility>

#include "host/windows/ExcelRange.h"
#include "host/windows/ExcelSheet.h"

namespace rowlark::windows {

ExcelSession::~ExcelSession() {
  while (free_ranges_ != nullptr) delete std::exchange(free_ranges_, free_ranges_->next_free_);
}

Ref<host::Range> ExcelSession::MakeRange(Dispatch object) {
  if (!object) return nullptr;
  if (free_ranges_ == nullptr) free_ranges_ = new ExcelRange;
  ExcelRange* range = std::exchange(free_ranges_, free_ranges_->next_free_);
  range->next_free_ = nullptr;
  range->session_ = Ref<ExcelSession>(this);
  range->object_ = std::move(object);
  return range;
}

Ref<host::Range> ExcelSession::NeedRange(Dispatch object) {
  if (!object) ThrowNothing();
  return MakeRange(std::move(object));
}

Ref<host::Worksheet> ExcelSession::MakeSheet(Dispatch object) {
  if (!object) return nullptr;
  SheetMembers& members = Worksheet.UsedRange.IsOf(*object.get()) ? Worksheet : Chart;
  return MakeRef<ExcelSheet>(Ref<ExcelSession>(this), members, std::move(object));
}

void ExcelSession::Recycle(ExcelRange* range) noexcept {
  range->next_free_ = free_ranges_;
  free_ranges_ = range;
}

}  // namespace rowlark::windows
