#include <span>

#include "Classes.h"

namespace rowlark::workbench {
namespace {

using Controls = std::vector<Ref<standalone::CommandBarControl>>;

standalone::CommandBar& Bar(const Object& object) { return object.Core<standalone::CommandBar>(); }

standalone::CommandBarControl& Control(const Object& object) {
  auto& control = object.Core<standalone::CommandBarControl>();
  if (control.Deleted()) throw host::Error(E_FAIL, u"Automation error");
  return control;
}
standalone::CommandBarControl& Control(const Call& call) { return Control(call.Self()); }

Controls ControlsOf(const Object& popup) {
  auto controls = Control(popup).Controls();
  std::erase_if(controls, [](const auto& control) { return control->Deleted(); });
  return controls;
}

void ReturnControl(Call& call, const Ref<host::CommandBarControl>& control) {
  const auto* known = static_cast<const standalone::CommandBarControl*>(control.get());
  const bool popup = known != nullptr && known->Type() == host::msoControlPopup;
  call.Return(popup ? kCommandBarPopup : kCommandBarButton, control);
}

// The depth-first first one that has what is given; null without one.
Ref<standalone::CommandBarControl> FindControl(const Call& call, const Controls& controls) {
  const bool recursive = call.Bool(4, false);
  for (const auto& control : controls) {
    if (control->Deleted()) continue;
    if ((!call.Has(0) || call.Int(0) == control->Type()) && (!call.Has(1) || call.Int(1) == control->Id()) &&
        (!call.Has(2) || call.Text(2) == control->Tag())) {
      return control;
    }
    if (recursive) {
      if (auto found = FindControl(call, control->Controls())) return found;
    }
  }
  return nullptr;
}

// The controls of the host's own and places before others are not modelled.
host::MsoControlType TypeToAdd(const Call& call) {
  const int32_t type = call.Int(0, host::msoControlButton);
  if ((type != host::msoControlButton && type != host::msoControlPopup) || call.Int(1, 1) != 1 ||
      call.Has(3)) {
    throw host::Error(5, u"Invalid procedure call or argument");
  }
  return static_cast<host::MsoControlType>(type);
}

constexpr Member kCommandBarsMembers[] = {
    Get(u"Item(Index)",
        [](Call& call) {
          if (!call.IsText(0)) return ItemOfCollection(call);
          call.Return(kCommandBar, call.Application().CommandBars(call.Text(0)));
        }),
    Get(u"Count", CountOfCollection),
    Get(u"Application", ReturnApplication),
};

constexpr Member kCommandBarMembers[] = {
    Get(u"Name", [](Call& call) { call.Return(Bar(call.Self()).Name()); }),
    Get(u"Application", ReturnApplication),
    Get(u"Controls", [](Call& call) { call.Return(kBarControls, &Bar(call.Self())); }),
    Method(u"FindControl([Type], [Id], [Tag], [Visible], [Recursive])",
           [](Call& call) { ReturnControl(call, FindControl(call, Bar(call.Self()).Controls())); }),
};

void AddControl(Call& call) {
  const auto type = TypeToAdd(call);
  ReturnControl(call, &call.Self().Type() == &kBarControls
                          ? Bar(call.Self()).AddControl(type, call.Bool(4, false))
                          : Control(call).AddControl(type));
}

constexpr Member kControlsMembers[] = {
    Get(u"Item(Index)", ItemOfCollection),
    Get(u"Count", CountOfCollection),
    Get(u"Application", ReturnApplication),
    Method(u"Add([Type], [Id], [Parameter], [Before], [Temporary])", AddControl),
};

// A pop-up's members; a button has all but the last one.
constexpr Member kControlMembers[] = {
    Get(u"_Default", [](Call& call) { call.Return(Control(call).Caption()); }),
    Get(u"Application", ReturnApplication),
    Get(u"Type", [](Call& call) { call.Return(int32_t{Control(call).Type()}); }),
    Get(u"Id", [](Call& call) { call.Return(Control(call).Id()); }),
    GetPut(
        u"Caption", [](Call& call) { call.Return(Control(call).Caption()); },
        [](Call& call) { Control(call).SetCaption(call.TextValue()); }),
    GetPut(
        u"OnAction", [](Call& call) { call.Return(Control(call).OnAction()); },
        [](Call& call) { Control(call).SetOnAction(call.TextValue()); }),
    GetPut(
        u"BeginGroup", [](Call& call) { call.Return(Control(call).BeginGroup()); },
        [](Call& call) { Control(call).SetBeginGroup(call.BoolValue()); }),
    GetPut(
        u"Tag", [](Call& call) { call.Return(Control(call).Tag()); },
        [](Call& call) { Control(call).SetTag(call.TextValue()); }),
    Method(u"Delete([Temporary])", [](Call& call) { Control(call).Delete(); }),
    Get(u"Controls", [](Call& call) { call.Return(kPopupControls, &Control(call)); }),
};

template <auto Of>
int64_t Count(Object& controls) {
  return static_cast<int64_t>(Of(controls).size());
}
template <auto Of>
void Item(Call& call, int64_t index) {
  ReturnControl(call, Of(call.Self())[static_cast<std::size_t>(index) - 1]);
}
constexpr auto kOfBar = [](const Object& object) { return Bar(object).Controls(); };

}  // namespace

const Class kCommandBars{
    .name = u"CommandBars",
    .members = kCommandBarsMembers,
    .count = [](Object&) { return int64_t{1}; },
    .item = [](Call& call, int64_t) { call.Return(kCommandBar, call.Application().WorksheetMenuBar()); }};
const Class kCommandBar{.name = u"CommandBar", .members = kCommandBarMembers};
const Class kBarControls{
    .name = u"CommandBarControls", .members = kControlsMembers, .count = Count<kOfBar>, .item = Item<kOfBar>};
const Class kPopupControls{.name = u"CommandBarControls",
                           .members = kControlsMembers,
                           .count = Count<ControlsOf>,
                           .item = Item<ControlsOf>};
const Class kCommandBarButton{.name = u"CommandBarControl",
                              .members = std::span(kControlMembers).first<std::size(kControlMembers) - 1>()};
const Class kCommandBarPopup{.name = u"CommandBarControl", .members = kControlMembers};

}  // namespace rowlark::workbench
