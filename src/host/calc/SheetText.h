// The text that a sheet shows, read from the office piece by piece and kept: the office's own search takes a
// second for a large sheet, and finds what was typed, not what shows.
//
// Rows are watched in strips. Of a strip that changes the office tells nothing but that, so it is read again;
// what is the same in it stays, and with it what searches have found.
#pragma once

#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <rtl/ref.hxx>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/cells/CellText.h"

namespace rowlark::calc {

namespace uno = com::sun::star::uno;

class StripListener;

class SheetText {
 public:
  using Clock = std::chrono::steady_clock;

  // `missing` is called when some of the text is no longer what the sheet shows.
  SheetText(const uno::Reference<com::sun::star::sheet::XSpreadsheet>& sheet, std::function<void()> missing);
  SheetText(const SheetText&) = delete;
  SheetText& operator=(const SheetText&) = delete;
  ~SheetText();

  // Reads until then; true when nothing is missing. Throws what the office throws.
  bool Read(Clock::time_point end);
  const cells::CellText& Text() const { return text_; }

  // The user has done something that the office tells nothing of but this: a number may have another format.
  void SomethingWasDone() { ++done_; }
  // Grows when a cell that is watched may have changed, and with the cells that are watched.
  uint64_t Changes() const { return changes_; }

  // The cells in use: A1 where there are none.
  Block Used() const;

 private:
  friend class StripListener;

  struct Strip {
    rtl::Reference<StripListener> listener;
    uno::Reference<com::sun::star::table::XCellRange> range;
    enum class State {
      Missing,
      Suspect,
      Read
    } state = State::Missing;  // suspect: it may show otherwise by now
    std::u16string formats;    // when it was read
  };

  // Sees to it that all cells in use are watched, each by the strip of its row.
  void Watch();
  void Unwatch();
  bool HaveMoved() const;
  void Changed(std::size_t strip);
  // Which formats of numbers stand where.
  static std::u16string FormatsOf(const Strip& strip);
  // Reads the next rows of a strip.
  void ReadSome(Strip& strip);

  const uno::Reference<com::sun::star::sheet::XSpreadsheet> sheet_;
  const std::function<void()> missing_;
  cells::CellText text_;
  std::vector<Strip> strips_;
  int32_t columns_ = 0;      // that are watched
  std::size_t next_ = 0;     // all strips before it have been read
  std::size_t reading_ = 0;  // the strip of which some rows have been read
  int32_t rows_read_ = 0;    // of that strip
  uint64_t done_ = 0;        // by the user
  uint64_t seen_ = 0;        // of that
  uint64_t changes_ = 0;
  Clock::time_point looked_{};  // whether strips have moved
};

}  // namespace rowlark::calc
