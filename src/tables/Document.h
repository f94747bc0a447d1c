// A file of one or more tables as a workbook of the sheet model: loaded in steps, edited there, saved.
//
//   Document document(host, path, full_name);
//   while (document.Step()) { ... }            // as long as there is time; the sheets fill meanwhile
//   document.Sheets()[0]->Range(u"B2")->SetValue(u"new");
//   document.Save({});
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "csv/CsvFile.h"
#include "host/standalone/Application.h"
#include "tables/FileStamp.h"
#include "tables/Loader.h"
#include "tables/Recovery.h"
#include "util/Event.h"

namespace rowlark {

// A question to the user: saving goes through once the option named here is set.
class SaveRefused : public std::runtime_error {
 public:
  enum class Reason {
    FileExists,    // SaveOptions::overwrite
    FileChanged,   // SaveOptions::overwrite: another program has written the file since it was loaded
    NotEncodable,  // SaveOptions::as_utf8: the file's encoding lacks a character; the message names its cell
  };
  SaveRefused(Reason reason, const std::string& message) : std::runtime_error(message), reason_(reason) {}
  Reason Why() const noexcept { return reason_; }

 private:
  Reason reason_;
};

struct SaveOptions {
  std::filesystem::path path = {};  // empty: Document::SavePath
  bool overwrite = false;
  bool as_utf8 = false;  // with a mark, instead of the file's encoding
};

class Document {
 public:
  // Opens a CSV file or a workbook (.xlsx, .ods and others), either of them compressed or from a pipe, by its
  // content. Its workbook becomes the active one of `host` under `full_name`; the first rows of a plain CSV
  // file are there at once. A table that becomes too large is loaded up to there. Throws
  // std::runtime_error("path: reason").
  Document(Ref<standalone::Application> host, const std::filesystem::path& path,
           std::u16string_view full_name, const InputOptions& options = {});
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  // Closes the workbook. Edits that were not saved are gone, but for what is kept of them.
  ~Document();

  // Loads on for about a millisecond (a few while another process reads for us); false when there is nothing
  // more to load. Throws std::runtime_error("path: reason"); then what has been loaded stays, as after Stop.
  bool Step();
  // After a step that found nothing to load (a pipe): what becomes readable when there is something.
  std::optional<int> WaitsFor() const noexcept {
    return state_ == State::Loading ? loader_->WaitsFor() : std::nullopt;
  }
  // Loads no more. What has been loaded stays; rows that have not been loaded can not be edited and are saved
  // as they are in the file.
  void Stop();
  enum class State { Loading, Loaded, Stopped };
  State LoadState() const noexcept { return state_; }
  // How much is loaded, 0 to 1; 0 while that can not be told (a pipe).
  double Fraction() const;

  // How many texts of the file, so far, are longer than a cell holds: 32,767 characters of each have been
  // read.
  int32_t CutTexts() const { return loader_->CutTexts(); }

  const std::filesystem::path& Path() const noexcept { return path_; }
  const Ref<standalone::Workbook>& Workbook() const noexcept { return workbook_; }
  // In the order of the file; Workbook::ActivateSheet switches. Sheets of a workbook appear when it is read.
  const std::vector<Ref<standalone::Worksheet>>& Sheets() const { return workbook_->Worksheets(); }
  standalone::Worksheet& ActiveSheet() const;

  // A row of a sheet as a record of CSV without its line end, in UTF-8: as the file has it where nothing was
  // edited. Rows count from 1.
  std::string RowText(const standalone::Worksheet& sheet, int32_t row);
  std::string_view LineEnd() const;

  // Whether cells have other texts than when they were loaded or saved, in any sheet or in one.
  bool IsModified() const;
  bool IsModified(const standalone::Worksheet& sheet) const;
  // Where the active sheet is saved: a plain CSV file in itself, others as CSV beside them (a sheet of a
  // workbook, a table that was compressed), and what came from a pipe as CSV in the current folder; once it
  // has been saved elsewhere, there.
  std::filesystem::path SavePath() const;
  // Whether another program has written the file since it was loaded or saved.
  bool ChangedOnDisk() const;

  // Takes back the last edit, or makes it once more. The cell, whose sheet may not be the active one; nothing
  // when there is no such edit. Throws host::Error, and then nothing has changed.
  struct Place {
    Ref<standalone::Worksheet> sheet;
    int32_t row;
    int32_t column;
  };
  std::optional<Place> Undo();
  std::optional<Place> Redo();

  // Called now and then with what is done, 0 to 1; false stops.
  using Progress = std::function<bool(double fraction)>;

  // Saves the active sheet, replacing the file as a whole or not at all. A CSV file keeps its separator,
  // encoding and line ends, and what was not edited stays byte for byte as it was; loading that is not at its
  // end is brought there or, if it was stopped, what is missing is copied. Other sheets are written as UTF-8
  // with a mark. Saved elsewhere, a CSV file is that one from then on. False when `progress` stopped it.
  // Throws SaveRefused, and std::runtime_error("path: reason").
  bool Save(const SaveOptions& options, const Progress& progress = {});

  // From now on edits that are not saved are also in a file of their own, in the first of the folders that
  // takes it: on disk once they have been made. Returns what earlier instances left of this document.
  Leftovers KeepEdits(Folders folders);
  // That file; empty without one.
  std::filesystem::path KeptIn() const { return kept_ ? kept_->Path() : std::filesystem::path(); }
  // Why the last edit is not there; no error where it is.
  std::error_code KeepingFailed() const { return kept_ ? kept_->Failed() : std::error_code(); }
  // Writes it anew, where that failed.
  void KeepAgain();
  // The user wants none of the edits: nothing stays of them.
  void Discard();

  // Makes edits again. The document is loaded to its end for it; nothing when `progress` stopped that. Cells
  // that are not there any more are passed over; returns how many were not.
  std::optional<std::size_t> Recover(const std::vector<Recovery::Edit>& edits, const Progress& progress = {});
  // The cells whose texts are not saved.
  std::vector<Recovery::Edit> Unsaved() const;

 private:
  // How a sheet was saved last.
  struct Saved {
    std::map<standalone::Cell, std::string>
        texts;  // of the cells that had been changed since they were loaded
    std::filesystem::path path;
    FileStamp stamp;
  };
  struct Edit {
    Place place;
    std::string before;
    std::string after;
  };

  template <class Visit>
  bool ForEachUnsaved(const standalone::Worksheet& sheet, Visit visit) const;
  void Changed(standalone::Worksheet& sheet, int32_t row, int32_t column, const std::string& before);
  std::optional<Place> Repeat(const Edit& edit, const std::string& text);
  bool Write(const std::filesystem::path& path, bool as_utf8, const Progress& progress);
  void KeepAll();

  std::filesystem::path path_;
  FileStamp stamp_;
  std::filesystem::path source_;  // what was loaded
  FileStamp source_stamp_;
  std::unique_ptr<Loader> loader_;
  Ref<standalone::Application> host_;
  Ref<standalone::Workbook> workbook_;
  Connection changes_;
  State state_ = State::Loading;
  std::map<const standalone::Worksheet*, Saved> saved_;
  std::vector<Edit> edits_;
  std::size_t made_ = 0;        // of these; those behind have been taken back
  bool repeating_ = false;      // edits that are in the list
  bool recovering_ = false;     // edits that are kept once all of them have been made
  bool keeps_records_ = true;   // the records of the CSV file can be read again
  bool saved_as_utf8_ = false;  // and so its encoding is no longer the one that was loaded
  std::unique_ptr<RecoveryFile> kept_;
};

}  // namespace rowlark
