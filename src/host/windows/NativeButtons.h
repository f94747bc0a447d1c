// Push buttons, check boxes, option buttons and frames, which are all of one class of windows.
#pragma once

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/Frame.h"
#include "controls/OptionButton.h"
#include "host/windows/NativeControl.h"

namespace rowlark::windows {

class NativeButton : public NativeControl {
 public:
  void Command(WORD code, WORD number) override;

 protected:
  NativeButton(controls::Control& model, FormSite& site, DWORD style);

 private:
  virtual void Clicked() {}
};

class NativePushButton final : public NativeButton {
 public:
  NativePushButton(controls::Button& model, FormSite& site);

  LRESULT Notify(const NMHDR& header) override;
  int DialogCommand() const override;

 private:
  void Clicked() override;
  void Apply(controls::Property property) override;
  void ApplyPictures() override;

  controls::Button& button_;
  Icon picture_;
};

// What is on or off.
class NativeMark : public NativeButton {
 protected:
  NativeMark(controls::Control& model, FormSite& site, DWORD style);

 private:
  void Clicked() override;
  void Apply(controls::Property property) override;
  std::optional<int> TextOffset() const override;
  virtual bool Value() const = 0;
};

class NativeCheckBox final : public NativeMark {
 public:
  NativeCheckBox(controls::CheckBox& model, FormSite& site)
      : NativeMark(model, site, BS_AUTOCHECKBOX), box_(model) {}

 private:
  bool Value() const override { return box_.Value(); }

  controls::CheckBox& box_;
};

class NativeOptionButton final : public NativeMark {
 public:
  NativeOptionButton(controls::OptionButton& model, FormSite& site)
      : NativeMark(model, site, BS_AUTORADIOBUTTON), button_(model) {}

  bool IsOption() const override { return true; }

 private:
  bool Value() const override { return button_.Value(); }

  controls::OptionButton& button_;
};

class NativeFrame final : public NativeButton {
 public:
  NativeFrame(controls::Frame& model, FormSite& site) : NativeButton(model, site, BS_GROUPBOX | WS_GROUP) {}

 private:
  void Apply(controls::Property property) override;
};

}  // namespace rowlark::windows
