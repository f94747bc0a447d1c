#include "host/calc/Application.h"

#include <com/sun/star/awt/XDevice.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/frame/XFrame.hpp>

#include <algorithm>
#include <utility>

#include "host/calc/Errors.h"
#include "host/calc/Query.h"
#include "host/calc/ReadAhead.h"
#include "host/calc/Workbook.h"

namespace rowlark::calc {
namespace {

constexpr std::u16string_view kFails = u"Application-defined or object-defined error";

}  // namespace

Ref<Workbook> Office::BookOf(const uno::Reference<com::sun::star::sheet::XSpreadsheetDocument>& document) {
  const auto known = std::ranges::find_if(Books, [&](const auto& book) { return book->IsOf(document); });
  if (known != Books.end()) return *known;
  return Books.emplace_back(MakeRef<Workbook>(shared_from_this(), document));
}

Ref<Workbook> Office::ActiveBook() {
  if (!Desktop.is()) Refuse(kFails);
  return OrRefuse(kFails, [this]() -> Ref<Workbook> {
    const uno::Reference<com::sun::star::sheet::XSpreadsheetDocument> document(Desktop->getCurrentComponent(),
                                                                               uno::UNO_QUERY);
    return document.is() ? BookOf(document) : nullptr;
  });
}

void Office::Forget(Workbook& book) noexcept {
  const Ref<Workbook> held(&book);
  std::erase(Books, held);
  Finder.Forget();
  held->Closed();
}

Application::Application(const uno::Reference<uno::XComponentContext>& context, Trace* trace)
    : office_(std::make_shared<Office>()) {
  office_->Context = context;
  office_->Trace = trace;
  office_->Desktop = OrRefuse(kFails, [&] { return com::sun::star::frame::Desktop::create(context); });
}

Application::~Application() { Stop(); }

void Application::Stop() noexcept {
  ahead_.reset();
  office_->TextIsMissing = nullptr;
  office_->Desktop.clear();
  while (!office_->Books.empty()) office_->Forget(*office_->Books.back());
}

Ref<host::Workbook> Application::ActiveWorkbook() const { return office_->ActiveBook(); }

Ref<host::Worksheet> Application::ActiveSheet() const {
  const auto book = office_->ActiveBook();
  return book ? book->ActiveSheet() : nullptr;
}

Ref<host::Range> Application::ActiveCell() const {
  const auto book = office_->ActiveBook();
  const auto sheet = book ? book->ActiveCells() : nullptr;
  if (!sheet) return nullptr;
  const auto cell = book->ActiveCell();
  return sheet->Cells(cell.row, cell.column);
}

Ref<host::Range> Application::Selection() const {
  const auto book = office_->ActiveBook();
  const auto sheet = book ? book->ActiveCells() : nullptr;
  if (!sheet) return nullptr;
  auto areas = book->Selection();
  return areas.empty() ? nullptr : sheet->MakeRange(std::move(areas));
}

void Application::SetScreenUpdating(bool on) {
  office_->ScreenUpdating = on;
  const auto books = office_->Books;
  for (const auto& book : books) {
    if (on) {
      book->HandOver();
    } else {
      book->ReadAnew();
    }
  }
}

bool Application::PrepareScreenUpdating() {
  const auto books = office_->Books;
  return std::ranges::all_of(books, [](const auto& book) { return book->HandOverSome(); });
}

uno::Reference<com::sun::star::awt::XWindow> Application::Window() const {
  const auto book = office_->ActiveBook();
  if (!book) return {};
  return OrRefuse(kFails, [&] {
    const auto controller = book->Controller();
    return controller.is() ? controller->getFrame()->getContainerWindow()
                           : uno::Reference<com::sun::star::awt::XWindow>();
  });
}

intptr_t Application::Hwnd() const { return reinterpret_cast<intptr_t>(Window().get()); }

Application::Rectangle Application::Bounds() const {
  const auto window = Window();
  if (!window.is()) Refuse(kFails);
  return OrRefuse(kFails, [&] {
    constexpr double kPointsPerMetre = 72 / 0.0254;
    const auto pixels = window->getPosSize();
    const auto info = As<com::sun::star::awt::XDevice>(window)->getInfo();
    const double x = kPointsPerMetre / info.PixelPerMeterX;
    const double y = kPointsPerMetre / info.PixelPerMeterY;
    return Rectangle{pixels.X * x, pixels.Y * y, pixels.Width * x, pixels.Height * y};
  });
}

double Application::Left() const { return Bounds().left; }
double Application::Top() const { return Bounds().top; }
double Application::Width() const { return Bounds().width; }
double Application::Height() const { return Bounds().height; }

Ref<host::CommandBar> Application::CommandBars(std::u16string_view) const {
  throw host::Error(5, u"Invalid procedure call or argument");
}

void Application::OnKey(std::u16string_view key, std::optional<std::u16string_view> macro) {
  if (key.empty()) Refuse(u"Method 'OnKey' of object '_Application' failed");
  if (Keys) OrRefuse(u"Method 'OnKey' of object '_Application' failed", [&] { Keys(key, macro); });
}

void Application::StartReadingAhead() {
  if (ahead_) return;
  ahead_ = OrRefuse(kFails, [this] { return std::make_unique<ReadAhead>(office_); });
  office_->TextIsMissing = [this] { ahead_->Wake(); };
}

bool Application::ReadsAhead() const { return ahead_ && !ahead_->Idle(); }

}  // namespace rowlark::calc
