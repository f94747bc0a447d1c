// The program's main window, of Excel's window class: menu, name box, value field, sheet and status bar.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "AddIn.h"
#include "GridView.h"
#include "GridWindow.h"
#include "MenuBar.h"
#include "Window.h"
#include "automation/ComPtr.h"
#include "host/standalone/Application.h"

namespace rowlark::workbench {

class MainWindow final : public Window {
 public:
  // Throws std::runtime_error.
  MainWindow();
  ~MainWindow() override;

  void Show(int how);
  // Failures are shown to the user.
  void OpenFile(std::u16string_view path) noexcept;
  void OpenExample() noexcept;
  void StartAddIn() noexcept;

 private:
  bool OnMessage(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) override;
  void MakeChildren();
  void UseSystemFont();
  void Layout();
  void TellPlace();
  void Close();

  // Asks for a refresh behind the messages that wait; any number of calls makes one.
  void Changed();
  void Refresh();
  void RefreshFields(const standalone::Worksheet& sheet);
  void RefreshStatus(const standalone::Worksheet& sheet);
  void RefreshTitle();

  // The active sheet with cells and its view; null without one.
  standalone::Worksheet* Sheet() const;
  standalone::Workbook* Book() const;
  GridView& ViewOf(standalone::Worksheet& sheet);

  void Execute(UINT command);
  void ChooseFile();
  void CloseWorkbook();
  void ToggleFilter();
  void ClearFilters();
  bool KeyPressed(int32_t key);
  void EditCell(std::u16string_view text);

  static LRESULT CALLBACK FieldProcedure(HWND field, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                         DWORD_PTR window) noexcept;
  // Enter and Escape in the name box or the value field; true when the key was used.
  bool FieldKey(HWND field, WPARAM key);

  Ref<standalone::Application> application_ = MakeRef<standalone::Application>();
  automation::ComPtr<IDispatch> automation_;
  AddIn add_in_;
  DWORD registration_ = 0;  // in the table of running objects
  std::unique_ptr<MenuBar> menu_;
  std::unique_ptr<GridWindow> grid_;
  HWND name_ = nullptr;
  HWND value_ = nullptr;
  HWND status_ = nullptr;
  GdiPtr<HFONT> font_;

  std::unordered_map<const standalone::Worksheet*, GridView> views_;
  const standalone::Worksheet* shown_ = nullptr;
  standalone::Rect shown_cell_;  // the active cell that was scrolled to last
  bool refresh_pending_ = false;
};

}  // namespace rowlark::workbench
