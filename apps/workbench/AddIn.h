// The part of the add-in workbook: creates the runtime object and runs its macros, late-bound, as the
// workbook's own code does.
#pragma once

#include <string_view>

#include "automation/ComPtr.h"
#include "forms/HotKey.h"
#include "host/windows/Dispatch.h"
#include "util/Trace.h"

namespace rowlark::workbench {

class AddIn {
 public:
  // `application` is the host's automation object, `model` what it stands for.
  AddIn(host::Application& model, automation::ComPtr<IDispatch> application, Trace* trace)
      : model_(model), application_(std::move(application)), trace_(trace) {}

  // Makes the runtime object and lets it build its menu and take its keys. Throws host::Error, also when the
  // library is not registered; then there is no add-in.
  void Open();
  // Gives keys and menu back and closes the forms.
  void Close() noexcept;

  // Runs the macro of a menu item or a key; nothing happens for an unknown one or without the library.
  // Throws host::Error.
  void Run(std::u16string_view name);

 private:
  static HotKeys KeysOf(const windows::Dispatch& runtime);
  void Unhide();

  host::Application& model_;
  windows::Dispatch application_;
  windows::Dispatch runtime_;
  Trace* const trace_;
};

}  // namespace rowlark::workbench
