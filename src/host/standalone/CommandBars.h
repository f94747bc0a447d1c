// Command bars and their controls: kept and looked up, not drawn.
#pragma once

#include <string>
#include <vector>

#include "host/spreadsheet.h"

namespace rowlark::standalone {

class CommandBarControl final : public host::CommandBarControl {
 public:
  explicit CommandBarControl(host::MsoControlType type) : type_(type) {}

  int32_t Id() const override { return 1; }  // the host's number of every custom control
  std::u16string Caption() const override { return caption_; }
  void SetCaption(std::u16string_view caption) override { caption_ = caption; }
  std::u16string OnAction() const override { return on_action_; }
  void SetOnAction(std::u16string_view macro) override { on_action_ = macro; }
  bool BeginGroup() const override { return begin_group_; }
  void SetBeginGroup(bool begin) override { begin_group_ = begin; }
  std::u16string Tag() const override { return tag_; }
  void SetTag(std::u16string_view tag) override { tag_ = tag; }
  void Delete() override { deleted_ = true; }
  Ref<host::CommandBarControl> AddControl(host::MsoControlType type) override;

  bool Deleted() const { return deleted_; }
  host::MsoControlType Type() const { return type_; }
  const std::vector<Ref<CommandBarControl>>& Controls() const { return controls_; }

 private:
  host::MsoControlType type_;
  std::u16string caption_;
  std::u16string on_action_;
  std::u16string tag_;
  bool begin_group_ = false;
  bool deleted_ = false;
  std::vector<Ref<CommandBarControl>> controls_;
};

class CommandBar final : public host::CommandBar {
 public:
  explicit CommandBar(std::u16string_view name) : name_(name) {}

  Ref<host::CommandBarControl> AddControl(host::MsoControlType type, bool temporary) override;
  Ref<host::CommandBarControl> FindControl(std::optional<int32_t> id,
                                           std::optional<std::u16string_view> tag) const override;

  const std::u16string& Name() const { return name_; }
  // Those that have not been deleted.
  std::vector<Ref<CommandBarControl>> Controls() const;

 private:
  std::u16string name_;
  std::vector<Ref<CommandBarControl>> controls_;
};

}  // namespace rowlark::standalone
