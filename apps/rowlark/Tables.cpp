#include "Tables.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <utility>

#include "ProgressForm.h"
#include "settings/Product.h"
#include "tables/FileAccess.h"
#include "util/FileSystemPlatform.h"
#include "util/PathMap.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

std::u16string FileName(const Document& document) { return Shown(document.Path().filename()); }

uint64_t CountEdits(const Document& document) {
  uint64_t count = 0;
  for (const auto& sheet : document.Sheets()) count += sheet->Edits();
  return count;
}

std::u16string Percent(double fraction) { return ToText(static_cast<int32_t>(fraction * 100)); }

}  // namespace

void Tables::Open(const std::filesystem::path& path, const InputOptions& options) {
  documents_.push_back(program_.OpenDocument(path, options));
  inputs_.push_back(options);
  seen_.push_back(See(*documents_.back()));
  active_ = documents_.size() - 1;
}

void Tables::Activate(std::size_t document) {
  active_ = document;
  program_.Host()->Activate(Active().Workbook());
}

TableView& Tables::View() {
  auto& sheet = Active().ActiveSheet();
  sheet.SetHeadRows(HeadRows);
  return views_.try_emplace(&sheet, Ref(&sheet)).first->second;
}

void Tables::Next(int32_t step) {
  const auto& sheets = Active().Sheets();
  const auto count = static_cast<int32_t>(sheets.size());
  const auto at = static_cast<int32_t>(
      std::ranges::find(sheets, &Active().ActiveSheet(), [](const auto& s) { return s.get(); }) -
      sheets.begin());
  const int32_t next = at + step;
  if (next >= 0 && next < count) {
    return Active().Workbook()->ActivateSheet(sheets[static_cast<std::size_t>(next)]);
  }
  const auto documents = documents_.size();
  Activate((active_ + documents + static_cast<std::size_t>(step)) % documents);
  const auto& others = Active().Sheets();
  Active().Workbook()->ActivateSheet(step > 0 ? others.front() : others.back());
}

std::u16string Tables::Place() const {
  const auto number = [](std::size_t n) { return ToText(static_cast<int32_t>(n)); };
  std::size_t all = 0;
  std::size_t at = 0;
  for (std::size_t i = 0; i < documents_.size(); ++i) {
    for (const auto& sheet : documents_[i]->Sheets()) {
      ++all;
      if (i == active_ && sheet.get() == &Active().ActiveSheet()) at = all;
    }
  }
  return all < 2 ? std::u16string() : u" (" + number(at) + u"/" + number(all) + u")";
}

std::u16string Tables::Name() const {
  auto name = FileName(Active());
  if (Active().Sheets().size() > 1) name += u": " + Active().ActiveSheet().Name();
  if (Active().IsModified()) name += u" *";
  return name + Place();
}

bool Tables::Load() {
  constexpr auto kTurn = std::chrono::milliseconds(8);
  const auto end = std::chrono::steady_clock::now() + kTurn;
  std::vector<int> waiting;
  while (Reloading() && reload_.document->LoadState() == Document::State::Loading) {
    try {
      reload_.document->Step();
    } catch (const std::exception& error) {
      reload_.document = nullptr;
      if (reload_.quietly) break;
      windows_.MsgBox(ToUtf16(error.what()), host::MsgBoxIcon::Critical, kProductTitle);
    }
    if (const auto source = Reloading() ? reload_.document->WaitsFor() : std::nullopt) {
      waiting.push_back(*source);
      break;
    }
    if (std::chrono::steady_clock::now() >= end) return true;
  }
  for (std::size_t i = 0; i < documents_.size(); ++i) {
    Document& document = *documents_[(active_ + i) % documents_.size()];
    while (document.LoadState() == Document::State::Loading) {
      try {
        if (!document.Step()) loaded_ |= i == 0;
      } catch (const std::exception& error) {
        windows_.MsgBox(ToUtf16(error.what()), host::MsgBoxIcon::Critical, kProductTitle);
      }
      if (const auto source = document.WaitsFor()) {
        waiting.push_back(*source);
        break;
      }
      if (std::chrono::steady_clock::now() >= end) return true;
    }
  }
  pump_.WakeBy(std::move(waiting));
  return false;
}

bool Tables::IsLoading() const {
  return std::ranges::any_of(
      documents_, [](const auto& document) { return document->LoadState() == Document::State::Loading; });
}

std::optional<double> Tables::LoadingFraction() const {
  const bool rereads = Reloading() && reload_.of == active_ && !reload_.quietly;
  const Document& document = rereads ? *reload_.document : Active();
  return document.LoadState() == Document::State::Loading ? std::optional(document.Fraction()) : std::nullopt;
}

