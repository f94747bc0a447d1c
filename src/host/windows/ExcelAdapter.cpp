#include "host/windows/ExcelAdapter.h"

#include <optional>
#include <string>
#include <utility>

#include "host/windows/Dispatch.h"
#include "host/windows/ExcelCommandBar.h"
#include "host/windows/ExcelSession.h"
#include "host/windows/ExcelSheet.h"

namespace rowlark::windows {
namespace {

class ExcelApplication final : public host::Application {
 public:
  ExcelApplication(IDispatch* object, Trace* trace)
      : session_(MakeRef<ExcelSession>(trace)), object_(object) {}

  Ref<host::Workbook> ActiveWorkbook() const override {
    Dispatch workbook = object_.ObjectOrNothing(Members().ActiveWorkbook);
    return workbook ? MakeRef<ExcelWorkbook>(session_, std::move(workbook)) : nullptr;
  }
  Ref<host::Worksheet> ActiveSheet() const override {
    return session_->MakeSheet(object_.ObjectOrNothing(Members().ActiveSheet));
  }
  Ref<host::Range> ActiveCell() const override {
    return session_->MakeRange(object_.ObjectOrNothing(Members().ActiveCell));
  }
  Ref<host::Range> Selection() const override {
    Dispatch selection = object_.ObjectOrNothing(Members().Selection);
    if (!selection || !session_->Range.Areas.IsOf(*selection.get())) return nullptr;
    return session_->MakeRange(std::move(selection));
  }

  bool ScreenUpdating() const override { return object_.Bool(Members().ScreenUpdating); }
  void SetScreenUpdating(bool on) override { object_.Put(Members().ScreenUpdating, on); }
  bool EnableEvents() const override { return object_.Bool(Members().EnableEvents); }
  void SetEnableEvents(bool on) override { object_.Put(Members().EnableEvents, on); }
  bool EnableAnimations() const override { return object_.Bool(Members().EnableAnimations); }
  void SetEnableAnimations(bool on) override { object_.Put(Members().EnableAnimations, on); }

  // The same as long as the process lives.
  std::u16string Version() const override {
    if (!version_) version_ = object_.Text(Members().Version);
    return *version_;
  }
  // Handles of windows are numbers of 32 bits, whatever type they arrive in.
  intptr_t Hwnd() const override {
    const auto number = Converted(object_.Get(Members().Hwnd), VT_I8).llVal;
    return static_cast<int32_t>(number);
  }
  double Left() const override { return object_.Double(Members().Left); }
  double Top() const override { return object_.Double(Members().Top); }
  double Width() const override { return object_.Double(Members().Width); }
  double Height() const override { return object_.Double(Members().Height); }

  Ref<host::CommandBar> CommandBars(std::u16string_view name) const override {
    return MakeRef<ExcelCommandBar>(
        session_, object_.Object(Members().CommandBars).Object(session_->CommandBars.Item, name));
  }
  void OnKey(std::u16string_view key, std::optional<std::u16string_view> macro) override {
    object_.Call(Members().OnKey, key, macro);
  }

 private:
  ApplicationMembers& Members() const { return session_->Application; }

  Ref<ExcelSession> session_;
  Dispatch object_;
  mutable std::optional<std::u16string> version_;
};

}  // namespace

Ref<host::Application> WrapExcel(IDispatch* application, Trace* trace) {
  return application != nullptr ? MakeRef<ExcelApplication>(application, trace) : nullptr;
}

Ref<host::Worksheet> WrapWorksheet(IDispatch* sheet) {
  return sheet != nullptr ? MakeRef<ExcelSession>(nullptr)->MakeSheet(Dispatch(sheet)) : nullptr;
}

}  // namespace rowlark::windows
