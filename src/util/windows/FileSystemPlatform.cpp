#include "util/FileSystemPlatform.h"

#include <shlobj.h>
#include <windows.h>

#include <utility>

#include "util/windows/Handles.h"

namespace rowlark::platform {
namespace {

namespace fs = std::filesystem;
using windows::File;

std::error_code LastError() { return {static_cast<int>(::GetLastError()), std::system_category()}; }

// A new file in a folder, removed again unless it took the place of another one.
class TemporaryFile {
 public:
  explicit TemporaryFile(const fs::path& folder) : file_(Create(folder, path_)), is_there_(file_) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    file_.reset();
    if (is_there_) ::DeleteFileW(path_.c_str());
  }

  bool IsThere() const { return is_there_; }

  [[nodiscard]] bool Write(std::string_view bytes) {
    constexpr std::size_t kPiece = 1 << 30;  // sizes are 32 bits wide here
    while (!bytes.empty()) {
      DWORD written = 0;
      const auto size = static_cast<DWORD>(bytes.size() < kPiece ? bytes.size() : kPiece);
      if (::WriteFile(*file_, bytes.data(), size, &written, nullptr) == 0 || written == 0) return false;
      bytes.remove_prefix(written);
    }
    return true;
  }

  [[nodiscard]] bool Flush() { return ::FlushFileBuffers(*file_) != 0; }

  // Once; false when it tells of writes that failed.
  [[nodiscard]] bool Close() { return ::CloseHandle(file_.release()) != 0; }

  // Other processes, virus scanners among them, hold the target open for moments, and meanwhile it can not be
  // replaced.
  [[nodiscard]] bool MoveTo(const fs::path& target) {
    constexpr int kAttempts = 50;
    constexpr DWORD kPause = 10;  // milliseconds
    for (int attempt = 1; !TryMoveTo(target); ++attempt) {
      const DWORD error = ::GetLastError();
      if (attempt == kAttempts || (error != ERROR_ACCESS_DENIED && error != ERROR_SHARING_VIOLATION))
        return false;
      ::Sleep(kPause);
    }
    is_there_ = false;
    return true;
  }

 private:
  bool TryMoveTo(const fs::path& target) {
    // Keeps the permissions of a file that is there; where there is none, a move does.
    return ::ReplaceFileW(target.c_str(), path_.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                          nullptr) != 0 ||
           ::MoveFileExW(path_.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) !=
               0;
  }

  static File Create(const fs::path& folder, fs::path& path) {
    for (int attempt = 0; attempt < 10'000; ++attempt) {
      path = folder / (L".rowlark-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
                       std::to_wstring(attempt) + L".tmp");
      File file(
          ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
      if (file || ::GetLastError() != ERROR_FILE_EXISTS) return file;
    }
    return {};
  }

  fs::path path_;
  File file_;
  bool is_there_;
};

// The system's own conversion of local time: with the daylight-saving rule of today.
bool ToFileTime(std::chrono::local_seconds time, FILETIME& result) {
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  SYSTEMTIME parts{};
  parts.wYear = static_cast<WORD>(static_cast<int>(date.year()));
  parts.wMonth = static_cast<WORD>(static_cast<unsigned>(date.month()));
  parts.wDay = static_cast<WORD>(static_cast<unsigned>(date.day()));
  parts.wHour = static_cast<WORD>(clock.hours().count());
  parts.wMinute = static_cast<WORD>(clock.minutes().count());
  parts.wSecond = static_cast<WORD>(clock.seconds().count());
  FILETIME local{};
  return ::SystemTimeToFileTime(&parts, &local) != 0 && ::LocalFileTimeToFileTime(&local, &result) != 0;
}

}  // namespace

// UTF-16 units on this platform, whatever the type is called.
fs::path ToPath(std::u16string_view text) { return std::wstring(text.begin(), text.end()); }

std::u16string ToText(const fs::path& path) {
  const std::wstring& native = path.native();
  return {native.begin(), native.end()};
}

bool DriveExists(std::u16string_view drive) {
  if (drive.size() != 2 || drive[1] != u':') return false;
  const char16_t letter = static_cast<char16_t>(drive[0] | 0x20);
  return letter >= u'a' && letter <= u'z' && ((::GetLogicalDrives() >> (letter - u'a')) & 1) != 0;
}

fs::path ConfigurationFolder() {
  wchar_t folder[MAX_PATH] = {};
  if (FAILED(::SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder))) return {};
  return folder;
}