void Tables::StopLoading() {
  if (Reloading()) {
    reload_.document = nullptr;
  } else {
    Active().Stop();
  }
}

bool Tables::Run(const Document& document, const std::function<std::u16string(double fraction)>& tell,
                 const Work& work) {
  constexpr uint32_t kPatience = 200;  // milliseconds before it is told how far it is
  const auto cancel = Text(u"Edit.UI.BtnClose", u"&Cancel");
  const uint32_t begin = pump_.TickCount();
  const auto form = MakeRef<ProgressForm>(FileName(document), cancel, program_.Trace());
  bool shown = false;
  const bool done = work([&](double fraction) {
    if (pump_.TickCount() - begin < kPatience) return true;
    if (shown) {
      form->Tell(tell(fraction));
    } else {
      form->Open(windows_, tell(fraction));
      shown = true;
    }
    pump_.ProcessMessages();
    return form->Loaded();
  });
  form->Unload();
  return done;
}

std::optional<std::filesystem::path> Tables::Save(Document& document, SaveOptions options) {
  const auto agrees = [this](const std::u16string& question) {
    return windows_.Ask(question, kProductTitle);
  };
  const auto path = options.path.empty() ? document.SavePath() : options.path;
  const auto shown = Shown(path);
  for (;;) {
    try {
      const auto saving = [this](double fraction) {
        return Text(u"Terminal.Save.Saving", u"Saving: %1 of 100", {Percent(fraction)});
      };
      const bool done = Run(document, saving, [&](const Document::Progress& progress) {
        return document.Save(options, progress);
      });
      if (done) watched_ = pump_.TickCount() - kWatch;
      return done ? std::optional(path) : std::nullopt;
    } catch (const SaveRefused& refused) {
      if (refused.Why() == SaveRefused::Reason::NotEncodable) {
        options.as_utf8 = true;
        const auto reason = ToUtf16(refused.what());
        if (!agrees(Text(u"Terminal.Save.Encoding", u"%1\\nSave as UTF-8?", {reason}))) return std::nullopt;
      } else {
        options.overwrite = true;
        const bool changed = refused.Why() == SaveRefused::Reason::FileChanged;
        const auto question = changed ? Text(u"Terminal.Save.Changed",
                                             u"%1\\nwas changed by another program. Overwrite it?", {shown})
                                      : Text(u"Terminal.Save.Exists", u"%1\\nexists. Overwrite it?", {shown});
        if (!agrees(question)) return std::nullopt;
      }
    } catch (const std::exception& error) {
      const auto answer =
          windows_.Choose(ToUtf16(error.what()), kProductTitle,
                          {Text(u"Terminal.Save.As", u"Save &as..."), Text(u"Edit.UI.BtnClose", u"&Cancel")});
      return answer == 0 ? SaveAs(document) : std::nullopt;
    }
  }
}

std::optional<std::filesystem::path> Tables::SaveAs(Document& document) {
  std::error_code failed;
  const auto before = std::filesystem::absolute(document.SavePath(), failed);
  const auto typed = windows_.Prompt(Text(u"Terminal.SaveAs.Title", u"Save as"), platform::ToText(before));
  if (!typed || typed->empty()) return std::nullopt;
  SaveOptions options;
  options.path = platform::ToPath(*typed);
  const char* const home = std::getenv("HOME");
  if (home != nullptr && typed->starts_with(u"~/")) options.path = home / platform::ToPath(typed->substr(2));
  return Save(document, options);
}

bool Tables::MayQuit() {
  for (std::size_t i = 0; i < documents_.size(); ++i) {
    Document& document = *documents_[i];
    if (!document.IsModified()) continue;
    Activate(i);
    // Of several sheets each is saved by itself.
    for (const auto& sheet : document.Sheets()) {
      if (!document.IsModified(*sheet)) continue;
      document.Workbook()->ActivateSheet(sheet);
      break;
    }
    const auto path = document.SavePath();
    const auto question =
        path == document.Path()
            ? Text(u"Terminal.Save.Question", u"Save the changes in %1?", {FileName(document)})
            : Text(u"Terminal.Save.QuestionAs", u"Save the changes in %1 as %2?",
                   {FileName(document), Shown(path.filename())});
    const auto answer =
        windows_.Choose(question, kProductTitle,
                        {Text(u"Terminal.Save.Save", u"&Save"), Text(u"Terminal.Save.Discard", u"&Discard"),
                         Text(u"Edit.UI.BtnClose", u"&Cancel")});
    if (answer == 2) return false;
    for (const auto& sheet : document.Sheets()) {
      if (answer != 0 || !document.IsModified(*sheet)) continue;
      document.Workbook()->ActivateSheet(sheet);
      if (!Save(document)) return false;
    }
  }
  for (const auto& document : documents_) document->Discard();
  return true;
}

