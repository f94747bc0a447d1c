// A spreadsheet document of a test, as a user and another program would change it.
#pragma once

#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/XSpreadsheet.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace rowlark::testing {

namespace uno = com::sun::star::uno;

using Context = uno::Reference<uno::XComponentContext>;
// Of the office that the tests run in.
Context& TheContext();

// Handles messages of the office for as long as that holds.
void WaitWhile(const std::function<bool()>& condition);

class CalcDocument {
 public:
  // A new document with one sheet, in front; or a file.
  explicit CalcDocument(std::string_view url = "private:factory/scalc", bool read_only = false);
  CalcDocument(const CalcDocument&) = delete;
  CalcDocument& operator=(const CalcDocument&) = delete;
  ~CalcDocument() { Close(); }

  void Close();
  void Activate() const;
  void StoreAs(const std::string& path) const;

  uno::Reference<com::sun::star::sheet::XSpreadsheet> Sheet() const;  // the active one
  uno::Reference<com::sun::star::sheet::XSpreadsheet> AddSheet(std::string_view name, int16_t at) const;
  void RemoveSheet(std::string_view name) const;
  void ActivateSheet(int32_t index) const;

  // Texts as they stand, and as a user types them. Rows and columns count from 1.
  void SetText(int32_t row, int32_t column, std::u16string_view text) const;
  void Type(int32_t row, int32_t column, std::string_view text) const;
  void Fill(std::string_view cells);  // rows apart by '|', cells by ','
  std::string Shown(int32_t row, int32_t column) const;
  void Select(std::string_view address) const;
  void Dispatch(std::string_view command) const;
  bool Hidden(int32_t row) const;
  void SetHidden(int32_t row, bool hidden) const;
  std::string VisibleRows(int32_t last) const;  // "1 2 5"
  std::vector<std::string> UndoTitles() const;

  // Makes an AutoFilter on that block; with a criterion for its column (from 1) unless that is 0: a text, or
  // the beginning of one ("B*").
  void Filter(std::string_view address, int32_t column, std::u16string_view criterion) const;
  // The same without arrows and head.
  void FilterInPlace(std::string_view address, int32_t column, std::u16string_view criterion) const;

  uno::Reference<com::sun::star::frame::XModel> Model;
  uno::Reference<com::sun::star::sheet::XSpreadsheetDocument> Document;
};

}  // namespace rowlark::testing
