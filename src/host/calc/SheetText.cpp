#include "host/calc/SheetText.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/sheet/FormulaResult.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XCellRangeData.hpp>
#include <com/sun/star/sheet/XCellRangesQuery.hpp>
#include <com/sun/star/sheet/XSheetCellCursor.hpp>
#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/sheet/XUniqueCellFormatRangesSupplier.hpp>
#include <com/sun/star/sheet/XUsedAreaCursor.hpp>
#include <com/sun/star/text/XTextRange.hpp>
#include <com/sun/star/util/XModifyBroadcaster.hpp>
#include <cppuhelper/implbase1.hxx>

#include <algorithm>
#include <string>
#include <utility>

#include "host/calc/Query.h"
#include "host/calc/Strings.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::calc {
namespace {

using com::sun::star::lang::EventObject;
using com::sun::star::sheet::XCellRangeAddressable;
using com::sun::star::table::CellRangeAddress;
using com::sun::star::table::XCellRange;
using com::sun::star::util::XModifyBroadcaster;

// A strip lies in one block of the text.
constexpr int32_t kStripRows = 1024;
static_assert(cells::CellText::kBlockRows % kStripRows == 0);
// Read in one go: a few milliseconds where all of them are numbers, which the office formats one by one.
constexpr int32_t kCellsAtOnce = 2048;
// Columns are watched in groups, since tables grow.
constexpr int32_t kColumnGroup = 16;
// What moves strips (rows are inserted) is told to nobody by programs that keep no undo list.
constexpr auto kLookAgain = std::chrono::milliseconds(100);

CellRangeAddress AddressOf(const uno::Reference<XCellRange>& range) {
  return As<XCellRangeAddressable>(range)->getRangeAddress();
}

std::string ShownBy(const uno::Reference<XCellRange>& range, int32_t column, int32_t row) {
  const auto cell = As<com::sun::star::text::XTextRange>(range->getCellByPosition(column, row));
  return ToUtf8(ViewOf(cell->getString()));
}

}  // namespace

class StripListener final : public cppu::WeakImplHelper1<com::sun::star::util::XModifyListener> {
 public:
  StripListener(SheetText& text, std::size_t strip) : text_(&text), strip_(strip) {}

  void Abandon() { text_ = nullptr; }
  void SAL_CALL modified(const EventObject&) override {
    if (text_ != nullptr) text_->Changed(strip_);
  }
  void SAL_CALL disposing(const EventObject&) override {}

 private:
  SheetText* text_;
  const std::size_t strip_;
};

SheetText::SheetText(const uno::Reference<com::sun::star::sheet::XSpreadsheet>& sheet,
                     std::function<void()> missing)
    : sheet_(sheet), missing_(std::move(missing)) {}

SheetText::~SheetText() { Unwatch(); }

Block SheetText::Used() const {
  const auto cursor = sheet_->createCursor();
  const auto used = As<com::sun::star::sheet::XUsedAreaCursor>(cursor);
  used->gotoStartOfUsedArea(false);
  used->gotoEndOfUsedArea(true);
  const auto address = As<XCellRangeAddressable>(cursor)->getRangeAddress();
  return {address.StartRow + 1, address.StartColumn + 1, address.EndRow + 1, address.EndColumn + 1};
}

void SheetText::Changed(std::size_t strip) {
  ++changes_;
  strips_[strip].state = Strip::State::Missing;
  next_ = std::min(next_, strip);
  if (reading_ == strip) rows_read_ = 0;
  missing_();
}

void SheetText::Unwatch() {
  ++changes_;
  for (const auto& strip : strips_) {
    strip.listener->Abandon();
    try {
      As<XModifyBroadcaster>(strip.range)->removeModifyListener(strip.listener.get());
    } catch (const uno::Exception&) {
      // The document has gone, and with it the range.
    }
  }
  strips_.clear();
  text_.Clear();
  columns_ = 0;
  next_ = 0;
  rows_read_ = 0;
}

// A range of the office follows its cells when others are inserted before them.
bool SheetText::HaveMoved() const {
  for (std::size_t i = 0; i < strips_.size(); ++i) {
    const auto address = AddressOf(strips_[i].range);
    const auto first = static_cast<int32_t>(i) * kStripRows;
    if (address.StartRow != first || address.EndRow != first + kStripRows - 1 || address.StartColumn != 0 ||
        address.EndColumn != columns_ - 1) {
      return true;
    }
  }
  return false;
}

