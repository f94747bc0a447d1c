#include "Tables.h"

#include <algorithm>

#include "ProgressForm.h"
#include "settings/Product.h"
#include "util/PathMap.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

std::u16string FileName(const Document& document) { return Shown(document.Path().filename()); }

std::u16string Percent(double fraction) { return ToText(static_cast<int32_t>(fraction * 100)); }

}  // namespace

void Tables::Open(const std::filesystem::path& path, const InputOptions& options) {
  documents_.push_back(program_.OpenDocument(path, options));
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
  constexpr auto kSlice = std::chrono::milliseconds(8);
  const auto end = std::chrono::steady_clock::now() + kSlice;
  std::vector<int> waiting;
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

bool Tables::Run(const Document& document, std::u16string_view key, std::u16string_view text,
                 const std::function<bool(const Document::Progress& progress)>& work) {
  constexpr uint32_t kPatience = 200;  // milliseconds before it is told how far it is
  const auto cancel = Text(u"Edit.UI.BtnClose", u"&Cancel");
  const uint32_t begin = pump_.TickCount();
  const auto form = MakeRef<ProgressForm>(FileName(document), cancel, program_.Trace());
  bool shown = false;
  const bool done = work([&](double fraction) {
    if (pump_.TickCount() - begin < kPatience) return true;
    const auto line = Text(key, text, {Percent(fraction)});
    if (shown) {
      form->Tell(line);
    } else {
      form->Open(windows_, line);
      shown = true;
    }
    pump_.ProcessMessages();
    return form->Loaded();
  });
  form->Unload();
  return done;
}

bool Tables::Save(Document& document) {
  SaveOptions options;
  const auto agrees = [this](const std::u16string& question) {
    return windows_.Ask(question, kProductTitle);
  };
  const auto path = Shown(document.SavePath());
  for (;;) {
    try {
      const auto save = [&](const auto& progress) { return document.Save(options, progress); };
      if (!Run(document, u"Terminal.Save.Saving", u"Saving: %1 of 100", save)) return false;
      document.RemoveRecovery(RecoveryFolder());
      return true;
    } catch (const SaveRefused& refused) {
      if (refused.Why() == SaveRefused::Reason::NotEncodable) {
        options.as_utf8 = true;
        const auto reason = ToUtf16(refused.what());
        if (!agrees(Text(u"Terminal.Save.Encoding", u"%1\\nSave as UTF-8?", {reason}))) return false;
      } else {
        options.overwrite = true;
        const bool changed = refused.Why() == SaveRefused::Reason::FileChanged;
        const auto question = changed ? Text(u"Terminal.Save.Changed",
                                             u"%1\\nwas changed by another program. Overwrite it?", {path})
                                      : Text(u"Terminal.Save.Exists", u"%1\\nexists. Overwrite it?", {path});
        if (!agrees(question)) return false;
      }
    } catch (const std::exception& error) {
      windows_.MsgBox(ToUtf16(error.what()), host::MsgBoxIcon::Critical, kProductTitle);
      return false;
    }
  }
}

bool Tables::Save() { return Save(Active()); }

bool Tables::MayQuit() {
  for (std::size_t i = 0; i < documents_.size(); ++i) {
    Document& document = *documents_[i];
    if (!document.IsModified()) continue;
    Activate(i);
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
    if (answer == 1) document.RemoveRecovery(RecoveryFolder());
    // Of several sheets each is saved by itself.
    const auto& sheets = document.Sheets();
    for (std::size_t s = 0; answer == 0 && document.IsModified() && s < sheets.size(); ++s) {
      if (sheets[s]->Changes().empty()) continue;
      document.Workbook()->ActivateSheet(sheets[s]);
      if (!Save(document)) return false;
    }
  }
  return true;
}

void Tables::KeepChanges() noexcept {
  for (const auto& document : documents_) {
    // The other ones are to be kept all the same.
    Attempt(program_.Trace(), [&] { document->WriteRecovery(RecoveryFolder()); });
  }
}

void Tables::OfferRecovery() {
  for (const auto& document : documents_) {
    try {
      const auto recovery = document->FindRecovery(RecoveryFolder());
      if (!recovery || recovery->edits.empty()) continue;
      auto question = Text(u"Terminal.Recovery.Question", u"%1: unsaved changes: %2. Restore them?",
                           {FileName(*document), ToText(static_cast<int32_t>(recovery->edits.size()))});
      if (recovery->stamp != FileStamp::Of(document->Path()) || recovery->stamp == FileStamp()) {
        question += u' ' + Text(u"Terminal.Recovery.Changed", u"The file has changed since.");
      }
      const auto answer = windows_.Choose(
          question, kProductTitle,
          {Text(u"Terminal.Recovery.Restore", u"&Restore"), Text(u"Terminal.Save.Discard", u"&Discard")});
      // A pipe may have nothing to read for long.
      const auto load = [&](const auto& progress) {
        while (document->Step()) {
          if (!progress(document->Fraction())) return false;
        }
        return true;
      };
      if (answer == 0) {
        if (!Run(*document, u"Terminal.Status.Loading", u"Loading: %1 of 100 - Escape stops", load)) continue;
        document->Recover(*recovery);
        pump_.Invalidate();
      } else {
        document->RemoveRecovery(RecoveryFolder());
      }
    } catch (const std::exception& error) {
      windows_.MsgBox(ToUtf16(error.what()), host::MsgBoxIcon::Critical, kProductTitle);
    }
  }
}

// Beside the configuration; nothing where there is none.
std::filesystem::path Tables::RecoveryFolder() const {
  const auto configuration = PathMap().ToNative(program_.Items().CfgFileName);
  return configuration.empty() ? configuration : configuration.parent_path() / "recovery";
}

}  // namespace rowlark
