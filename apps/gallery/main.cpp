// Shows every form of the library with a table behind it and takes a picture of each.
//   forms_gallery LIBRARY TABLE LANGUAGE FOLDER
// LANGUAGE is the name of a language file without its ending; pictures are FOLDER\form-LANGUAGE.bmp.
#include <windows.h>

#include <commctrl.h>

#include <shellapi.h>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "AutomationHost.h"
#include "Screen.h"
#include "automation/Variant.h"
#include "csv/CsvFile.h"
#include "host/standalone/Worksheet.h"
#include "util/windows/Handles.h"
#include "util/windows/WideText.h"
#include "vtrlk_runtime_h.h"

namespace rowlark::gallery {
namespace {

using automation::Bstr;
using automation::ComPtr;
using automation::Variant;

constexpr UINT kSettled = 700;  // milliseconds, after which a form has painted itself and searched

void Require(HRESULT result, const char* what) {
  if (FAILED(result)) throw std::runtime_error(what);
}

HWND Child(HWND form, const wchar_t* type, int number = 0) {
  HWND child = nullptr;
  for (int i = 0; i <= number; ++i) {
    do {
      child = ::FindWindowExW(form, child, type, nullptr);
    } while (child != nullptr && ::IsWindowVisible(child) == 0);
  }
  return child;
}

// Does one thing after the other, each when what came before has settled, from whatever loop processes
// messages then. One at a time.
class Steps {
 public:
  explicit Steps(std::vector<std::function<void()>> steps) : steps_(std::move(steps)) {
    current = this;
    timer_ = ::SetTimer(nullptr, 0, kSettled, DoNext);
  }
  Steps(const Steps&) = delete;
  Steps& operator=(const Steps&) = delete;
  ~Steps() {
    ::KillTimer(nullptr, timer_);
    current = nullptr;
  }
  bool Done() const { return next_ == steps_.size(); }

 private:
  static void CALLBACK DoNext(HWND, UINT, UINT_PTR, DWORD) {
    if (current != nullptr && !current->Done()) current->steps_[current->next_++]();
  }

  static inline Steps* current = nullptr;  // a timer without a window is told nothing else

  std::vector<std::function<void()>> steps_;
  std::size_t next_ = 0;
  UINT_PTR timer_ = 0;
};

class Gallery {
 public:
  Gallery(const std::wstring& library, const std::filesystem::path& table, std::wstring language,
          std::wstring folder)
      : library_(::LoadLibraryW(library.c_str())),
        language_(std::move(language)),
        folder_(std::move(folder)) {
    if (!library_) throw std::runtime_error("the library can not be loaded");
    const auto get_class = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(::GetProcAddress(*library_, "DllGetClassObject")));
    ComPtr<IClassFactory> factory;
    Require(
        get_class(__uuidof(::clsVTRLKRuntime), IID_IClassFactory, reinterpret_cast<void**>(factory.Put())),
        "class");
    Require(factory->CreateInstance(nullptr, __uuidof(_clsVTRLKRuntime),
                                    reinterpret_cast<void**>(runtime_.Put())),
            "runtime object");

    const auto book = model_->AddWorkbook(u"C:\\Data\\customers.csv");
    auto& sheet = static_cast<standalone::Worksheet&>(*book->ActiveSheet());
    CsvFile::Open(table).ForEachRow([&](std::span<const std::string_view> cells) { sheet.AppendRow(cells); },
                                    [&] { sheet.Clear(); });
    host_ = workbench::ExposeApplication(model_);
    Require(runtime_->putref_ExcelApp(Variant(host_.get())), "host");
    ComPtr<_clsVTRLKItems> items;
    Require(runtime_->get_Items(items.Put()), "settings");
    Require(items->put_CfgFileName(Bstr(windows::AsUtf16((folder_ + L"\\gallery.cfg").c_str())).get()),
            "configuration");
    Require(runtime_->Init(), "start");
    ComPtr<_clsVTRLKLang> catalogue;
    Require(runtime_->get_Language(catalogue.Put()), "language");
    Require(catalogue->put_LangFile(Bstr(windows::AsUtf16((language_ + L".lng").c_str())).get()),
            "language file");
    ComPtr<_clsVTRLKItem> everything;
    ComPtr<_clsVTRLKItem> own;
    Require(items->get_DefaultItem(everything.Put()), "profile");
    Require(everything->Clone(Bstr(u"C:\\Data\\customers.csv").get(), own.Put()), "profile");
    VARIANT_BOOL added = VARIANT_FALSE;
    Require(items->Add(own.get(), &added), "profile");
    Require(items->put_HotKeyUnhide(Bstr(u"^+u").get()), "hotkey");
  }
  ~Gallery() {
    runtime_->put_ExcelApp(Variant());
    runtime_ = nullptr;
  }

