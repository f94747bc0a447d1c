// A user in front of the add-in: a sheet, the forms, keys and mouse, and time that passes.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "FaultyHost.h"
#include "Library.h"
#include "Sheet.h"
#include "TempFolder.h"
#include "controls/Keyboard.h"
#include "runtime/clsVTRLKRuntime.h"
#include "settings/Product.h"

namespace rowlark::testing {

constexpr const char* kTable = "Name,City|ann,x|bob,y|ann,y|cid,x|bob,ann|dan,z|ann,x";

struct Desk : TempFolder, SampleHost, TestLibrary {
  explicit Desk(std::string_view cells = kTable, std::u16string_view languages = ToUtf16(ROWLARK_LANGUAGES))
      : SampleHost(cells), TestLibrary(languages, ToUtf16(Path().string() + "/")) {
    pump.OnPass = [this](int64_t) {
      windows.FireTimers();
      if (!script.empty()) {
        const auto next = std::move(script.front());
        script.erase(script.begin());
        next();
      }
      if (++passes_ > 100'000) runtime->DoStop();  // a wait that nothing ends
    };
    Start(application);
  }

  // A run of the host from its start on, as the add-in workbook drives it.
  void Start(const Ref<host::Application>& host) {
    runtime.reset();
    runtime = std::make_unique<clsVTRLKRuntime>(shared, forms);
    runtime->SetExcelApp(host);
    runtime->Init();
    runtime->MenuCreate();
    searching = runtime->SearchingEvent().Connect([this](bool& on) { events += on ? 'T' : 'F'; });
  }

  Ref<frmSearch> Search() {
    runtime->ShowSearch();
    return forms.Search();
  }
  Ref<frmOptions> Options(int32_t page = 0) {
    runtime->ShowOptions();
    forms.Options()->tvw0.UserPicked(page);
    return forms.Options();
  }
  // Without waiting for it, as StartEdit does.
  Ref<frmEdit> Edit() {
    forms.ShowEdit(*runtime);
    return forms.Edit();
  }

  std::u16string Stored(std::u16string_view value) {
    return shared.Registry.GetString(host::Hive::CurrentUser, kProductKey, value, u"(none)");
  }
  void Store(std::u16string_view value, std::u16string_view text) {
    shared.Registry.SetString(host::Hive::CurrentUser, kProductKey, value, text);
  }
  bool NoFormIsLeft() const {
    return windows.Forms.empty() && !shared.SearchFormLoaded && !shared.EditFormOpen &&
           !shared.OptionsFormOpen;
  }
  std::string Rows() const { return VisibleRows(8); }

  // What happens while operations process messages: one entry a pass.
  std::vector<std::function<void()>> script;
  std::unique_ptr<clsVTRLKRuntime> runtime;
  std::string events;  // of Searching: T at the start, F at the end
  Connection searching;

 private:
  int64_t passes_ = 0;
};

// Presses the keys that type a text.
inline void Type(controls::Form& form, std::u16string_view text) {
  for (const char16_t c : text) PressKey(form, static_cast<int32_t>(ToUpper(char32_t{c})), 0, c);
}

}  // namespace rowlark::testing
