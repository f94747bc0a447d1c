#include "forms/frmAbout.h"

#include "settings/Product.h"
#include "util/Text.h"

namespace rowlark {
namespace {

using controls::Layout;

constexpr std::u16string_view kVersion = ROWLARK_VERSION;

// For those who can read it.
constexpr std::u16string_view kCreditsTitle = u"Авторы";
constexpr std::u16string_view kCredits =
    u"Правообладатель: Vantrel\r\n"
    u"Замысел, дизайн и разработка: команда Rowlark";

}  // namespace

frmAbout::frmAbout(SharedState& shared) : BaseForm(shared, u"frmAbout", HelpTopic::About) {
  KeyDown = [this](int32_t& key, int32_t) {
    if (key != controls::kKeyEscape) return;
    key = 0;
    Unload();
  };
  KeyPress = [](char16_t& character) {
    if (character == controls::kKeyReturn || character == controls::kKeyEscape) character = 0;
  };
  Click = [this] { Unload(); };
  imgProduct.Large = true;
  lblWWW.Link = lblEMail.Link = lblCopyrightMore.Link = true;
  lblWWW.SetCaption(kProductWebSite);
  lblEMail.SetCaption(kProductMail);
  lblVersion.SetCaption(kVersion);
  lblCopyrightMore.SetCaption(kCreditsTitle);
  lblWWW.Click = [this] { shared_.Platform.Windows.OpenLink(*this, kProductWebSite); };
  lblEMail.Click = [this] {
    shared_.Platform.Windows.OpenLink(*this, u"mailto:" + std::u16string(kProductMail));
  };
  lblCopyrightMore.Click = [this] {
    lblCopyrightMore.Link = false;
    lblCopyrightMore.SetCaption(kCredits);
    Arrange();
  };
  SetLayout(Layout::Row({Layout::Column({imgProduct, Layout().High()}),
                         Layout::Column({lblCaption1, lblCaption2, lblVersion, lblWWW, lblEMail,
                                         Layout(lblCopyrightMore).WhileVisible()})})
                .Apart());
}

void frmAbout::Form_Load() {
  ApplyCaptions();
  CentreOverHost();
  Float();
}

void frmAbout::ApplyCaptions() {
  SetCaption(Text(u"About.UI.FormCaption", u"About"));
  lblCaption1.SetCaption(Text(u"About.UI.Caption1", u"Microsoft® Excel AddIn"));
  lblCaption2.SetCaption(Text(u"About.UI.Caption2",
                              u"Search Microsoft® Excel workbooks as you type, with the AutoFilter option"));
  lblCopyrightMore.SetVisible(ToLower(shared_.Language->LangFile()).ends_with(u"russian.lng"));
  Arrange();
}

}  // namespace rowlark
