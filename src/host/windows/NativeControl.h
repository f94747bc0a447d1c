// The native window of a control: it shows what the control holds, and reports what the user does to it.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/Control.h"
#include "host/windows/DialogScale.h"
#include "host/windows/Dpi.h"
#include "host/windows/Resources.h"

namespace rowlark::windows {

class NativeControl;

// What the window of a form has for those of its controls.
struct FormSite {
  FormSite(const Resources& pictures, const Dpi& resolutions) : resources(pictures), dpi_of(resolutions) {}

  HWND window = nullptr;
  const Resources& resources;
  const Dpi& dpi_of;
  UINT dpi = USER_DEFAULT_SCREEN_DPI;
  std::unique_ptr<DialogScale> scale;
  std::vector<std::unique_ptr<NativeControl>> controls;  // in the tab order
  int updating = 0;  // code sets what windows show: nothing that they report then is the user's doing

  NativeControl* Find(const controls::Control& control) const;
  int Pixels(int at_96) const { return dpi_of.Scale(at_96, dpi); }
};

class NativeControl {
 public:
  NativeControl(controls::Control& model, FormSite& site) : model_(model), site_(site) {}
  NativeControl(const NativeControl&) = delete;
  NativeControl& operator=(const NativeControl&) = delete;
  virtual ~NativeControl() = default;  // the window goes with that of the form

  // Posted to the form's window, with the control in wParam: a click whose handler may take long and must not
  // do so within the hook for keys.
  static constexpr UINT kClicked = WM_APP;

  HWND Window() const { return window_; }
  bool HasFocus() const;
  controls::Control& Model() const { return model_; }

  // What has changed by code. Lists are filled when the next message comes, or anything else of the control
  // changes: they are often filled entry by entry.
  void Update(controls::Property property);
  void UpdateList();
  bool ListIsDue() const { return list_is_due_; }
  // The form's font, its pictures and its place have changed.
  void Rescale();
  // True when it stands elsewhere than before; the form's window then draws everything anew.
  bool Place(const RECT& area);
  void Shift(int down);
  // Where its text begins, in the pixels of the form's inner area; nothing where that is of no interest.
  std::optional<int> TopOfText() const;

  // Messages that the window sends to the form's: WM_COMMAND and WM_NOTIFY, which the user causes.
  virtual void Command(WORD, WORD) {}  // code, number
  virtual LRESULT Notify(const NMHDR&) { return 0; }
  // The background of its text, with the colours set; null for the usual ones.
  virtual HBRUSH Colour(HDC) const { return nullptr; }
  // Tells the control what the native window does not report by itself, before a handler looks at it.
  virtual void Report() {}
  // A key means something to the control, whatever it means to the form.
  virtual bool TakesKey(WPARAM) const { return false; }
  // Does what a key means to the control and its native window knows nothing of; true for such a key.
  virtual bool UseKey(WPARAM) { return false; }
  // One of several that go together: the keyboard reaches them as one.
  virtual bool IsOption() const { return false; }
  // What Enter or Escape in a dialog has its click stand for, IDOK or IDCANCEL; 0: nothing.
  virtual int DialogCommand() const { return 0; }
  // Its text stands where it does, and other texts in its line beside it.
  virtual bool LeadsLine() const { return false; }

 protected:
  // In the constructor.
  void Create(const wchar_t* type, DWORD style, DWORD extended_style = 0);

  virtual void Apply(controls::Property property);
  virtual void FillList() {}
  virtual void ApplyPictures() {}
  virtual void Placed(SIZE) {}
  // Where the text begins in the window.
  virtual std::optional<int> TextOffset() const { return std::nullopt; }

  LRESULT Send(UINT message, WPARAM first = 0, LPARAM second = 0) const {
    return ::SendMessageW(window_, message, first, second);
  }
  template <class Data>
  LRESULT SendData(UINT message, WPARAM first, Data&& data) const {
    return Send(message, first, reinterpret_cast<LPARAM>(&data));
  }

  controls::Control& model_;
  FormSite& site_;
  HWND window_ = nullptr;

 private:
  RECT area_{};
  bool list_is_due_ = false;
};

std::wstring TextOf(HWND window);

// Makes the window of a control; null for a timer, which has none. Throws std::system_error.
std::unique_ptr<NativeControl> MakeNativeControl(controls::Control& control, FormSite& site);

}  // namespace rowlark::windows
