#include "host/calc/forms/FormDialog.h"

#include <com/sun/star/awt/PosSize.hpp>
#include <com/sun/star/awt/XDevice.hpp>
#include <com/sun/star/awt/XLayoutConstrains.hpp>
#include <com/sun/star/awt/XTopWindow.hpp>
#include <com/sun/star/awt/XUnitConversion.hpp>
#include <com/sun/star/awt/XWindow2.hpp>
#include <com/sun/star/util/MeasureUnit.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

#include "controls/Button.h"
#include "host/calc/forms/DialogListener.h"
#include "host/calc/forms/Keys.h"
#include "util/Scope.h"

namespace rowlark::calc {

using controls::Property;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

constexpr std::u16string_view kRuler = u"ruler";

rtl::OUString Name(const char* ascii) { return rtl::OUString::createFromAscii(ascii); }

}  // namespace

FormDialog::FormDialog(controls::Form& form, std::shared_ptr<Desk> desk)
    : desk_(std::move(desk)), form_(&form) {}

FormDialog::~FormDialog() = default;

void FormDialog::Open(controls::Form& form, std::shared_ptr<Desk> desk) {
  const auto dialog = Ref<FormDialog>(new FormDialog(form, std::move(desk)));
  dialog->self_ = dialog;
  dialog->desk_->Windows.push_back(dialog.get());
  try {
    dialog->Build(dialog->desk_->Owner(form.Owner()));
  } catch (...) {
    dialog->Abandon();
    throw;
  }
  form.Attach(*dialog);
}

void FormDialog::Build(const Desk::Window& owner) {
  const auto site = std::make_shared<Site>(*form_, *this, desk_);
  const auto services = desk_->Office->getServiceManager();
  const auto make = [&](const char* service) {
    return services->createInstanceWithContext(Name(service), desk_->Office);
  };
  site->Factory.set(make("com.sun.star.awt.UnoControlDialogModel"), UNO_QUERY_THROW);
  const Reference<css::beans::XPropertySet> model(site->Factory, UNO_QUERY_THROW);
  model->setPropertyValue(Name("Title"), css::uno::Any(ToOffice(form_->Caption())));
  model->setPropertyValue(Name("Sizeable"), css::uno::Any(form_->Resizable));
  for (controls::Control* control : form_->InTabOrder()) {
    auto made = MakeAwtControl(*control, *site);
    if (!made) continue;
    site->Controls.push_back(std::move(made));
    site->Controls.back()->Describe();
  }
  ruler_ = site->Add(kRuler, "FixedText", 0);
  ruler_->setPropertyValue(Name("EnableVisible"), css::uno::Any(false));

  site->Window.set(make("com.sun.star.awt.UnoControlDialog"), UNO_QUERY_THROW);
  site->Window->setModel(Reference<css::awt::XControlModel>(model, UNO_QUERY_THROW));
  const Reference<css::awt::XWindow> window(site->Window, UNO_QUERY_THROW);
  window->setVisible(false);
  site->Window->createPeer(Reference<css::awt::XToolkit>(desk_->Toolkit, UNO_QUERY_THROW), PeerOf(owner));
  {
    const ScopedCount updating(site->Updating);
    for (const auto& control : site->Controls) control->Attach();
  }
  listener_ = new DialogListener(*this, desk_);
  listener_->ListenTo(site->Window, owner);
  owner_ = owner;
  site_ = site;
}

// What is on the stack of the window holds it, and it goes when that is done.
void FormDialog::TakeDown() noexcept {
  if (listener_.is()) std::exchange(listener_, {})->Abandon();
  if (desk_->Active == this) desk_->Active = nullptr;
  const auto site = std::exchange(site_, nullptr);
  if (!site) return;
  for (controls::Control* control : site->Form->Controls()) desk_->Timers.Stop(control);
  Attempt(desk_->Trace,
          [&] { Reference<css::awt::XWindow>(site->Window, UNO_QUERY_THROW)->setVisible(false); });
  for (const auto& control : site->Controls) control->Abandon();
  desk_->Post([site] {});
}

