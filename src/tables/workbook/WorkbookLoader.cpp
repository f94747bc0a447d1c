// A workbook is read by a process of its own: that can be stopped at any moment, and a library that trips
// over a damaged file takes nothing of ours with it. The rows come through a pipe and fill the sheets while
// it reads on.
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <fstream>
#include <list>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "tables/Loader.h"
#include "tables/workbook/WorkbookReader.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

constexpr const char* kDamaged = "The file is damaged: it can not be read";

// A message: its kind, the size of what follows as 4 bytes, and that.
enum class Message : char {
  Sheet,  // its name
  Row,    // its number as 4 bytes; of every cell the size as 4 bytes, and the text
  Done,   // how much has been read, in thousandths, as 4 bytes
  Error,  // the reason
  End,
};

std::string Bytes(std::size_t number) {
  const auto value = static_cast<uint32_t>(number);
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

uint32_t TakeNumber(std::string_view& bytes) {
  uint32_t value = 0;
  std::memcpy(&value, bytes.data(), sizeof value);
  bytes.remove_prefix(sizeof value);
  return value;
}

class PipeWriter final : public SheetSink {
 public:
  explicit PipeWriter(int pipe) : pipe_(pipe) {}

  void Sheet(std::string_view name) override { Send(Message::Sheet, name); }
  void Row(int32_t row, std::span<const std::string> cells) override {
    auto content = Bytes(static_cast<std::size_t>(row));
    for (const auto& cell : cells) (content += Bytes(cell.size())) += cell;
    Send(Message::Row, content);
  }
  void Progress(double fraction) override {
    Send(Message::Done, Bytes(static_cast<std::size_t>(fraction * 1000)));
  }
  void Send(Message kind, std::string_view content) {
    ((buffer_ += static_cast<char>(kind)) += Bytes(content.size())) += content;
    constexpr std::size_t kPiece = 1 << 16;
    if (buffer_.size() >= kPiece || kind == Message::End || kind == Message::Error) Flush();
  }

 private:
  void Flush() {
    for (std::string_view rest = buffer_; !rest.empty();) {
      const auto count = ::write(pipe_, rest.data(), rest.size());
      if (count < 0 && errno != EINTR) ::_exit(1);  // nobody reads any more
      if (count > 0) rest.remove_prefix(static_cast<std::size_t>(count));
    }
    buffer_.clear();
  }

  int pipe_;
  std::string buffer_;
};

// The other process. It writes nothing but its messages: a terminal may be showing a table.
[[noreturn]] void ReadInChild(const std::filesystem::path& path, int pipe) {
  const int nothing = ::open("/dev/null", O_RDWR);
  ::dup2(nothing, STDOUT_FILENO);
  ::dup2(nothing, STDERR_FILENO);
  PipeWriter writer(pipe);
  try {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    ReadWorkbook(bytes, writer);
    writer.Send(Message::End, {});
  } catch (const std::bad_alloc&) {
    writer.Send(Message::Error, "Too large for the memory");
  } catch (const std::exception& error) {
    writer.Send(Message::Error, error.what());
  }
  ::_exit(0);
}

class WorkbookLoader final : public Loader {
 public:
  explicit WorkbookLoader(const std::filesystem::path& path) : path_(path.string()) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) Fail(std::error_code(errno, std::generic_category()).message());
    process_ = ::fork();
    if (process_ == 0) {
      ::close(ends[0]);
      ReadInChild(path, ends[1]);
    }
    ::close(ends[1]);
    pipe_ = ends[0];
    if (process_ < 0) Fail(std::error_code(errno, std::generic_category()).message());
  }
  WorkbookLoader(const WorkbookLoader&) = delete;
  WorkbookLoader& operator=(const WorkbookLoader&) = delete;
  ~WorkbookLoader() override {
    Stop();
    ::close(pipe_);
  }

  void Stop() noexcept override {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
  }

  bool Step(standalone::Workbook& workbook) override {
    constexpr int kPatience = 5;  // milliseconds
    pollfd waiting{pipe_, POLLIN, 0};
    if (::poll(&waiting, 1, kPatience) <= 0) return true;
    std::array<char, 1 << 16> bytes;  // NOLINT(cppcoreguidelines-pro-type-member-init): read into
    const auto count = ::read(pipe_, bytes.data(), bytes.size());
    if (count < 0) return true;
    if (count == 0) Fail(kDamaged);
    buffer_.append(bytes.data(), static_cast<std::size_t>(count));
    return TakeMessages(workbook);
  }

  double Fraction() const override { return fraction_; }

 private:
  [[noreturn]] void Fail(const std::string& reason) const { throw std::runtime_error(path_ + ": " + reason); }

  bool TakeMessages(standalone::Workbook& workbook) {
    constexpr std::size_t kHead = 1 + sizeof(uint32_t);
    std::string_view rest = buffer_;
    while (rest.size() >= kHead) {
      std::string_view content = rest.substr(1);
      const auto size = TakeNumber(content);
      if (content.size() < size) break;
      const auto kind = static_cast<Message>(rest.front());
      content = content.substr(0, size);
      rest.remove_prefix(kHead + size);
      if (kind == Message::End) return false;
      if (kind == Message::Error) Fail(content.empty() ? kDamaged : std::string(content));
      if (kind == Message::Sheet) StartSheet(workbook, content);
      if (kind == Message::Row) AppendRow(content);
      if (kind == Message::Done) fraction_ = TakeNumber(content) / 1000.0;
    }
    buffer_.erase(0, buffer_.size() - rest.size());
    return true;
  }

  void StartSheet(standalone::Workbook& workbook, std::string_view name) {
    if (!sheet_) {
      sheet_ = workbook.Worksheets().front();
      sheet_->SetName(ToUtf16(name));
    } else {
      const auto active = workbook.ActiveSheet();
      sheet_ = workbook.AddWorksheet(ToUtf16(name));
      workbook.ActivateSheet(active);
    }
    sheet_->SetLoading(true);
  }

  void AppendRow(std::string_view content) {
    const auto row = static_cast<int32_t>(TakeNumber(content));
    while (sheet_->Text().AppendedRows() < row - 1) sheet_->AppendRow({});
    cells_.clear();
    repaired_.clear();
    while (!content.empty()) {
      const auto size = TakeNumber(content);
      cells_.push_back(content.substr(0, size));
      content.remove_prefix(size);
      if (IsValidUtf8(cells_.back())) continue;
      cells_.back() = *repaired_.insert(repaired_.end(), ToUtf8(ToUtf16(cells_.back())));
    }
    sheet_->AppendRow(cells_);
  }

  std::string path_;
  int pipe_ = -1;
  pid_t process_ = -1;
  std::string buffer_;
  double fraction_ = 0;
  Ref<standalone::Worksheet> sheet_;
  std::vector<std::string_view> cells_;
  std::list<std::string> repaired_;
};

}  // namespace

std::unique_ptr<Loader> OpenLoader(const std::filesystem::path& path, std::optional<char> separator) {
  std::error_code failed;
  if (std::filesystem::is_regular_file(path, failed)) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 4096> beginning{};
    file.read(beginning.data(), beginning.size());
    if (IsWorkbook({beginning.data(), static_cast<std::size_t>(file.gcount())})) {
      return std::make_unique<WorkbookLoader>(path);
    }
  }
  return LoadCsv(path, separator);
}

}  // namespace rowlark
