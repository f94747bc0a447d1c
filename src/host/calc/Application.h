// LibreOffice Calc behind the seam, in its own process: every operation is a call of UNO on the main thread.
// An office that refuses is a host::Error; nothing else leaves.
#pragma once

#include <com/sun/star/awt/XWindow.hpp>
#include <com/sun/star/uno/Reference.hxx>
#include <com/sun/star/uno/XComponentContext.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/calc/Office.h"
#include "host/spreadsheet.h"
#include "util/Trace.h"

namespace rowlark::calc {

class ReadAhead;

class Application final : public host::Application {
 public:
  // The trace, where there is one, outlives it.
  explicit Application(const com::sun::star::uno::Reference<com::sun::star::uno::XComponentContext>& context,
                       Trace* trace = nullptr);
  ~Application() override;

  Ref<host::Workbook> ActiveWorkbook() const override;
  Ref<host::Worksheet> ActiveSheet() const override;
  Ref<host::Range> ActiveCell() const override;
  Ref<host::Range> Selection() const override;

  bool ScreenUpdating() const override { return office_->ScreenUpdating; }
  // While it is off, changes of hidden rows and of the active cell are collected; switching it on hands them
  // over.
  void SetScreenUpdating(bool on) override;
  bool PrepareScreenUpdating() override;
  bool EnableEvents() const override { return office_->EnableEvents; }
  void SetEnableEvents(bool on) override { office_->EnableEvents = on; }
  bool EnableAnimations() const override { return office_->EnableAnimations; }
  void SetEnableAnimations(bool on) override { office_->EnableAnimations = on; }

  std::u16string Version() const override { return u"16.0"; }  // of the object model that it behaves as
  intptr_t Hwnd() const override;  // the address of the document's window, see Window()
  double Left() const override;
  double Top() const override;
  double Width() const override;
  double Height() const override;

  // The menu comes with the package of the extension: there are none.
  Ref<host::CommandBar> CommandBars(std::u16string_view name) const override;
  void OnKey(std::u16string_view key, std::optional<std::u16string_view> macro) override;

  // What OnKey does: the program's hotkeys are its own. Without it OnKey does nothing.
  std::function<void(std::u16string_view key, std::optional<std::u16string_view> macro)> Keys;

  // The container window of the active document's frame, nothing without a spreadsheet in front.
  com::sun::star::uno::Reference<com::sun::star::awt::XWindow> Window() const;

  // From now on the text of the sheet in front is read while the user does nothing, in pieces of some
  // milliseconds, so that a search finds it read.
  void StartReadingAhead();
  bool ReadsAhead() const;  // there is some that has not been read

  // Ends what listens to documents, before the office goes; every operation fails from now on.
  void Stop() noexcept;

 private:
  struct Rectangle {
    double left, top, width, height;  // points
  };
  Rectangle Bounds() const;

  const std::shared_ptr<Office> office_;
  std::unique_ptr<ReadAhead> ahead_;
};

}  // namespace rowlark::calc
