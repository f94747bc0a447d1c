#include "host/calc/forms/AwtControl.h"

#include <com/sun/star/accessibility/AccessibleRole.hpp>
#include <com/sun/star/accessibility/AccessibleStateType.hpp>
#include <com/sun/star/accessibility/XAccessible.hpp>
#include <com/sun/star/awt/XActionListener.hpp>
#include <com/sun/star/awt/XButton.hpp>
#include <com/sun/star/awt/XCheckBox.hpp>
#include <com/sun/star/awt/XComboBox.hpp>
#include <com/sun/star/awt/XControlContainer.hpp>
#include <com/sun/star/awt/XFixedHyperlink.hpp>
#include <com/sun/star/awt/XFocusListener.hpp>
#include <com/sun/star/awt/XItemListener.hpp>
#include <com/sun/star/awt/XListBox.hpp>
#include <com/sun/star/awt/XMouseListener.hpp>
#include <com/sun/star/awt/XRadioButton.hpp>
#include <com/sun/star/awt/XTextComponent.hpp>
#include <com/sun/star/awt/XTextListener.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <cppuhelper/implbase5.hxx>

#include <algorithm>

#include "controls/Keys.h"
#include "util/Scope.h"

namespace rowlark::calc {

using controls::Property;
using css::uno::Reference;

// What the toolkit reports of a control. It may report from other threads, on behalf of programs that drive
// the office from outside; the forms hear of it on the main thread.
class ControlListener final : public cppu::WeakImplHelper5<css::awt::XActionListener, css::awt::XItemListener,
                                                           css::awt::XTextListener, css::awt::XFocusListener,
                                                           css::awt::XMouseListener> {
 public:
  ControlListener(AwtControl& owner, std::shared_ptr<Desk> desk) : owner_(&owner), desk_(std::move(desk)) {}

  void Abandon() { owner_ = nullptr; }

  // Has what this control reports come here.
  void ListenTo(const Reference<css::awt::XControl>& control) {
    const Reference<css::awt::XWindow> window(control, css::uno::UNO_QUERY_THROW);
    window->addFocusListener(this);
    window->addMouseListener(this);
    Broadcaster<css::awt::XButton>(control, [this](auto& button) { button.addActionListener(this); });
    Broadcaster<css::awt::XFixedHyperlink>(control, [this](auto& link) { link.addActionListener(this); });
    Broadcaster<css::awt::XCheckBox>(control, [this](auto& box) { box.addItemListener(this); });
    Broadcaster<css::awt::XRadioButton>(control, [this](auto& button) { button.addItemListener(this); });
    Broadcaster<css::awt::XListBox>(control, [this](auto& list) { list.addItemListener(this); });
    Broadcaster<css::awt::XComboBox>(control, [this](auto& box) { box.addItemListener(this); });
    Broadcaster<css::awt::XTextComponent>(control, [this](auto& text) { text.addTextListener(this); });
  }

 private:
  template <class Interface, class Action>
  static void Broadcaster(const Reference<css::awt::XControl>& control, Action add) {
    const Reference<Interface> found(control, css::uno::UNO_QUERY);
    if (found.is()) add(*found.get());
  }

  // The control, its window and its form live until that has ended.
  template <class Action>
  void Do(Action action) noexcept {
    if (!desk_->OnMainThread()) {
      return desk_->Post([self = rtl::Reference<ControlListener>(this), action] { self->Do(action); });
    }
    if (owner_ == nullptr) return;
    const auto site = owner_->Site().shared_from_this();
    const Desk::Visit under_way(desk_);
    Attempt(desk_->Trace, [&] { action(*owner_); });
  }

  void SAL_CALL disposing(const css::lang::EventObject&) override {}
  void SAL_CALL actionPerformed(const css::awt::ActionEvent& event) override {
    Do([name = event.ActionCommand](AwtControl& control) { control.Acted(ViewOf(name)); });
  }
  void SAL_CALL itemStateChanged(const css::awt::ItemEvent& event) override {
    Do([index = event.Selected](AwtControl& control) {
      if (control.Site().Updating == 0) control.Picked(index);
    });
  }
  void SAL_CALL textChanged(const css::awt::TextEvent&) override {
    Do([](AwtControl& control) {
      if (control.Site().Updating == 0) control.Typed();
    });
  }
  void SAL_CALL focusGained(const css::awt::FocusEvent&) override {
    Do([](AwtControl& control) { control.FocusChanged(true); });
  }
  void SAL_CALL focusLost(const css::awt::FocusEvent&) override {
    Do([](AwtControl& control) { control.FocusChanged(false); });
  }
  void SAL_CALL mousePressed(const css::awt::MouseEvent&) override {
    Do([](AwtControl& control) {
      control.Model().UserPressedMouse();
      control.Clicked();
    });
  }
  void SAL_CALL mouseReleased(const css::awt::MouseEvent&) override {}
  void SAL_CALL mouseEntered(const css::awt::MouseEvent&) override {}
  void SAL_CALL mouseExited(const css::awt::MouseEvent&) override {}

  AwtControl* owner_;
  const std::shared_ptr<Desk> desk_;
};

Site::~Site() {
  Controls.clear();
  Dispose();
}

void Site::Dispose() noexcept {
  const auto dispose = [this](const auto& reference) {
    Attempt(Desk->Trace, [&] {
      const Reference<css::lang::XComponent> component(reference, css::uno::UNO_QUERY);
      if (component.is()) component->dispose();
    });
  };
  dispose(std::exchange(Window, {}));
  dispose(std::exchange(Factory, {}));
}

AwtControl* Site::Find(const controls::Control& control) const {
  const auto found = std::ranges::find(Controls, &control, [](const auto& one) { return &one->Model(); });
  return found == Controls.end() ? nullptr : found->get();
}

Reference<css::beans::XPropertySet> Site::Add(std::u16string_view name, std::string_view type,
                                              int order) const {
  const auto service = "com.sun.star.awt.UnoControl" + std::string(type) + "Model";
  const Reference<css::beans::XPropertySet> properties(
      Factory->createInstance(rtl::OUString::createFromAscii(service.c_str())), css::uno::UNO_QUERY_THROW);
  properties->setPropertyValue(rtl::OUString::createFromAscii("TabIndex"),
                               css::uno::Any(static_cast<sal_Int16>(order)));
  const Reference<css::container::XNameContainer> container(Factory, css::uno::UNO_QUERY_THROW);
  container->insertByName(ToOffice(name), css::uno::Any(properties));
  return properties;
}

Reference<css::awt::XControl> Site::ControlOf(std::u16string_view name) const {
  const Reference<css::awt::XControlContainer> container(Window, css::uno::UNO_QUERY_THROW);
  return container->getControl(ToOffice(name));
}

AwtControl::AwtControl(controls::Control& model, calc::Site& site, std::string_view type)
    : model_(model), site_(site), type_(type), listener_(new ControlListener(*this, site.Desk)) {}

AwtControl::~AwtControl() { Abandon(); }

void AwtControl::Abandon() { listener_->Abandon(); }

void AwtControl::Describe() {
  properties_ = site_.Add(model_.Name, type_, Order());
  for (const auto property : {Property::Caption, Property::ToolTip, Property::Enabled, Property::Visible,
                              Property::Text, Property::Value}) {
    Apply(property);
  }
}

void AwtControl::Attach() { Attached(site_.ControlOf(model_.Name)); }

void AwtControl::Attached(const Reference<css::awt::XControl>& control) {
  control_ = control;
  Listen(control);
  list_is_due_ = true;
  UpdateList();
}

void AwtControl::Listen(const Reference<css::awt::XControl>& control) { listener_->ListenTo(control); }

void AwtControl::Update(Property property) {
  if (property == Property::List) {
    list_is_due_ = true;
    return;
  }
  UpdateList();
  const ScopedCount updating(site_.Updating);
  Apply(property);
}

void AwtControl::UpdateList() {
  if (!list_is_due_) return;
  list_is_due_ = false;
  const ScopedCount updating(site_.Updating);
  FillList();
}

void AwtControl::Apply(Property property) {
  switch (property) {
    case Property::Caption:
      Put("Label", ToCaption(model_.Caption()));
      break;
    case Property::ToolTip:
      Put("HelpText", ToOffice(model_.ToolTip()));
      break;
    case Property::Enabled:
      Put("Enabled", model_.Enabled());
      break;
    case Property::Visible:
      Put("EnableVisible", model_.Shown());
      break;
    case Property::Focus:
      if (control_.is() && model_.Shown() && site_.Focused != this) As<css::awt::XWindow>()->setFocus();
      break;
    default:
      break;
  }
}

void AwtControl::Place(const Properties& properties, const controls::Rect& bounds) {
  Put(properties, "PositionX", static_cast<sal_Int32>(bounds.left));
  Put(properties, "PositionY", static_cast<sal_Int32>(bounds.top));
  Put(properties, "Width", static_cast<sal_Int32>(bounds.width));
  Put(properties, "Height", static_cast<sal_Int32>(bounds.height));
}

// Only those who help people to see are told whether it is open.
bool AwtControl::IsForOpenList(int32_t key) const {
  constexpr int32_t kPageUp = 33;
  constexpr int32_t kKeys[] = {
      controls::kKeyReturn, controls::kKeyEscape, controls::kKeyUp, controls::kKeyDown, kPageUp, kPageUp + 1};
  const Reference<css::accessibility::XAccessible> accessible(control_, css::uno::UNO_QUERY);
  if (std::ranges::count(kKeys, key) == 0 || !accessible.is()) return false;
  const auto box = accessible->getAccessibleContext();
  for (sal_Int32 i = 0; i < box->getAccessibleChildCount(); ++i) {
    const auto child = box->getAccessibleChild(i)->getAccessibleContext();
    if (child->getAccessibleRole() == css::accessibility::AccessibleRole::LIST) {
      return child->getAccessibleStateSet()->contains(css::accessibility::AccessibleStateType::SHOWING);
    }
  }
  return false;
}

void AwtControl::FocusChanged(bool has) {
  if (has) {
    site_.Focused = this;
  } else if (site_.Focused == this) {
    site_.Focused = nullptr;
  }
  for (const auto& control : site_.Controls) control->FocusMoved();
  if (has && site_.Updating == 0) model_.UserFocused();
}

}  // namespace rowlark::calc
