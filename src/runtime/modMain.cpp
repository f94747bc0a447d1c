#include "runtime/modMain.h"

#include "settings/Product.h"
#include "util/Text.h"

namespace rowlark {

void WaitForMessages(SharedState& shared, uint32_t timeout) {
  auto& pump = shared.Platform.Pump;
  const uint32_t begin = pump.TickCount();
  for (;;) {
    pump.ProcessMessages();
    // The difference is right also where the tick count has begun anew.
    const uint32_t elapsed = pump.TickCount() - begin;
    if (shared.Terminating || (timeout != kNoTimeout && elapsed >= timeout)) return;
    pump.WaitForInput(timeout == kNoTimeout ? kNoTimeout : timeout - elapsed);
  }
}

std::u16string HelpFilePath(SharedState& shared) {
  if (shared.Language) {
    const auto& file = shared.Language->HelpFile();
    if (!file.empty() && shared.Platform.Files.IsFileExists(file)) return file;
  }
  return shared.HelpDirectory + u"vt_rlk_en.chm";
}

void ShowHelp(SharedState& shared, HelpTopic topic) {
  const auto context = static_cast<int32_t>(topic);
  const auto path = HelpFilePath(shared);
  shared.HelpWindow = context < 1
                          ? shared.Platform.Help.HtmlHelp(path, host::HelpCommand::DisplayTopic, 0)
                          : shared.Platform.Help.HtmlHelp(path, host::HelpCommand::HelpContext, context);
  if (shared.HelpWindow != 0) return;
  const auto text = shared.Language ? shared.Language->GetText(u"", u"Can't open help file\\n%1", path)
                                    : std::u16string(u"Can't open help file !");
  shared.Platform.Windows.MsgBox(text, host::MsgBoxIcon::Exclamation, kProductTitle);
}

void ShowFailure(SharedState& shared, std::u16string_view text, HelpTopic topic) {
  shared.Platform.Windows.MsgBoxWithHelp(text, host::MsgBoxIcon::Critical, kProductTitle,
                                         [&shared, topic] { ShowHelp(shared, topic); });
}

intptr_t HostMainWindow(SharedState& shared) {
  const auto application = shared.ExcelApp;
  if (!application) return 0;
  // Before version 10 the host does not tell its window.
  const auto version = application->Version();
  if (const auto major = ToInteger(version.substr(0, version.find(u'.'))); major && *major < 9) {
    return shared.Platform.Windows.WindowOfClass(u"XLMAIN");
  }
  return application->Hwnd();
}

}  // namespace rowlark
