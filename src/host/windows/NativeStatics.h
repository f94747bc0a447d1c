// Labels, links and images.
#pragma once

#include "host/windows/NativeControl.h"

namespace rowlark::windows {

class NativeLabel final : public NativeControl {
 public:
  NativeLabel(controls::Control& model, FormSite& site);

  void Command(WORD code, WORD number) override;
  LRESULT Notify(const NMHDR& header) override;
  void Report() override;
  bool UseKey(WPARAM key) override;

 private:
  void Apply(controls::Property property) override;
  std::optional<int> TextOffset() const override { return 0; }

  bool is_link_;  // the window can show links
};

class NativeImage final : public NativeControl {
 public:
  NativeImage(controls::Control& model, FormSite& site);

  void Command(WORD code, WORD number) override;

 private:
  void Apply(controls::Property property) override;
  void Placed(SIZE room) override;

  Icon icon_;
};

}  // namespace rowlark::windows
