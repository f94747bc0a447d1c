// The menu bar: the program's own menus, and behind them those of the sheet model's command bar.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

#include "host/standalone/Application.h"

namespace rowlark::workbench {

// Commands of the menu; they come with WM_COMMAND.
enum class Command : UINT {
  FileNew = 100,
  FileOpen,
  FileClose,
  FileExit,
  ViewProtected,
  ViewReadOnly,
  DataFilter,
  DataShowAll,
  FirstWorkbook = 1000,
  FirstMacro = 2000,
};

class MenuBar {
 public:
  MenuBar(HWND window, const standalone::Application& application)
      : window_(window), application_(application) {}

  // Follows the command bar and the open workbooks, that of the window checked; rebuilds the menu only when
  // they have changed.
  void Update(std::u16string_view active);
  // Sets the check marks, before a menu opens.
  void UpdateMarks(bool is_protected, bool is_read_only, bool is_filtered) const;

  // The macro or the name of the workbook that a command stands for; empty when it stands for neither.
  std::u16string Macro(UINT command) const;
  std::u16string WorkbookName(UINT command) const;

 private:
  // An item of the command bar or one inside it.
  struct Item {
    std::u16string caption;
    std::u16string macro;
    bool begin_group;
    bool popup;
    std::size_t depth;
    friend bool operator==(const Item&, const Item&) = default;
  };
  struct Content {
    std::vector<Item> items;            // depth first
    std::vector<std::u16string> books;  // sorted
    std::u16string active;
    friend bool operator==(const Content&, const Content&) = default;
  };

  static void AddItems(std::vector<Item>& items,
                       const std::vector<Ref<standalone::CommandBarControl>>& controls, std::size_t depth);
  // Appends the items from `i` on that lie at that depth.
  void AppendItems(HMENU menu, std::size_t& i, std::size_t depth) const;
  void AppendBooks(HMENU bar) const;

  HWND window_;
  const standalone::Application& application_;
  Content content_;
};

}  // namespace rowlark::workbench
