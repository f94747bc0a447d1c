// A line in which the user edits the active cell. Ctrl+Z brings back the text that it began with.
#pragma once

#include <functional>
#include <string>

#include "controls/Form.h"
#include "controls/TextBox.h"
#include "host/WindowSystem.h"
#include "host/terminal/Input.h"

namespace rowlark {

class CellEditor final : public controls::Form {
 public:
  // How the user has ended it, and so where the active cell goes.
  enum class End { Cancelled, Down, Right };
  using EndHandler = std::function<void(End end, const std::u16string& text)>;

  static constexpr const char16_t* kName = u"CellEditor";

  CellEditor(std::u16string_view address, std::u16string_view text, EndHandler ended, Trace* trace)
      : Form(kName, trace) {
    SetCaption(address);
    box_.SetText(text);
    KeyDown = [this, before = std::u16string(text), ended = std::move(ended)](int32_t& key, int32_t shift) {
      if (key == u'Z' && shift == controls::kCtrl) {
        return box_.UserTyped(before, static_cast<int32_t>(before.size()));
      }
      const auto end = key == controls::kKeyReturn ? End::Down
                       : key == controls::kKeyTab  ? End::Right
                                                   : End::Cancelled;
      if (end == End::Cancelled && key != controls::kKeyEscape) return;
      key = 0;
      const auto typed = box_.Text();
      const auto handler = ended;
      Unload();
      handler(end, typed);
    };
    Activate = [this] {
      box_.SetFocus();
      box_.SetCaret(box_.End());
    };
    SetLayout(controls::Layout::Column({controls::Layout(box_, {70})}));
  }

  // False where there are no windows.
  bool Open(host::WindowSystem& windows) {
    if (!windows.Realise(*this)) return false;
    Arrange();
    Load();
    Show(true);
    return true;
  }

 private:
  controls::TextBox box_{*this, u"box"};
};

}  // namespace rowlark
