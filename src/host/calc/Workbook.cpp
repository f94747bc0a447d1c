#include "host/calc/Workbook.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNamed.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <com/sun/star/frame/DispatchHelper.hpp>
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/frame/XTitle.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSheetCellRangeContainer.hpp>
#include <com/sun/star/sheet/XSpreadsheets.hpp>
#include <com/sun/star/table/XColumnRowRange.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <com/sun/star/view/XSelectionSupplier.hpp>
#include <cppuhelper/implbase2.hxx>
#include <rtl/uri.hxx>

#include <algorithm>
#include <utility>

#include "host/calc/Errors.h"
#include "host/calc/Query.h"
#include "host/calc/Strings.h"
#include "util/FileSystemPlatform.h"
#include "util/Scope.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::calc {
namespace {

using com::sun::star::document::UndoManagerEvent;
using com::sun::star::frame::XController;
using com::sun::star::lang::EventObject;
using com::sun::star::sheet::XCellRangeAddressable;
using com::sun::star::sheet::XSpreadsheetView;
using com::sun::star::table::CellRangeAddress;
using com::sun::star::view::XSelectionSupplier;

constexpr std::u16string_view kFails = u"Application-defined or object-defined error";
constexpr std::u16string_view kRowsRefused = u"Unable to set the Hidden property of the Range class";

// Of a part of a URL.
std::u16string Decode(const rtl::OUString& text) {
  return FromOffice(rtl::Uri::decode(text, rtl_UriDecodeWithCharset, RTL_TEXTENCODING_UTF8));
}

bool IsSameSheet(const uno::Reference<com::sun::star::sheet::XSpreadsheet>& sheet, int16_t index) {
  return As<XCellRangeAddressable>(sheet)->getRangeAddress().Sheet == index;
}

}  // namespace

class BookListener final : public cppu::WeakImplHelper2<com::sun::star::document::XUndoManagerListener,
                                                        com::sun::star::view::XSelectionChangeListener> {
 public:
  explicit BookListener(Workbook& book) : book_(&book) {}
  void Abandon() { book_ = nullptr; }

  void SAL_CALL undoActionAdded(const UndoManagerEvent&) override { Done(); }
  void SAL_CALL actionUndone(const UndoManagerEvent&) override { Done(); }
  void SAL_CALL actionRedone(const UndoManagerEvent&) override { Done(); }
  void SAL_CALL allActionsCleared(const EventObject&) override { Done(); }
  void SAL_CALL redoActionsCleared(const EventObject&) override {}
  void SAL_CALL resetAll(const EventObject&) override { Done(); }
  void SAL_CALL enteredContext(const UndoManagerEvent&) override { Done(); }
  void SAL_CALL enteredHiddenContext(const UndoManagerEvent&) override { Done(); }
  void SAL_CALL leftContext(const UndoManagerEvent&) override { Done(); }
  void SAL_CALL leftHiddenContext(const UndoManagerEvent&) override { Done(); }
  void SAL_CALL cancelledContext(const UndoManagerEvent&) override { Done(); }

  void SAL_CALL selectionChanged(const EventObject&) override {
    if (book_ == nullptr) return;
    const Ref<Workbook> book(book_);
    Attempt(book->Office().Trace, [&] { book->SelectionChanged(); });
  }

  // The model, or a window of the document, goes.
  void SAL_CALL disposing(const EventObject& event) override {
    if (book_ == nullptr) return;
    const Ref<Workbook> book(book_);
    if (book->listened_.is() && event.Source == book->listened_) {
      book->listened_.clear();
    } else {
      book->Office().Forget(*book);
    }
  }

 private:
  void Done() {
    if (book_ != nullptr) book_->Done();
  }

  Workbook* book_;
};

Workbook::Workbook(std::shared_ptr<calc::Office> office,
                   const uno::Reference<com::sun::star::sheet::XSpreadsheetDocument>& document)
    : office_(std::move(office)),
      document_(document),
      model_(document, uno::UNO_QUERY_THROW),
      listener_(new BookListener(*this)) {
  const uno::Reference<com::sun::star::document::XUndoManagerSupplier> supplier(document, uno::UNO_QUERY);
  if (supplier.is()) undo_ = supplier->getUndoManager();
  if (undo_.is()) undo_->addUndoManagerListener(listener_.get());
  As<com::sun::star::lang::XComponent>(model_)->addEventListener(
      static_cast<com::sun::star::view::XSelectionChangeListener*>(listener_.get()));
}

Workbook::~Workbook() { Closed(); }

