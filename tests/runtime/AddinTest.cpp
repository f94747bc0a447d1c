// Start-up, menu and help, as the add-in workbook drives them.
#include <gtest/gtest.h>

#include "FaultyHost.h"
#include "Session.h"
#include "TempFolder.h"
#include "runtime/modMain.h"
#include "settings/Product.h"

namespace rowlark {
namespace {

using host::Hive;
using testing::SampleHost;
using testing::TestLibrary;

// A user's session of the host over a folder with two languages.
struct Addin : TempFolder, TestLibrary, SampleHost {
  Addin()
      : TestLibrary(ToUtf16(Path().string()), ToUtf16(Path().string() + "/config/")),
        SampleHost("x"),
        runtime(shared, forms) {
    Write("english.lng", "Menu.Root = &Rowlark\nHELP_FILE_NAME = help_en.chm\n");
    Write("german.lng",
          "; Deutsch\nMenu.Root = &Zeilen\nMenu.Find = S&uchen...\nHELP_FILE_NAME = help_de.chm\n");
    shared.HelpDirectory = ToUtf16(Path().string() + "/");
  }

  // "&Rowlark: S&earch.../VantrelRLK_ShowSearch ..." of every menu on the bar that is ours; "|" begins a
  // group.
  std::string Menus() const {
    std::string text;
    for (const auto& menu : application->WorksheetMenuBar()->Controls()) {
      if (menu->Tag() != u"VantrelRLK") continue;
      text += ToUtf8(menu->Caption()) + ':';
      for (const auto& button : menu->Controls()) {
        text += (button->BeginGroup() ? " |" : " ") + ToUtf8(button->Caption()) + '/' +
                ToUtf8(button->OnAction());
      }
    }
    return text;
  }
  // The captions alone.
  std::string Captions() const {
    std::string text;
    for (const auto& menu : application->WorksheetMenuBar()->Controls())
      text += ToUtf8(menu->Caption()) + ' ';
    return text;
  }

