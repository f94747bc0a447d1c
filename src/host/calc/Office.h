// What all of the host share.
#pragma once

#include <com/sun/star/frame/XDesktop2.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/cells/Finder.h"
#include "util/Ref.h"
#include "util/Trace.h"

namespace rowlark::calc {

class Workbook;

namespace uno = com::sun::star::uno;

struct Office : std::enable_shared_from_this<Office> {
  uno::Reference<uno::XComponentContext> Context;
  uno::Reference<com::sun::star::frame::XDesktop2> Desktop;  // nothing when the host has been stopped
  rowlark::Trace* Trace = nullptr;
  cells::Finder Finder;
  bool ScreenUpdating = true;
  bool EnableEvents = true;
  bool EnableAnimations = true;
  std::u16string ActionTitle = u"Rowlark";  // in the list for undo
  std::vector<Ref<Workbook>> Books;         // those that have been asked for and are open
  std::function<void()> TextIsMissing;      // some text of a sheet has to be read

  // The one of a document.
  Ref<Workbook> BookOf(const uno::Reference<com::sun::star::sheet::XSpreadsheetDocument>& document);
  // The document in front, if it is a spreadsheet. Throws host::Error.
  Ref<Workbook> ActiveBook();
  // A document is being closed.
  void Forget(Workbook& book) noexcept;
};

}  // namespace rowlark::calc
