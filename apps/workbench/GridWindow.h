// The sheet on the screen: draws it, scrolls it, and selects what the user points at.
#pragma once

#include <functional>
#include <string_view>

#include "BaseWindow.h"
#include "sheetview/SheetView.h"
#include "util/windows/Handles.h"

namespace rowlark::workbench {

class GridWindow final : public BaseWindow {
 public:
  // What the window leaves to others.
  struct Callbacks {
    std::function<void()> selected;                      // after the user has selected something
    std::function<bool(int32_t key)> key;                // before the sheet's own keys; true when it was used
    std::function<void(std::u16string_view text)> edit;  // the user begins to type into the active cell
    std::function<void(int32_t column, POINT where)>
        filter;                    // a filter button was pressed; screen coordinates
    std::function<bool()> frozen;  // whether the picture must stay as it is
  };

  // Throws std::runtime_error.
  GridWindow(HWND parent, Callbacks callbacks);
  // The view must outlive the window or be replaced; null shows nothing.
  void Show(sheetview::SheetView* view);
  void SetFont(HFONT font);
  // The sheet has changed.
  void Redraw();
  int TextWidth(std::string_view text) const;
  const sheetview::Metrics& Metrics() const { return metrics_; }

 private:
  bool OnMessage(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) override;
  // The same of what the user does to the sheet that is shown.
  bool OnInput(UINT message, WPARAM wparam, LPARAM lparam);
  void Paint();
  void Resize();
  void UpdateScrollBars();
  void Scroll(bool vertical, WORD request);
  void Wheel(int delta, bool horizontal);
  // With Shift the selection reaches to there; with Ctrl it gets one more area.
  void ButtonDown(int x, int y, bool shift, bool control);
  void Drag(int x, int y);
  void DragSelection();
  void DragBeyondEdge();
  bool KeyDown(int32_t key);
  void Go(sheetview::Cell to, bool extend);

  Callbacks callbacks_;
  sheetview::SheetView* view_ = nullptr;
  HFONT font_ = nullptr;
  sheetview::Metrics metrics_;
  windows::GdiObject<HBITMAP> picture_;  // what was drawn last
  SIZE picture_size_{};
  sheetview::SheetView::Part dragged_ = sheetview::SheetView::Part::Corner;  // Corner: nothing is dragged
  POINT mouse_{};
  int wheel_ = 0;  // turns below one notch
};

}  // namespace rowlark::workbench
