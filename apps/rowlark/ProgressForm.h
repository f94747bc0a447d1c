// How far something long has come, and a button that stops it. The user can do nothing else meanwhile.
#pragma once

#include <string_view>

#include "controls/Button.h"
#include "controls/Form.h"
#include "controls/Label.h"
#include "host/WindowSystem.h"

namespace rowlark {

class ProgressForm final : public controls::Form {
 public:
  ProgressForm(std::u16string_view title, std::u16string_view stop, Trace* trace)
      : Form(u"ProgressForm", trace) {
    SetCaption(title);
    stop_.SetCaption(stop);
    stop_.Cancel = true;
    stop_.Click = [this] { Unload(); };
    Activate = [this] { stop_.SetFocus(); };
    using controls::Layout;
    SetLayout(Layout::Column({Layout(text_, {50}), Layout::Row({Layout().Wide(), stop_})}));
  }

  void Open(host::WindowSystem& windows, std::u16string_view text) {
    if (!windows.Realise(*this)) return;
    text_.SetCaption(text);
    Arrange();
    Load();
    Show(true);
  }
  void Tell(std::u16string_view text) { text_.SetCaption(text); }

 private:
  controls::Label text_{*this, u"text"};
  controls::Button stop_{*this, u"stop"};
};

}  // namespace rowlark
