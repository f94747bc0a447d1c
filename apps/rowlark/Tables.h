// The tables that are open on a terminal: the sheets of one or more documents, of which one shows.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
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
  // From now on edits are kept until they are saved. Offers what earlier sessions left unsaved, and says
  // which documents are open elsewhere and which can not be saved where they are.
  void KeepEdits();

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
  void StopLoading();
  // Of the active document, while it is being read; but not where it is read anew unasked.
  std::optional<double> LoadingFraction() const;

  // Saves the active document, asking what there is to ask, also where to when that is left open. The path;
  // nothing when it was not saved.
  std::optional<std::filesystem::path> Save() { return Save(Active()); }
  std::optional<std::filesystem::path> SaveAs() { return SaveAs(Active()); }
  // Asks for every document with changes; false when the program is to go on. Otherwise what was not saved is
  // wanted no more.
  bool MayQuit();
  // Nobody can be asked: the changes are kept for the next session. What there is to say about it, a line
  // each.
  std::vector<std::u16string> KeepChanges();

  // Looks, once a second, whether files have changed. Unless they have been edited here, those that did are
  // read anew when `follow` is set.
  static constexpr uint32_t kWatch = 1000;  // milliseconds
  void Watch(bool follow);
  // What is to be known about the active document all the time; may be empty.
  std::vector<std::u16string> Notices() const;
  // Reads the active document anew, asking what becomes of its edits; it shows as it is until that is done.
  // False for what can be read once only.
  bool Reload();
  // Puts what has been read anew in its place; true when the active document is another one now.
  bool FinishReload();

 private:
  std::u16string Text(std::u16string_view key, std::u16string_view text,
                      std::initializer_list<std::u16string> with = {}) const {
    return program_.Text(key, text, with);
  }
  std::optional<std::filesystem::path> Save(Document& document, SaveOptions options = {});
  std::optional<std::filesystem::path> SaveAs(Document& document);
  // What takes long, with a form that tells how far it is and can stop it.
  using Work = std::function<bool(const Document::Progress& progress)>;
  bool Run(const Document& document, const std::function<std::u16string(double fraction)>& tell,
           const Work& work);
  void Offer(Document& document, Leftovers::Left& left);
  // Makes edits again and tells of those that can not be; false when not all of them were made.
  bool Recover(Document& document, const std::vector<Recovery::Edit>& edits);
  bool Reloading() const { return reload_.document != nullptr; }
  void StartReload(std::size_t document, bool keeps_edits, bool quietly);
  void MovePlace(Document& from, Document& to);
  void Activate(std::size_t document);
  Folders RecoveryFolders() const;

  Program& program_;
  terminal::TerminalMessagePump& pump_;
  terminal::TerminalWindowSystem& windows_;
  std::vector<std::unique_ptr<Document>> documents_;
  std::size_t active_ = 0;
  std::map<const standalone::Worksheet*, TableView> views_;
  bool loaded_ = false;
  std::vector<InputOptions> inputs_;  // what each of them was opened with
  // What was last seen of the file of a document.
  struct Seen {
    bool changed = false;
    bool read_only = false;
    friend bool operator==(const Seen&, const Seen&) = default;
  };
  static Seen See(const Document& document);
  std::vector<Seen> seen_;
  uint32_t watched_ = 0;
  // A document that is read anew.
  struct Rereading {
    std::size_t of = 0;
    std::unique_ptr<Document> document;
    bool keeps_edits = true;
    bool quietly = false;  // nobody is told that it can not be read
    uint64_t edits = 0;    // that had been made before
    uint32_t began = 0;
  };
  Rereading reload_;
  uint32_t next_follow_ = 0;
};

}  // namespace rowlark
