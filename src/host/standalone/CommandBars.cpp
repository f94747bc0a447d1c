#include "host/standalone/CommandBars.h"

namespace rowlark::standalone {

Ref<host::CommandBarControl> CommandBarControl::AddControl(host::MsoControlType type) {
  if (type_ != host::msoControlPopup) {
    throw host::Error(438, u"Object doesn't support this property or method");
  }
  controls_.push_back(MakeRef<CommandBarControl>(type));
  return controls_.back();
}

Ref<host::CommandBarControl> CommandBar::AddControl(host::MsoControlType type, bool /*temporary*/) {
  std::erase_if(controls_, [](const auto& control) { return control->Deleted(); });
  controls_.push_back(MakeRef<CommandBarControl>(type));
  return controls_.back();
}

Ref<host::CommandBarControl> CommandBar::FindControl(std::optional<int32_t> id,
                                                     std::optional<std::u16string_view> tag) const {
  for (const auto& control : Controls()) {
    if ((!id || control->Id() == *id) && (!tag || control->Tag() == *tag)) return control;
  }
  return nullptr;
}

std::vector<Ref<CommandBarControl>> CommandBar::Controls() const {
  auto controls = controls_;
  std::erase_if(controls, [](const auto& control) { return control->Deleted(); });
  return controls;
}

}  // namespace rowlark::standalone
