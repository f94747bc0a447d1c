#include "forms/FormSet.h"

namespace rowlark {

template <class Form>
Ref<Form> FormSet::Load(Ref<Form>& form, clsVTRLKRuntime& runtime) {
  if (const auto loaded = Loaded(form)) {
    loaded->Float();
    return Loaded(loaded);
  }
  form = MakeRef<Form>(shared_);
  const Ref<Form> made = form;
  if (!made->Open()) return nullptr;
  made->SetObjectRLKRuntime(runtime);
  return Loaded(made);
}

// While a cell is edited nothing is searched for.
void FormSet::ShowSearch(clsVTRLKRuntime& runtime) {
  if (Edit()) return ShowEdit(runtime);
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
  if (!filled) {
    form->ProfileChanged = [this] {
      if (const auto search = Search()) search->uProfileChanged();
    };
    form->HistoryCleared = [this] {
      if (const auto search = Search()) search->uHistoryCleared();
    };
    form->Init();
  }
  if (form->Loaded()) form->Show();
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
