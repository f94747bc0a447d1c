// Spreadsheet windows around the sheet model, in which the whole add-in can be used without Excel:
//   workbench [TABLE.CSV...]
#include <cstdlib>
#include <exception>

#include <windows.h>

#include <commctrl.h>
#include <ole2.h>
#include <shellapi.h>

#include "Workbench.h"
#include "util/Scope.h"
#include "util/windows/WideText.h"

namespace rowlark::workbench {
namespace {

int Run() {
  const HRESULT entered = OleInitialize(nullptr);
  const ScopeExit leave([entered] {
    if (SUCCEEDED(entered)) OleUninitialize();
  });
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
  InitCommonControlsEx(&classes);
  Workbench workbench;
  for (int i = 1; i < __argc; ++i) workbench.OpenFile(windows::AsUtf16(__wargv[i]));
  if (__argc < 2) workbench.OpenExample();
  workbench.Update();
  workbench.StartAddIn();
  return workbench.Run();
}

}  // namespace
}  // namespace rowlark::workbench

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
  try {
    return rowlark::workbench::Run();
  } catch (...) {
    rowlark::workbench::ReportFailure(nullptr);
    return EXIT_FAILURE;
  }
}
