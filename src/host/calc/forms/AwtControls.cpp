// The kinds of controls.
#include <com/sun/star/awt/ImageAlign.hpp>
#include <com/sun/star/awt/ImageScaleMode.hpp>
#include <com/sun/star/awt/Selection.hpp>
#include <com/sun/star/awt/XButton.hpp>
#include <com/sun/star/awt/XItemList.hpp>
#include <com/sun/star/awt/XStyleSettingsSupplier.hpp>
#include <com/sun/star/awt/XTextComponent.hpp>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/ComboBox.h"
#include "controls/Frame.h"
#include "controls/Image.h"
#include "controls/Keys.h"
#include "controls/Label.h"
#include "controls/ListView.h"
#include "controls/OptionButton.h"
#include "controls/TextBox.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"
#include "host/calc/forms/AwtControl.h"
#include "util/Scope.h"

namespace rowlark::calc {
namespace {

using controls::Property;
using css::uno::Reference;

constexpr sal_Int16 kNoBorder = 0;

css::uno::Sequence<rtl::OUString> Texts(const std::vector<std::u16string>& texts) {
  css::uno::Sequence<rtl::OUString> list(static_cast<sal_Int32>(texts.size()));
  std::ranges::transform(texts, list.getArray(), [](const auto& text) { return ToOffice(text); });
  return list;
}

// Of a colour 0xRRGGBB as people see it, up to 255. Two are told apart from a difference of 125 on.
int32_t Brightness(sal_Int32 colour) {
  return ((colour >> 16 & 0xFF) * 299 + (colour >> 8 & 0xFF) * 587 + (colour & 0xFF) * 114) / 1000;
}

class AwtButton final : public AwtControl {
 public:
  AwtButton(controls::Button& model, calc::Site& site) : AwtControl(model, site, "Button"), button_(model) {}

  void Describe() override {
    AwtControl::Describe();
    Put("DefaultButton", button_.Default);
    Put("Tabstop", TabStop());
    if (button_.Picture.empty()) return;
    Put("ImageURL", site_.Desk->Picture(button_.Picture, true));
    Put("ImageAlign", css::awt::ImageAlign::TOP);
  }
  void Acted(std::u16string_view) override { button_.UserClicked(); }

 private:
  void Apply(Property property) override {
    if (property == Property::Caption && !button_.Picture.empty()) return;
    AwtControl::Apply(property);
  }

  controls::Button& button_;
};

// A check box or an option button.
template <class Mark>
class AwtMark final : public AwtControl {
 public:
  AwtMark(Mark& model, calc::Site& site, std::string_view type)
      : AwtControl(model, site, type), mark_(model) {}

  void Describe() override {
    AwtControl::Describe();
    Put("Tabstop", TabStop());
    if constexpr (std::is_same_v<Mark, controls::OptionButton>) {
      Put("GroupName", ToOffice(mark_.Container != nullptr ? mark_.Container->Name : mark_.Parent().Name));
    }
  }
  void Picked(int32_t) override {
    if ((Get<sal_Int16>("State") != 0) == mark_.Value()) return;
    mark_.UserClicked();
    Update(Property::Value);  // a handler may have set it back
  }

 private:
  void Apply(Property property) override {
    if (property == Property::Value) {
      Put("State", static_cast<sal_Int16>(mark_.Value() ? 1 : 0));
    } else {
      AwtControl::Apply(property);
    }
  }

  Mark& mark_;
};

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

// One entry of several is selected.
class AwtListBox : public AwtControl {
 public:
  AwtListBox(controls::Control& model, calc::Site& site) : AwtControl(model, site, "ListBox") {}

  void Describe() override {
    AwtControl::Describe();
    Put("Tabstop", TabStop());
    Put("MultiSelection", false);
  }

 protected:
  struct Entry {
    std::u16string_view text;
    std::u16string_view picture;
  };
  void Fill(const std::vector<Entry>& entries) {
    const Reference<css::awt::XItemList> list(properties_, css::uno::UNO_QUERY_THROW);
    // Entries that stay the same stay where they are: the list may be open.
    while (list->getItemCount() > static_cast<sal_Int32>(entries.size())) {
      list->removeItem(list->getItemCount() - 1);
    }
    sal_Int32 position = 0;
    for (const auto& [text, picture] : entries) {
      const auto label = ToOffice(text);
      if (position == list->getItemCount()) {
        list->insertItem(position, label, site_.Desk->Picture(picture, true));
      } else if (list->getItemText(position) != label) {
        list->setItemText(position, label);
      }
      ++position;
    }
    Apply(Property::ListIndex);
  }
  virtual int32_t Selected() const = 0;

