// Boxes with a text to edit.
#include <com/sun/star/awt/Selection.hpp>
#include <com/sun/star/awt/XStyleSettingsSupplier.hpp>
#include <com/sun/star/awt/XTextComponent.hpp>

#include <algorithm>
#include <cstdlib>

#include "controls/ComboBox.h"
#include "controls/Keys.h"
#include "controls/TextBox.h"
#include "host/calc/forms/AwtControls.h"

namespace rowlark::calc {
namespace {

using controls::Property;
using css::uno::Reference;

css::uno::Sequence<rtl::OUString> Texts(const std::vector<std::u16string>& texts) {
  css::uno::Sequence<rtl::OUString> list(static_cast<sal_Int32>(texts.size()));
  std::ranges::transform(texts, list.getArray(), [](const auto& text) { return ToOffice(text); });
  return list;
}

// Of a colour 0xRRGGBB as people see it, up to 255. Two are told apart from a difference of 125 on.
int32_t Brightness(sal_Int32 colour) {
  return ((colour >> 16 & 0xFF) * 299 + (colour >> 8 & 0xFF) * 587 + (colour & 0xFF) * 114) / 1000;
}

// What is edited.
class AwtText : public AwtControl {
 public:
  AwtText(controls::TextInput& model, calc::Site& site, std::string_view type)
      : AwtControl(model, site, type), input_(model) {}

  void Describe() override {
    AwtControl::Describe();
    Put("Tabstop", TabStop());
    Put("ReadOnly", input_.ReadOnly);
  }
  void Typed() override {
    const auto text = As<css::awt::XTextComponent>();
    input_.UserTyped(ViewOf(text->getText()), text->getSelection().Max);
  }
  void Report() override {
    if (input_.Text().find(u'\r') != std::u16string::npos) return;
    const auto selection = As<css::awt::XTextComponent>()->getSelection();
    input_.UserSelected(selection.Min, selection.Max);
  }

 protected:
  void Apply(Property property) override {
    if (property == Property::Text) {
      Put("Text", ToOffice(input_.Text()));
    } else if (property == Property::Selection) {
      if (!control_.is()) return;
      As<css::awt::XTextComponent>()->setSelection({input_.Anchor(), input_.Caret()});
    } else if (property != Property::Caption) {
      AwtControl::Apply(property);
    }
  }

 private:
  controls::TextInput& input_;
};

class AwtTextBox final : public AwtText {
 public:
  AwtTextBox(controls::TextBox& model, calc::Site& site) : AwtText(model, site, "Edit"), box_(model) {}

  void Describe() override {
    AwtText::Describe();
    Put("MultiLine", box_.MultiLine);
    if (box_.MultiLine) Put("AutoVScroll", true);
  }
  void Clicked() override {
    if (box_.CueFor != nullptr) box_.UserClicked();
  }
  void FocusMoved() override {
    if (box_.CueFor != nullptr) Update(Property::Visible);
  }

 private:
  // What stands for another box lies above it.
  int Order() const override {
    return box_.CueFor != nullptr ? 2 * box_.CueFor->TabIndex + 1 : AwtText::Order();
  }

  void Attached(const Reference<css::awt::XControl>& control) override {
    AwtText::Attached(control);
    if (!box_.Alert) return;
    const Reference<css::awt::XStyleSettingsSupplier> supplier(control->getPeer(), css::uno::UNO_QUERY);
    if (!supplier.is()) return;
    const auto style = supplier->getStyleSettings();
    const auto background = style->getHelpColor();
    const auto text = style->getHelpTextColor();
    // Some themes draw tool tips with colours that they do not tell.
    if (std::abs(Brightness(background) - Brightness(text)) < 125) return;
    Put("BackgroundColor", background);
    Put("TextColor", text);
  }

  void Apply(Property property) override {
    if (property == Property::Visible && box_.CueFor != nullptr) {
      const AwtControl* field = site_.Find(*box_.CueFor);
      Put("EnableVisible", box_.Shown() && (field == nullptr || site_.Focused != field));
    } else {
      AwtText::Apply(property);
    }
  }

  controls::TextBox& box_;
};

class AwtComboBox final : public AwtText {
 public:
  AwtComboBox(controls::ComboBox& model, calc::Site& site) : AwtText(model, site, "ComboBox"), box_(model) {}

  void Describe() override {
    AwtText::Describe();
    Put("Dropdown", true);
    Put("Autocomplete", false);
    Put("LineCount", sal_Int16{12});
  }
  void Picked(int32_t index) override { box_.UserPicked(index); }
  bool TakesKey(int32_t key) const override { return IsForOpenList(key); }
  bool UseKey(int32_t key, int32_t shift) override {
    if (shift != controls::kNoShift || (key != controls::kKeyDown && key != controls::kKeyUp)) return false;
    box_.UserPicked(box_.ListIndex() + (key == controls::kKeyDown ? 1 : -1));
    return true;
  }

 private:
  void FillList() override {
    std::vector<std::u16string> entries;
    entries.reserve(static_cast<std::size_t>(box_.ListCount()));
    for (int32_t i = 0; i < box_.ListCount(); ++i) entries.push_back(box_.List(i));
    Put("StringItemList", Texts(entries));
    Apply(Property::Text);
    Apply(Property::Selection);
  }

  controls::ComboBox& box_;
};

}  // namespace

std::unique_ptr<AwtControl> MakeTextBox(controls::TextBox& control, Site& site) {
  return std::make_unique<AwtTextBox>(control, site);
}

std::unique_ptr<AwtControl> MakeComboBox(controls::ComboBox& control, Site& site) {
  return std::make_unique<AwtComboBox>(control, site);
}

}  // namespace rowlark::calc