void FormDialog::Abandon() noexcept {
  Hide();
  TakeDown();
  std::erase(desk_->Windows, this);
  form_ = nullptr;
  self_ = nullptr;
}

void FormDialog::Released(controls::Form&) noexcept {
  const Ref<FormDialog> keep(this);
  Abandon();
}

// The window of the document takes those of its dialogs along, so what is left of this one can not wait.
void FormDialog::OwnerGone() {
  const auto site = site_;
  const auto form = form_;
  form->Unload();
  Abandon();
  if (site) site->Dispose();
}

Desk::Window FormDialog::Window() const {
  return site_ ? Desk::Window(site_->Window, UNO_QUERY) : Desk::Window();
}

void FormDialog::Changed(controls::Control& control, Property property) noexcept {
  const Ref<FormDialog> keep(this);
  Attempt(desk_->Trace, [&] { Show(control, property); });
}

void FormDialog::Show(controls::Control& control, Property property) {
  if (!form_ || !site_) return;
  const auto site = site_;
  if (&control == form_.get()) return ChangedForm(property);
  if (property == Property::Timer) return StartTimer(static_cast<controls::Timer&>(control));
  AwtControl* shown = site->Find(control);
  if (shown == nullptr) return;
  shown->Update(property);
  if (!shown->ListIsDue() || std::exchange(list_update_is_posted_, true)) return;
  desk_->Post([keep = Ref<FormDialog>(this)] {
    keep->list_update_is_posted_ = false;
    const auto present = keep->site_;
    if (!present) return;
    for (const auto& one : present->Controls) one->UpdateList();
  });
}

void FormDialog::ChangedForm(Property property) {
  switch (property) {
    case Property::Caption:
      return SetTitle();
    case Property::Visible:
      return form_->Visible() ? Show() : Hide();
    case Property::Layout:
      return LayOut();
    case Property::Position:
      return MoveWindow();
    case Property::Owner:
      return ChangeOwner();
    default:  // topmost: it lies above the window that owns it
      return;
  }
}

void FormDialog::SetTitle() {
  Reference<css::beans::XPropertySet>(site_->Factory, UNO_QUERY_THROW)
      ->setPropertyValue(Name("Title"), css::uno::Any(ToOffice(form_->Caption())));
}

// The toolkit can not give a window to another one: a new one takes its place.
void FormDialog::ChangeOwner() {
  if (form_->Owner() == 0) return;  // it goes
  const auto owner = desk_->Owner(form_->Owner());
  if (owner == owner_) return;
  TakeDown();
  try {
    Build(owner);
  } catch (...) {
    form_->Unload();  // or nobody would ever see it again, and nobody open another
    throw;
  }
  LayOut();
  MoveWindow();
  if (form_->Visible()) Show();
}

void FormDialog::Show() {
  const auto site = site_;
  for (const auto& control : site->Controls) control->UpdateList();
  if (form_->Modal() && disabled_.empty()) DisableOthers();
  const Reference<css::awt::XWindow2> window(site->Window, UNO_QUERY_THROW);
  if (window->isVisible()) {
    Reference<css::awt::XTopWindow>(window, UNO_QUERY_THROW)->toFront();
  } else {
    window->setVisible(true);
  }
  if (!form_ || site != site_) return;
  if (controls::Control* active = form_->ActiveControl()) {
    if (AwtControl* shown = site->Find(*active)) shown->Update(Property::Focus);
  }
}

// What was disabled comes back first, so that the owner becomes active then.
void FormDialog::Hide() {
  for (const auto& window : std::exchange(disabled_, {})) {
    Attempt(desk_->Trace, [&] { window->setEnable(true); });
  }
  if (!site_) return;
  Attempt(desk_->Trace, [this] { Window()->setVisible(false); });
}

