#include "StatusLine.h"

#include <algorithm>
#include <cmath>

#include "host/Block.h"
#include "runtime/Failure.h"
#include "util/Text.h"

namespace rowlark {
namespace {

using terminal::Style;

constexpr std::u16string_view kApart = u" │ ";

}  // namespace

void StatusLine::Draw(terminal::Canvas& canvas, terminal::Point at, int32_t width) {
  constexpr int32_t kLeast = 34;  // cells for the table
  canvas.Fill({at.x, at.y, width, 1}, U' ', Style::Status);
  const auto notices = Notices();
  const int32_t room = width - kLeast - terminal::WidthOf(notices);
  std::u16string right;
  for (const auto& part : Parts()) {
    if (part.empty() || terminal::WidthOf(right + part) > room) continue;
    right += (right.empty() ? u" " : std::u16string(kApart)) + part;
  }
  right += u' ';
  const int32_t taken = terminal::WidthOf(right);
  canvas.Write(at, Left(notices), Style::Status, std::max(0, width - taken - 1));
  canvas.Write({at.x + width - taken, at.y}, right, Style::Status);
}

std::u16string StatusLine::Notices() const {
  std::u16string notices;
  for (const auto& notice : tables_.Notices()) notices.append(kApart).append(notice);
  return notices;
}

std::u16string StatusLine::Left(const std::u16string& notices) {
  std::u16string left = u" " + tables_.Name() + notices;
  if (!message_.empty()) left.append(kApart).append(message_);
  Attempt(program_.Trace(), [&] {
    const auto cell = Require(program_.Host()->ActiveCell());
    left.append(kApart).append(PlainAddress(*cell) + u" " + cell->Value());
  });
  return left;
}

std::vector<std::u16string> StatusLine::Parts() {
  std::vector<std::u16string> parts;
  if (const auto row = marks_.LooksAt()) {
    parts.push_back(
        program_.Text(u"Terminal.Status.Looking", u"Looking: row %1 - Escape stops", {ToText(*row)}));
  }
  const auto loading = Loading();
  parts.push_back(loading.empty() ? Rows() : loading);
  if (tables_.Active().LoadState() == Document::State::Stopped)
    parts.push_back(program_.Text(u"Terminal.Status.Stopped", u"not loaded to its end"));
  parts.push_back(Matches());
  const auto time = marks_.SearchTime();
  if (time) {
    const auto tenths = static_cast<int32_t>(std::lround(*time * 10));
    parts.push_back(
        program_.Text(u"Terminal.Status.Time", u"%1 ms", {ToText(tenths / 10) + u"." + ToText(tenths % 10)}));
  }
  if (const auto profile = marks_.DetectedProfile()) parts.push_back(profile->SearchRange());
  if (time) parts.push_back(Mode());
  return parts;
}

std::u16string StatusLine::Loading() {
  const auto fraction = tables_.LoadingFraction();
  if (!fraction) return {};
  if (const auto percent = static_cast<int32_t>(*fraction * 100); percent > 0)
    return program_.Text(u"Terminal.Status.Loading", u"Loading: %1 of 100 - Escape stops", {ToText(percent)});
  return program_.Text(u"Terminal.Status.Reading", u"Reading: %1 rows so far - Escape stops",
                       {ToText(tables_.View().Sheet().Text().AppendedRows())});
}

// Counting goes through all rows, so it is done again only when rows were hidden or shown.
std::u16string StatusLine::Rows() {
  const auto& sheet = tables_.View().Sheet();
  const auto used = sheet.UsedBlock();
  const int32_t first = used.first_row + sheet.HeadRows();
  const int32_t last = used.last_row;
  const int32_t all = std::max(last - first + 1, 0);
  if (count_.sheet != &sheet || count_.layout != sheet.Layout() || count_.all != all) {
    count_ = {&sheet, sheet.Layout(), all, sheet.HiddenRows().Count(first, last, false)};
  }
  return program_.Text(u"Terminal.Status.Rows", u"%1 of %2 rows",
                       {ToText(count_.visible), ToText(count_.all)});
}

std::u16string StatusLine::Matches() {
  const auto* matches = marks_.Counted();
  if (matches == nullptr || matches->Cells() == 0) return {};
  const auto cells = ToText(matches->Cells());
  const auto rows = ToText(matches->Rows());
  const int32_t number = matches->Number(tables_.View().At());
  return number == 0 ? program_.Text(u"Terminal.Status.Matches", u"%1 matches in %2 rows", {cells, rows})
                     : program_.Text(u"Terminal.Status.Match", u"match %1 of %2 in %3 rows",
                                     {ToText(number), cells, rows});
}

std::u16string StatusLine::Mode() const {
  const auto& options = *program_.Runtime().SearchOptions;
  std::u16string mode;
  switch (options.SearchWords) {
    case xcVT_SEARCH_WORDS_CELL:
      mode = program_.Text(u"Search.UI.Opt.CellEntire", u"&Entire cells only");
      break;
    case xcVT_SEARCH_WORDS_ANY:
      mode = program_.Text(u"Search.UI.Opt.CellAnyWord", u"&Any of words");
      break;
    default:
      mode = program_.Text(u"Search.UI.Opt.CellPart", u"Any &part of cells");
  }
  if (options.CompareMethod == CompareMode::Binary)
    mode += u", " + program_.Text(u"Search.UI.Chk.MatchCase", u"&Match case");
  return controls::PlainCaption(mode);
}

}  // namespace rowlark
