// What is one per loaded library, however many runtime objects there are. Whoever composes the program (the
// library, the command line, a test) makes one and hands it down.
#pragma once

#include <memory>

#include "host/MessagePump.h"
#include "host/spreadsheet.h"
#include "lang/clsVTRLKLang.h"

namespace rowlark {

class SharedState {
 public:
  explicit SharedState(host::MessagePump& pump) : Pump(pump) {}
  SharedState(const SharedState&) = delete;
  SharedState& operator=(const SharedState&) = delete;

  // Every runtime object holds the state: the first one sets it up, the last one releases it.
  void Acquire() {
    if (users_++ > 0) return;
    Terminating = false;
    Language = std::make_shared<clsVTRLKLang>();
  }
  void Release() {
    if (--users_ > 0) return;
    Terminating = true;
    ExcelApp = nullptr;
    Language.reset();
  }

  host::MessagePump& Pump;
  Ref<host::Application> ExcelApp;         // nothing until the add-in has set it
  std::shared_ptr<clsVTRLKLang> Language;  // present while a runtime object lives
  bool Terminating = false;                // every wait and long loop ends when it is set

 private:
  int users_ = 0;
};

}  // namespace rowlark