// All windows of the office wait for a modal form.
void FormDialog::DisableOthers() {
  auto windows = desk_->DocumentWindows();
  for (const FormDialog* other : desk_->Windows) {
    if (other != this && other->site_) windows.push_back(other->Window());
  }
  for (const auto& window : windows) {
    const Reference<css::awt::XWindow2> state(window, UNO_QUERY);
    if (!state.is() || !state->isEnabled()) continue;
    disabled_.push_back(window);
    window->setEnable(false);
  }
}

void FormDialog::LayOut() {
  const auto site = site_;
  const ScopedCount updating(site->Updating);
  if (!sizing_) {
    const auto size = Pixels(form_->ClientSize());
    Window()->setPosSize(0, 0, size.Width, size.Height, css::awt::PosSize::SIZE);
  }
  for (const auto& control : site->Controls) control->Place();
}

void FormDialog::MoveWindow() {
  const ScopedCount updating(site_->Updating);
  const auto [x, y] = form_->Position();
  Window()->setPosSize(PixelsOf(x), PixelsOf(y), 0, 0, css::awt::PosSize::POS);
}

void FormDialog::Moved() {
  if (!site_ || site_->Updating > 0 || !form_->Visible()) return;
  const auto place = Window()->getPosSize();
  form_->UserMoved({Twips(place.X), Twips(place.Y)});
}

void FormDialog::Resized() {
  if (!site_ || site_->Updating > 0 || !form_->Resizable || !form_->Visible()) return;
  const auto place = Window()->getPosSize();
  const auto units = Reference<css::awt::XUnitConversion>(site_->Window->getPeer(), UNO_QUERY_THROW)
                         ->convertSizeToLogic({place.Width, place.Height}, css::util::MeasureUnit::APPFONT);
  const ScopedFlag sizing(sizing_);
  form_->UserResized({units.Width, units.Height});
}

void FormDialog::Activated(bool active) {
  if (active) {
    desk_->Active = this;
    form_->UserActivated();
  } else if (desk_->Active == this) {
    desk_->Active = nullptr;
  }
}

void FormDialog::StartTimer(controls::Timer& timer) {
  const controls::Control* name = &timer;
  if (!timer.Enabled()) return desk_->Timers.Stop(name);
  // Nothing that is counted without atomics goes through the other thread.
  const std::weak_ptr<Desk> desk = desk_;
  desk_->Timers.Start(name, std::chrono::milliseconds(timer.Interval()), [desk, name, self = this] {
    if (const auto there = desk.lock()) {
      there->Post([desk, name, self] {
        const auto present = desk.lock();
        if (!present) return;
        const auto& windows = present->Windows;
        if (std::ranges::find(windows, self) == windows.end()) return;
        const Ref<FormDialog> keep(self);
        self->Expired(name);
      });
    }
  });
}

// A timer that has been started anew meanwhile is due later.
void FormDialog::Expired(const controls::Control* name) {
  if (!form_) return;
  const auto form = form_;
  const auto& controls = form->Controls();
  const auto found = std::ranges::find(controls, name);
  if (found == controls.end() || (*found)->Kind != controls::ControlKind::Timer) return;
  if (desk_->Timers.Runs(name)) return;
  auto& timer = static_cast<controls::Timer&>(**found);
  if (!timer.Enabled()) return;
  StartTimer(timer);
  timer.Expired();
}

AwtControl* FormDialog::FocusedControl() const { return site_ ? site_->Focused : nullptr; }

// The form sees a key first; what it leaves is for the control with the focus, and then for the dialog.
bool FormDialog::KeyPressed(int16_t code, int16_t modifiers, char16_t character) {
  const auto form = form_;
  const auto site = site_;
  const int32_t shift = modifiers & (controls::kShift | controls::kCtrl | controls::kAlt);
  AwtControl* focused = FocusedControl();
  if (focused != nullptr) focused->Report();
  const int32_t key = VirtualKey(code);
  if (focused != nullptr && focused->TakesKey(key)) return false;
  if (key != 0) {
    const int32_t left = form->UserKeyDown(key, shift);
    if (left == 0 || !form->Loaded()) return true;
  }
  if (character != 0) {
    const char16_t left = form->UserKeyPress(character);
    if (left == 0 || !form->Loaded()) return true;
  }
  return site != site_ || UseKey(key, shift);
}

