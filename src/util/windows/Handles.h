// Owners of the system's handles.
#pragma once

#include <windows.h>

#include "util/Owner.h"

namespace rowlark::windows {

struct FileTraits {
  using Handle = HANDLE;
  static Handle None() noexcept { return INVALID_HANDLE_VALUE; }
  static void Close(Handle file) noexcept { ::CloseHandle(file); }
};
using File = Owner<FileTraits>;

// What is null where there is none, and closed by one function.
template <class HandleType, auto close>
struct NullableTraits {
  using Handle = HandleType;
  static Handle None() noexcept { return nullptr; }
  static void Close(Handle handle) noexcept { close(handle); }
};

using RegistryKey = Owner<NullableTraits<HKEY, ::RegCloseKey>>;
using LoadedLibrary = Owner<NullableTraits<HMODULE, ::FreeLibrary>>;
using MenuHandle = Owner<NullableTraits<HMENU, ::DestroyMenu>>;
using Icon = Owner<NullableTraits<HICON, ::DestroyIcon>>;
using Hook = Owner<NullableTraits<HHOOK, ::UnhookWindowsHookEx>>;
using MemoryContext = Owner<NullableTraits<HDC, ::DeleteDC>>;

// Fonts, bitmaps, brushes, pens.
template <class HandleType>
using GdiObject = Owner<NullableTraits<HandleType, ::DeleteObject>>;

// What one draws with on the screen, or measures texts by.
inline void ReleaseScreen(HDC context) noexcept { ::ReleaseDC(::WindowFromDC(context), context); }
using ScreenContext = Owner<NullableTraits<HDC, ReleaseScreen>>;

// A font, a bitmap, a brush or a pen is in use, in place of another one.
class [[nodiscard]] SelectedObject {
 public:
  SelectedObject(HDC context, HGDIOBJ object) : context_(context), before_(::SelectObject(context, object)) {}
  SelectedObject(const SelectedObject&) = delete;
  SelectedObject& operator=(const SelectedObject&) = delete;
  ~SelectedObject() { ::SelectObject(context_, before_); }

 private:
  HDC context_;
  HGDIOBJ before_;
};

// What is drawn with while a window handles WM_PAINT.
class [[nodiscard]] PaintContext {
 public:
  explicit PaintContext(HWND window) : window_(window) { ::BeginPaint(window_, &paint_); }
  PaintContext(const PaintContext&) = delete;
  PaintContext& operator=(const PaintContext&) = delete;
  ~PaintContext() { ::EndPaint(window_, &paint_); }
  HDC operator*() const noexcept { return paint_.hdc; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
};

}  // namespace rowlark::windows
