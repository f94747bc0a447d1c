// Push buttons, check boxes, option buttons and frames, which are all of one class of windows.
#pragma once

#include "host/windows/NativeControl.h"

namespace rowlark::windows {

class NativeButton final : public NativeControl {
 public:
  NativeButton(controls::Control& model, FormSite& site);

  // Posted to the form's window, with the control in wParam: the click of a push button, whose handler may
  // take long and must not do so within the hook for keys.
  static constexpr UINT kClicked = WM_APP;

  void Command(WORD code, WORD number) override;

 private:
  void Apply(controls::Property property) override;
  bool Value() const;
};

}  // namespace rowlark::windows
