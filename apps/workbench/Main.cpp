// A spreadsheet window around the sheet model, in which the whole add-in can be used without Excel:
//   workbench [TABLE.CSV...]
#include <cstdlib>
#include <exception>

#include <windows.h>

#include <commctrl.h>
#include <ole2.h>
#include <shellapi.h>

#include "MainWindow.h"
#include "automation/Variant.h"

namespace rowlark::workbench {
namespace {

class Apartment {
 public:
  Apartment() : result_(OleInitialize(nullptr)) {}
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() {
    if (SUCCEEDED(result_)) OleUninitialize();
  }

 private:
  HRESULT result_;
};

// As that of the host, the loop knows no windows but its own.
int Run(int show) {
  const Apartment apartment;
  const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES | ICC_STANDARD_CLASSES};
  InitCommonControlsEx(&classes);
  MainWindow window;
  for (int i = 1; i < __argc; ++i) window.OpenFile(automation::Narrow(__wargv[i]));
  if (__argc < 2) window.OpenExample();
  window.Show(show);
  window.StartAddIn();
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

}  // namespace
}  // namespace rowlark::workbench

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int show) {
  try {
    return rowlark::workbench::Run(show);
  } catch (...) {
    rowlark::workbench::ReportFailure(nullptr);
    return EXIT_FAILURE;
  }
}
