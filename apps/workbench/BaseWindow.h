// A window whose messages go to an object.
#pragma once

#include <windows.h>

namespace rowlark::workbench {

class BaseWindow {
 public:
  BaseWindow() = default;
  BaseWindow(const BaseWindow&) = delete;
  BaseWindow& operator=(const BaseWindow&) = delete;
  virtual ~BaseWindow() {
    if (hwnd_ != nullptr) DestroyWindow(hwnd_);
  }

  HWND Hwnd() const { return hwnd_; }
  // Makes it as large as another window, below and to the right of it; where the screen ends, in its corner.
  void PlaceBeside(const BaseWindow& other) const;

 protected:
  // Registers the class when it is new, and makes a window of it: empty inside a parent, else where the
  // system likes. Null when the system refuses.
  HWND Create(WNDCLASSEXW window_class, const wchar_t* title, DWORD style, HWND parent);

  // False: the message is the system's. May throw; the user is told.
  virtual bool OnMessage(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) = 0;

 private:
  static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) noexcept;

  HWND hwnd_ = nullptr;
};

// Tells of the exception that is being handled.
void ReportFailure(HWND owner) noexcept;

}  // namespace rowlark::workbench
