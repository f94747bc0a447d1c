// The add-in within the office: the runtime object, its forms and settings, composed of the office's parts.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "calc/CalcHelp.h"
#include "calc/ShortCuts.h"
#include "forms/FormSet.h"
#include "host/calc/Application.h"
#include "host/calc/forms/CalcMessagePump.h"
#include "host/calc/forms/CalcWindowSystem.h"
#include "host/fileregistry/FileRegistry.h"
#include "runtime/clsVTRLKRuntime.h"
#include "settings/Macros.h"
#include "settings/SharedState.h"
#include "util/Trace.h"
#include "util/mclsVTFileSystem.h"

namespace rowlark::calc {

class AddIn {
  const std::shared_ptr<rowlark::Trace> trace_ = OpenTrace();
  CalcMessagePump pump_;
  host::FileRegistry registry_;
  CalcHelp help_;
  CalcWindowSystem windows_;
  mclsVTFileSystem files_;
  ShortCuts short_cuts_;
  Ref<calc::Application> application_;
  SharedState shared_;
  FormSet forms_{shared_};
  clsVTRLKRuntime runtime_{shared_, forms_};
  Connection evt_lang_;

 public:
  // On the office's main thread. `folder` is that of the extension, with language files and pictures below
  // it. `idle` is called when nothing of the add-in is on the stack any more; it throws nothing, and may end
  // the add-in. `captions_changed` is called when another language has been chosen.
  AddIn(const Desk::Context& office, const std::u16string& folder, std::function<void()> idle,
        std::function<void()> captions_changed);
  AddIn(const AddIn&) = delete;
  AddIn& operator=(const AddIn&) = delete;
  ~AddIn();

  // Does what a menu item or a key stands for. Throws nothing.
  void Run(Macro macro) noexcept;
  // The caption of its menu item in the user's language, with "&" before its accelerator.
  std::u16string CaptionOf(Macro macro);

  // Something of it is on the stack.
  bool Busy() const { return windows_.Busy(); }
  // While that lives it is, too.
  Desk::Visit Working() { return windows_.Working(); }
  // See Desk::Post.
  void Post(std::function<void()> work) noexcept { windows_.Post(std::move(work)); }
  // The office ends: forms go, waits end, threads are joined.
  void Stop() noexcept;
};

}  // namespace rowlark::calc
