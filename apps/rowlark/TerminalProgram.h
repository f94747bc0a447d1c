// Rowlark on a terminal: tables full-screen, with the add-in's menu, forms and hotkeys.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CellCommands.h"
#include "Program.h"
#include "SearchMarks.h"
#include "StatusLine.h"
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

// The help is shown by whoever has the screen.
class TerminalHelp final : public host::Help {
 public:
  // Shows a topic of a help file, or all of them to choose from for 0; false where there is none.
  std::function<bool(std::u16string_view file, int32_t context)> Show;

  intptr_t HtmlHelp(std::u16string_view file, host::HelpCommand, int32_t context) noexcept override {
    return AttemptOr(nullptr, false, [&] { return Show(file, context); }) ? 1 : 0;
  }
};

class TerminalProgram final : public terminal::Desktop {
 public:
  TerminalProgram(Program& program, terminal::Screen& screen, terminal::TerminalMessagePump& pump,
                  terminal::TerminalWindowSystem& windows, TerminalHelp& help);
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
  bool Interrupt(const terminal::KeyPress& press) override;
  bool Navigate(const terminal::KeyPress& press) override;
  void Press(const terminal::KeyPress& press) override;
  void Paste(std::u16string_view text) override;
  void UseMouse(const terminal::MouseAction& action) override;

 private:
  void NextTable(int32_t step);
  void Save(bool elsewhere);
  void Reload();
  // What has been read in the meantime comes to show.
  void UseNewRows();
  bool ChangeColumns(const terminal::KeyPress& press);
  // Opens the search form with a text that the user has begun with.
  void StartSearch(std::u16string_view text);

  void RunMacro(std::u16string_view name);
  bool RunHotKey(const terminal::KeyPress& press);
  void ShowMenu();
  void ShowKeys();
  bool ShowHelp(std::u16string_view file, int32_t context);
  void Quit();
  void EndBySignal(int signal);
  void End(int status);

  Program& program_;
  terminal::Screen& screen_;
  terminal::TerminalMessagePump& pump_;
  terminal::TerminalWindowSystem& windows_;
  TerminalHelp& help_;

  Tables tables_;
  SearchMarks marks_;
  StatusLine line_;
  CellCommands cells_;
  bool quitting_ = false;  // the user is being asked about it
  bool follow_ = false;
  std::optional<int> status_;  // the exit status, once the program ends
  std::vector<std::u16string> farewell_;
};

}  // namespace rowlark
