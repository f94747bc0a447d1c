// Looks into a running workbench for the end-to-end tests. Reads one request a line and answers each with one
// line (UTF-8), "=" and a value or "!" and an error:
//   connect        takes the running Application object
//   ? EXPRESSION   a VBScript expression; the members of Application stand for themselves
//   STATEMENT      a VBScript statement
//   minimise, restore   the main window, as its caption's buttons do
//   windows        "=" and the number of lines that follow, one for each visible window of the workbench,
//   each
//                  before those inside it: handle, parent, class, text, left, top, width, height, flags (E
//                  enabled, F has the focus, C checked), joined by tabs
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include <windows.h>

#include <activscp.h>
#include <oleauto.h>

#include "AutomationHost.h"
#include "automation/ComPtr.h"
#include "automation/Counted.h"
#include "automation/Variant.h"
#include "util/Utf.h"

namespace rowlark {
namespace {

using automation::ComPtr;
using automation::Variant;

constexpr CLSID kVBScript = {0xb54f3741, 0x5b07, 0x11cf, {0xa4, 0xb0, 0x00, 0xaa, 0x00, 0x4a, 0x55, 0xe8}};

std::string Line(std::u16string_view text) {
  std::string line = ToUtf8(text);
  for (char& c : line) {
    if (c == '\r' || c == '\n' || c == '\t') c = ' ';
  }
  return line;
}

// A script engine to which the Application's members are known.
class Script final : public automation::Counted<IActiveScriptSite> {
 public:
  explicit Script(ComPtr<IDispatch> application) : application_(std::move(application)) {}

  void Start() {
    CoCreateInstance(kVBScript, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IActiveScript),
                     reinterpret_cast<void**>(engine_.Put()));
    parser_ = ComPtr<IActiveScriptParse>::From(engine_.get());
    if (!parser_) return;
    engine_->SetScriptSite(this);
    parser_->InitNew();
    engine_->AddNamedItem(L"Application", SCRIPTITEM_ISVISIBLE | SCRIPTITEM_GLOBALMEMBERS);
    engine_->SetScriptState(SCRIPTSTATE_STARTED);
  }
  void Stop() {
    if (engine_) engine_->Close();
    engine_ = nullptr;
  }

  std::string Run(const std::string& code, bool expression) {
    if (!parser_) return "! no script engine";
    error_.clear();
    Variant value;
    const std::u16string wide = ToUtf16(code);
    const HRESULT result = parser_->ParseScriptText(
        windows::AsWide(wide.c_str()), nullptr, nullptr, nullptr, 0, 0,
        expression ? SCRIPTTEXT_ISEXPRESSION : SCRIPTTEXT_ISVISIBLE, value.Put(), nullptr);
    if (FAILED(result)) return "! " + (error_.empty() ? std::to_string(result) : error_);
    if (value.vt == VT_NULL) return "= Null";
    if (FAILED(VariantChangeType(&value, &value, VARIANT_ALPHABOOL, VT_BSTR))) return "! not a single value";
    return "= " + Line(automation::View(value.bstrVal));
  }

  STDMETHODIMP GetLCID(LCID*) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP GetItemInfo(LPCOLESTR, DWORD mask, IUnknown** item, ITypeInfo** type) noexcept override {
    if ((mask & SCRIPTINFO_ITYPEINFO) != 0) *type = nullptr;
    if ((mask & SCRIPTINFO_IUNKNOWN) != 0) *item = ComPtr<IDispatch>(application_).Detach();
    return S_OK;
  }
  STDMETHODIMP GetDocVersionString(BSTR*) noexcept override { return E_NOTIMPL; }
  STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) noexcept override { return S_OK; }
  STDMETHODIMP OnStateChange(SCRIPTSTATE) noexcept override { return S_OK; }
  STDMETHODIMP OnScriptError(IActiveScriptError* error) noexcept override {
    EXCEPINFO exception{};
    error->GetExceptionInfo(&exception);
    error_ = std::to_string(exception.scode) + ' ' + Line(automation::View(exception.bstrDescription));
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return S_OK;
  }
  STDMETHODIMP OnEnterScript() noexcept override { return S_OK; }
  STDMETHODIMP OnLeaveScript() noexcept override { return S_OK; }

