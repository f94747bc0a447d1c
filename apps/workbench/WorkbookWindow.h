// The window of a workbook, of Excel's window class: menu, name box, value field, sheet and status bar.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "BaseWindow.h"
#include "GridWindow.h"
#include "MenuBar.h"
#include "host/standalone/Application.h"
#include "sheetview/SheetView.h"
#include "util/windows/Handles.h"

namespace rowlark::workbench {

class Workbench;

class WorkbookWindow final : public BaseWindow {
 public:
  // The program outlives the window. Throws std::runtime_error.
  explicit WorkbookWindow(Workbench& workbench);

  // The workbook that it shows; null: it is empty.
  const Ref<standalone::Workbook>& Book() const { return book_; }
  void Use(Ref<standalone::Workbook> book);
  void Show();
  void BringToFront();
  // Follows the sheet model.
  void Refresh();
  // Has the program update behind the messages that wait; false when the system refuses.
  bool PostUpdate() const;
  // Tells the sheet model handle and place of its main window.
  void TellPlace() const;

 private:
  bool OnMessage(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) override;
  void MakeChildren();
  void UseSystemFont();
  void Layout();
  void RefreshFields(const standalone::Worksheet& sheet);
  void RefreshStatus(const standalone::Worksheet& sheet);
  void RefreshTitle();

  // The active sheet with cells and its view; null without one.
  standalone::Worksheet* Sheet() const;
  sheetview::SheetView& ViewOf(standalone::Worksheet& sheet);

  void Execute(UINT command);
  bool KeyPressed(int32_t key);
  void EditCell(std::u16string_view text);

  static LRESULT CALLBACK FieldProcedure(HWND field, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                         DWORD_PTR window) noexcept;
  // Enter and Escape in the name box or the value field; true when the key was used.
  bool FieldKey(HWND field, WPARAM key);

  Workbench& workbench_;
  Ref<standalone::Workbook> book_;
  std::unique_ptr<MenuBar> menu_;
  std::unique_ptr<GridWindow> grid_;
  HWND name_ = nullptr;
  HWND value_ = nullptr;
  HWND status_ = nullptr;
  windows::GdiObject<HFONT> font_;

  std::unordered_map<const standalone::Worksheet*, sheetview::SheetView> views_;
  const standalone::Worksheet* shown_ = nullptr;
};

}  // namespace rowlark::workbench
