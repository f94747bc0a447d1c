// The part of the add-in workbook: creates the runtime object and runs its macros, late-bound, as the
// workbook's own code does.
#pragma once

#include <memory>
#include <string_view>

#include "automation/ComPtr.h"
#include "host/windows/Dispatch.h"
#include "util/Trace.h"

namespace rowlark::workbench {

class AddIn {
 public:
  // `application` is the host's automation object.
  explicit AddIn(automation::ComPtr<IDispatch> application) : application_(std::move(application)) {}

  // Makes the runtime object and lets it build its menu and take its keys. Throws host::Error, also when the
  // library is not registered; then there is no add-in.
  void Open();
  // Gives keys and menu back and closes the forms.
  void Close() noexcept;

  // Runs the macro of a menu item or a key; nothing happens for an unknown one or without the library.
  // Throws host::Error.
  void Run(std::u16string_view name);

 private:
  void AssignKeys(const windows::Dispatch& runtime, bool assign);
  void AssignKey(std::u16string_view key, std::u16string_view macro) noexcept;
  void Unhide();

  const std::unique_ptr<Trace> trace_ = OpenTrace();
  windows::Dispatch application_;
  windows::Dispatch runtime_;
  windows::Member on_key_{L"OnKey"};
};

}  // namespace rowlark::workbench