std::vector<std::u16string> Tables::KeepChanges() {
  std::vector<std::u16string> lines;
  for (const auto& document : documents_) document->KeepAgain();
  for (const auto& document : documents_) {
    if (!document->IsModified()) continue;
    const auto failed = document->KeepingFailed();
    lines.push_back(failed ? Text(u"Terminal.Recovery.NotKept", u"%1: unsaved changes could not be kept: %2",
                                  {FileName(*document), ToUtf16(failed.message())})
                           : Text(u"Terminal.Recovery.Kept", u"%1: unsaved changes are kept in %2",
                                  {FileName(*document), Shown(document->KeptIn())}));
  }
  return lines;
}

void Tables::KeepEdits() {
  for (const auto& document : documents_) {
    auto found = document->KeepEdits(RecoveryFolders());
    if (found.is_open_elsewhere) {
      windows_.MsgBox(
          Text(u"Terminal.Open.Elsewhere",
               u"%1\\nis open in another rowlark. Changes saved there and here overwrite each other.",
               {Shown(document->Path())}),
          host::MsgBoxIcon::Exclamation, kProductTitle);
    }
    for (auto& left : found.left) Offer(*document, left);
  }
}

void Tables::Offer(Document& document, Leftovers::Left& left) {
  const auto& recovery = left.recovery;
  if (recovery.edits.empty()) return;
  auto question = Text(u"Terminal.Recovery.Question", u"%1: unsaved changes: %2. Restore them?",
                       {FileName(document), ToText(static_cast<int32_t>(recovery.edits.size()))});
  if (recovery.damaged) question += u' ' + Text(u"Terminal.Recovery.Damaged", u"Others are damaged.");
  if (recovery.stamp != FileStamp::Of(document.Path())) {
    question += u' ' + Text(u"Terminal.Recovery.Changed", u"The file has changed since.");
  }
  const auto answer = windows_.Choose(
      question, kProductTitle,
      {Text(u"Terminal.Recovery.Restore", u"&Restore"), Text(u"Terminal.Save.Discard", u"&Discard"),
       Text(u"Terminal.Recovery.Later", u"&Later")});
  const bool restored = answer == 0 && Recover(document, recovery.edits) && !document.KeepingFailed();
  if (restored || answer == 1) left.file.Remove();
}

bool Tables::Recover(Document& document, const std::vector<Recovery::Edit>& edits) {
  std::optional<std::size_t> refused;
  try {
    const auto loading = [this](double fraction) {
      return Text(u"Terminal.Status.Loading", u"Loading: %1 of 100 - Escape stops", {Percent(fraction)});
    };
    const bool done = Run(document, loading, [&](const Document::Progress& progress) {
      refused = document.Recover(edits, progress);
      return refused.has_value();
    });
    if (!done) return false;
  } catch (const std::exception& error) {
    windows_.MsgBox(ToUtf16(error.what()), host::MsgBoxIcon::Critical, kProductTitle);
    return false;
  }
  pump_.Invalidate();
  if (*refused == 0) return true;
  windows_.MsgBox(
      Text(u"Terminal.Recovery.Refused", u"%1: changes that could not be made: %2. They stay kept.",
           {FileName(document), ToText(static_cast<int32_t>(*refused))}),
      host::MsgBoxIcon::Exclamation, kProductTitle);
  return false;
}

Tables::Seen Tables::See(const Document& document) {
  return {document.ChangedOnDisk(), !IsReplaceable(document.SavePath())};
}

void Tables::Watch(bool follow) {
  const uint32_t now = pump_.TickCount();
  if (now - watched_ < kWatch) return;
  watched_ = now;
  for (std::size_t i = 0; i < documents_.size(); ++i) {
    Document& document = *documents_[i];
    const auto seen = See(document);
    if (seen != std::exchange(seen_[i], seen)) pump_.Invalidate();
    const bool may_follow = follow && !Reloading() && static_cast<int32_t>(now - next_follow_) >= 0;
    const bool is_idle = document.LoadState() != Document::State::Loading && !document.IsModified();
    if (seen.changed && may_follow && is_idle) StartReload(i, true, true);
  }
}