bool FormDialog::UseKey(int32_t key, int32_t shift) {
  AwtControl* focused = FocusedControl();
  if (focused != nullptr && focused->UseKey(key, shift)) return true;
  if (shift != controls::kNoShift || (key != controls::kKeyReturn && key != controls::kKeyEscape))
    return false;
  const bool enter = key == controls::kKeyReturn;
  if (enter && focused != nullptr && focused->Model().Kind == controls::ControlKind::Button) return false;
  for (controls::Control* control : form_->Controls()) {
    if (control->Kind != controls::ControlKind::Button) continue;
    const auto& button = static_cast<const controls::Button&>(*control);
    if (!(enter ? button.Default : button.Cancel)) continue;
    // Its handler may process messages for minutes and must not do so while the key is under way.
    desk_->Post([form = form_, control] { control->UserClicked(); });
    return true;
  }
  return false;
}

bool FormDialog::KeyReleased(int16_t code, int16_t modifiers) {
  const auto form = form_;
  const int32_t key = VirtualKey(code);
  const int32_t shift = modifiers & (controls::kShift | controls::kCtrl | controls::kAlt);
  return key != 0 && (form->UserKeyUp(key, shift) == 0 || !form->Loaded());
}

int32_t FormDialog::Twips(int32_t pixels) const {
  const Reference<css::awt::XDevice> device(site_->Window->getPeer(), UNO_QUERY_THROW);
  return static_cast<int32_t>(std::lround(pixels * kTwipsPerMetre / device->getInfo().PixelPerMeterX));
}

int32_t FormDialog::PixelsOf(int32_t twips) const {
  const Reference<css::awt::XDevice> device(site_->Window->getPeer(), UNO_QUERY_THROW);
  return static_cast<int32_t>(std::lround(twips * device->getInfo().PixelPerMeterX / kTwipsPerMetre));
}

css::awt::Size FormDialog::Pixels(controls::Size units) const {
  return Reference<css::awt::XUnitConversion>(site_->Window->getPeer(), UNO_QUERY_THROW)
      ->convertSizeToPixel({units.width, units.height}, css::util::MeasureUnit::APPFONT);
}

int32_t FormDialog::TextWidth(std::u16string_view text) const noexcept {
  return AttemptOr(desk_->Trace, int32_t{0}, [&] {
    if (!site_ || text.empty()) return 0;
    ruler_->setPropertyValue(Name("Label"), css::uno::Any(ToLabel(text)));
    const auto pixels =
        Reference<css::awt::XLayoutConstrains>(site_->ControlOf(kRuler), UNO_QUERY_THROW)->getPreferredSize();
    const auto units = Reference<css::awt::XUnitConversion>(site_->Window->getPeer(), UNO_QUERY_THROW)
                           ->convertSizeToLogic(pixels, css::util::MeasureUnit::APPFONT);
    return static_cast<int32_t>(units.Width) + 1;
  });
}

controls::TwipSize FormDialog::WindowSize(controls::Size client) const noexcept {
  return AttemptOr(desk_->Trace, controls::TwipSize{}, [&] {
    if (!site_) return controls::TwipSize{};
    const auto inner = Pixels(client);
    const auto frame = Reference<css::awt::XDevice>(site_->Window->getPeer(), UNO_QUERY_THROW)->getInfo();
    return controls::TwipSize{Twips(inner.Width + frame.LeftInset + frame.RightInset),
                              Twips(inner.Height + frame.TopInset + frame.BottomInset)};
  });
}

}  // namespace rowlark::calc
