// What registering writes, for all users and for one, and that nothing of it stays.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>

#include "RuntimeLibrary.h"
#include "TempFolder.h"

namespace rowlark {
namespace {

constexpr char kProgId[] = "vtrlk_runtime.clsVTRLKRuntime";
constexpr char kClass[] = "{5082DB8A-0A28-4C7F-BCB4-39A3E8746B0A}";
constexpr char kInterface[] = "{AE9028B4-BBD7-4D0B-A611-7225D9432843}";  // _clsVTRLKRuntime
constexpr char kTypeLibrary[] = "{CBEE3AB9-089D-4353-B490-64E15AABA2DC}";
const std::string kClassesKey = "Software\\Classes\\";
const std::string kClassKey = kClassesKey + "CLSID\\" + kClass;
const std::string kProgIdKey = kClassesKey + kProgId;
const std::string kInterfaceKey = kClassesKey + "Interface\\" + kInterface;
const std::string kTypeLibraryKey = kClassesKey + "TypeLib\\" + kTypeLibrary;

constexpr REGSAM kOtherView = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

struct Scope {
  const char* name;
  HKEY root;
  const wchar_t* install;  // what DllInstall is told; null for the entry points of the machine
};
void PrintTo(const Scope& scope, std::ostream* out) { *out << scope.name; }

const Scope kMachine{"machine", HKEY_LOCAL_MACHINE, nullptr};
const Scope kUser{"user", HKEY_CURRENT_USER, L"user"};

class Registration : public ::testing::TestWithParam<Scope> {
 protected:
  void SetUp() override {
    was_registered_ = Exists(kClassKey);
    ASSERT_EQ(Install(false), S_OK);
  }
  // Other tests may be about to use a registered library.
  void TearDown() override {
    RegDeleteTreeA(GetParam().root, kProgIdKey.c_str());
    RegDeleteKeyExA(GetParam().root, kClassKey.c_str(), kOtherView, 0);
    EXPECT_EQ(Install(was_registered_), S_OK);
  }

