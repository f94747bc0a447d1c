#include "Workbench.h"

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include <commdlg.h>
#include <oleauto.h>

#include "AutomationHost.h"
#include "Resources.h"
#include "Workbooks.h"
#include "automation/Variant.h"
#include "csv/CsvFile.h"
#include "util/Scope.h"

namespace rowlark::workbench {
namespace {

using windows::AsUtf16;

constexpr wchar_t kExampleName[] = L"customers.csv";

bool IsAlive(const std::unique_ptr<WorkbookWindow>& window) { return window->Hwnd() != nullptr; }

}  // namespace

Workbench::Workbench()
    : automation_(ExposeApplication(application_, nullptr, [this] { Changed(); })),
      add_in_(*application_, automation_, trace_.get()) {
  const HRESULT result =
      RegisterActiveObject(automation_.get(), kApplicationClass, ACTIVEOBJECT_STRONG, &registration_);
  if (FAILED(result)) TraceNumber(trace_.get(), result);
}

Workbench::~Workbench() {
  if (registration_ != 0) RevokeActiveObject(registration_, nullptr);
}

void Workbench::OpenFile(std::u16string_view path) noexcept try {
  OpenWorkbook(*application_, path);
} catch (...) {
  ReportFailure(nullptr);
}

void Workbench::OpenExample() noexcept try {
  const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(kExampleTable), RT_RCDATA);
  const auto* bytes = static_cast<const char*>(LockResource(LoadResource(nullptr, found)));
  auto table = CsvFile::Parse(std::string(bytes, SizeofResource(nullptr, found)));
  AddWorkbook(*application_, table, AsUtf16(kExampleName));
} catch (...) {
  ReportFailure(nullptr);
}

void Workbench::StartAddIn() noexcept try { add_in_.Open(); } catch (...) {
  ReportFailure(active_->Hwnd());
}

int Workbench::Run() {
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
    std::erase_if(windows_, std::not_fn(IsAlive));
  }
  return static_cast<int>(message.wParam);
}

void Workbench::Changed() {
  if (ended_ || update_pending_ || !application_->ScreenUpdating()) return;
  const auto window = std::ranges::find_if(windows_, IsAlive);
  update_pending_ = window != windows_.end() && (*window)->PostUpdate();
}

void Workbench::FollowChanges() {
  update_pending_ = false;
  if (application_->ScreenUpdating()) Update();
}

void Workbench::Update() {
  if (ended_) return;
  Arrange();
  update_pending_ = false;  // also of a message that went with its window
  auto* const active =
      WindowOf(application_->Workbooks().empty() ? nullptr : application_->Workbooks().back().get());
  if (active != active_) {
    active_ = active;
    active->BringToFront();
    active->TellPlace();
  }
  for (const auto& window : windows_) window->Refresh();
}

void Workbench::Arrange() {
  const ScopedFlag arranging(arranging_);
  const auto books = application_->Workbooks();
  for (const auto& window : windows_) {
    if (!IsOpen(window->Book())) window->Use(nullptr);
  }
  const auto show = [this](const Ref<standalone::Workbook>& book) {
    if (WindowOf(book.get()) != nullptr) return;
    auto* window = WindowOf(nullptr);
    if (window == nullptr) {
      window = windows_.emplace_back(std::make_unique<WorkbookWindow>(*this)).get();
      if (active_ != nullptr) window->PlaceBeside(*active_);
    }
    window->Use(book);
    window->Show();
  };
  for (const auto& book : books) show(book);
  if (books.empty()) show(nullptr);
  for (WorkbookWindow* window = nullptr; WindowCount() > 1 && (window = WindowOf(nullptr)) != nullptr;) {
    DestroyWindow(window->Hwnd());
  }
}

void Workbench::Activated(WorkbookWindow& window) {
  if (arranging_) return;
  active_ = &window;
  if (IsOpen(window.Book())) application_->Activate(window.Book());
  window.TellPlace();
}

void Workbench::ChooseFile(HWND owner) {
  std::wstring path(32768, L'\0');
  OPENFILENAMEW dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.lpstrFilter = L"Tables (*.csv;*.txt;*.tsv)\0*.csv;*.txt;*.tsv\0All files\0*.*\0";
  dialog.lpstrFile = path.data();
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  dialog.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
  if (!GetOpenFileNameW(&dialog)) {
    if (const DWORD error = CommDlgExtendedError(); error != 0) {
      throw std::runtime_error("The dialog can not be shown: error " + std::to_string(error));
    }
    return;
  }
  const std::u16string file = AsUtf16(path.c_str());
  if (const auto open = FindWorkbook(*application_, file.substr(file.find_last_of(u'\\') + 1))) {
    application_->Activate(open);  // as the host, no two workbooks of one name
  } else {
    OpenWorkbook(*application_, file);
  }
}

// A form of the window closes with it, and is to find its own workbook active.
void Workbench::CloseWorkbook(WorkbookWindow& window) {
  const Ref<standalone::Workbook> book(window.Book().get());  // the window goes before it
  if (IsOpen(book)) {
    application_->Activate(book);
    if (WindowCount() > 1) {
      const ScopedFlag arranging(arranging_);
      DestroyWindow(window.Hwnd());
    }
    application_->Close(book);
  }
  Update();
}

void Workbench::CloseWindow(WorkbookWindow& window) {
  if (WindowCount() > 1) {
    CloseWorkbook(window);
  } else {
    Exit();
  }
}

void Workbench::Exit() {
  add_in_.Close();
  ended_ = true;
  const ScopedFlag arranging(arranging_);
  for (const auto& window : windows_) DestroyWindow(window->Hwnd());
  PostQuitMessage(0);
}

bool Workbench::IsOpen(const Ref<standalone::Workbook>& book) const {
  const auto& books = application_->Workbooks();
  return std::ranges::find(books, book) != books.end();
}

std::size_t Workbench::WindowCount() const {
  return static_cast<std::size_t>(std::ranges::count_if(windows_, IsAlive));
}

WorkbookWindow* Workbench::WindowOf(const standalone::Workbook* book) const {
  const auto found = std::ranges::find_if(
      windows_, [book](const auto& window) { return IsAlive(window) && window->Book().get() == book; });
  return found == windows_.end() ? nullptr : found->get();
}

}  // namespace rowlark::workbench
