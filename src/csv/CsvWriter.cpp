#include "csv/CsvWriter.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "util/Utf.h"

namespace rowlark {

using std::string_view;

CsvFormat FormatOf(CsvFile& file, bool as_utf8) {
  const TextReader& text = file.Text();
  if (as_utf8) return {file.Separator(), file.LineEnd()};
  return {file.Separator(), file.LineEnd(), text.TextEncoding(), text.HasMark(), text.TextCharset()};
}

CsvWriter::CsvWriter(const CsvFormat& format) : format_(format) {
  if (!format.mark) return;
  AppendEncoded(bytes_, "\uFEFF", format.encoding);
  at_start_ = false;
}

void CsvWriter::Cell(string_view text) {
  BeginCell();
  const char special[] = {format_.separator, '"', '\r', '\n'};
  if (text.find_first_of({special, sizeof special}) == string_view::npos &&
      !(at_start_ && LooksMarked(text))) {
    Put(text);
    return;
  }
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  Put(quoted += '"');
}

// Whether a text would be taken for a mark at the beginning of the file.
bool CsvWriter::LooksMarked(string_view text) const {
  std::string bytes;
  AppendEncoded(bytes, text, format_.encoding, format_.charset.get());
  return bytes.starts_with("\xEF\xBB\xBF") || bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

void CsvWriter::BeginCell() {
  if (std::exchange(in_record_, true)) Put({&format_.separator, 1});
}

void CsvWriter::Raw(string_view text) {
  if (text.empty()) return;
  last_ = text.back();
  if (IsUtf16(format_.encoding)) {
    AppendEncoded(bytes_, text, format_.encoding);
  } else {
    bytes_ += text;
  }
}

void CsvWriter::RawByte(char byte) {
  bytes_ += byte;
  last_ = byte;
}

void CsvWriter::EndRecord(string_view line_end) {
  // An empty line must not become one with the line end before it.
  if (last_ == '\r' && line_end.starts_with('\n')) Put("\"\"");
  Put(line_end);
  in_record_ = false;
}

std::string CsvWriter::Take() {
  at_start_ = at_start_ && bytes_.empty();
  if (format_.encoding == Encoding::Charset) {
    looks_utf8_ = looks_utf8_ && IsValidUtf8(bytes_);
    looks_ascii_ = looks_ascii_ && std::ranges::all_of(bytes_, [](char c) { return (c & 0x80) == 0; });
  }
  return std::exchange(bytes_, {});
}

void CsvWriter::CheckEncoding() const {
  if (looks_utf8_ && !looks_ascii_) {
    throw NotEncodable("as " + std::string(format_.charset->Name()) + " it would be read as UTF-8");
  }
}

void CsvWriter::Put(string_view utf8) {
  if (utf8.empty()) return;
  at_start_ = false;
  last_ = utf8.back();
  const char32_t missing = AppendEncoded(bytes_, utf8, format_.encoding, format_.charset.get());
  if (missing == 0) return;
  std::string text;
  AppendUtf8(text, missing);
  throw NotEncodable("'" + text + "' is no character of " + std::string(format_.charset->Name()));
}

namespace {

// What is left of a file counts for its encoding as well.
CsvFile& ReadToTheEnd(CsvFile& file) {
  TextReader& text = file.Text();
  while (!text.IsWhole()) {
    text.Drop(text.Start() + text.Text().size());
    text.ReadPiece();
  }
  return file;
}

}  // namespace

CsvRewriter::CsvRewriter(CsvFile& file, Edits edits, bool as_utf8)
    : file_(ReadToTheEnd(file)),
      text_(file.Text()),
      edits_(std::move(edits)),
      converts_(as_utf8 && (text_.TextEncoding() != Encoding::Utf8 || !text_.IsUtf8())),
      writer_(FormatOf(file, as_utf8)),
      rest_(file.RecordStart(file.RowCount())) {
  // A record that others are to follow may lack its line end, or the quote at the end of its last cell.
  const std::size_t rows = file_.RowCount();
  if (rows > 0 && !edits_.empty() && edits_.rbegin()->first >= rows) edits_[rows - 1];
}

std::string CsvRewriter::Next() {
  while (!done_) {
    const auto edit = edits_.lower_bound(row_);
    if (edit != edits_.end() && edit->first == row_) {
      WriteRecord(edit->second);
    } else if (row_ < file_.RowCount()) {
      CopyRecords();
    } else if (edit != edits_.end()) {
      WriteRecord({});  // an empty row before one that was added
    } else {
      CopyRest();
    }
    std::string piece = writer_.Take();
    if (done_) writer_.CheckEncoding();
    if (!piece.empty()) return piece;
  }
  return {};
}

double CsvRewriter::Fraction() const noexcept {
  const std::size_t end = TextEnd();
  const std::size_t place = row_ < file_.RowCount() ? file_.RecordStart(row_) : rest_;
  return end == 0 ? 1 : static_cast<double>(place) / static_cast<double>(end);
}

void CsvRewriter::Copy(std::size_t start, std::size_t end) {
  const string_view part = text_.Range(start, end);
  if (part.size() < end - start) text_.Fail("The file has become shorter");
  if (converts_) {
    std::string scratch;
    std::string bytes;
    AppendEncoded(bytes, text_.ToUtf8(part, scratch), Encoding::Utf8);
    writer_.Raw(bytes);
  } else {
    PutRaw(part, end == TextEnd());
  }
}

// At the end the byte that was cut off takes the place of the U+FFFD read for it.
void CsvRewriter::PutRaw(string_view part, bool is_end) {
  const auto cut = is_end ? text_.CutByte() : std::nullopt;
  if (cut) part.remove_suffix(string_view("\uFFFD").size());
  writer_.Raw(part);
  if (cut) writer_.RawByte(*cut);
}

// Copies the records up to the next one with an edited cell, or as many as make a piece.
void CsvRewriter::CopyRecords() {
  const auto edit = edits_.lower_bound(row_);
  const std::size_t stop = edit == edits_.end() ? file_.RowCount() : std::min(edit->first, file_.RowCount());
  const std::size_t start = file_.RecordStart(row_);
  while (row_ < stop && file_.RecordStart(row_) - start < TextReader::kPiece) ++row_;
  Copy(start, file_.RecordStart(row_));
}

// Copies a piece of the records behind those that were handed out.
void CsvRewriter::CopyRest() {
  const std::size_t end = TextEnd();
  const std::size_t start = rest_;
  // A character must not be cut where it is written in another encoding. UTF-16 is kept in memory anyway.
  rest_ = IsUtf16(text_.TextEncoding()) ? end : std::min(end, start + TextReader::kPiece);
  if (converts_ && rest_ < end) {
    const auto line_end = text_.Range(start, rest_).rfind('\n');
    if (line_end != string_view::npos) rest_ = start + line_end + 1;
  }
  if (start < rest_) Copy(start, rest_);
  done_ = rest_ == end;
}

void CsvRewriter::WriteRecord(const std::map<std::size_t, std::string>& texts) {
  const std::size_t rows = file_.RowCount();
  std::vector<string_view> cells;
  std::vector<string_view> raw;
  std::string record;  // a copy: parts of the text are short-lived
  string_view line_end;
  bool is_unclosed = false;
  if (row_ < rows) record = text_.Range(file_.RecordStart(row_), file_.RecordStart(row_ + 1));
  RecordReader reader(record, file_.Separator());
  if (reader.Next(cells, &raw)) {
    line_end = reader.LineEnd();
    is_unclosed = reader.IsUnclosed();
  }
  const bool is_last = row_ + 1 >= rows && edits_.upper_bound(row_) == edits_.end();
  const std::size_t count = std::max(cells.size(), texts.empty() ? 0 : texts.rbegin()->first + 1);
  std::string scratch;
  for (column_ = 0; column_ < count; ++column_) {
    const auto text = texts.find(column_);
    const bool is_there = column_ < cells.size();
    const string_view old = is_there ? text_.ToUtf8(cells[column_], scratch) : string_view();
    const bool is_same = text == texts.end() || text->second == old;
    const bool must_close = is_unclosed && column_ + 1 == cells.size() && (!is_last || column_ + 1 < count);
    if (is_there && is_same && !must_close && !converts_) {
      writer_.BeginCell();
      PutRaw(raw[column_], is_last && column_ + 1 == count);
    } else {
      writer_.Cell(is_same ? old : string_view(text->second));
    }
  }
  // Rows that were added end as the last one of the file did.
  if (row_ + 1 == rows) ends_bare_ = line_end.empty();
  if (line_end.empty() && !(is_last && ends_bare_)) line_end = file_.LineEnd();
  writer_.EndRecord(line_end);
  ++row_;
}

}  // namespace rowlark