std::u16string FromAnsi(std::string_view bytes) {
  if (bytes.empty()) return {};
  const int size = static_cast<int>(bytes.size());
  std::wstring text(
      static_cast<std::size_t>(::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0)), L'\0');
  ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), static_cast<int>(text.size()));
  return {text.begin(), text.end()};
}

std::error_code SetTimes(const fs::path& file, const FileTimes& times) {
  const File handle(::CreateFileW(file.c_str(), FILE_WRITE_ATTRIBUTES,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!handle) return LastError();
  FILETIME converted[3] = {};
  const FILETIME* given[3] = {};
  const std::optional<std::chrono::local_seconds>* wanted[3] = {&times.creation, &times.access, &times.write};
  for (int i = 0; i < 3; ++i) {
    if (!*wanted[i]) continue;
    if (!ToFileTime(**wanted[i], converted[i])) return LastError();
    given[i] = &converted[i];
  }
  return ::SetFileTime(*handle, given[0], given[1], given[2]) != 0 ? std::error_code() : LastError();
}

std::error_code MakeFolder(const fs::path& folder, Access) {
  std::error_code error;
  fs::create_directory(folder, error);
  return error;
}

std::error_code ReplaceContent(const fs::path& file, std::string_view bytes, Access access,
                               const std::function<void()>& between_steps) {
  return ReplaceContent(
      file, [&] { return std::exchange(bytes, {}); }, access, between_steps);
}

std::error_code ReplaceContent(const fs::path& file, const std::function<std::string_view()>& next_piece,
                               Access, const std::function<void()>& between_steps) {
  std::error_code error;
  fs::path target = file;
  if (fs::is_symlink(target, error)) target = fs::weakly_canonical(target, error);
  if (!target.has_filename()) return std::make_error_code(std::errc::no_such_file_or_directory);
  const DWORD attributes = ::GetFileAttributesW(target.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES) {
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return std::make_error_code(std::errc::is_a_directory);
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0)
      return std::make_error_code(std::errc::permission_denied);
  }

  between_steps();
  TemporaryFile beside(target.has_parent_path() ? target.parent_path() : fs::path(L"."));
  if (!beside.IsThere()) return LastError();
  between_steps();
  for (std::string_view piece = next_piece(); !piece.empty(); piece = next_piece()) {
    if (!beside.Write(piece)) return LastError();
  }
  between_steps();
  if (!beside.Flush()) return LastError();
  between_steps();
  if (!beside.Close()) return LastError();
  between_steps();
  if (!beside.MoveTo(target)) return LastError();
  return {};
}

FileLock::FileLock(const fs::path& file, Access, std::chrono::milliseconds patience) {
  File handle(::CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!handle) return;
  constexpr DWORD kNow = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
  for (OVERLAPPED whole{}; ::LockFileEx(*handle, kNow, 0, MAXDWORD, MAXDWORD, &whole) == 0;
       patience -= kPause) {
    is_taken_ = ::GetLastError() == ERROR_LOCK_VIOLATION;
    if (!is_taken_ || patience <= kPause) return;
    ::Sleep(static_cast<DWORD>(kPause.count()));
  }
  is_taken_ = false;
  handle_ = reinterpret_cast<std::intptr_t>(handle.release());
}

FileLock::~FileLock() { const File last(reinterpret_cast<HANDLE>(handle_)); }

}  // namespace rowlark::platform
