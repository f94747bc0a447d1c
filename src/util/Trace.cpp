#include "util/Trace.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <exception>
#include <string>
#include <system_error>
#include <typeinfo>

#include "util/NumberedError.h"

namespace rowlark {
namespace {

// Results of COM are read as hexadecimal numbers.
std::string Number(int32_t number) {
  if (number >= 0) return std::to_string(number);
  std::string digits(8, '0');
  std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<uint32_t>(number), 16);
  return "0x" + digits;
}

// Of errors that are not ours what() may be anything; the type says enough.
std::string CurrentKind() {
  try {
    throw;
  } catch (const NumberedError& error) {
    return error.what() + (" " + Number(error.Number()));
  } catch (const std::system_error& error) {
    return error.code().category().name() + (" error " + std::to_string(error.code().value()));
  } catch (const std::exception& error) {
    return typeid(error).name();
  } catch (...) {
    return "unknown error";
  }
}

std::string Operation(const SourceLocation& where) {
  std::string_view file = where.file;
  file.remove_prefix(file.find_last_of("/\\") + 1);
  std::string operation(where.function);
  return operation.append(" (").append(file).append(":").append(std::to_string(where.line)).append(")");
}

template <class Line>
void Write(Trace* trace, Line line) noexcept {
  if (trace == nullptr) return;
  try {
    trace->Write(line());
  } catch (...) {
    trace->Write("out of memory");
  }
}

void AppendDigits(std::string& text, int64_t number, std::size_t digits) {
  const auto plain = std::to_string(number);
  text.append(digits - std::min(digits, plain.size()), '0');
  text += plain;
}

}  // namespace

void TraceCaught(Trace* trace, std::string_view operation) noexcept {
  Write(trace, [&] { return std::string(operation) + ": " + CurrentKind(); });
}

void TraceCaught(Trace* trace, SourceLocation where) noexcept {
  Write(trace, [&] { return Operation(where) + ": " + CurrentKind(); });
}

void TraceNumber(Trace* trace, int32_t number, SourceLocation where) noexcept {
  Write(trace, [&] { return Operation(where) + ": error " + Number(number); });
}

std::string TraceLine(std::string_view line) {
  using namespace std::chrono;  // NOLINT(google-build-using-namespace)
  const auto now = floor<seconds>(system_clock::now());
  const auto day = floor<days>(now);
  const year_month_day date(day);
  const hh_mm_ss clock(now - day);
  std::string text;
  AppendDigits(text, static_cast<int>(date.year()), 4);
  AppendDigits(text += '-', static_cast<unsigned>(date.month()), 2);
  AppendDigits(text += '-', static_cast<unsigned>(date.day()), 2);
  AppendDigits(text += 'T', clock.hours().count(), 2);
  AppendDigits(text += ':', clock.minutes().count(), 2);
  AppendDigits(text += ':', clock.seconds().count(), 2);
  return text.append("Z ").append(line).append("\n");
}

}  // namespace rowlark
