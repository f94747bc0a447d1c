// The messages in which a process that reads a workbook tells what it reads.
//
// A message is its kind, one byte, the size of what follows as four bytes, and that. Both ends are the same
// program: numbers are in the machine's order.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tables/workbook/WorkbookReader.h"

namespace rowlark {

// Writes messages, which it hands on in pieces; after the last message, all that is left.
class SheetMessageWriter final : public SheetSink {
 public:
  explicit SheetMessageWriter(std::function<void(std::string_view bytes)> output)
      : output_(std::move(output)) {}

  void Sheet(std::string_view name) override;
  void Row(int32_t row, std::span<const std::string> cells) override;
  void Cut() override;
  void Progress(double fraction) override;
  void Text(std::string_view bytes) override;
  // The last message: everything has been told, or the reason why there is no more.
  void End();
  void Error(std::string_view reason);

 private:
  void Put(char kind, std::string_view content);
  void Flush();

  std::function<void(std::string_view bytes)> output_;
  std::string buffer_;
};

// Takes bytes as they come, and hands on the messages that are complete.
class SheetMessageReader {
 public:
  // Texts are valid during the call only.
  class Sink {
   public:
    virtual ~Sink() = default;
    virtual void Sheet(std::string_view name) = 0;
    // As SheetSink has it.
    virtual void Row(int32_t row, std::span<const std::string_view> cells) = 0;
    virtual void Cut() = 0;
    virtual void Progress(double fraction) = 0;
    virtual void Text(std::string_view bytes) = 0;
  };

  // Whether more is to come. Throws std::runtime_error with the reason, which may be empty, when the last
  // message was one.
  bool Take(std::string_view bytes, Sink& sink);

 private:
  void HandOn(char kind, std::string_view content, Sink& sink);

  std::string buffer_;
  std::vector<std::string_view> cells_;
};

}  // namespace rowlark
