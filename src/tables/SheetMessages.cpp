#include "tables/SheetMessages.h"

#include <cstring>
#include <stdexcept>

namespace rowlark {
namespace {

enum Kind : char {
  kSheet,     // its name
  kRow,       // its number; of every cell the size, and the text
  kCut,       // a text of the next row has been
  kProgress,  // how much has been read, in thousandths
  kText,      // a part of a text that is no workbook
  kEnd,
  kError,  // the reason
};

std::string Bytes(std::size_t number) {
  const auto value = static_cast<uint32_t>(number);
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

uint32_t TakeNumber(std::string_view& bytes) {
  uint32_t value = 0;
  if (bytes.size() < sizeof value) throw std::runtime_error("A message that was cut off");
  std::memcpy(&value, bytes.data(), sizeof value);
  bytes.remove_prefix(sizeof value);
  return value;
}

std::string_view TakeText(std::string_view& bytes) {
  const auto size = TakeNumber(bytes);
  const auto text = bytes.substr(0, size);
  bytes.remove_prefix(text.size());
  return text;
}

}  // namespace

void SheetMessageWriter::Sheet(std::string_view name) { Put(kSheet, name); }

void SheetMessageWriter::Row(int32_t row, std::span<const std::string> cells) {
  auto content = Bytes(static_cast<std::size_t>(row));
  for (const auto& cell : cells) (content += Bytes(cell.size())) += cell;
  Put(kRow, content);
}

void SheetMessageWriter::Cut() { Put(kCut, {}); }

void SheetMessageWriter::Progress(double fraction) {
  Put(kProgress, Bytes(static_cast<std::size_t>(fraction * 1000)));
}

// At once: what comes slowly is to be seen as it comes.
void SheetMessageWriter::Text(std::string_view bytes) {
  Put(kText, bytes);
  Flush();
}

void SheetMessageWriter::End() {
  Put(kEnd, {});
  Flush();
}

void SheetMessageWriter::Error(std::string_view reason) {
  Put(kError, reason);
  Flush();
}

void SheetMessageWriter::Put(char kind, std::string_view content) {
  constexpr std::size_t kPiece = 1 << 16;
  ((buffer_ += kind) += Bytes(content.size())) += content;
  if (buffer_.size() >= kPiece) Flush();
}

void SheetMessageWriter::Flush() {
  output_(buffer_);
  buffer_.clear();
}

bool SheetMessageReader::Take(std::string_view bytes, Sink& sink) {
  constexpr std::size_t kHead = 1 + sizeof(uint32_t);
  buffer_ += bytes;
  std::string_view rest = buffer_;
  while (rest.size() >= kHead) {
    std::string_view content = rest.substr(1);
    const auto size = TakeNumber(content);
    if (content.size() < size) break;
    const char kind = rest.front();
    if (kind == kEnd) return false;
    HandOn(kind, content.substr(0, size), sink);
    rest.remove_prefix(kHead + size);
  }
  buffer_.erase(0, buffer_.size() - rest.size());
  return true;
}

void SheetMessageReader::HandOn(char kind, std::string_view content, Sink& sink) {
  if (kind == kError) throw std::runtime_error(std::string(content));
  if (kind == kSheet) sink.Sheet(content);
  if (kind == kText) sink.Text(content);
  if (kind == kCut) sink.Cut();
  if (kind == kProgress) sink.Progress(TakeNumber(content) / 1000.0);
  if (kind != kRow) return;
  const auto row = static_cast<int32_t>(TakeNumber(content));
  cells_.clear();
  while (!content.empty()) cells_.push_back(TakeText(content));
  sink.Row(row, cells_);
}

}  // namespace rowlark
