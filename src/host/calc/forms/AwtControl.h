// A control of a form as the office's toolkit shows it: one of its own control models, or several for a tool
// bar. It shows what the control holds, and reports what the user does to it.
#pragma once

#include <com/sun/star/awt/XControl.hpp>
#include <com/sun/star/awt/XWindow2.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/lang/XMultiServiceFactory.hpp>
#include <rtl/ref.hxx>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "controls/Form.h"
#include "host/calc/Strings.h"
#include "host/calc/forms/Captions.h"
#include "host/calc/forms/Desk.h"

namespace rowlark::calc {

class AwtControl;
class ControlListener;

// What the window of a form has for those of its controls.
struct Site : std::enable_shared_from_this<Site> {
  Site(controls::Form& form, const controls::View& view, std::shared_ptr<Desk> shared)
      : Form(&form), View(view), Desk(std::move(shared)) {}
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;
  // The window goes, and with it those of the controls.
  ~Site();

  const Ref<controls::Form> Form;
  const controls::View& View;  // measures texts
  const std::shared_ptr<calc::Desk> Desk;
  com::sun::star::uno::Reference<com::sun::star::lang::XMultiServiceFactory>
      Factory;  // the model of the window
  com::sun::star::uno::Reference<com::sun::star::awt::XControl> Window;
  std::vector<std::unique_ptr<AwtControl>> Controls;  // in the tab order
  AwtControl* Focused = nullptr;
  int Updating = 0;  // code sets what windows show: nothing that they report then is the user's doing

  AwtControl* Find(const controls::Control& control) const;
  // Makes a control of the office, which stands in the tab order at that place.
  com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet> Add(std::u16string_view name,
                                                                          std::string_view type,
                                                                          int order) const;
  com::sun::star::uno::Reference<com::sun::star::awt::XControl> ControlOf(std::u16string_view name) const;
  void Dispose() noexcept;
};

class AwtControl {
 public:
  using Properties = com::sun::star::uno::Reference<com::sun::star::beans::XPropertySet>;

  // `type` is the middle of the name of the office's model: "Button" of "UnoControlButtonModel".
  AwtControl(controls::Control& model, calc::Site& site, std::string_view type);
  AwtControl(const AwtControl&) = delete;
  AwtControl& operator=(const AwtControl&) = delete;
  virtual ~AwtControl();

  controls::Control& Model() const { return model_; }
  calc::Site& Site() const { return site_; }

  // Sets what does not change, before there is a window.
  virtual void Describe();
  // There is a window.
  void Attach();
  // It goes: nothing is reported any more.
  void Abandon();

  // What has changed by code. Lists are filled when the next message comes, or anything else of the control
  // changes: they are often filled entry by entry.
  void Update(controls::Property property);
  void UpdateList();
  bool ListIsDue() const { return list_is_due_; }
  // To where the form's layout has it.
  virtual void Place() { Place(properties_, model_.Bounds); }

  // What the user does.
  virtual void Acted(std::u16string_view /*name*/) {}  // pressed a button, by the name of its control
  virtual void Picked(int32_t /*index*/) {}
  virtual void Typed() {}
  virtual void Clicked() {}  // with the mouse
  void FocusChanged(bool has);
  // Another control of the form has got it, or this one.
  virtual void FocusMoved() {}
  // Tells the control what the window does not report by itself, before a handler looks at it.
  virtual void Report() {}
  // A key means something to the control, whatever it means to the form.
  virtual bool TakesKey(int32_t /*key*/) const { return false; }
  // Does what a key means to the control and its window knows nothing of; true for such a key.
  virtual bool UseKey(int32_t /*key*/, int32_t /*shift*/) { return false; }

 protected:
  virtual void Apply(controls::Property property);
  virtual void FillList() {}
  virtual void Attached(const com::sun::star::uno::Reference<com::sun::star::awt::XControl>& control);
  // A control of the office that belongs to this one reports here.
  void Listen(const com::sun::star::uno::Reference<com::sun::star::awt::XControl>& control);

  template <class Value>
  static void Put(const Properties& properties, std::string_view name, const Value& value) {
    properties->setPropertyValue(Name(name), com::sun::star::uno::Any(value));
  }
  template <class Value>
  void Put(std::string_view name, const Value& value) {
    Put(properties_, name, value);
  }
  template <class Value>
  Value Get(std::string_view name) const {
    Value value{};
    properties_->getPropertyValue(Name(name)) >>= value;
    return value;
  }
  static rtl::OUString Name(std::string_view ascii) {
    return rtl::OUString(ascii.data(), static_cast<sal_Int32>(ascii.size()), RTL_TEXTENCODING_ASCII_US);
  }
  template <class Interface>
  com::sun::star::uno::Reference<Interface> As() const {
    return {control_, com::sun::star::uno::UNO_QUERY_THROW};
  }
  static void Place(const Properties& properties, const controls::Rect& bounds);
  // Where the tab order reaches it.
  virtual int Order() const { return 2 * model_.TabIndex + 2; }
  bool TabStop() const { return model_.TabStop; }
  // Of a box with a list to open: a key for the list that is open.
  bool IsForOpenList(int32_t key) const;

  controls::Control& model_;
  calc::Site& site_;
  const std::string_view type_;
  Properties properties_;
  com::sun::star::uno::Reference<com::sun::star::awt::XControl> control_;  // once there is a window

 private:
  rtl::Reference<ControlListener> listener_;
  bool list_is_due_ = false;
};

// Null for a timer, which has no window.
std::unique_ptr<AwtControl> MakeAwtControl(controls::Control& control, Site& site);

}  // namespace rowlark::calc
