// Office's CommandBar and its controls behind the seam.
#pragma once

#include <optional>
#include <string_view>
#include <utility>

#include "host/spreadsheet.h"
#include "host/windows/Dispatch.h"
#include "host/windows/ExcelSession.h"

namespace rowlark::windows {

class ExcelCommandBar final : public host::CommandBar {
 public:
  ExcelCommandBar(Ref<ExcelSession> session, Dispatch object)
      : session_(std::move(session)), object_(std::move(object)) {}

  Ref<host::CommandBarControl> AddControl(host::MsoControlType type, bool temporary) override;
  Ref<host::CommandBarControl> FindControl(std::optional<int32_t> id,
                                           std::optional<std::u16string_view> tag) const override;

 private:
  Ref<ExcelSession> session_;
  Dispatch object_;
};

}  // namespace rowlark::windows