void SheetText::Watch() {
  const auto now = Clock::now();
  const bool acted = std::exchange(seen_, done_) != done_;
  if (acted || now - looked_ > kLookAgain) {
    looked_ = now;
    if (HaveMoved()) Unwatch();
    // What was done may have changed how numbers show, of which the office tells nothing.
    if (acted) {
      for (auto& strip : strips_) {
        if (strip.state == Strip::State::Read) strip.state = Strip::State::Suspect;
      }
      next_ = 0;
    }
  }
  const auto used = Used();
  const auto sheet = AddressOf(As<XCellRange>(sheet_));
  if (used.last_column > columns_) {
    Unwatch();
    columns_ =
        std::min((used.last_column + kColumnGroup - 1) / kColumnGroup * kColumnGroup, sheet.EndColumn + 1);
  }
  const auto wanted = static_cast<std::size_t>((used.last_row + kStripRows - 1) / kStripRows);
  while (strips_.size() < wanted) {
    const auto first = static_cast<int32_t>(strips_.size()) * kStripRows;
    Strip strip;
    strip.range = sheet_->getCellRangeByPosition(0, first, columns_ - 1, first + kStripRows - 1);
    strip.listener = new StripListener(*this, strips_.size());
    As<XModifyBroadcaster>(strip.range)->addModifyListener(strip.listener.get());
    strips_.push_back(std::move(strip));
    ++changes_;
  }
}

bool SheetText::Read(Clock::time_point end) {
  Watch();
  for (; next_ < strips_.size(); ++next_) {
    auto& strip = strips_[next_];
    while (strip.state != Strip::State::Read) {
      if (Clock::now() >= end) return false;
      if (strip.state == Strip::State::Missing) {
        ReadSome(strip);
      } else {
        strip.state = FormatsOf(strip) == strip.formats ? Strip::State::Read : Strip::State::Missing;
      }
    }
  }
  return true;
}

std::u16string SheetText::FormatsOf(const Strip& strip) {
  std::u16string formats;
  const auto alike =
      As<com::sun::star::sheet::XUniqueCellFormatRangesSupplier>(strip.range)->getUniqueCellFormatRanges();
  for (int32_t i = 0; i < alike->getCount(); ++i) {
    const uno::Reference<com::sun::star::sheet::XSheetCellRanges> ranges(alike->getByIndex(i),
                                                                         uno::UNO_QUERY_THROW);
    int32_t format = 0;
    As<com::sun::star::beans::XPropertySet>(ranges)->getPropertyValue("NumberFormat") >>= format;
    formats.append(ToText(format))
        .append(u" ")
        .append(ViewOf(ranges->getRangeAddressesAsString()))
        .append(u"\n");
  }
  return formats;
}

void SheetText::ReadSome(Strip& strip) {
  const auto index = static_cast<std::size_t>(&strip - strips_.data());
  if (std::exchange(reading_, index) != index) rows_read_ = 0;
  const int32_t first = rows_read_;
  const int32_t count = std::min(std::clamp(kCellsAtOnce / columns_, 1, kStripRows), kStripRows - first);
  const auto range = strip.range->getCellRangeByPosition(0, first, columns_ - 1, first + count - 1);
  const auto data = As<com::sun::star::sheet::XCellRangeData>(range)->getDataArray();
  // Errors come as empty cells.
  const auto errors = As<com::sun::star::sheet::XCellRangesQuery>(range)
                          ->queryFormulaCells(com::sun::star::sheet::FormulaResult::ERROR)
                          ->getRangeAddresses();
  const int32_t row_on_sheet = static_cast<int32_t>(index) * kStripRows + first;
  cells::CellText::Rows rows;
  std::vector<std::string> texts(static_cast<std::size_t>(columns_));
  std::vector<std::string_view> row_texts;
  for (int32_t row = 0; row < count; ++row) {
    const auto& values = data[row];
    std::size_t width = 0;
    for (int32_t column = 0; column < columns_; ++column) {
      auto& text = texts[static_cast<std::size_t>(column)];
      const auto& value = values[column];
      if (value.getValueTypeClass() == uno::TypeClass_DOUBLE) {
        text = ShownBy(range, column, row);
      } else if (value.getValueTypeClass() == uno::TypeClass_STRING) {
        text = ToUtf8(ViewOf(*static_cast<const rtl::OUString*>(value.getValue())));
      } else {
        text.clear();
      }
      if (!text.empty()) width = static_cast<std::size_t>(column) + 1;
    }
    for (const auto& area : errors) {
      const int32_t on_sheet = row_on_sheet + row;
      if (on_sheet < area.StartRow || on_sheet > area.EndRow) continue;
      for (int32_t column = area.StartColumn; column <= area.EndColumn; ++column) {
        texts[static_cast<std::size_t>(column)] = ShownBy(range, column, row);
        width = std::max(width, static_cast<std::size_t>(column) + 1);
      }
    }
    row_texts.assign(texts.begin(), texts.begin() + static_cast<std::ptrdiff_t>(width));
    rows.Append(row_texts);
  }
  text_.Replace(row_on_sheet + 1, rows);
  rows_read_ += count;
  if (rows_read_ < kStripRows) return;
  rows_read_ = 0;
  strip.formats = FormatsOf(strip);
  strip.state = Strip::State::Read;
}

}  // namespace rowlark::calc
