// Hidden rows of a sheet of the office.
//
// Hiding a block as the user does takes the office a time that grows with the sheet, and leaves an action in
// the list for undo. So blocks get their flag alone, which may be done in pieces of any size, and at the end
// the office is made to notice.
#pragma once

#include <com/sun/star/document/XUndoAction.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <cppuhelper/implbase1.hxx>
#include <cppuhelper/weakref.hxx>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "host/cells/RowSet.h"
#include "util/Trace.h"

namespace rowlark::calc {

namespace uno = com::sun::star::uno;

using SheetObject = uno::Reference<com::sun::star::sheet::XSpreadsheet>;

// A part of what makes hidden rows those that are wanted.
struct RowChange {
  host::RowRun rows;
  bool hide = false;
};

// All throw what the office throws. The rows of a sheet that are hidden, of so many:
cells::RowSet ReadHiddenRows(const SheetObject& sheet, int32_t rows);
// The first changes, so many at most, in ascending order.
std::vector<RowChange> FindRowChanges(const cells::RowSet& now, const cells::RowSet& wanted, int32_t rows,
                                      std::size_t most = std::numeric_limits<std::size_t>::max());
// Sets the flag alone. What was filtered out by the office and shows now is added to `unfiltered`; only rows
// of `hidden_before` are looked at.
void MakeRowChange(const SheetObject& sheet, const RowChange& change, const cells::RowSet& hidden_before,
                   cells::RowSet& unfiltered);
// Rows have changed from the first of these to the last: windows, drawings and charts are to follow, and the
// document is one that has changed. It may leave an action in the list for undo.
void TellOfRows(const uno::Reference<com::sun::star::frame::XModel>& model, const SheetObject& sheet,
                host::RowRun changed);

// What a search did to the rows of a sheet, as one action in the list for undo.
class RowsAction final : public cppu::WeakImplHelper1<com::sun::star::document::XUndoAction> {
 public:
  RowsAction(const uno::Reference<com::sun::star::frame::XModel>& model, const SheetObject& sheet,
             int32_t rows, const rtl::OUString& title, Trace* trace);

  cells::RowSet Before;
  cells::RowSet After;
  cells::RowSet Unfiltered;  // that the office had filtered out before
  const rtl::OUString& SheetName() const { return sheet_; }

  rtl::OUString SAL_CALL getTitle() override { return title_; }
  void SAL_CALL undo() override;
  void SAL_CALL redo() override;

 private:
  void Restore(const cells::RowSet& wanted, bool before);

  // An object of a sheet does not outlive its removal; when it has been undone there is another of that name.
  const uno::WeakReference<com::sun::star::frame::XModel> model_;
  const rtl::OUString sheet_;
  const int32_t rows_;
  const rtl::OUString title_;
  Trace* const trace_;
};

}  // namespace rowlark::calc