void Workbook::Closed() noexcept {
  if (!document_.is()) return;
  listener_->Abandon();
  const auto drop = [](auto release) {
    try {
      release();
    } catch (const uno::Exception&) {
      // It is being disposed.
    }
  };
  drop([this] {
    if (undo_.is()) undo_->removeUndoManagerListener(listener_.get());
  });
  drop([this] {
    if (listened_.is()) As<XSelectionSupplier>(listened_)->removeSelectionChangeListener(listener_.get());
  });
  drop([this] {
    As<com::sun::star::lang::XComponent>(model_)->removeEventListener(
        static_cast<com::sun::star::view::XSelectionChangeListener*>(listener_.get()));
  });
  for (const auto& sheet : sheets_) sheet->Close();
  sheets_.clear();
  pending_.reset();
  action_.clear();
  listened_.clear();
  undo_.clear();
  model_.clear();
  document_.clear();
}

std::u16string Workbook::Name() const {
  return OrRefuse(kFails, [this] {
    const auto url = model_->getURL();
    if (url.isEmpty()) return FromOffice(As<com::sun::star::frame::XTitle>(model_)->getTitle());
    return Decode(url.copy(url.lastIndexOf('/') + 1));
  });
}

std::u16string Workbook::FullName() const {
  return OrRefuse(kFails, [this] {
    constexpr std::u16string_view kFile = u"file://";
    const auto url = model_->getURL();
    if (!ViewOf(url).starts_with(kFile)) return url.isEmpty() ? Name() : FromOffice(url);
    return platform::ToText(ToUtf8(Decode(url.copy(static_cast<sal_Int32>(kFile.size())))));
  });
}

bool Workbook::ReadOnly() const {
  return OrRefuse(kFails, [this] { return As<com::sun::star::frame::XStorable>(model_)->isReadonly(); });
}

bool Workbook::Saved() const {
  return OrRefuse(kFails, [this] { return !As<com::sun::star::util::XModifiable>(model_)->isModified(); });
}

void Workbook::SetSaved(bool saved) {
  OrRefuse(kFails, [&] { As<com::sun::star::util::XModifiable>(model_)->setModified(!saved); });
}

uno::Reference<XController> Workbook::Controller() const {
  return OrRefuse(kFails, [this] { return model_->getCurrentController(); });
}

Ref<Worksheet> Workbook::ActiveCells() const {
  const uno::Reference<XSpreadsheetView> view(Controller(), uno::UNO_QUERY);
  if (!view.is()) return nullptr;  // a preview of the print
  return OrRefuse(kFails, [&]() -> Ref<Worksheet> {
    const auto active = view->getActiveSheet();
    const auto index = As<XCellRangeAddressable>(active)->getRangeAddress().Sheet;
    CheckSheets();
    const auto known =
        std::ranges::find_if(sheets_, [&](const auto& sheet) { return IsSameSheet(sheet->Sheet(), index); });
    if (known != sheets_.end()) return *known;
    return sheets_.emplace_back(MakeRef<Worksheet>(const_cast<Workbook&>(*this), active));
  });
}

// The object of a sheet follows it when sheets are moved, and stands for its neighbour when it is removed. So
// one that has the name of a sheet that was there before is another one; a name that is new is another name.
void Workbook::CheckSheets() const {
  OrRefuse(kFails, [this] {
    std::erase_if(sheets_, [this](const auto& sheet) {
      auto name = FromOffice(As<com::sun::star::container::XNamed>(sheet->Sheet())->getName());
      if (name == sheet->LastName()) return false;
      if (std::ranges::find(names_, name) == names_.end()) {
        sheet->SetLastName(std::move(name));
        return false;
      }
      sheet->Close();
      return true;
    });
    names_.clear();
    for (const auto& name : document_->getSheets()->getElementNames()) names_.push_back(FromOffice(name));
  });
}

std::optional<int16_t> Workbook::IndexOf(const Worksheet& sheet) const {
  CheckSheets();
  if (!sheet.Sheet().is()) return std::nullopt;
  return OrRefuse(kFails, [&] { return As<XCellRangeAddressable>(sheet.Sheet())->getRangeAddress().Sheet; });
}

Ref<host::Worksheet> Workbook::ActiveSheet() const { return ActiveCells(); }