  clsVTRLKRuntime runtime;
};

TEST(Menu, OffersEveryMacro) {
  Addin addin;
  addin.runtime.SetExcelApp(addin.application);
  addin.runtime.MenuCreate();
  EXPECT_EQ(addin.Menus(),
            "&Rowlark: S&earch.../VantrelRLK_ShowSearch &Show All/VantrelRLK_Unhide "
            "|&Options.../VantrelRLK_ShowOptions |&Help.../VantrelRLK_CallHelp "
            "&Technical Support/VantrelRLK_CallTechSupport |&About.../VantrelRLK_ShowAbout");
  addin.runtime.MenuRemove();
  addin.runtime.MenuRemove();
  EXPECT_EQ(addin.Menus(), "");
}

TEST(Menu, IsThereOnceWhateverHappens) {
  for (const bool administrator : {true, false}) {
    Addin addin;
    addin.registry.MachineWideIsWritable = administrator;
    std::string written;
    addin.registry.Log = [&written](const std::string& what) { written += what; };
    const auto bar = addin.application->CommandBars(u"Worksheet Menu Bar");
    bar->AddControl(host::msoControlPopup, true)->SetCaption(u"theirs");
    addin.runtime.SetExcelApp(addin.application);
    addin.runtime.Init();
    addin.runtime.Language().SetLangFile(u"german.lng");  // no menu yet
    EXPECT_EQ(addin.Captions(), "theirs ");
    EXPECT_EQ(written, "");
    addin.runtime.Language().SetLangFile(u"english.lng");
    addin.runtime.MenuCreate();
    addin.runtime.MenuCreate();
    EXPECT_EQ(addin.Captions(), "theirs &Rowlark ");
    addin.runtime.Language().SetLangFile(u"german.lng");
    EXPECT_EQ(addin.Captions(), "theirs &Zeilen ");
    // Unloaded: a text of the menu loads the language again, while the menu is being built.
    addin.runtime.Language().SetPath(addin.runtime.Language().Path());
    addin.runtime.MenuCreate();
    EXPECT_EQ(addin.Captions(), "theirs &Zeilen ");
    clsVTRLKRuntime later(addin.shared, addin.forms);
    later.MenuCreate();
    EXPECT_EQ(addin.Captions(), "theirs &Zeilen ");
    later.Language().SetLangFile(u"english.lng");
    EXPECT_EQ(addin.Captions(), "theirs &Rowlark ");
    later.MenuRemove();
    addin.runtime.MenuRemove();
    later.Language().SetLangFile(u"german.lng");  // it does not come back
    EXPECT_EQ(addin.Captions(), "theirs ");
  }
}

TEST(Menu, IsBuiltOnceWhenItsTextsLoadTheLanguage) {
  Addin addin;
  addin.runtime.Language().SetPath(addin.runtime.Language().Path());  // unloaded
  int menus = 0;
  testing::WatchedHost watched;
  watched.Hear = [&](std::string_view operation) { menus += operation == "CommandBar.Controls.Add" ? 1 : 0; };
  addin.runtime.SetExcelApp(watched.Wrap(Ref<host::Application>(addin.application)));
  addin.runtime.MenuCreate();
  EXPECT_EQ(menus, 1);
  addin.runtime.SetExcelApp(nullptr);
}

TEST(Menu, IsNeverHalfBuilt) {
  for (int64_t n = 1;; ++n) {
    Addin addin;
    testing::FaultyHost faulty(n);
    addin.runtime.SetExcelApp(faulty.Wrap(Ref<host::Application>(addin.application)));
    try {
      addin.runtime.MenuCreate();
    } catch (const host::Error&) {
      EXPECT_EQ(addin.Menus(), "") << faulty.Failed();
    }
    addin.runtime.SetExcelApp(nullptr);
    if (faulty.Failed().empty()) break;
  }
}

TEST(Init, LoadsTheConfigurationAndItsLanguage) {
  Addin addin;
  addin.registry.MachineWideIsWritable = true;
  addin.shared.Registry.SetString(Hive::LocalMachine, kProductKey, u"SetupLanguage", u"english");
  addin.runtime.Init();
  EXPECT_EQ(ToUtf8(addin.runtime.Items->CfgFileName), addin.Path().string() + "/config/rowlark.cfg");
  addin.runtime.Language().SetLangFile(u"german.lng");
  addin.runtime.Items->SetHotKeySearch(u"^g");
  EXPECT_TRUE(addin.runtime.Items->CfgSave(false));

  clsVTRLKRuntime next(addin.shared, addin.forms);
  next.SetExcelApp(addin.application);
  addin.runtime.Language().SetLangFile(u"english.lng");
  next.Init();
  EXPECT_EQ(next.Items->HotKeySearch(), u"^g");
  EXPECT_EQ(next.Language().LangFile(), u"german.lng");
  next.OnAddinInstall();
  next.Init();
  EXPECT_EQ(next.Language().LangFile(), u"english.lng");
}

TEST(Help, OpensTheFileOfTheLanguageIfItIsThere) {
  Addin addin;
  const auto folder = addin.Path().string() + "/";
  addin.runtime.CallTechSupport();
  addin.runtime.Language().SetLangFile(u"german.lng");
  addin.runtime.CallHelp();  // the German file is missing
  addin.Write("help_de.chm", "help");
  addin.runtime.CallHelp();
  EXPECT_EQ(ToUtf8(addin.runtime.HelpFile()), folder + "help_de.chm");
  EXPECT_EQ(addin.help.Calls,
            (std::vector<std::string>{folder + "vt_rlk_en.chm 15 1200", folder + "vt_rlk_en.chm 1 0",
                                      folder + "help_de.chm 1 0"}));
  EXPECT_TRUE(addin.windows.Messages.empty());
  addin.help.Window = 0;
  addin.runtime.CallHelp();
  EXPECT_EQ(addin.windows.Messages, std::vector<std::string>{"Vantrel Rowlark: Can't open help file\r\n" +
                                                             folder + "help_de.chm (48)"});
}

TEST(Help, LiesBesideTheLibraryUnlessSetUpSaysOtherwise) {
  for (const auto& [set_up, file] :
       {std::pair("", "C:\\Rowlark\\vt_rlk_en.chm"), std::pair("help\\", "C:\\Rowlark\\help\\vt_rlk_en.chm"),
        std::pair("D:\\Help", "D:\\Help\\vt_rlk_en.chm"),
        std::pair("\\\\server\\help", "\\\\server\\help\\vt_rlk_en.chm"),
        std::pair("/usr/share/help/", "/usr/share/help/vt_rlk_en.chm")}) {
    for (const auto hive : {Hive::LocalMachine, Hive::CurrentUser}) {
      TestLibrary library(u"C:\\Rowlark");
      const auto& registry = library.shared.Registry;
      if (*set_up != '\0') registry.SetString(hive, kProductKey, u"HelpPath", ToUtf16(set_up));
      EXPECT_EQ(ToUtf8(clsVTRLKRuntime(library.shared, library.forms).HelpFile()), file);
    }
  }
}

TEST(Host, TellsItsMainWindowFromVersion9On) {
  for (const auto& [version, window] :
       {std::pair(u"8.0", 97), std::pair(u"9.0", 1), std::pair(u"16.0", 1), std::pair(u"x", 1)}) {
    TestLibrary platform;
    const clsVTRLKRuntime runtime(platform.shared, platform.forms);
    EXPECT_EQ(HostMainWindow(platform.shared), 0);
    platform.shared.ExcelApp = MakeRef<standalone::Application>(version);
    EXPECT_EQ(HostMainWindow(platform.shared), window);
  }
}

TEST(Messages, AreAwaitedUntilTheTimeIsOverOrTheLibraryEnds) {
  TestLibrary platform;
  platform.pump.Now = 0xFFFFFFF0;  // the tick count begins anew in between
  WaitForMessages(platform.shared, 100);
  EXPECT_EQ(platform.pump.Now, 0xFFFFFFF0 + 100);
  EXPECT_EQ(platform.pump.Passes(), 2);
  platform.pump.OnPass = [&](int64_t pass) { platform.shared.Terminating = pass == 5; };
  WaitForMessages(platform.shared, kNoTimeout);
  EXPECT_EQ(platform.pump.Passes(), 5);
}

}  // namespace
}  // namespace rowlark
