// What all handles of one adapter share: the dispatch ids of Excel's classes, and the range handles that wait
// for their next use.
#pragma once

#include "host/spreadsheet.h"
#include "host/windows/Dispatch.h"
#include "util/Ref.h"
#include "util/Trace.h"

namespace rowlark::windows {

class ExcelRange;

// The members that are called, class by class.
struct CollectionMembers {
  Member Count{L"Count"};
  Member Item{L"Item"};
};

struct ApplicationMembers {
  Member ActiveCell{L"ActiveCell"};
  Member ActiveSheet{L"ActiveSheet"};
  Member ActiveWorkbook{L"ActiveWorkbook"};
  Member CommandBars{L"CommandBars"};
  Member EnableAnimations{L"EnableAnimations"};
  Member EnableEvents{L"EnableEvents"};
  Member Height{L"Height"};
  Member Hwnd{L"Hwnd"};
  Member Left{L"Left"};
  Member OnKey{L"OnKey"};
  Member ScreenUpdating{L"ScreenUpdating"};
  Member Selection{L"Selection"};
  Member Top{L"Top"};
  Member Version{L"Version"};
  Member Width{L"Width"};
};

struct WorkbookMembers {
  Member ActiveSheet{L"ActiveSheet"};
  Member FullName{L"FullName"};
  Member Name{L"Name"};
  Member ReadOnly{L"ReadOnly"};
  Member Saved{L"Saved"};
};

// A chart is a sheet that has few of them.
struct SheetMembers {
  Member AutoFilter{L"AutoFilter"};
  Member AutoFilterMode{L"AutoFilterMode"};
  Member Cells{L"Cells"};
  Member Parent{L"Parent"};
  Member ProtectScenarios{L"ProtectScenarios"};
  Member Range{L"Range"};
  Member UsedRange{L"UsedRange"};
};

struct RangeMembers {
  Member Activate{L"Activate"};
  Member Address{L"Address"};
  Member AddressLocal{L"AddressLocal"};
  Member Areas{L"Areas"};
  Member AutoFilter{L"AutoFilter"};
  Member Cells{L"Cells"};
  Member Column{L"Column"};
  Member Columns{L"Columns"};
  Member EntireRow{L"EntireRow"};
  Member Find{L"Find"};
  Member FindNext{L"FindNext"};
  Member Offset{L"Offset"};
  Member Row{L"Row"};
  Member Rows{L"Rows"};
  Member SpecialCells{L"SpecialCells"};
  Member Text{L"Text"};
  Member Value{L"Value"};
};

// Rows of cells, as Range.EntireRow gives them.
struct EntireRowMembers {
  Member Hidden{L"Hidden"};
};

struct AutoFilterMembers {
  Member ApplyFilter{L"ApplyFilter"};
  Member Filters{L"Filters"};
  Member Range{L"Range"};
};

struct FilterMembers {
  Member Criteria1{L"Criteria1"};
  Member Criteria2{L"Criteria2"};
  Member On{L"On"};
  Member Operator{L"Operator"};
};

struct CommandBarMembers {
  Member Controls{L"Controls"};
  Member FindControl{L"FindControl"};
};

struct ControlsMembers {
  Member Add{L"Add"};
};

struct ControlMembers {
  Member BeginGroup{L"BeginGroup"};
  Member Caption{L"Caption"};
  Member Controls{L"Controls"};  // pop-ups only
  Member Delete{L"Delete"};
  Member Id{L"Id"};
  Member OnAction{L"OnAction"};
  Member Tag{L"Tag"};
};

class ExcelSession final : public RefCounted {
 public:
  rowlark::Trace* const Trace;
  ApplicationMembers Application;
  WorkbookMembers Workbook;
  SheetMembers Worksheet;
  SheetMembers Chart;
  RangeMembers Range;
  EntireRowMembers EntireRow;
  CollectionMembers Rows, Columns, Areas, Filters, CommandBars;
  AutoFilterMembers AutoFilter;
  FilterMembers Filter;
  CommandBarMembers CommandBar;
  ControlsMembers BarControls, PopupControls;
  ControlMembers Button, Popup;

  // The trace, which may be null, is told what handlers of events throw.
  explicit ExcelSession(rowlark::Trace* trace) : Trace(trace) {}
  ~ExcelSession() override;

  // Handles; null for Nothing.
  Ref<host::Range> MakeRange(Dispatch object);
  Ref<host::Worksheet> MakeSheet(Dispatch object);
  // The same where Nothing is an error.
  Ref<host::Range> NeedRange(Dispatch object);

  // Keeps a dropped handle for its next use, so that a search allocates none per match.
  void Recycle(ExcelRange* range) noexcept;

 private:
  ExcelRange* free_ranges_ = nullptr;
};

}  // namespace rowlark::windows
