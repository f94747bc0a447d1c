// The part of the Excel object model through which the logic reaches the spreadsheet, with its names,
// constants and 1-based rows and columns.
//
// Handles are counted references, cheap to copy; a null reference is the object model's Nothing. All calls
// come on the user-interface thread. Every operation throws host::Error with the host's own description when
// the host refuses it. An omitted optional argument is std::nullopt, so that an adapter can really leave it
// out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/Error.h"
#include "util/Event.h"
#include "util/Ref.h"

namespace rowlark::host {

// Constants of the object model (type library of Excel and Office).
enum XlFindLookIn : int32_t { xlValues = -4163, xlFormulas = -4123, xlComments = -4144 };
enum XlLookAt : int32_t { xlWhole = 1, xlPart = 2 };
enum XlSearchOrder : int32_t { xlByRows = 1, xlByColumns = 2 };
enum XlSearchDirection : int32_t { xlNext = 1, xlPrevious = 2 };
enum XlCellType : int32_t { xlCellTypeVisible = 12 };
enum XlAutoFilterOperator : int32_t {
  xlNoOperator = 0,  // reported by a filter with one criterion; never passed
  xlAnd = 1,
  xlOr = 2,
  xlTop10Items = 3,
  xlBottom10Items = 4,
  xlTop10Percent = 5,
  xlBottom10Percent = 6,
  xlFilterValues = 7,  // Criteria1 is a list of texts
};
enum MsoControlType : int32_t { msoControlButton = 1, msoControlPopup = 10 };

class Range;
class Worksheet;
class Workbook;

// What `Range::Find` is asked for. The host remembers LookIn, LookAt and SearchOrder from one call to the
// next and uses them for what is omitted.
struct FindArguments {
  std::u16string_view What = {};  // `*`, `?` and `~` are wildcards; an empty text finds empty cells
  const Range* After = nullptr;   // omitted: the upper left cell; this cell is searched last
  std::optional<XlFindLookIn> LookIn = std::nullopt;
  std::optional<XlLookAt> LookAt = std::nullopt;
  std::optional<XlSearchOrder> SearchOrder = std::nullopt;
  std::optional<XlSearchDirection> SearchDirection = std::nullopt;
  std::optional<bool> MatchCase = std::nullopt;
};

// One criterion of a filter: a text ("Berlin", "<>x", ">=5") or, for xlFilterValues, a list of texts.
using Criterion = std::variant<std::u16string, std::vector<std::u16string>>;

struct AutoFilterArguments {
  std::optional<int32_t> Field = std::nullopt;  // 1-based, within the filter's range
  std::optional<Criterion> Criteria1 = std::nullopt;
  std::optional<XlAutoFilterOperator> Operator = std::nullopt;
  std::optional<Criterion> Criteria2 = std::nullopt;
};

// A search for the rows of a range that hold a match, piece by piece, so that messages can be processed and
// the search be given up in between.
class RowSearch : public RefCounted {
 public:
  enum class Piece { Matches, NoMatch, End };

  // Goes on for some milliseconds at most and appends the rows that it finds, as the cells are by now. Rows
  // ascend within an area; one that has been found may come again.
  virtual Piece Next(std::vector<int32_t>& rows) = 0;
};

class Range : public RefCounted {
 public:
  // Of the first area: its first row and column, its extent.
  virtual int32_t Row() const = 0;
  virtual int32_t Column() const = 0;
  virtual int32_t RowsCount() const = 0;
  virtual int32_t ColumnsCount() const = 0;

  virtual int32_t AreasCount() const = 0;
  virtual Ref<Range> Areas(int32_t index) const = 0;  // 1-based

  // Absolute A1 address of all areas ("$B$3:$F$200,$H$1"), with the host's names and in the user's language.
  virtual std::u16string Address() const = 0;
  virtual std::u16string AddressLocal() const = 0;
  // Address(External:=True), with the workbook and the sheet: "[Book1.xls]Sheet1!$A$1".
  virtual std::u16string ExternalAddress() const = 0;

  // The range moved by so many rows and columns; fails beyond the sheet.
  virtual Ref<Range> Offset(int32_t rows, int32_t columns) const = 0;

  // The value of the first cell as text (an error value as its text form). Setting it converts as typed
  // input.
  virtual std::u16string Value() const = 0;
  virtual void SetValue(std::u16string_view text) = 0;

  // EntireRow.Hidden: whether all the rows of the range are hidden.
  virtual bool EntireRowHidden() const = 0;
  virtual void SetEntireRowHidden(bool hidden) = 0;

  // Makes the first cell the active one; the sheet must be active.
  virtual void Activate() = 0;

  // The first match, or nothing. `FindNext` goes on with what the last `Find` looked for, after the cell
  // `after` (which must lie in the range), and wraps around at the end of the range.
  virtual Ref<Range> Find(const FindArguments& arguments) = 0;
  virtual Ref<Range> FindNext(const Range& after) = 0;

  // Gets ready for `Find`, some milliseconds' worth of it; true when nothing is missing. `Find` does without,
  // but may take long then.
  virtual bool PrepareFind() { return true; }

  // All rows in which `Find` and `FindNext` would find a match in one of the columns, which ascend (omitted:
  // in any), for xlNext by rows. Nothing where the host can only find one cell after the other.
  virtual Ref<RowSearch> FindRows(const FindArguments& arguments,
                                  std::optional<std::span<const int32_t>> columns) {
    static_cast<void>(arguments), static_cast<void>(columns);
    return nullptr;
  }