// "100/60/0;0;tw:738;3/8/0/...;...": behind three parts one a sheet, which begins with column and row.
cells::Cell Workbook::ActiveCell() const {
  if (pending_ && pending_->sheet == ActiveCells()) {
    return {pending_->areas.front().first_row, pending_->areas.front().first_column};
  }
  return OrRefuse(kFails, [this] {
    constexpr std::size_t kBefore = 3;
    const auto view = As<XSpreadsheetView>(Controller());
    const auto sheet = As<XCellRangeAddressable>(view->getActiveSheet())->getRangeAddress().Sheet;
    rtl::OUString data;
    Controller()->getViewData() >>= data;
    const auto parts = Pieces(ViewOf(data), u";");
    const auto index = kBefore + static_cast<std::size_t>(sheet);
    std::u16string_view part = index < parts.size() ? parts[index] : std::u16string_view();
    const auto take = [&part] {
      const auto end = std::min(part.find_first_not_of(u"0123456789"), part.size());
      const auto number = ToInteger(part.substr(0, end));
      part.remove_prefix(std::min(end + 1, part.size()));
      return number.value_or(0) + 1;
    };
    const int32_t column = take();
    return cells::Cell{take(), column};
  });
}

std::vector<Block> Workbook::Selection() const {
  return OrRefuse(kFails, [this] {
    std::vector<Block> areas;
    const auto selection = As<XSelectionSupplier>(Controller())->getSelection();
    const auto add = [&areas](const CellRangeAddress& area) {
      areas.push_back({area.StartRow + 1, area.StartColumn + 1, area.EndRow + 1, area.EndColumn + 1});
    };
    const uno::Reference<com::sun::star::sheet::XSheetCellRanges> ranges(selection, uno::UNO_QUERY);
    const uno::Reference<XCellRangeAddressable> range(selection, uno::UNO_QUERY);
    if (ranges.is()) {
      for (const auto& area : ranges->getRangeAddresses()) add(area);
    } else if (range.is()) {
      add(range->getRangeAddress());
    }
    return areas;
  });
}

uno::Any Workbook::MakeSelection(int16_t sheet, std::span<const Block> areas) const {
  const auto factory = As<com::sun::star::lang::XMultiServiceFactory>(document_);
  const auto ranges = As<com::sun::star::sheet::XSheetCellRangeContainer>(
      factory->createInstance("com.sun.star.sheet.SheetCellRanges"));
  uno::Sequence<CellRangeAddress> addresses(static_cast<sal_Int32>(areas.size()));
  auto* address = addresses.getArray();
  for (const auto& area : areas) {
    *address++ = {sheet, area.first_column - 1, area.first_row - 1, area.last_column - 1, area.last_row - 1};
  }
  if (!areas.empty()) ranges->addRangeAddresses(addresses, false);
  return uno::Any(ranges);
}

void Workbook::Activate(Worksheet& sheet, std::span<const Block> areas) {
  pending_.emplace(Pending{&sheet, {areas.begin(), areas.end()}});
  if (office_->ScreenUpdating) HandOver();
}

// A cell that is active already stays in its selection, which is made anew where rows have changed: then the
// window shows it.
void Workbook::Select(Worksheet& sheet, std::span<const Block> areas) {
  const auto& first = areas.front();
  const auto supplier = As<XSelectionSupplier>(Controller());
  const bool changed = std::exchange(rows_changed_, false);
  const bool single = areas.size() == 1 && first.Rows() == 1 && first.Columns() == 1;
  if (single && ActiveCell() == cells::Cell{first.first_row, first.first_column}) {
    if (changed) supplier->select(supplier->getSelection());
    return;
  }
  const auto index = IndexOf(sheet);
  if (!index) Refuse(kFails);
  if (areas.size() > 1) {
    supplier->select(MakeSelection(*index, areas));
    return;
  }
  supplier->select(uno::Any(sheet.Sheet()->getCellRangeByPosition(
      first.first_column - 1, first.first_row - 1, first.last_column - 1, first.last_row - 1)));
}

void Workbook::HandOver() {
  const Ref<Workbook> held(this);
  const auto pending = std::exchange(pending_, std::nullopt);
  while (!HandOverSome()) {
  }
  OrRefuse(kRowsRefused, [&] {
    if (pending && pending->sheet == ActiveCells()) Select(*pending->sheet, pending->areas);
  });
}

bool Workbook::HandOverSome() {
  const auto sheets = sheets_;
  return std::ranges::all_of(sheets, [](const auto& sheet) { return sheet->HandOverSome(); });
}

