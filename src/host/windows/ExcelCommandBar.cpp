#include "host/windows/ExcelCommandBar.h"

#include <string>

namespace rowlark::windows {
namespace {

// Controls.Add(Type, Id, Parameter, Before, Temporary)
Dispatch Add(const Dispatch& controls, ControlsMembers& members, host::MsoControlType type,
             std::optional<bool> temporary) {
  return controls.Object(members.Add, static_cast<int32_t>(type), std::nullopt, std::nullopt, std::nullopt,
                         temporary);
}

class ExcelCommandBarControl final : public host::CommandBarControl {
 public:
  ExcelCommandBarControl(Ref<ExcelSession> session, ControlMembers& members, Dispatch object)
      : session_(std::move(session)), members_(members), object_(std::move(object)) {}

  int32_t Id() const override { return object_.Long(members_.Id); }
  std::u16string Caption() const override { return object_.Text(members_.Caption); }
  void SetCaption(std::u16string_view caption) override { object_.Put(members_.Caption, caption); }
  std::u16string OnAction() const override { return object_.Text(members_.OnAction); }
  void SetOnAction(std::u16string_view macro) override { object_.Put(members_.OnAction, macro); }
  bool BeginGroup() const override { return object_.Bool(members_.BeginGroup); }
  void SetBeginGroup(bool begin) override { object_.Put(members_.BeginGroup, begin); }
  std::u16string Tag() const override { return object_.Text(members_.Tag); }
  void SetTag(std::u16string_view tag) override { object_.Put(members_.Tag, tag); }
  void Delete() override { object_.Call(members_.Delete); }
  Ref<host::CommandBarControl> AddControl(host::MsoControlType type) override;

 private:
  Ref<ExcelSession> session_;
  ControlMembers& members_;  // of the session
  Dispatch object_;
};

// Pop-ups alone have controls of their own.
Ref<host::CommandBarControl> MakeControl(const Ref<ExcelSession>& session, Dispatch object) {
  ControlMembers& members = session->Popup.Controls.IsOf(*object.get()) ? session->Popup : session->Button;
  return MakeRef<ExcelCommandBarControl>(session, members, std::move(object));
}

Ref<host::CommandBarControl> ExcelCommandBarControl::AddControl(host::MsoControlType type) {
  return MakeControl(session_,
                     Add(object_.Object(members_.Controls), session_->PopupControls, type, std::nullopt));
}

}  // namespace

Ref<host::CommandBarControl> ExcelCommandBar::AddControl(host::MsoControlType type, bool temporary) {
  return MakeControl(
      session_, Add(object_.Object(session_->CommandBar.Controls), session_->BarControls, type, temporary));
}

Ref<host::CommandBarControl> ExcelCommandBar::FindControl(std::optional<int32_t> id,
                                                          std::optional<std::u16string_view> tag) const {
  Dispatch control = object_.ObjectOrNothing(session_->CommandBar.FindControl, std::nullopt, id, tag);
  return control ? MakeControl(session_, std::move(control)) : nullptr;
}

}  // namespace rowlark::windows