  void TakeAll() {
    const auto type = [](const wchar_t* text) {
      return [text](HWND form) {
        for (const wchar_t* c = text; *c != 0; ++c) {
          ::PostMessageW(Child(Child(form, WC_COMBOBOXW), WC_EDITW), WM_CHAR, static_cast<WPARAM>(*c), 0);
        }
      };
    };
    const auto page = [](WPARAM number) {
      return [number](HWND form) {
        const HWND tree = Child(form, WC_TREEVIEWW);
        LRESULT node = ::SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0);
        for (WPARAM i = 0; i < number; ++i) node = ::SendMessageW(tree, TVM_GETNEXTITEM, TVGN_NEXT, node);
        ::SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, node);
      };
    };
    const auto search = [this] { runtime_->ShowSearch(); };
    const auto options = [this] { runtime_->ShowOptions(); };
    Take(L"search", search, type(L"germany"));
    Take(L"search-error", search, type(L"nothing like this"));
    const auto edit = [this] {
      model_->ActiveSheet()->Cells(4, 3)->Activate();
      runtime_->StartEdit();
    };
    Take(L"edit", edit, {});
    Take(L"options-common", options, page(0));
    Take(L"options-books", options, page(1));
    Take(L"options-keyboard", options, page(2));
    Take(L"options-edit", options, page(3));
    Take(L"select-range", options, [page](HWND form) {
      page(1)(form);
      // The first button that is not much wider than high.
      RECT area{};
      HWND pick = nullptr;
      for (int number = 0; pick == nullptr || area.right > 2 * area.bottom; ++number) {
        pick = Child(form, WC_BUTTONW, number);
        ::GetClientRect(pick, &area);
      }
      ::PostMessageW(pick, BM_CLICK, 0, 0);
    });
    Take(L"about", [this] { runtime_->About(); }, {});
  }

 private:
  // Opens a form, does something in it, and takes its picture when it has settled.
  void Take(const wchar_t* name, const std::function<void()>& open,
            const std::function<void(HWND)>& prepare) {
    std::string failure = "no form has been opened";
    const auto prepare_it = [&] {
      if (prepare) prepare(::GetActiveWindow());
    };
    const auto take = [&] {
      const HWND form = ::GetActiveWindow();
      try {
        SavePicture(form, folder_ + L'\\' + name + L'-' + language_ + L".bmp");
        failure.clear();
      } catch (const std::exception& error) {
        failure = error.what();
      }
      ::SendMessageW(form, WM_CLOSE, 0, 0);
    };
    const Steps steps({prepare_it, take});
    open();
    while (!steps.Done()) Process(10);
    if (!failure.empty()) throw std::runtime_error(failure);
  }

  static void Process(DWORD milliseconds) {
    const DWORD begin = ::GetTickCount();
    for (DWORD passed = 0; passed < milliseconds; passed = ::GetTickCount() - begin) {
      ::MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds - passed, QS_ALLINPUT);
      MSG message;
      while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
      }
    }
  }

  windows::LoadedLibrary library_;  // goes when nothing of it is held any more
  std::wstring language_;
  std::wstring folder_;
  Ref<standalone::Application> model_ = MakeRef<standalone::Application>();
  ComPtr<IDispatch> host_;
  ComPtr<_clsVTRLKRuntime> runtime_;
};

}  // namespace
}  // namespace rowlark::gallery

int main() {
  int count = 0;
  wchar_t** arguments = ::CommandLineToArgvW(::GetCommandLineW(), &count);
  if (count != 5) {
    std::fputs("forms_gallery LIBRARY TABLE LANGUAGE FOLDER\n", stderr);
    return 2;
  }
  if (FAILED(::CoInitialize(nullptr))) return 1;
  try {
    rowlark::gallery::Gallery(arguments[1], arguments[2], arguments[3], arguments[4]).TakeAll();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "forms_gallery: %s\n", error.what());
    return 1;
  }
  ::CoUninitialize();
  return 0;
}
