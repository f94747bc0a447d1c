// Push buttons, check boxes, option buttons and frames, which are all of one class of windows.
#pragma once

#include "host/windows/NativeControl.h"

namespace rowlark::windows {

class NativeButton final : public NativeControl {
 public:
  NativeButton(controls::Control& model, FormSite& site);

  void Command(WORD code, WORD number) override;
  LRESULT Notify(const NMHDR& header) override;

 private:
  void Apply(controls::Property property) override;
  void ApplyPictures() override;
  std::optional<int> TextOffset() const override;
  bool Value() const;

  Icon picture_;
};

}  // namespace rowlark::windows
