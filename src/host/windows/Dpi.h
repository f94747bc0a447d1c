// Resolutions, in pixels an inch: of the system, and of single monitors where Windows knows of them (10 and
// later). What older systems lack is looked up when the program runs.
#pragma once

#include <windows.h>

#include "controls/Units.h"

namespace rowlark::windows {

class Dpi {
 public:
  Dpi();

  // The resolution in which positions are told, the same on all monitors.
  UINT System() const { return system_; }
  UINT Of(HWND window) const;
  // The user's font for messages.
  LOGFONTW MessageFont(UINT dpi) const;
  // The outer size of a window whose inner area has that size.
  SIZE WindowSize(SIZE client, DWORD style, DWORD extended_style, UINT dpi) const;
  // Of positions, and back.
  int32_t Twips(LONG pixels) const {
    return ::MulDiv(static_cast<int>(pixels), controls::kTwipsPerInch, static_cast<int>(system_));
  }
  int Pixels(int32_t twips) const {
    return ::MulDiv(twips, static_cast<int>(system_), controls::kTwipsPerInch);
  }
  int Scale(int pixels_at_96, UINT dpi) const { return ::MulDiv(pixels_at_96, static_cast<int>(dpi), 96); }

  // Within a scope windows are made with the pixels of their monitor, and coordinates are such pixels, also
  // in a host that leaves the scaling to the system.
  class [[nodiscard]] Scope {
   public:
    explicit Scope(const Dpi& dpi);
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope();

   private:
    const Dpi& dpi_;
    HANDLE before_ = nullptr;
  };

 private:
  using GetDpiForWindow = UINT WINAPI(HWND);
  using AdjustWindowRectExForDpi = BOOL WINAPI(RECT*, DWORD, BOOL, DWORD, UINT);
  using SystemParametersInfoForDpi = BOOL WINAPI(UINT, UINT, void*, UINT, UINT);
  using SetThreadDpiAwarenessContext = HANDLE WINAPI(HANDLE);

  UINT system_;
  GetDpiForWindow* get_dpi_for_window_ = nullptr;
  AdjustWindowRectExForDpi* adjust_window_rect_ = nullptr;
  SystemParametersInfoForDpi* system_parameters_info_ = nullptr;
  SetThreadDpiAwarenessContext* set_awareness_ = nullptr;
};

}  // namespace rowlark::windows
