// The program that the automation objects are the outside of, composed of its Windows parts.
#pragma once

#include <string_view>

#include "forms/FormSet.h"
#include "host/windows/WindowsHelp.h"
#include "host/windows/WindowsMessagePump.h"
#include "host/windows/WindowsRegistry.h"
#include "host/windows/WindowsWindowSystem.h"
#include "settings/SharedState.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark::server {

class Library {
  windows::WindowsMessagePump pump_;
  windows::WindowsRegistry registry_;
  windows::WindowsHelp help_;
  windows::WindowsWindowSystem windows_;
  mclsVTFileSystem files_;

 public:
  // Language files lie beside the library, the configuration in the user's folder for application data.
  explicit Library(std::u16string_view file_name);

  SharedState Shared;
  FormSet Forms{Shared};
};

}  // namespace rowlark::server