 private:
  ComPtr<IDispatch> application_;
  ComPtr<IActiveScript> engine_;
  ComPtr<IActiveScriptParse> parser_;
  std::string error_;
};

std::u16string TextOf(HWND window) {
  wchar_t text[1024] = L"";
  DWORD_PTR length = 0;
  SendMessageTimeoutW(window, WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text), SMTO_ABORTIFHUNG,
                      1000, &length);
  return windows::AsUtf16(text);
}

struct Listing {
  DWORD process;
  HWND focus;
  std::vector<std::string> lines;

  static BOOL CALLBACK AddTopLevel(HWND window, LPARAM listing) {
    auto& self = *reinterpret_cast<Listing*>(listing);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != self.process || IsWindowVisible(window) == 0) return TRUE;
    Add(window, listing);
    EnumChildWindows(window, Add, listing);
    return TRUE;
  }
  static BOOL CALLBACK Add(HWND window, LPARAM listing) {
    auto& self = *reinterpret_cast<Listing*>(listing);
    if (IsWindowVisible(window) == 0) return TRUE;
    const auto number = [](HWND handle) { return std::to_string(reinterpret_cast<intptr_t>(handle)); };
    wchar_t name[128] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    RECT place{};
    GetWindowRect(window, &place);
    std::string flags;
    if (IsWindowEnabled(window) != 0) flags += 'E';
    if (window == self.focus) flags += 'F';
    if (std::wstring_view(name) == L"Button" && SendMessageW(window, BM_GETCHECK, 0, 0) == BST_CHECKED)
      flags += 'C';
    std::string line = number(window) + '\t' + number(GetAncestor(window, GA_PARENT)) + '\t' +
                       Line(windows::AsUtf16(name)) + '\t' + Line(TextOf(window));
    for (const LONG value : {place.left, place.top, place.right - place.left, place.bottom - place.top}) {
      line += '\t' + std::to_string(value);
    }
    self.lines.push_back(line + '\t' + flags);
    return TRUE;
  }
};

std::string Command(WPARAM command) {
  const HWND main = FindWindowW(L"XLMAIN", nullptr);
  return PostMessageW(main, WM_SYSCOMMAND, command, 0) != 0 ? "= done" : "! no workbench";
}

std::string Windows() {
  const HWND main = FindWindowW(L"XLMAIN", nullptr);
  if (main == nullptr) return "! no workbench";
  Listing listing{};
  const DWORD thread = GetWindowThreadProcessId(main, &listing.process);
  GUITHREADINFO info{};
  info.cbSize = sizeof info;
  if (GetGUIThreadInfo(thread, &info) != 0) listing.focus = info.hwndFocus;
  EnumWindows(Listing::AddTopLevel, reinterpret_cast<LPARAM>(&listing));
  std::string answer = "= " + std::to_string(listing.lines.size());
  for (const auto& line : listing.lines) answer += '\n' + line;
  return answer;
}

void Serve() {
  ComPtr<Script> script;
  const auto disconnect = [&script] {
    if (script) script->Stop();
    script = nullptr;
  };
  for (std::string request; std::getline(std::cin, request);) {
    if (!request.empty() && request.back() == '\r') request.pop_back();
    std::string answer = "! not connected";
    if (request == "windows") {
      answer = Windows();
    } else if (request == "minimise" || request == "restore") {
      answer = Command(request == "restore" ? SC_RESTORE : SC_MINIMIZE);
    } else if (request == "connect") {
      disconnect();
      ComPtr<IUnknown> running;
      const HRESULT result = GetActiveObject(workbench::kApplicationClass, nullptr, running.Put());
      if (SUCCEEDED(result)) {
        script = new Script(ComPtr<IDispatch>::From(running.get()));
        script->Start();
      }
      answer = SUCCEEDED(result) ? "= connected" : "! " + std::to_string(result);
    } else if (script && request.starts_with("? ")) {
      answer = script->Run(request.substr(2), true);
    } else if (script) {
      answer = script->Run(request, false);
    }
    std::cout << answer << std::endl;
  }
  disconnect();
}

}  // namespace
}  // namespace rowlark

int main() {
  if (FAILED(CoInitialize(nullptr))) return 1;
  rowlark::Serve();
  CoUninitialize();
  return 0;
}