  // The cells of a kind; fails when there is none.
  virtual Ref<Range> SpecialCells(XlCellType type) const = 0;

  // Sets, changes or clears the filter of a column, making the range the sheet's AutoFilter when it has none.
  virtual void AutoFilter(const AutoFilterArguments& arguments) = 0;
};

// The filter of one column. Reading what a filter does not have fails in the host.
class Filter : public RefCounted {
 public:
  virtual bool On() const = 0;
  virtual int32_t Operator() const = 0;  // XlAutoFilterOperator, or one of the host's that is not named here
  virtual Criterion Criteria1() const = 0;
  virtual Criterion Criteria2() const = 0;
};

class AutoFilter : public RefCounted {
 public:
  virtual Ref<host::Range> Range() const = 0;  // with the header row
  virtual int32_t FiltersCount() const = 0;
  virtual Ref<Filter> Filters(int32_t index) const = 0;  // 1-based
  virtual void ApplyFilter() = 0;                        // since version 12
};

// Rows that follow one another, both ends included.
struct RowRun {
  int32_t first = 1;
  int32_t last = 0;

  int32_t Rows() const { return last - first + 1; }
};

class Worksheet : public RefCounted {
 public:
  virtual Ref<Workbook> Parent() const = 0;
  virtual Ref<host::Range> Range(std::u16string_view address) const = 0;
  virtual Ref<host::Range> Range(const host::Range& cell1, const host::Range& cell2) const = 0;
  virtual Ref<host::Range> Cells() const = 0;
  virtual Ref<host::Range> Cells(int32_t row, int32_t column) const = 0;
  virtual Ref<host::Range> UsedRange() const = 0;
  virtual bool AutoFilterMode() const = 0;
  virtual Ref<host::AutoFilter> AutoFilter() const = 0;  // nothing without an AutoFilter
  virtual bool ProtectScenarios() const = 0;

  // EntireRow.Hidden = True for the rows of the first runs of a list, as many as the host takes in one go;
  // returns how many. The list is not empty, and at least one is taken. Where the host refuses a run, those
  // before it are hidden.
  virtual std::size_t HideRows(std::span<const RowRun> runs) = 0;
};

class Workbook : public RefCounted {
 public:
  virtual std::u16string Name() const = 0;
  virtual std::u16string FullName() const = 0;
  virtual bool ReadOnly() const = 0;
  virtual bool Saved() const = 0;
  virtual void SetSaved(bool saved) = 0;
  virtual Ref<Worksheet> ActiveSheet() const = 0;

  using SelectionHandler = std::function<void(Worksheet& sheet, Range& target)>;
  [[nodiscard]] virtual Connection OnSheetSelectionChange(SelectionHandler handler) = 0;
};

class CommandBarControl : public RefCounted {
 public:
  virtual int32_t Id() const = 0;  // the same number for all custom controls of a kind
  virtual std::u16string Caption() const = 0;
  virtual void SetCaption(std::u16string_view caption) = 0;
  virtual std::u16string OnAction() const = 0;
  virtual void SetOnAction(std::u16string_view macro) = 0;
  virtual bool BeginGroup() const = 0;
  virtual void SetBeginGroup(bool begin) = 0;
  virtual std::u16string Tag() const = 0;
  virtual void SetTag(std::u16string_view tag) = 0;
  virtual void Delete() = 0;

  // The controls of a pop-up; fails for a button.
  virtual Ref<CommandBarControl> AddControl(MsoControlType type) = 0;
};

class CommandBar : public RefCounted {
 public:
  // At the end of the bar; a temporary control goes when the host ends.
  virtual Ref<CommandBarControl> AddControl(MsoControlType type, bool temporary) = 0;
  // The first control that has what is given, or nothing.
  virtual Ref<CommandBarControl> FindControl(std::optional<int32_t> id,
                                             std::optional<std::u16string_view> tag) const = 0;
};

class Application : public RefCounted {
 public:
  virtual Ref<Workbook> ActiveWorkbook() const = 0;
  virtual Ref<Worksheet> ActiveSheet() const = 0;
  virtual Ref<Range> ActiveCell() const = 0;
  virtual Ref<Range> Selection() const = 0;  // nothing when something other than cells is selected

  virtual bool ScreenUpdating() const = 0;
  virtual void SetScreenUpdating(bool on) = 0;
  // For a host that puts changes off while the screen is not updated: makes some milliseconds' worth of them;
  // true when none is left. Switching the screen on makes those that are left, but may take long then.
  virtual bool PrepareScreenUpdating() { return true; }
  virtual bool EnableEvents() const = 0;
  virtual void SetEnableEvents(bool on) = 0;
  virtual bool EnableAnimations() const = 0;
  virtual void SetEnableAnimations(bool on) = 0;

  virtual std::u16string Version() const = 0;  // "8.0", "16.0"
  virtual intptr_t Hwnd() const = 0;           // the main window; since version 10

  // The main window, in points.
  virtual double Left() const = 0;
  virtual double Top() const = 0;
  virtual double Width() const = 0;
  virtual double Height() const = 0;

  virtual Ref<CommandBar> CommandBars(std::u16string_view name) const = 0;

  // Runs the macro when the key (code as in "+^f", "{F5}") is pressed; without a macro, frees the key.
  virtual void OnKey(std::u16string_view key, std::optional<std::u16string_view> macro) = 0;
};

}  // namespace rowlark::host
