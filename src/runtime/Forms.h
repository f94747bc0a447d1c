// The forms, as the runtime opens and closes them.
#pragma once

namespace rowlark {

class clsVTRLKRuntime;

// A form that is loaded already is shown again, in front and with the focus, whichever runtime object loaded
// it.
class Forms {
 public:
  virtual ~Forms() = default;

  // While a cell is edited, the edit form instead.
  virtual void ShowSearch(clsVTRLKRuntime& runtime) = 0;
  virtual void ShowEdit(clsVTRLKRuntime& runtime) = 0;
  virtual void ShowOptions(clsVTRLKRuntime& runtime) = 0;
  // Modally: returns when the form has been closed.
  virtual void ShowAbout(clsVTRLKRuntime& runtime) = 0;

  // The options form, then the search form, then the edit form, each only when it is loaded; those of one
  // runtime object, or all of them.
  virtual void Unload(const clsVTRLKRuntime* runtime) noexcept = 0;
};

}  // namespace rowlark
