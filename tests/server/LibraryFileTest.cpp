// What the library's file tells the system's loader: what it loads, what it gives, and how it is protected.
#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>
#include <utility>

#include "RuntimeLibrary.h"

namespace rowlark {
namespace {

using Names = std::set<std::string>;

// The headers stand in memory as they do in the file.
class LibraryFile : public ::testing::Test {
 protected:
  template <class T>
  const T* At(DWORD address) const {
    return reinterpret_cast<const T*>(base_ + address);
  }
  const IMAGE_NT_HEADERS& Headers() const {
    return *At<IMAGE_NT_HEADERS>(static_cast<DWORD>(At<IMAGE_DOS_HEADER>(0)->e_lfanew));
  }
  template <class T>
  const T* Directory(int index) const {
    return At<T>(Headers().OptionalHeader.DataDirectory[index].VirtualAddress);
  }

  testing::RuntimeLibrary library_;
  const char* base_ = reinterpret_cast<const char*>(library_.Module());
};

TEST_F(LibraryFile, NeedsLibrariesOfTheSystemAlone) {
  Names needed;
  for (const auto* import = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
       import->Name != 0; ++import) {
    std::string name = At<char>(import->Name);
    CharLowerA(name.data());
    needed.insert(std::move(name));
  }
  EXPECT_EQ(needed, Names({"advapi32.dll", "comctl32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
                           "ole32.dll", "oleaut32.dll", "shell32.dll", "user32.dll", "uxtheme.dll"}));
}

TEST_F(LibraryFile, ExportsWhatComCalls) {
  const auto& exports = *Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
  Names names;
  for (DWORD i = 0; i < exports.NumberOfNames; ++i) {
    names.insert(At<char>(At<DWORD>(exports.AddressOfNames)[i]));
  }
  EXPECT_EQ(names, Names({"DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer",
                          "DllUnregisterServer"}));
  EXPECT_EQ(exports.NumberOfFunctions, names.size()) << "some have no name";
}

TEST_F(LibraryFile, LiesAnywhereAndRunsNoData) {
  constexpr WORD kHighAddresses = sizeof(void*) == 8 ? IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA : 0;
  constexpr WORD kWanted =
      IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT | kHighAddresses;
  const auto& headers = Headers();
  EXPECT_EQ(headers.OptionalHeader.DllCharacteristics & kWanted, kWanted);
  EXPECT_EQ(headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
  EXPECT_GT(headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0u);
  const auto* section = IMAGE_FIRST_SECTION(&headers);
  for (const auto* end = section + headers.FileHeader.NumberOfSections; section < end; ++section) {
    constexpr DWORD kBoth = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
    EXPECT_NE(section->Characteristics & kBoth, kBoth) << section->Name;
  }
}

TEST_F(LibraryFile, TellsTheVersion) {
  DWORD unused = 0;
  std::string block(GetFileVersionInfoSizeA(ROWLARK_RUNTIME, &unused), '\0');
  ASSERT_TRUE(GetFileVersionInfoA(ROWLARK_RUNTIME, 0, static_cast<DWORD>(block.size()), block.data()));
  const auto text = [&](const std::string& name) -> std::string {
    void* value = nullptr;
    UINT size = 0;
    const auto path = "\\StringFileInfo\\040904B0\\" + name;
    return VerQueryValueA(block.data(), path.c_str(), &value, &size) ? static_cast<char*>(value) : "nothing";
  };
  EXPECT_EQ(text("FileVersion"), ROWLARK_VERSION);
  EXPECT_EQ(text("ProductVersion"), ROWLARK_VERSION);
  EXPECT_EQ(text("ProductName"), "Vantrel Rowlark");
  EXPECT_EQ(text("OriginalFilename"), "vtrlk_runtime.dll");
  void* fixed = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueA(block.data(), "\\", &fixed, &size));
  const auto& numbers = *static_cast<VS_FIXEDFILEINFO*>(fixed);
  const std::string version = std::to_string(HIWORD(numbers.dwFileVersionMS)) + '.' +
                              std::to_string(LOWORD(numbers.dwFileVersionMS)) + '.' +
                              std::to_string(HIWORD(numbers.dwFileVersionLS));
  EXPECT_EQ(version, ROWLARK_VERSION);
}

}  // namespace
}  // namespace rowlark