  void Apply(Property property) override {
    if (property == Property::ListIndex) {
      css::uno::Sequence<sal_Int16> selected(Selected() < 0 ? 0 : 1);
      if (Selected() >= 0) selected.getArray()[0] = static_cast<sal_Int16>(Selected());
      Put("SelectedItems", selected);
    } else if (property != Property::Caption) {
      AwtControl::Apply(property);
    }
  }
};

class AwtDropDownList final : public AwtListBox {
 public:
  AwtDropDownList(controls::ComboBox& model, calc::Site& site) : AwtListBox(model, site), box_(model) {}

  void Describe() override {
    AwtListBox::Describe();
    Put("Dropdown", true);
    Put("LineCount", sal_Int16{12});
  }
  void Picked(int32_t index) override { box_.UserPicked(index); }
  bool TakesKey(int32_t key) const override { return IsForOpenList(key); }

 private:
  int32_t Selected() const override { return box_.ListIndex(); }
  void FillList() override {
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(box_.ListCount()));
    for (int32_t i = 0; i < box_.ListCount(); ++i) entries.push_back({box_.List(i), {}});
    Fill(entries);
  }

  controls::ComboBox& box_;
};

class AwtListView final : public AwtListBox {
 public:
  AwtListView(controls::ListView& model, calc::Site& site) : AwtListBox(model, site), list_(model) {}

  void Picked(int32_t index) override { list_.UserPicked(index); }

 private:
  int32_t Selected() const override { return list_.Selected(); }
  void FillList() override {
    std::vector<Entry> entries;
    entries.reserve(list_.Items().size());
    for (const auto& item : list_.Items()) entries.push_back({item.text, item.small_icon});
    Fill(entries);
  }

  controls::ListView& list_;
};

class AwtTreeView final : public AwtListBox {
 public:
  AwtTreeView(controls::TreeView& model, calc::Site& site) : AwtListBox(model, site), tree_(model) {}

  void Picked(int32_t index) override { tree_.UserPicked(index); }

 private:
  int32_t Selected() const override { return tree_.Selected(); }
  void FillList() override {
    std::vector<Entry> entries;
    entries.reserve(tree_.Nodes().size());
    for (const auto& node : tree_.Nodes()) entries.push_back({node.text, node.key});
    Fill(entries);
  }

  controls::TreeView& tree_;
};

class AwtFrame final : public AwtControl {
 public:
  AwtFrame(controls::Frame& model, calc::Site& site) : AwtControl(model, site, "GroupBox") {}
};

class AwtLabel final : public AwtControl {
 public:
  AwtLabel(controls::Label& model, calc::Site& site)
      : AwtControl(model, site, model.Link ? "FixedHyperlink" : "FixedText"),
        label_(model),
        is_link_(model.Link) {}

  void Describe() override {
    AwtControl::Describe();
    Put("MultiLine", true);
    // The office would give it an accelerator of its own.
    if (!is_link_ && controls::Accelerator(label_.Caption()) == 0) Put("NoLabel", true);
    if (is_link_) Put("Tabstop", TabStop());
  }
  void Acted(std::u16string_view) override { label_.UserClicked(); }
  void Clicked() override {
    if (!is_link_) label_.UserClicked();
  }
  bool UseKey(int32_t key, int32_t) override {
    if (!label_.Link || key != controls::kKeySpace) return false;
    label_.UserClicked();
    return true;
  }

 private:
  // One without a text would cover what lies behind it.
  void Apply(Property property) override {
    AwtControl::Apply(property);
    if (property == Property::Caption || property == Property::Visible) {
      Put("EnableVisible", label_.Shown() && !label_.Caption().empty());
    }
    if (property == Property::Caption && is_link_) Put("Tabstop", label_.Link && TabStop());
  }

  controls::Label& label_;
  const bool is_link_;
};

class AwtImage final : public AwtControl {
 public:
  AwtImage(controls::Image& model, calc::Site& site)
      : AwtControl(model, site, "ImageControl"), image_(model) {}

  void Describe() override {
    AwtControl::Describe();
    Put("Border", kNoBorder);
    Put("Tabstop", false);
    Put("ScaleImage", true);
    Put("ScaleMode", css::awt::ImageScaleMode::ISOTROPIC);
    Put("ImageURL", site_.Desk->Picture(image_.Picture, false));
  }
  void Clicked() override { image_.UserClicked(); }

