#include "runtime/Menu.h"

#include <optional>
#include <string_view>

#include "runtime/Failure.h"
#include "settings/Product.h"
#include "util/Scope.h"

namespace rowlark {
namespace {

constexpr std::u16string_view kMenuItemID = u"MenuItemID";

// All custom pop-ups of the host share one identifier, and not every user may store it; the tag tells ours.
constexpr std::u16string_view kTag = u"VantrelRLK";

}  // namespace

Ref<host::CommandBar> Menu::Bar() const {
  return Require(Require(shared_.ExcelApp)->CommandBars(u"Worksheet Menu Bar"));
}

void Menu::RemoveFrom(host::CommandBar& bar) {
  while (const auto control = bar.FindControl(std::nullopt, kTag)) control->Delete();
}

void Menu::Remove() {
  made_ = false;
  RemoveFrom(*Bar());
}

void Menu::Create() {
  const ScopedFlag building(building_);
  const auto language = shared_.Language;
  const auto bar = Bar();
  RemoveFrom(*bar);
  const auto menu = Require(bar->AddControl(host::msoControlPopup, true));
  try {
    menu->SetTag(kTag);
    shared_.Registry.SetLong(host::Hive::LocalMachine, kProductKey, kMenuItemID, menu->Id());
    menu->SetCaption(language->GetText(u"Menu.Root", u"&Rowlark"));
    menu->SetBeginGroup(true);
    for (const auto& entry : kMenuEntries) {
      const auto button = Require(menu->AddControl(host::msoControlButton));
      button->SetCaption(language->GetText(entry.key, entry.caption));
      button->SetOnAction(NameOf(entry.macro));
      if (entry.begin_group) button->SetBeginGroup(true);
    }
    made_ = true;
  } catch (...) {
    Attempt(shared_.Platform.Trace, [&menu] { menu->Delete(); });  // the first failure is the one to tell
    throw;
  }
}

}  // namespace rowlark
