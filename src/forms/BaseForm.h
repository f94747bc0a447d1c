// What all forms have in common: texts that follow the language, a place on the screen, the host's window.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "controls/Form.h"
#include "runtime/HelpTopic.h"
#include "runtime/clsVTRLKRuntime.h"
#include "settings/SharedState.h"
#include "util/Event.h"
#include "util/Scope.h"
#include "util/Trace.h"

namespace rowlark {

class BaseForm : public controls::Form {
 public:
  // Makes the form's windows, hidden, and loads it; false where there are no windows. Once.
  bool Open();
  // Hands the form the runtime object that it works for. Afterwards the form may be unloaded, as after
  // everything that calls the host.
  virtual void SetObjectRLKRuntime(clsVTRLKRuntime& runtime);
  bool WorksFor(const clsVTRLKRuntime& runtime) const { return runtime_ == &runtime; }

  // Floats above the host's main window; without one on its own. A host may have several: the one in front.
  void Float() noexcept;

 protected:
  // F1 opens the help at the form's topic.
  BaseForm(SharedState& shared, std::u16string_view name, HelpTopic topic);

  virtual void ApplyCaptions() = 0;
  virtual void evtLang_NewLangLoaded() { ApplyCaptions(); }
  void Form_Message() noexcept override { shared_.GiveBackFlags(); }
  void Form_Help() override;
  void Form_Unload() override;

  std::u16string Text(std::u16string_view key, std::u16string_view default_text) const {
    return shared_.Language->GetText(key, default_text);
  }
  // With the blanks that keep a frame's border off the letters.
  static std::u16string Padded(std::u16string_view caption);
  // Does what may fail; false when it did. Hosts, registries and files fail at times, and a form then goes on
  // without what it wanted of them.
  template <class Action>
  bool Attempt(Action action, SourceLocation where = SourceLocation::Current()) const noexcept {
    return rowlark::Attempt(shared_.Platform.Trace, action, where);
  }
  // The reference keeps the host alive that a call back may take away. Throws host::Error without a host.
  Ref<host::Application> Host() const;
  // Connects a handler for what others raise: the form lives until it has ended, and hears of nothing once it
  // is unloaded.
  template <class Action>
  auto Handler(Action action, SourceLocation where = SourceLocation::Current()) {
    return [this, action, where](auto&&... arguments) {
      this->OnUser([&] { this->Attempt([&] { action(arguments...); }, where); });
    };
  }
  // The selections made in the active workbook; keeps what it has listened to where there is none.
  void ListenToSelection(Connection& connection, std::function<void()> action) noexcept;

  // Positions in the registry: "left;top" in twips. Moves the form to a stored one; false when nothing is
  // stored under that name.
  bool RestorePosition(std::u16string_view value_name);
  void StorePosition(std::u16string_view value_name) const;
  void CentreOverHost() noexcept;
  // Moves the form there, or as near as its title can be seen and reached on a screen.
  void MoveOntoScreen(controls::TwipPoint position);

  SharedState& shared_;
  // Present while the form is loaded, once it has been handed over. While the form is being unloaded the
  // object may go with everything that calls the host or processes messages.
  clsVTRLKRuntime* runtime_ = nullptr;

 private:
  Connection runtime_gone_;
  Connection evtLang_;
};

}  // namespace rowlark
