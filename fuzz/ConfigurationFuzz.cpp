// Any text is read as a configuration; what is read of it is written in a form that reads the same.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "host/standalone/Headless.h"
#include "settings/clsVTRLKItems.h"
#include "util/Utf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  rowlark::standalone::Headless none;
  const rowlark::mclsVTFileSystem files;
  rowlark::SharedState shared({none.messages, none.registry, none.help, none.windows, files, u"", u""});
  shared.Acquire();
  {
    rowlark::clsVTRLKItems items(shared);
    items.ToObject(rowlark::ToUtf16({reinterpret_cast<const char*>(data), size}));
    const auto text = items.ToString(false);
    rowlark::clsVTRLKItems again(shared);
    again.ToObject(text);
    // A history that is not used, or is emptied by the first load of a run, is written but not read.
    if (items.RecentItems->Use && !items.RecentItems->IsTemporary && again.ToString(false) != text)
      std::abort();
  }
  shared.Release();
  return 0;
}
