// Text boxes and combo boxes. Lines end in a line feed in the texts of the system, as in those of cells, and
// in a carriage return and a line feed in native windows.
#pragma once

#include "controls/ComboBox.h"
#include "controls/TextBox.h"
#include "host/windows/NativeControl.h"

namespace rowlark::windows {

class NativeText : public NativeControl {
 public:
  void Report() override;
  bool LeadsLine() const override { return true; }

 protected:
  using NativeControl::NativeControl;

  controls::TextInput& Input() const { return static_cast<controls::TextInput&>(model_); }
  // The window that is edited: the control's own, or one within it; null where nothing can be edited.
  virtual HWND Editor() const { return window_; }
  virtual bool ConvertsLines() const { return false; }
  void Apply(controls::Property property) override;
  std::optional<int> TextOffset() const override;
  // The user has edited the text.
  void Typed();

 private:
  struct Selection {
    int32_t start;
    int32_t end;
  };
  Selection SelectionIn(std::wstring_view text) const;
};

class NativeTextBox final : public NativeText {
 public:
  NativeTextBox(controls::Control& model, FormSite& site);

  void Command(WORD code, WORD number) override;
  HBRUSH Colour(HDC context) const override;

 private:
  controls::TextBox& Box() const { return static_cast<controls::TextBox&>(model_); }
  bool ConvertsLines() const override;
  void Apply(controls::Property property) override;
  void Placed(SIZE) override { ShowScrollBar(); }
  void ShowScrollBar();
};

// A box that stands for another one while that is empty: the other's window shows its text.
class NativeCue final : public NativeControl {
 public:
  using NativeControl::NativeControl;

 private:
  void Apply(controls::Property property) override;
};

class NativeComboBox final : public NativeText {
 public:
  NativeComboBox(controls::Control& model, FormSite& site);

  void Command(WORD code, WORD number) override;
  bool TakesKey(WPARAM key) const override;

 private:
  controls::ComboBox& Box() const { return static_cast<controls::ComboBox&>(model_); }
  HWND Editor() const override { return editor_; }
  std::optional<int> TextOffset() const override;
  void Apply(controls::Property property) override;
  void FillList() override;
  void Placed(SIZE size) override;
  // Selects an entry without touching the text.
  void MarkEntry(int32_t index) const;
  bool ListIsOpen() const { return Send(CB_GETDROPPEDSTATE) != 0; }
  void ListClosed();

  HWND editor_ = nullptr;
  HWND list_ = nullptr;
  bool is_chosen_ = false;  // the list closes with a choice
};

}  // namespace rowlark::windows
