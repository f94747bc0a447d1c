#include "forms/frmSelectRange.h"

#include "forms/TextRule.h"
#include "host/Block.h"
#include "runtime/Failure.h"

namespace rowlark {
namespace {

using controls::Layout;

constexpr int32_t kDesignTop = 1440;  // twips

}  // namespace

frmSelectRange::frmSelectRange(SharedState& shared)
    : BaseForm(shared, u"frmSelectRange", HelpTopic::SelectRange) {
  SetCaption(u"Select Range");
  KeyDown = [this](int32_t& key, int32_t) {
    if (key == controls::kKeyReturn || key == controls::kKeyExecute) {
      key = 0;
      End(true);
    } else if (key == controls::kKeyEscape) {
      key = 0;
      End(false);
    }
  };
  Activate = [this] { box0.SetFocus(); };
  box0.Change = [this] { ApplyRule(box0, kAddressRule); };
  btn0.SetCaption(u"OK");
  btn0.Click = [this] { End(true); };
  SetLayout(Layout::Row({Layout(box0, {45}).Wide(), btn0}));
}

void frmSelectRange::Form_Load() {
  ApplyCaptions();
  const auto screens = shared_.Platform.Windows.Screens();
  const auto screen = screens.empty() ? controls::TwipRect{} : screens.front();
  MoveOntoScreen({screen.left + screen.width / 2 - WindowSize().width / 2, kDesignTop});
  ListenToSelection(evtBook_, [this] { ShowSelection(); });
  ShowSelection();
  SetTopmost(true);
  visible_ = Loaded();
  multiple_ = true;
}

void frmSelectRange::Form_Unload() {
  visible_ = false;
  evtBook_.Release();
  BaseForm::Form_Unload();
}

void frmSelectRange::ApplyCaptions() {
  SetCaption(Text(u"SelectRange.UI.FormCaption", u"Range select"));
  Arrange();
}

void frmSelectRange::SetAllowMultipleSelection(bool allow) {
  if (multiple_ == allow) return;
  multiple_ = allow;
  ShowSelection();
}

// Nothing, when something other than cells is selected.
void frmSelectRange::ShowSelection() {
  std::u16string addresses;
  Attempt([&] {
    const auto selection = Host()->Selection();
    const int32_t areas = !selection ? 0 : multiple_ ? selection->AreasCount() : 1;
    for (int32_t i = 1; i <= areas; ++i) {
      if (i > 1) addresses += u';';
      addresses += selection->Areas(i)->Address();
    }
  });
  box0.SetText(WithoutDollars(addresses));
}

void frmSelectRange::End(bool accepted) {
  visible_ = false;
  accepted_ = accepted;
  Hide();
}

}  // namespace rowlark
