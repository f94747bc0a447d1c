// Any text is parsed; every key that a line names is found, and a value that is put is read back.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "lang/mclsVTIniFile.h"
#include "util/AutomationError.h"
#include "util/Utf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const rowlark::mclsVTFileSystem files;
  rowlark::mclsVTIniFile ini(files);
  ini.SetSepComment(u";");
  const auto text = rowlark::ToUtf16({reinterpret_cast<const char*>(data), size});
  try {
    ini.SetSourceString(u"Probe = 1\r\n" + text);
    if (ini.GetData(u"PROBE", u"") != u"1") std::abort();
    const auto source = ini.SourceString();
    for (std::size_t at = source.find(u'='); at != source.npos && at < 4096; at = source.find(u'=', at + 1)) {
      const auto begin = source.find_last_of(u"\r\n", at) + 1;
      ini.GetData(std::u16string_view(source).substr(begin, at - begin), u"Section");
    }
  } catch (const rowlark::AutomationError&) {
    std::abort();  // a text that holds something is always a source
  }
  return 0;
}
