// HTML Help, by the library "hhctrl.ocx" of the system folder, loaded when help is first asked for.
#pragma once

#include <windows.h>

#include "host/Help.h"
#include "util/Trace.h"

namespace rowlark::windows {

class WindowsHelp final : public host::Help {
 public:
  explicit WindowsHelp(Trace* trace = nullptr) : trace_(trace) {}

  intptr_t HtmlHelp(std::u16string_view file, host::HelpCommand command, int32_t context) noexcept override;

 private:
  using Function = HWND WINAPI(HWND caller, LPCWSTR file, UINT command, DWORD_PTR data);

  // Null where HTML Help is not installed. The library has a thread and windows of its own, which may outlive
  // this object, so it is never unloaded.
  Function* Load() const;

  Trace* const trace_;
  Function* html_help_ = nullptr;
};

}  // namespace rowlark::windows
