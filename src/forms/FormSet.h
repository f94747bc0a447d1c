// The forms of the library: one of each at most.
#pragma once

#include "forms/frmAbout.h"
#include "forms/frmEdit.h"
#include "forms/frmOptions.h"
#include "forms/frmSearch.h"
#include "runtime/Forms.h"

namespace rowlark {

class FormSet final : public Forms {
 public:
  explicit FormSet(SharedState& shared) : shared_(shared) {}
  FormSet(const FormSet&) = delete;
  FormSet& operator=(const FormSet&) = delete;

  void ShowSearch(clsVTRLKRuntime& runtime) override;
  void ShowEdit(clsVTRLKRuntime& runtime) override;
  void ShowOptions(clsVTRLKRuntime& runtime) override;
  void ShowAbout(clsVTRLKRuntime& runtime) override;
  void Unload(const clsVTRLKRuntime* runtime) noexcept override;

  // The forms that are loaded; otherwise null.
  Ref<frmSearch> Search() const { return Loaded(search_); }
  Ref<frmEdit> Edit() const { return Loaded(edit_); }
  Ref<frmOptions> Options() const { return Loaded(options_); }
  Ref<frmAbout> About() const { return Loaded(about_); }

 private:
  template <class Form>
  static Ref<Form> Loaded(const Ref<Form>& form) {
    return form && form->Loaded() ? form : nullptr;
  }
  // The form, loaded for the runtime object unless it is loaded already; null where there are no windows.
  template <class Form>
  Ref<Form> Load(Ref<Form>& form, clsVTRLKRuntime& runtime);

  SharedState& shared_;
  Ref<frmSearch> search_;
  Ref<frmEdit> edit_;
  Ref<frmOptions> options_;
  Ref<frmAbout> about_;
};

}  // namespace rowlark