std::vector<std::u16string> Tables::Notices() const {
  std::vector<std::u16string> notices;
  if (seen_[active_].changed)
    notices.push_back(Text(u"Terminal.Status.Changed", u"changed on disk: F5 reloads"));
  if (const auto failed = Active().KeepingFailed(); failed && Active().IsModified()) {
    notices.push_back(
        Text(u"Terminal.Status.NotKept", u"changes are not kept: %1", {ToUtf16(failed.message())}));
  }
  if (const auto cut = Active().CutTexts(); cut > 0)
    notices.push_back(Text(u"Terminal.Status.Cut", u"too long texts cut: %1", {ToText(cut)}));
  if (seen_[active_].read_only) notices.push_back(Text(u"Terminal.Status.ReadOnly", u"read-only"));
  return notices;
}

bool Tables::Reload() {
  std::error_code failed;
  if (inputs_[active_].descriptor >= 0) return false;
  if (!std::filesystem::is_regular_file(Active().Path(), failed) && !failed) return false;
  bool keeps = true;
  if (const auto unsaved = Active().Unsaved(); !unsaved.empty()) {
    const auto question =
        Text(u"Terminal.Reload.Question", u"%1: unsaved changes: %2. Make them again in what is read?",
             {FileName(Active()), ToText(static_cast<int32_t>(unsaved.size()))});
    const auto answer =
        windows_.Choose(question, kProductTitle,
                        {Text(u"Terminal.Reload.Keep", u"&Keep"), Text(u"Terminal.Save.Discard", u"&Discard"),
                         Text(u"Edit.UI.BtnClose", u"&Cancel")});
    if (answer == 2) return true;
    keeps = answer == 0;
  }
  StartReload(active_, keeps, false);
  return true;
}

void Tables::StartReload(std::size_t document, bool keeps_edits, bool quietly) {
  const auto active = Active().Workbook();
  const Document& old = *documents_[document];
  try {
    reload_ = {document,        program_.OpenDocument(old.Path(), inputs_[document]),
               keeps_edits,     quietly,
               CountEdits(old), pump_.TickCount()};
  } catch (const std::exception& error) {
    if (!quietly) windows_.MsgBox(ToUtf16(error.what()), host::MsgBoxIcon::Critical, kProductTitle);
  }
  program_.Host()->Activate(active);
}

// Where the user is stays, as far as there are such sheets and cells.
void Tables::MovePlace(Document& from, Document& to) {
  for (const auto& sheet : to.Sheets()) {
    const auto same =
        std::ranges::find(from.Sheets(), sheet->Name(), [](const auto& s) { return s->Name(); });
    if (same == from.Sheets().end()) continue;
    const auto used = sheet->Text().Used().value_or(Block::OfCell(1, 1));
    const auto at = (*same)->ActiveCell();
    const int32_t row = std::clamp(at.first_row, used.first_row, used.last_row);
    const int32_t column = std::clamp(at.first_column, used.first_column, used.last_column);
    sheet->Select({Block::OfCell(row, column)}, {row, column});
    if (const auto view = views_.find(same->get()); view != views_.end())
      views_.try_emplace(sheet.get(), sheet).first->second.StandInFor(view->second);
    if (same->get() == &from.ActiveSheet()) to.Workbook()->ActivateSheet(sheet);
  }
}

bool Tables::FinishReload() {
  if (!Reloading() || reload_.document->LoadState() == Document::State::Loading) return false;
  auto reload = std::exchange(reload_, {});
  auto fresh = std::move(reload.document);
  Document& old = *documents_[reload.of];
  fresh->KeepEdits(RecoveryFolders());
  MovePlace(old, *fresh);
  // Those made meanwhile nobody has called unwanted.
  const bool keeps_edits = reload.keeps_edits || CountEdits(old) != reload.edits;
  const auto edits = keeps_edits ? old.Unsaved() : std::vector<Recovery::Edit>();
  if ((edits.empty() || Recover(*fresh, edits)) && !fresh->KeepingFailed()) old.Discard();
  for (const auto& sheet : old.Sheets()) views_.erase(sheet.get());
  std::swap(documents_[reload.of], fresh);
  seen_[reload.of] = See(*documents_[reload.of]);
  Activate(active_);
  pump_.Invalidate();
  // Reading takes its share of the time, and no more.
  const uint32_t now = pump_.TickCount();
  next_follow_ = now + 3 * (now - reload.began);
  return reload.of == active_;
}

// Beside the configuration; where nothing can be kept there, among the temporary files.
Folders Tables::RecoveryFolders() const {
  Folders folders;
  const auto configuration = PathMap().ToNative(program_.Items().CfgFileName);
  if (!configuration.empty()) folders.push_back(configuration.parent_path() / "recovery");
  if (const auto temporary = PrivateTemporaryFolder(); !temporary.empty()) folders.push_back(temporary);
  return folders;
}

}  // namespace rowlark
