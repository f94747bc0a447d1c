#include "host/Forwarding.h"

#include <algorithm>
#include <utility>

namespace rowlark::host {
namespace {

// What all wrappers are made of: the inner object, and one way to call it.
template <class Interface>
class Forwarder : public Interface {
 public:
  Forwarder(Ref<Interface> inner, Forwarding& forwarding)
      : inner_(std::move(inner)), forwarding_(forwarding) {}

  Interface& Inner() const { return *inner_; }

 protected:
  Interface& Call(std::string_view operation) const {
    forwarding_.OnCall(operation);
    return *inner_;
  }
  template <class T>
  Ref<T> Wrap(const Ref<T>& inner) const {
    return forwarding_.Wrap(inner);
  }
  Forwarding& Context() const { return forwarding_; }

 private:
  Ref<Interface> inner_;
  Forwarding& forwarding_;
};

// The host must get its own ranges as arguments.
const Range& Unwrap(const Range& range) {
  const auto* forwarder = dynamic_cast<const Forwarder<Range>*>(&range);
  return forwarder != nullptr ? forwarder->Inner() : range;
}

FindArguments InnerOf(FindArguments arguments) {
  if (arguments.After != nullptr) arguments.After = &Unwrap(*arguments.After);
  return arguments;
}

class ForwardingRowSearch final : public Forwarder<RowSearch> {
 public:
  using Forwarder::Forwarder;
  Piece Next(std::vector<int32_t>& rows) override { return Call("RowSearch.Next").Next(rows); }
};

class ForwardingRange final : public Forwarder<Range> {
 public:
  using Forwarder::Forwarder;
  int32_t Row() const override { return Call("Range.Row").Row(); }
  int32_t Column() const override { return Call("Range.Column").Column(); }
  int32_t RowsCount() const override { return Call("Range.Rows.Count").RowsCount(); }
  int32_t ColumnsCount() const override { return Call("Range.Columns.Count").ColumnsCount(); }
  int32_t AreasCount() const override { return Call("Range.Areas.Count").AreasCount(); }
  Ref<Range> Areas(int32_t index) const override { return Wrap(Call("Range.Areas").Areas(index)); }
  std::u16string Address() const override { return Call("Range.Address").Address(); }
  std::u16string AddressLocal() const override { return Call("Range.AddressLocal").AddressLocal(); }
  std::u16string ExternalAddress() const override { return Call("Range.Address").ExternalAddress(); }
  Ref<Range> Offset(int32_t rows, int32_t columns) const override {
    return Wrap(Call("Range.Offset").Offset(rows, columns));
  }
  std::u16string Value() const override { return Call("Range.Value").Value(); }
  void SetValue(std::u16string_view text) override { Call("Range.Value=").SetValue(text); }
  bool EntireRowHidden() const override { return Call("Range.EntireRow.Hidden").EntireRowHidden(); }
  void SetEntireRowHidden(bool hidden) override {
    Call("Range.EntireRow.Hidden=").SetEntireRowHidden(hidden);
  }
  void Activate() override { Call("Range.Activate").Activate(); }
  Ref<Range> Find(const FindArguments& arguments) override {
    return Wrap(Call("Range.Find").Find(InnerOf(arguments)));
  }
  Ref<Range> FindNext(const Range& after) override {
    return Wrap(Call("Range.FindNext").FindNext(Unwrap(after)));
  }
  bool PrepareFind() override { return Call("Range.PrepareFind").PrepareFind(); }
  Ref<RowSearch> FindRows(const FindArguments& arguments,
                          std::optional<std::span<const int32_t>> columns) override {
    if (!Context().FindsRows()) return nullptr;
    return Wrap(Call("Range.FindRows").FindRows(InnerOf(arguments), columns));
  }
  Ref<Range> SpecialCells(XlCellType type) const override {
    return Wrap(Call("Range.SpecialCells").SpecialCells(type));
  }
  void AutoFilter(const AutoFilterArguments& arguments) override {
    Call("Range.AutoFilter").AutoFilter(arguments);
  }
};

class ForwardingFilter final : public Forwarder<Filter> {
 public:
  using Forwarder::Forwarder;
  bool On() const override { return Call("Filter.On").On(); }
  int32_t Operator() const override { return Call("Filter.Operator").Operator(); }
  Criterion Criteria1() const override { return Call("Filter.Criteria1").Criteria1(); }
  Criterion Criteria2() const override { return Call("Filter.Criteria2").Criteria2(); }
};

class ForwardingAutoFilter final : public Forwarder<AutoFilter> {
 public:
  using Forwarder::Forwarder;
  Ref<host::Range> Range() const override { return Wrap(Call("AutoFilter.Range").Range()); }
  int32_t FiltersCount() const override { return Call("AutoFilter.Filters.Count").FiltersCount(); }
  Ref<Filter> Filters(int32_t index) const override {
    return Wrap(Call("AutoFilter.Filters").Filters(index));
  }
  void ApplyFilter() override { Call("AutoFilter.ApplyFilter").ApplyFilter(); }
};

class ForwardingWorksheet final : public Forwarder<Worksheet> {
 public:
  using Forwarder::Forwarder;
  Ref<Workbook> Parent() const override { return Wrap(Call("Worksheet.Parent").Parent()); }
  Ref<host::Range> Range(std::u16string_view address) const override {
    return Wrap(Call("Worksheet.Range").Range(address));
  }
  Ref<host::Range> Range(const host::Range& cell1, const host::Range& cell2) const override {
    return Wrap(Call("Worksheet.Range").Range(Unwrap(cell1), Unwrap(cell2)));
  }
  Ref<host::Range> Cells() const override { return Wrap(Call("Worksheet.Cells").Cells()); }
  Ref<host::Range> Cells(int32_t row, int32_t column) const override {
    return Wrap(Call("Worksheet.Cells").Cells(row, column));
  }
  Ref<host::Range> UsedRange() const override { return Wrap(Call("Worksheet.UsedRange").UsedRange()); }
  bool AutoFilterMode() const override { return Call("Worksheet.AutoFilterMode").AutoFilterMode(); }
  Ref<host::AutoFilter> AutoFilter() const override {
    return Wrap(Call("Worksheet.AutoFilter").AutoFilter());
  }
  bool ProtectScenarios() const override { return Call("Worksheet.ProtectScenarios").ProtectScenarios(); }
  std::size_t HideRows(std::span<const RowRun> runs) override {
    return Call("Worksheet.HideRows").HideRows(runs.first(std::min(runs.size(), Context().RunsAtOnce())));
  }
};

class ForwardingWorkbook final : public Forwarder<Workbook> {
 public:
  using Forwarder::Forwarder;
  std::u16string Name() const override { return Call("Workbook.Name").Name(); }
  std::u16string FullName() const override { return Call("Workbook.FullName").FullName(); }
  bool ReadOnly() const override { return Call("Workbook.ReadOnly").ReadOnly(); }
  bool Saved() const override { return Call("Workbook.Saved").Saved(); }
  void SetSaved(bool saved) override { Call("Workbook.Saved=").SetSaved(saved); }
  Ref<Worksheet> ActiveSheet() const override { return Wrap(Call("Workbook.ActiveSheet").ActiveSheet()); }
  Connection OnSheetSelectionChange(SelectionHandler handler) override {
    return Call("Workbook.SheetSelectionChange")
        .OnSheetSelectionChange(
            [&context = Context(), handler = std::move(handler)](Worksheet& sheet, Range& target) {
              handler(*context.Wrap(Ref(&sheet)), *context.Wrap(Ref(&target)));
            });
  }
};

class ForwardingControl final : public Forwarder<CommandBarControl> {
 public:
  using Forwarder::Forwarder;
  int32_t Id() const override { return Call("CommandBarControl.Id").Id(); }
  std::u16string Caption() const override { return Call("CommandBarControl.Caption").Caption(); }
  void SetCaption(std::u16string_view caption) override {
    Call("CommandBarControl.Caption=").SetCaption(caption);
  }
  std::u16string OnAction() const override { return Call("CommandBarControl.OnAction").OnAction(); }
  void SetOnAction(std::u16string_view macro) override {
    Call("CommandBarControl.OnAction=").SetOnAction(macro);
  }
  bool BeginGroup() const override { return Call("CommandBarControl.BeginGroup").BeginGroup(); }
  void SetBeginGroup(bool begin) override { Call("CommandBarControl.BeginGroup=").SetBeginGroup(begin); }
  std::u16string Tag() const override { return Call("CommandBarControl.Tag").Tag(); }
  void SetTag(std::u16string_view tag) override { Call("CommandBarControl.Tag=").SetTag(tag); }
  void Delete() override { Call("CommandBarControl.Delete").Delete(); }
  Ref<CommandBarControl> AddControl(MsoControlType type) override {
    return Wrap(Call("CommandBarControl.Controls.Add").AddControl(type));
  }
};

class ForwardingCommandBar final : public Forwarder<CommandBar> {
 public:
  using Forwarder::Forwarder;
  Ref<CommandBarControl> AddControl(MsoControlType type, bool temporary) override {
    return Wrap(Call("CommandBar.Controls.Add").AddControl(type, temporary));
  }
  Ref<CommandBarControl> FindControl(std::optional<int32_t> id,
                                     std::optional<std::u16string_view> tag) const override {
    return Wrap(Call("CommandBar.FindControl").FindControl(id, tag));
  }
};

class ForwardingApplication final : public Forwarder<Application> {
 public:
  using Forwarder::Forwarder;
  Ref<Workbook> ActiveWorkbook() const override {
    return Wrap(Call("Application.ActiveWorkbook").ActiveWorkbook());
  }
  Ref<Worksheet> ActiveSheet() const override { return Wrap(Call("Application.ActiveSheet").ActiveSheet()); }
  Ref<Range> ActiveCell() const override { return Wrap(Call("Application.ActiveCell").ActiveCell()); }
  Ref<Range> Selection() const override { return Wrap(Call("Application.Selection").Selection()); }
  bool ScreenUpdating() const override { return Call("Application.ScreenUpdating").ScreenUpdating(); }
  void SetScreenUpdating(bool on) override { Call("Application.ScreenUpdating=").SetScreenUpdating(on); }
  bool PrepareScreenUpdating() override {
    return Call("Application.PrepareScreenUpdating").PrepareScreenUpdating();
  }
  bool EnableEvents() const override { return Call("Application.EnableEvents").EnableEvents(); }
  void SetEnableEvents(bool on) override { Call("Application.EnableEvents=").SetEnableEvents(on); }
  bool EnableAnimations() const override { return Call("Application.EnableAnimations").EnableAnimations(); }
  void SetEnableAnimations(bool on) override {
    Call("Application.EnableAnimations=").SetEnableAnimations(on);
  }
  std::u16string Version() const override { return Call("Application.Version").Version(); }
  intptr_t Hwnd() const override { return Call("Application.Hwnd").Hwnd(); }
  double Left() const override { return Call("Application.Left").Left(); }
  double Top() const override { return Call("Application.Top").Top(); }
  double Width() const override { return Call("Application.Width").Width(); }
  double Height() const override { return Call("Application.Height").Height(); }
  Ref<CommandBar> CommandBars(std::u16string_view name) const override {
    return Wrap(Call("Application.CommandBars").CommandBars(name));
  }
  void OnKey(std::u16string_view key, std::optional<std::u16string_view> macro) override {
    Call("Application.OnKey").OnKey(key, macro);
  }
};

template <class Wrapper, class Interface>
Ref<Interface> Make(const Ref<Interface>& inner, Forwarding& forwarding) {
  return inner ? Ref<Interface>(new Wrapper(inner, forwarding)) : nullptr;
}

}  // namespace

Ref<Application> Forwarding::Wrap(const Ref<Application>& inner) {
  return Make<ForwardingApplication>(inner, *this);
}
Ref<Workbook> Forwarding::Wrap(const Ref<Workbook>& inner) { return Make<ForwardingWorkbook>(inner, *this); }
Ref<Worksheet> Forwarding::Wrap(const Ref<Worksheet>& inner) {
  return Make<ForwardingWorksheet>(inner, *this);
}
Ref<Range> Forwarding::Wrap(const Ref<Range>& inner) { return Make<ForwardingRange>(inner, *this); }
Ref<RowSearch> Forwarding::Wrap(const Ref<RowSearch>& inner) {
  return Make<ForwardingRowSearch>(inner, *this);
}
Ref<AutoFilter> Forwarding::Wrap(const Ref<AutoFilter>& inner) {
  return Make<ForwardingAutoFilter>(inner, *this);
}
Ref<Filter> Forwarding::Wrap(const Ref<Filter>& inner) { return Make<ForwardingFilter>(inner, *this); }
Ref<CommandBar> Forwarding::Wrap(const Ref<CommandBar>& inner) {
  return Make<ForwardingCommandBar>(inner, *this);
}
Ref<CommandBarControl> Forwarding::Wrap(const Ref<CommandBarControl>& inner) {
  return Make<ForwardingControl>(inner, *this);
}

}  // namespace rowlark::host
