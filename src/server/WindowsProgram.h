// The program that the automation objects are the outside of, composed of its Windows parts.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "forms/FormSet.h"
#include "host/windows/WindowsHelp.h"
#include "host/windows/WindowsMessagePump.h"
#include "host/windows/WindowsRegistry.h"
#include "host/windows/WindowsWindowSystem.h"
#include "settings/SharedState.h"
#include "util/Trace.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark::server {

class WindowsProgram {
  const std::unique_ptr<rowlark::Trace> trace_ = OpenTrace();
  windows::WindowsMessagePump pump_;
  windows::WindowsRegistry registry_{trace_.get()};
  windows::WindowsHelp help_{trace_.get()};
  windows::WindowsWindowSystem windows_;
  mclsVTFileSystem files_;

 public:
  // Language files lie beside the library, the configuration in the user's folder for application data.
  // `idle` is called when no form's message is being handled any more; it may end the program.
  WindowsProgram(std::u16string_view file_name, std::function<void()> idle);

  // A form's message is being handled: the logic may be on the stack.
  bool Busy() const { return windows_.Busy(); }

  rowlark::Trace* Trace() const { return trace_.get(); }

  SharedState Shared;
  FormSet Forms{Shared};
};

}  // namespace rowlark::server