void Workbook::Execute(const char* command,
                       const uno::Sequence<com::sun::star::beans::PropertyValue>& arguments) const {
  const auto frame = As<com::sun::star::frame::XDispatchProvider>(Controller()->getFrame());
  com::sun::star::frame::DispatchHelper::create(office_->Context)
      ->executeDispatch(frame, rtl::OUString::createFromAscii(command), rtl::OUString(), 0, arguments);
}

void Workbook::Enter(std::u16string_view text) {
  uno::Sequence<com::sun::star::beans::PropertyValue> arguments(1);
  auto& argument = arguments.getArray()[0];
  argument.Name = "StringName";
  argument.Value <<= ToOffice(text);
  Execute(".uno:EnterString", arguments);
}

rtl::Reference<RowsAction> Workbook::ActionOn(Worksheet& sheet, const cells::RowSet& shown) {
  const auto name = As<com::sun::star::container::XNamed>(sheet.Sheet())->getName();
  if (!action_.is() || action_->SheetName() != name) {
    action_ = new RowsAction(model_, sheet.Sheet(), sheet.Size().rows, ToOffice(office_->ActionTitle),
                             office_->Trace);
    action_->Before = shown;
    const ScopedFlag acting(acting_);
    ++state_;
    if (undo_.is()) undo_->addUndoAction(action_.get());
  }
  return action_;
}

void Workbook::RowsChanged(Worksheet& sheet, host::RowRun changed) {
  rows_changed_ = true;
  ++state_;
  const ScopedFlag acting(acting_);
  if (action_.is()) {
    // A document may keep no such list.
    const bool listed = IsLast(action_->getTitle());
    const bool back = FindRowChanges(action_->Before, action_->After, sheet.Size().rows, 1).empty();
    if (listed && back) {
      undo_->undo();
      undo_->clearRedo();  // there is nothing but ours
    }
    if (!listed || back) action_.clear();
  }
  if (undo_.is()) undo_->lock();
  const ScopeExit unlock([undo = undo_]() noexcept {
    try {
      if (undo.is()) undo->unlock();
    } catch (const uno::Exception&) {
      // The office has done so.
    }
  });
  TellOfRows(model_, sheet.Sheet(), changed);
}

bool Workbook::IsLast(const rtl::OUString& title) const {
  return undo_.is() && undo_->isUndoPossible() && undo_->getCurrentUndoActionTitle() == title;
}

void Workbook::Do(const rtl::OUString& title, const std::function<void()>& action) {
  ++state_;
  if (!undo_.is()) return action();
  undo_->enterUndoContext(title);
  const ScopeExit leave([undo = undo_]() noexcept {
    try {
      undo->leaveUndoContext();
    } catch (const uno::Exception&) {
      // Somebody else has closed it.
    }
  });
  action();
}

void Workbook::AsOneAction(const std::function<void()>& action) {
  const ScopedFlag acting(acting_);
  action_.clear();
  Do(ToOffice(office_->ActionTitle), action);
}

void Workbook::AndTakeBack(const std::function<void()>& action, const std::function<void()>& look) {
  const ScopedFlag acting(acting_);
  // What changes nothing leaves no action: the last one may be another one of ours.
  const auto title = ToOffice(office_->ActionTitle + u" ?");
  Do(title, action);
  look();
  if (!IsLast(title)) return;
  undo_->undo();
  undo_->clearRedo();
}

void Workbook::Done() {
  if (acting_) return;
  ++state_;
  ++acts_;
  action_.clear();
  for (const auto& sheet : sheets_) sheet->SomethingWasDone();
  if (office_->TextIsMissing) office_->TextIsMissing();
}

Connection Workbook::OnSheetSelectionChange(SelectionHandler handler) {
  Listen();
  told_ = Selection();
  return selection_change_.Connect(std::move(handler));
}

void Workbook::Listen() const {
  OrRefuse(kFails, [this] {
    const auto controller = Controller();
    if (controller == listened_) return;
    if (listened_.is()) As<XSelectionSupplier>(listened_)->removeSelectionChangeListener(listener_.get());
    listened_ = controller;
    if (listened_.is()) As<XSelectionSupplier>(listened_)->addSelectionChangeListener(listener_.get());
  });
}

// The office tells of a selection several times.
void Workbook::SelectionChanged() {
  if (acting_ || !office_->EnableEvents) return;
  const auto sheet = ActiveCells();
  auto areas = Selection();
  if (!sheet || areas.empty() || areas == told_) return;
  told_ = areas;
  const auto range = sheet->MakeRange(std::move(areas));
  selection_change_.Raise(*sheet, *range);
}

}  // namespace rowlark::calc
