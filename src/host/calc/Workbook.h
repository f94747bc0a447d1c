// A spreadsheet document: its sheets, what is selected in it, its list of undo actions.
#pragma once

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/document/XUndoManager.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/sheet/XSpreadsheetView.hpp>
#include <rtl/ref.hxx>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/calc/Office.h"
#include "host/calc/Worksheet.h"
#include "util/Event.h"

namespace rowlark::calc {

class BookListener;

class Workbook final : public host::Workbook {
 public:
  Workbook(std::shared_ptr<calc::Office> office,
           const uno::Reference<com::sun::star::sheet::XSpreadsheetDocument>& document);
  ~Workbook() override;

  std::u16string Name() const override;
  std::u16string FullName() const override;
  bool ReadOnly() const override;
  bool Saved() const override;
  void SetSaved(bool saved) override;
  Ref<host::Worksheet> ActiveSheet() const override;
  [[nodiscard]] Connection OnSheetSelectionChange(SelectionHandler handler) override;

  calc::Office& Office() const { return *office_; }
  bool IsOf(const uno::Reference<com::sun::star::sheet::XSpreadsheetDocument>& document) const {
    return document_ == document;
  }
  const uno::Reference<com::sun::star::sheet::XSpreadsheetDocument>& Document() const { return document_; }
  const uno::Reference<com::sun::star::frame::XModel>& Model() const { return model_; }
  // The document's window that the user sees, or saw last; nothing for a document without one.
  uno::Reference<com::sun::star::frame::XController> Controller() const;
  Ref<Worksheet> ActiveCells() const;  // nothing where the window shows no cells

  // The active cell of the active sheet, and the selected areas, none where no cells are selected.
  cells::Cell ActiveCell() const;
  std::vector<Block> Selection() const;
  // At once, or when the screen is updated again.
  void Activate(Worksheet& sheet, std::span<const Block> areas);

  // Where a sheet stands among the document's, from 0; nothing when it has been removed.
  std::optional<int16_t> IndexOf(const Worksheet& sheet) const;
  // Closes the sheets that have been removed.
  void CheckSheets() const;

  // Types a text into the active cell.
  void Enter(std::u16string_view text);

  // Grows whenever the user or a program has done something that can be taken back, or we have.
  uint64_t State() const { return state_; }
  uint64_t Acts() const { return acts_; }  // without ours
  void ReadAnew() { ++state_; }            // what is known of the document may be out of date

  // Hands over what waits for the screen to be updated.
  void HandOver();
  bool HandOverSome();  // some of the rows; true when none are left
  // Our action in the list for undo, which goes on as long as it is the last one and of that sheet; a new one
  // begins with these hidden rows.
  rtl::Reference<RowsAction> ActionOn(Worksheet& sheet, const cells::RowSet& shown);
  // Rows of a sheet have been hidden and shown. An action that has come back to its beginning leaves the
  // list.
  void RowsChanged(Worksheet& sheet, host::RowRun changed);
  // Does something that becomes one action in that list; or does it, looks and takes it back.
  void AsOneAction(const std::function<void()>& action);
  void AndTakeBack(const std::function<void()>& action, const std::function<void()>& look);

  void Closed() noexcept;  // by the office

 private:
  friend class BookListener;

  void Done();  // something, by whomever
  void SelectionChanged();
  void Listen() const;
  void Do(const rtl::OUString& title, const std::function<void()>& action);
  bool IsLast(const rtl::OUString& title) const;
  void Execute(const char* command,
               const uno::Sequence<com::sun::star::beans::PropertyValue>& arguments) const;
  uno::Any MakeSelection(int16_t sheet, std::span<const Block> areas) const;
  void Select(Worksheet& sheet, std::span<const Block> areas);

  const std::shared_ptr<calc::Office> office_;
  uno::Reference<com::sun::star::sheet::XSpreadsheetDocument> document_;
  uno::Reference<com::sun::star::frame::XModel> model_;
  uno::Reference<com::sun::star::document::XUndoManager> undo_;
  mutable std::vector<Ref<Worksheet>> sheets_;
  mutable std::vector<std::u16string> names_;  // of the document's sheets, when they were checked
  rtl::Reference<BookListener> listener_;
  mutable uno::Reference<com::sun::star::frame::XController> listened_;  // for its selection
  Event<host::Worksheet&, host::Range&> selection_change_;
  std::vector<Block> told_;  // the selection that was told last
  struct Pending {
    Ref<Worksheet> sheet;
    std::vector<Block> areas;
  };
  std::optional<Pending> pending_;  // what is to become active
  uint64_t state_ = 0;
  uint64_t acts_ = 0;
  rtl::Reference<RowsAction> action_;  // while it is the last one in the list for undo
  bool rows_changed_ = false;          // since the window was shown where its cursor is
  bool acting_ = false;                // what happens is our doing
};

}  // namespace rowlark::calc
