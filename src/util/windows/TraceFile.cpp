#include <array>
#include <string>
#include <utility>

#include "util/Trace.h"
#include "util/windows/Handles.h"

namespace rowlark {
namespace {

class TraceFile final : public Trace {
 public:
  explicit TraceFile(windows::File file) : file_(std::move(file)) {}

  // In one piece: other processes may write to the same file. What can not be written is lost.
  void Write(std::string_view line) noexcept override try {
    const auto text = TraceLine(line);
    DWORD written = 0;
    ::WriteFile(*file_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
  } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory, and nothing lies below the trace
  }

 private:
  windows::File file_;
};

class DebuggerOutput final : public Trace {
 public:
  void Write(std::string_view line) noexcept override try {
    ::OutputDebugStringA(("rowlark: " + std::string(line) + "\n").c_str());
  } catch (...) {  // NOLINT(bugprone-empty-catch): as above
  }
};

}  // namespace

std::unique_ptr<Trace> OpenTrace() {
  std::array<wchar_t, 1024> name{};
  const DWORD length =
      ::GetEnvironmentVariableW(L"ROWLARK_TRACE", name.data(), static_cast<DWORD>(name.size()));
  if (length == 0 || length >= name.size()) return nullptr;
  if (std::wstring_view(name.data(), length) == L"debugger") return std::make_unique<DebuggerOutput>();
  windows::File file(::CreateFileW(name.data(), FILE_APPEND_DATA,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  return file ? std::make_unique<TraceFile>(std::move(file)) : nullptr;
}

}  // namespace rowlark