 private:
  void Apply(Property property) override {
    if (property != Property::Caption) AwtControl::Apply(property);
  }

  controls::Image& image_;
};

// A button of the office for each of its own, side by side.
class AwtToolBar final : public AwtControl {
 public:
  AwtToolBar(controls::ToolBar& model, calc::Site& site) : AwtControl(model, site, "Button"), bar_(model) {}

  void Describe() override {}
  void Acted(std::u16string_view key) override { bar_.UserPressed(key); }
  void Place() override {
    const int32_t edges = site_.View.MetricsOf(*site_.Form).tool_edges.width;
    controls::Rect bounds = bar_.Bounds;
    for (std::size_t i = 0; i < Count(); ++i) {
      bounds.width = site_.View.TextWidth(bar_.Buttons()[i].caption) + edges;
      Place(buttons_[i], bounds);
      bounds.left += bounds.width;
    }
  }

 private:
  using AwtControl::Place;

  std::u16string NameOf(std::size_t index) const { return bar_.Name + u"." + bar_.Buttons()[index].key; }
  std::size_t Count() const { return std::min(buttons_.size(), bar_.Buttons().size()); }

  void Attached(const Reference<css::awt::XControl>&) override { FillList(); }
  void Apply(Property property) override {
    if (property != Property::Enabled && property != Property::Visible) return;
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
      Put(buttons_[i], "Enabled", bar_.Enabled());
      Put(buttons_[i], "EnableVisible", bar_.Shown() && i < Count());
    }
  }
  // Buttons come when they are first told of, and go with the window.
  void FillList() override {
    for (std::size_t i = 0; i < bar_.Buttons().size(); ++i) {
      const auto& button = bar_.Buttons()[i];
      const bool is_new = i == buttons_.size();
      if (is_new) buttons_.push_back(site_.Add(NameOf(i), type_, Order()));
      Put(buttons_[i], "Label", ToLabel(button.caption));
      Put(buttons_[i], "HelpText", ToOffice(button.tool_tip));
      if (!is_new) continue;
      Put(buttons_[i], "ImageURL", site_.Desk->Picture(button.key, true));
      Put(buttons_[i], "ImageAlign", css::awt::ImageAlign::LEFT);
      const auto control = site_.ControlOf(NameOf(i));
      Reference<css::awt::XButton>(control, css::uno::UNO_QUERY_THROW)
          ->setActionCommand(ToOffice(button.key));
      Listen(control);
    }
    Apply(Property::Visible);
  }

  controls::ToolBar& bar_;
  std::vector<Properties> buttons_;
};

class AwtFactory final : public controls::Visitor {
 public:
  explicit AwtFactory(Site& site) : site_(site) {}

  std::unique_ptr<AwtControl> Made;

  void Visit(controls::Button& button) override { Make<AwtButton>(button); }
  void Visit(controls::CheckBox& box) override { Make<AwtMark<controls::CheckBox>>(box, "CheckBox"); }
  void Visit(controls::ComboBox& box) override {
    if (box.DropDownList) return Make<AwtDropDownList>(box);
    Make<AwtComboBox>(box);
  }
  void Visit(controls::Frame& frame) override { Make<AwtFrame>(frame); }
  void Visit(controls::Image& image) override { Make<AwtImage>(image); }
  void Visit(controls::Label& label) override { Make<AwtLabel>(label); }
  void Visit(controls::ListView& list) override { Make<AwtListView>(list); }
  void Visit(controls::OptionButton& button) override {
    Make<AwtMark<controls::OptionButton>>(button, "RadioButton");
  }
  void Visit(controls::TextBox& box) override { Make<AwtTextBox>(box); }
  void Visit(controls::ToolBar& bar) override { Make<AwtToolBar>(bar); }
  void Visit(controls::TreeView& tree) override { Make<AwtTreeView>(tree); }

 private:
  template <class Awt, class Model, class... Args>
  void Make(Model& control, Args... args) {
    Made = std::make_unique<Awt>(control, site_, args...);
  }

  Site& site_;
};

}  // namespace

std::unique_ptr<AwtControl> MakeAwtControl(controls::Control& control, Site& site) {
  AwtFactory factory(site);
  control.Accept(factory);
  return std::move(factory.Made);
}

}  // namespace rowlark::calc
