// Buttons, marks, labels, pictures and frames, and what makes controls of all kinds.
#include <com/sun/star/awt/ImageAlign.hpp>
#include <com/sun/star/awt/ImageScaleMode.hpp>
#include <com/sun/star/awt/XButton.hpp>

#include <algorithm>
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
#include "host/calc/forms/AwtControls.h"
#include "util/Scope.h"

namespace rowlark::calc {
namespace {

using controls::Property;
using css::uno::Reference;

constexpr sal_Int16 kNoBorder = 0;

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
    Made = box.DropDownList ? MakeDropDownList(box, site_) : MakeComboBox(box, site_);
  }
  void Visit(controls::Frame& frame) override { Make<AwtFrame>(frame); }
  void Visit(controls::Image& image) override { Make<AwtImage>(image); }
  void Visit(controls::Label& label) override { Make<AwtLabel>(label); }
  void Visit(controls::ListView& list) override { Made = MakeListView(list, site_); }
  void Visit(controls::OptionButton& button) override {
    Make<AwtMark<controls::OptionButton>>(button, "RadioButton");
  }
  void Visit(controls::TextBox& box) override { Made = MakeTextBox(box, site_); }
  void Visit(controls::ToolBar& bar) override { Make<AwtToolBar>(bar); }
  void Visit(controls::TreeView& tree) override { Made = MakeTreeView(tree, site_); }

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
