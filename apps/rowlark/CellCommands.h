// What the user does with the cells of the table that shows.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "CellEditor.h"
#include "Program.h"
#include "StatusLine.h"
#include "Tables.h"
#include "host/terminal/TerminalWindowSystem.h"

namespace rowlark {

class CellCommands {
 public:
  CellCommands(Program& program, terminal::Screen& screen, terminal::TerminalWindowSystem& windows,
               Tables& tables, StatusLine& status)
      : program_(program), screen_(screen), windows_(windows), tables_(tables), status_(status) {}

  // The active cell, in a line of its own; nothing while there is such a line.
  void Edit();
  bool Editing() const { return editor_ && editor_->Loaded(); }
  void EndEditing() const {
    if (editor_) editor_->Unload();
  }
  // Takes the last edit back, or makes again what was taken back.
  void Undo() { Repeat(&Document::Undo, Text(u"Terminal.Edit.NoUndo", u"Nothing to undo")); }
  void Redo() { Repeat(&Document::Redo, Text(u"Terminal.Edit.NoRedo", u"Nothing to redo")); }

  // Asks for the row or the cell to go to.
  void GoTo();
  // All of the active cell's text.
  void Show();

  void CopySelection();
  // Asks for what to copy.
  void Copy();

 private:
  using Change = std::optional<Document::Place> (Document::*)();

  std::u16string Text(std::u16string_view key, std::u16string_view text) const {
    return program_.Text(key, text);
  }
  void Ask(std::u16string_view title, std::u16string_view text, CellEditor::EndHandler ended);
  void Repeat(Change change, const std::u16string& nothing);
  void GoTo(const std::u16string& place);
  void Copy(std::span<const Block> blocks);
  void Tell(const host::Error& error) const;

  Program& program_;
  terminal::Screen& screen_;
  terminal::TerminalWindowSystem& windows_;
  Tables& tables_;
  StatusLine& status_;
  Ref<CellEditor> editor_;  // of a cell, or of the place to go to
};

}  // namespace rowlark
