// The running program: the sheet model, the add-in in it, and for each open workbook a window of its own.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <windows.h>

#include "AddIn.h"
#include "WorkbookWindow.h"
#include "automation/ComPtr.h"
#include "host/standalone/Application.h"

namespace rowlark::workbench {

class Workbench {
 public:
  Workbench();
  Workbench(const Workbench&) = delete;
  Workbench& operator=(const Workbench&) = delete;
  ~Workbench();

  // Failures are shown to the user.
  void OpenFile(std::u16string_view path) noexcept;
  void OpenExample() noexcept;
  void StartAddIn() noexcept;
  // Until the last window has been closed; the exit code. As that of the host, the loop knows no windows but
  // its own.
  int Run();

  // Asks for an update behind the messages that wait; any number of calls makes one.
  void Changed();
  // Makes the update that was posted, unless the screen is to stay as it is.
  void FollowChanges();
  // Gives each workbook a window, lets go the windows of closed ones (without any workbook one window stays,
  // empty), brings the window of the active workbook to the front, and refreshes all. Throws
  // std::runtime_error.
  void Update();

  // What the windows need, and what their users ask for; all may throw host::Error.
  standalone::Application& Application() const { return *application_; }
  bool IsActive(const WorkbookWindow& window) const { return &window == active_; }
  void Activated(WorkbookWindow& window);
  void RunMacro(std::u16string_view name) { add_in_.Run(name); }
  void ChooseFile(HWND owner);
  // Closes the window with its workbook; the last window stays, empty.
  void CloseWorkbook(WorkbookWindow& window);
  // Closes the window and its workbook; with the last window the program ends.
  void CloseWindow(WorkbookWindow& window);
  void Exit();

 private:
  bool IsOpen(const Ref<standalone::Workbook>& book) const;
  std::size_t WindowCount() const;
  // The window of that workbook, of null an empty window; null without one.
  WorkbookWindow* WindowOf(const standalone::Workbook* book) const;
  void Arrange();

  const std::unique_ptr<Trace> trace_ = OpenTrace();
  Ref<standalone::Application> application_ = MakeRef<standalone::Application>();
  automation::ComPtr<IDispatch> automation_;
  AddIn add_in_;
  DWORD registration_ = 0;  // in the table of running objects
  // Objects of closed windows stay until no message is being handled: their functions may be running still.
  std::vector<std::unique_ptr<WorkbookWindow>> windows_;
  WorkbookWindow* active_ = nullptr;
  bool arranging_ = false;  // windows that the system activates meanwhile are not the user's choice
  bool update_pending_ = false;
  bool ended_ = false;
};

}  // namespace rowlark::workbench
