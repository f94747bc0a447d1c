// The stand-alone host: a spreadsheet without a window, for Linux and for tests. It answers as Excel does
// where the logic can tell.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/cells/Finder.h"
#include "host/spreadsheet.h"
#include "host/standalone/CommandBars.h"
#include "host/standalone/Workbook.h"

namespace rowlark::standalone {

// The main window of the program that shows the sheets; position and size in points.
struct MainWindow {
  intptr_t handle = 1;
  double left = 0;
  double top = 0;
  double width = 960;
  double height = 540;
};

class Application final : public host::Application {
 public:
  explicit Application(std::u16string_view version = u"16.0") : version_(version) {}
  ~Application() override;

  Ref<host::Workbook> ActiveWorkbook() const override;
  Ref<host::Worksheet> ActiveSheet() const override;
  Ref<host::Range> ActiveCell() const override;
  Ref<host::Range> Selection() const override;
  bool ScreenUpdating() const override { return screen_updating_; }
  void SetScreenUpdating(bool on) override { screen_updating_ = on; }
  bool EnableEvents() const override { return enable_events_; }
  void SetEnableEvents(bool on) override { enable_events_ = on; }
  bool EnableAnimations() const override { return enable_animations_; }
  void SetEnableAnimations(bool on) override { enable_animations_ = on; }
  std::u16string Version() const override { return version_; }
  intptr_t Hwnd() const override { return window_.handle; }
  double Left() const override { return window_.left; }
  double Top() const override { return window_.top; }
  double Width() const override { return window_.width; }
  double Height() const override { return window_.height; }
  Ref<host::CommandBar> CommandBars(std::u16string_view name) const override;
  void OnKey(std::u16string_view key, std::optional<std::u16string_view> macro) override;

  // Opens an empty workbook of that name and makes it the active one.
  Ref<Workbook> AddWorkbook(std::u16string_view full_name, bool read_only = false);
  void Activate(const Ref<Workbook>& workbook);
  // Handles to its sheets and ranges fail from now on; the workbook opened before it becomes the active one.
  void Close(const Ref<Workbook>& workbook);

  // Those that are open, the active one last.
  const std::vector<Ref<Workbook>>& Workbooks() const { return workbooks_; }

  // A program without a window leaves it as it is.
  void SetWindow(const MainWindow& window) { window_ = window; }

  // Hotkeys in force: key code to macro.
  const std::map<std::u16string, std::u16string>& Keys() const { return keys_; }
  const Ref<CommandBar>& WorksheetMenuBar() const { return menu_bar_; }

  // Searching, with the settings that are remembered from call to call.
  Finder& Find() { return finder_; }

 private:
  // The active sheet with cells, null without a workbook; fails on a chart.
  Ref<Worksheet> ActiveCells() const;

  std::u16string version_;
  MainWindow window_;
  std::vector<Ref<Workbook>> workbooks_;  // the active one is the last
  bool screen_updating_ = true;
  bool enable_events_ = true;
  bool enable_animations_ = true;
  std::map<std::u16string, std::u16string> keys_;
  Ref<CommandBar> menu_bar_ = MakeRef<CommandBar>(u"Worksheet Menu Bar");
  Finder finder_;
};

}  // namespace rowlark::standalone