  HRESULT Install(bool install) const { return Install(library_, install); }
  static HRESULT Install(const testing::RuntimeLibrary& library, bool install) {
    if (const auto* scope = GetParam().install) {
      return library.Entry<HRESULT(WINAPI*)(BOOL, const wchar_t*)>("DllInstall")(install, scope);
    }
    return library.Entry<HRESULT(WINAPI*)()>(install ? "DllRegisterServer" : "DllUnregisterServer")();
  }
  static bool Exists(const std::string& path) {
    windows::RegistryKey key;
    return RegOpenKeyExA(GetParam().root, path.c_str(), 0, KEY_READ, key.Put()) == ERROR_SUCCESS;
  }
  static LSTATUS Make(const std::string& path, DWORD options, REGSAM view = 0) {
    windows::RegistryKey key;
    return RegCreateKeyExA(GetParam().root, path.c_str(), 0, nullptr, options, KEY_ALL_ACCESS | view, nullptr,
                           key.Put(), nullptr);
  }
  static std::string Text(const std::string& path, const char* name = nullptr) {
    char text[512] = {};
    DWORD size = sizeof text;
    const LSTATUS status =
        RegGetValueA(GetParam().root, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
    return status == ERROR_SUCCESS ? text : "nothing";
  }
  static void ExpectNothing() {
    for (const auto& key : {kClassKey, kProgIdKey, kInterfaceKey, kTypeLibraryKey})
      EXPECT_FALSE(Exists(key)) << key;
  }

  testing::RuntimeLibrary library_;
  bool was_registered_ = false;
};

TEST_P(Registration, IsWhatWindowsLooksForAndIsTakenBack) {
  ExpectNothing();
  for (int twice = 0; twice < 2; ++twice) ASSERT_EQ(Install(true), S_OK);
  char file[MAX_PATH];
  GetModuleFileNameA(library_.Module(), file, MAX_PATH);
  EXPECT_EQ(Text(kClassKey + "\\InprocServer32"), file);
  EXPECT_EQ(Text(kClassKey + "\\InprocServer32", "ThreadingModel"), "Apartment");
  EXPECT_EQ(Text(kClassKey + "\\ProgID"), kProgId);
  EXPECT_EQ(Text(kClassKey + "\\TypeLib"), kTypeLibrary);
  EXPECT_EQ(Text(kProgIdKey + "\\Clsid"), kClass);
  EXPECT_EQ(Text(kTypeLibraryKey + "\\1.0"), "Vantrel Rowlark runtime library 1.0");
  EXPECT_EQ(Text(kTypeLibraryKey + "\\1.0\\0\\win" + (sizeof(void*) == 8 ? "64" : "32")), file);
  EXPECT_EQ(Text(kInterfaceKey), "_clsVTRLKRuntime");
  EXPECT_EQ(Text(kInterfaceKey + "\\TypeLib"), kTypeLibrary);
  for (int twice = 0; twice < 2; ++twice) EXPECT_EQ(Install(false), S_OK);
  ExpectNothing();
}

TEST_P(Registration, LeavesTheNameToTheLibraryOfTheOtherBitness) {
  ASSERT_EQ(Make(kClassKey, 0, kOtherView), ERROR_SUCCESS);
  if (Exists(kClassKey)) GTEST_SKIP() << "both views are one here";
  ASSERT_EQ(Install(true), S_OK);
  EXPECT_EQ(Install(false), S_OK);
  EXPECT_EQ(Text(kProgIdKey + "\\Clsid"), kClass);
  EXPECT_FALSE(Exists(kClassKey));
  ASSERT_EQ(RegDeleteKeyExA(GetParam().root, kClassKey.c_str(), kOtherView, 0), ERROR_SUCCESS);
  EXPECT_EQ(Install(false), S_OK);
  ExpectNothing();
}

TEST_P(Registration, TakesEverythingBackWhenItFailsHalfWay) {
  // What lasts can not stand below a key that does not: "Clsid", which comes late, can not be written.
  ASSERT_EQ(Make(kProgIdKey, REG_OPTION_VOLATILE), ERROR_SUCCESS);
  EXPECT_EQ(Install(true), HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
  ExpectNothing();
}

TEST_P(Registration, LeavesANewerLibraryAlone) {
  auto bytes = ReadBytes(ROWLARK_RUNTIME);
  // The signature of the version's fixed part and the version of that, behind which the file's version
  // stands.
  const auto version = bytes.find(std::string_view("\xBD\x04\xEF\xFE\0\0\1\0", 8));
  ASSERT_NE(version, std::string::npos);
  ++bytes[version + 8];  // the second of four numbers
  const TempFolder folder;
  const auto file = folder.Write("newer.dll", bytes).string();
  const std::string server = kClassKey + "\\InprocServer32";
  {
    testing::RuntimeLibrary newer(file.c_str());
    ASSERT_EQ(Install(newer, true), S_OK);
    EXPECT_EQ(Install(true), HRESULT_FROM_WIN32(ERROR_PRODUCT_VERSION));
    EXPECT_EQ(library_.Entry<HRESULT(WINAPI*)(BOOL, const wchar_t*)>("DllInstall")(TRUE, L"user"),
              HRESULT_FROM_WIN32(ERROR_PRODUCT_VERSION))
        << "would hide the one of all users";
    EXPECT_EQ(Install(false), S_OK);
    EXPECT_EQ(Text(server), file);
    EXPECT_EQ(Install(newer, false), S_OK);
    ExpectNothing();
    for (auto* library : {&library_, &newer}) ASSERT_EQ(Install(*library, true), S_OK);
    EXPECT_EQ(Text(server), file);
  }
  ASSERT_TRUE(std::filesystem::remove(file));
  ASSERT_EQ(Install(true), S_OK) << "whose file has gone";
  EXPECT_NE(Text(server), file);
}

INSTANTIATE_TEST_SUITE_P(Scopes, Registration, ::testing::Values(kMachine, kUser),
                         [](const auto& scope) { return std::string(scope.param.name); });

}  // namespace
}  // namespace rowlark
