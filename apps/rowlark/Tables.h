// The tables that are open on a terminal: the sheets of one or more documents, of which one shows.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Program.h"
#include "TableView.h"
#include "host/terminal/TerminalWindowSystem.h"
#include "tables/Document.h"

namespace rowlark {

class Tables {
 public:
  Tables(Program& program, terminal::TerminalMessagePump& pump, terminal::TerminalWindowSystem& windows)
      : program_(program), pump_(pump), windows_(windows) {}

  // Of every table.
  int32_t HeadRows = 1;

  // The document shows its first rows; the last one opened is the active one. Throws std::runtime_error.
  void Open(const std::filesystem::path& path, const InputOptions& options);
  // Offers what earlier sessions left unsaved.
  void OfferRecovery();

  Document& Active() const { return *documents_[active_]; }
  TableView& View();
  // Shows the document that was opened first.
  void First() { Activate(0); }
  // Goes on to another sheet, or to another document from its last one.
  void Next(int32_t step);
  // What the active one is called, and which one of how many it is; no more than the name when it is alone.
  std::u16string Name() const;
  std::u16string Place() const;

  // Loads on for a little while; false when nothing is left to load, or nothing is there yet: then the pump
  // wakes when there is. `Loaded` tells once when the active document has come to its end.
  bool Load();
  bool TakeLoaded() { return std::exchange(loaded_, false); }
  bool IsLoading() const;
  void StopLoading() const { Active().Stop(); }

  // Saves the active document, asking what there is to ask; false when it was not saved.
  bool Save();
  // Asks for every document with changes; false when the program is to go on.
  bool MayQuit();
  // Keeps the changes for the next session.
  void KeepChanges() noexcept;

 private:
  std::u16string Text(std::u16string_view key, std::u16string_view text,
                      std::initializer_list<std::u16string> with = {}) const {
    return program_.Runtime().Language().GetText(key, text, with);
  }
  bool Save(Document& document);
  // Something that may take long: how far it is shows, and the user can stop it. What `work` returns.
  bool Run(const Document& document, std::u16string_view key, std::u16string_view text,
           const std::function<bool(const Document::Progress& progress)>& work);
  void Activate(std::size_t document);
  std::filesystem::path RecoveryFolder() const;

  Program& program_;
  terminal::TerminalMessagePump& pump_;
  terminal::TerminalWindowSystem& windows_;
  std::vector<std::unique_ptr<Document>> documents_;
  std::size_t active_ = 0;
  std::map<const standalone::Worksheet*, TableView> views_;
  bool loaded_ = false;
};

}  // namespace rowlark
