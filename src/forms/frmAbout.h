// What the product is, and where to find more.
#pragma once

#include "controls/Image.h"
#include "controls/Label.h"
#include "forms/BaseForm.h"

namespace rowlark {

class frmAbout final : public BaseForm {
 public:
  explicit frmAbout(SharedState& shared);

  controls::Image imgProduct{*this, u"imgProduct", u"rowlark"};
  controls::Label lblCaption1{*this, u"lblCaption1"};
  controls::Label lblCaption2{*this, u"lblCaption2"};
  controls::Label lblVersion{*this, u"lblVersion"};
  controls::Label lblWWW{*this, u"lblWWW"};
  controls::Label lblEMail{*this, u"lblEMail"};
  controls::Label lblCopyrightMore{*this, u"lblCopyrightMore"};

 private:
  void Form_Load() override;
  void ApplyCaptions() override;
};

}  // namespace rowlark
