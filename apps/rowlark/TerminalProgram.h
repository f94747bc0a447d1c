// Rowlark on a terminal: tables full-screen, with the add-in's menu, forms and hotkeys.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "CellEditor.h"
#include "Matches.h"
#include "Program.h"
#include "Tables.h"
#include "host/terminal/TerminalWindowSystem.h"

namespace rowlark {

struct TerminalArguments {
  static constexpr const char* kStandardInput = "-";  // among the files

  std::vector<std::filesystem::path> files;
  int32_t head_rows = 1;
  InputOptions input;
  int standard_input = -1;  // what it is, where keys come from elsewhere
  bool follow = false;      // keep to the end of files that grow
};

// The help there is: a list of the keys.
class KeyHelp final : public host::Help {
 public:
  std::function<void()> Show;

  intptr_t HtmlHelp(std::u16string_view, host::HelpCommand, int32_t) noexcept override {
    Show();
    return 1;
  }
};

class TerminalProgram final : public terminal::Desktop {
 public:
  TerminalProgram(Program& program, terminal::Screen& screen, terminal::TerminalMessagePump& pump,
                  terminal::TerminalWindowSystem& windows, KeyHelp& help);
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;
  ~TerminalProgram() override;

  // Until the user ends it, or a signal does. The exit status. Throws std::runtime_error when a file can not
  // be read.
  int Run(const TerminalArguments& arguments);
  // What is to be said once the terminal is the shell's again, a line each.
  const std::vector<std::u16string>& Farewell() const { return farewell_; }

  int32_t StatusRows(int32_t height) const override;
  void Draw(terminal::Canvas& canvas, const terminal::Rect& picture, const terminal::Rect& status,
            bool focused) override;
  bool Navigate(const terminal::KeyPress& press) override;
  void Press(const terminal::KeyPress& press) override;
  void Paste(std::u16string_view text) override;
  void UseMouse(const terminal::MouseAction& action) override;

 private:
  void NextTable(int32_t step);
  void Edit();
  void Save(bool elsewhere);
  void Repeat(bool undo);
  void Reload();
  // What has been read in the meantime comes to show.
  void UseNewRows();
  void EndLoading();

  // Whether what was searched for last is marked in the table.
  bool Marked();
  // Looks on for matches for a little while; false when nothing is left to do.
  bool CountMatches();
  void GoToMatch(bool back);
  void AskForCell();
  void GoTo(const std::u16string& place);
  void ShowCell();
  enum class Copied { Selection, Row, VisibleRows };
  void AskForCopy();
  void Copy(Copied what);
  bool ChangeColumns(const terminal::KeyPress& press);

  // Opens the search form with a text that the user has begun with.
  void StartSearch(std::u16string_view text);
  void evtRLRTM_Searching(bool searching);
  // The profile of the active workbook with what it leaves open filled in; null when that fails.
  std::shared_ptr<clsVTRLKItem> DetectedProfile();
  Highlight MakeHighlight();

  void RunMacro(std::u16string_view name);
  bool RunHotKey(const terminal::KeyPress& press);
  void ShowMenu();
  void ShowKeys();
  void Quit();
  void EndBySignal(int signal);
  void End(int status);

  std::u16string Text(std::u16string_view key, std::u16string_view text) const;
  void DrawStatus(terminal::Canvas& canvas, terminal::Point at, int32_t width);
  void DrawKeys(terminal::Canvas& canvas, terminal::Point at, int32_t width, bool in_table) const;
  std::u16string Mode() const;
  std::u16string CountRows();
  std::u16string TellMatches();

  Program& program_;
  terminal::Screen& screen_;
  terminal::TerminalMessagePump& pump_;
  terminal::TerminalWindowSystem& windows_;
  KeyHelp& help_;

  Tables tables_;
  bool quitting_ = false;   // the user is being asked about it
  std::u16string message_;  // what was done last, until the next key
  Ref<CellEditor> editor_;  // of a cell, or of the place to go to
  Connection searching_;
  std::chrono::steady_clock::time_point search_began_;
  std::optional<double> search_time_;  // milliseconds, of the last search
  std::u16string searched_;            // the text of the last search
  Highlight highlight_;
  std::optional<Matches> matches_;
  bool follow_ = false;
  bool at_end_ = false;        // the cursor keeps to the last row
  std::optional<int> status_;  // the exit status, once the program ends
  std::vector<std::u16string> farewell_;

  struct Count {
    const standalone::Worksheet* sheet = nullptr;
    uint64_t layout = 0;
    int32_t all = 0;
    int32_t visible = 0;
  };
  Count count_;
};

}  // namespace rowlark
