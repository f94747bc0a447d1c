#include "forms/FormSet.h"

namespace rowlark {

template <class Form>
Ref<Form> FormSet::Load(Ref<Form>& form, clsVTRLKRuntime& runtime) {
  if (Loaded(form)) return form;
  form = MakeRef<Form>(shared_);
  Ref<Form> loaded = form;
  if (!loaded->Open()) return nullptr;
  loaded->SetObjectRLKRuntime(runtime);
  return loaded;
}

void FormSet::ShowSearch(clsVTRLKRuntime& runtime) {
  const auto form = Load(search_, runtime);
  if (!form) return;
  form->Show();
  form->uActivateCboText();
}

void FormSet::ShowEdit(clsVTRLKRuntime& runtime) {
  const auto form = Load(edit_, runtime);
  if (!form) return;
  form->Show();
  form->box0.SetFocus();
}

void FormSet::ShowOptions(clsVTRLKRuntime& runtime) {
  const bool filled = Options() != nullptr;
  const auto form = Load(options_, runtime);
  if (!form) return;
  if (!filled) form->Init();
  form->Show();
}

void FormSet::ShowAbout(clsVTRLKRuntime& runtime) {
  const bool waited_for = About() != nullptr;
  const auto form = Load(about_, runtime);
  if (!form) return;
  form->Show(true);
  if (waited_for) return;
  runtime.Wait([&form] { return form->Loaded(); });
  form->Unload();
}

void FormSet::Unload(const clsVTRLKRuntime* runtime) noexcept {
  const auto unload = [runtime](const auto form) {  // by value: it may be replaced meanwhile
    if (form && (runtime == nullptr || form->WorksFor(*runtime))) form->Unload();
  };
  unload(Options());
  unload(Search());
  unload(Edit());
}

}  // namespace rowlark
