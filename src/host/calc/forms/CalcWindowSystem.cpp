#include "host/calc/forms/CalcWindowSystem.h"

#include <com/sun/star/awt/MessageBoxButtons.hpp>
#include <com/sun/star/awt/MessageBoxResults.hpp>
#include <com/sun/star/awt/MessageBoxType.hpp>
#include <com/sun/star/awt/XDevice.hpp>
#include <com/sun/star/awt/XMessageBoxFactory.hpp>
#include <com/sun/star/system/SystemShellExecute.hpp>
#include <com/sun/star/system/SystemShellExecuteFlags.hpp>

#include <utility>

#include "host/calc/Strings.h"
#include "host/calc/forms/FormDialog.h"
#include "util/Scope.h"
#include "util/Text.h"

namespace rowlark::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// The button pressed, one of MessageBoxResults. The box belongs to the form that is active, or else to the
// document in front.
sal_Int16 ShowBox(Desk& desk, css::awt::MessageBoxType type, sal_Int32 buttons, std::u16string_view text,
                  std::u16string_view title) {
  const auto owner = desk.Active != nullptr ? desk.Active->Window() : desk.Owner(0);
  const Reference<css::awt::XMessageBoxFactory> factory(desk.Toolkit, UNO_QUERY_THROW);
  const ScopedCount open(desk.Boxes);
  return factory->createMessageBox(PeerOf(owner), type, buttons, ToOffice(title), ToOffice(text))->execute();
}

}  // namespace

void OpenWithSystem(const Desk::Context& office, const rtl::OUString& uri) {
  css::system::SystemShellExecute::create(office)->execute(uri, {},
                                                           css::system::SystemShellExecuteFlags::URIS_ONLY);
}

CalcWindowSystem::CalcWindowSystem(const Desk::Context& office, std::u16string pictures,
                                   std::function<void()> idle, std::shared_ptr<Trace> trace)
    : desk_(std::make_shared<Desk>(office, std::move(pictures), std::move(idle), std::move(trace))) {}

CalcWindowSystem::~CalcWindowSystem() {
  while (!desk_->Windows.empty()) desk_->Windows.back()->Abandon();
}

void CalcWindowSystem::Stop(host::MessagePump& pump) {
  desk_->Timers.Stop([&pump] { pump.ProcessMessages(); });
}

bool CalcWindowSystem::Realise(controls::Form& form) noexcept {
  return Attempt(desk_->Trace, [&] { FormDialog::Open(form, desk_); });
}

void CalcWindowSystem::MsgBox(std::u16string_view text, host::MsgBoxIcon icon,
                              std::u16string_view title) noexcept {
  Attempt(desk_->Trace, [&] {
    const auto type = icon == host::MsgBoxIcon::Critical ? css::awt::MessageBoxType_ERRORBOX
                                                         : css::awt::MessageBoxType_WARNINGBOX;
    ShowBox(*desk_, type, css::awt::MessageBoxButtons::BUTTONS_OK, text, title);
  });
}

bool CalcWindowSystem::Ask(std::u16string_view text, std::u16string_view title) noexcept {
  return AttemptOr(desk_->Trace, false, [&] {
    return ShowBox(*desk_, css::awt::MessageBoxType_QUERYBOX, css::awt::MessageBoxButtons::BUTTONS_OK_CANCEL,
                   text, title) == css::awt::MessageBoxResults::OK;
  });
}

void CalcWindowSystem::OpenLink(controls::Form&, std::u16string_view link) noexcept {
  Attempt(desk_->Trace, [&] {
    for (const std::u16string_view scheme : {u"http://", u"https://", u"mailto:"}) {
      if (Compare(link.substr(0, scheme.size()), scheme, CompareMode::Text) != 0) continue;
      return OpenWithSystem(desk_->Office, ToOffice(link));
    }
  });
}

// The toolkit tells of one area, which several screens share.
std::vector<controls::TwipRect> CalcWindowSystem::Screens() const noexcept {
  std::vector<controls::TwipRect> screens;
  Attempt(desk_->Trace, [&] {
    const auto owner = desk_->Owner(0);
    if (!owner.is()) return;
    const auto area = desk_->Toolkit->getWorkArea();
    const double density =
        Reference<css::awt::XDevice>(PeerOf(owner), UNO_QUERY_THROW)->getInfo().PixelPerMeterX;
    const auto twips = [density](sal_Int32 pixels) {
      return static_cast<int32_t>(pixels * kTwipsPerMetre / density);
    };
    screens.push_back({twips(area.X), twips(area.Y), twips(area.Width), twips(area.Height)});
  });
  return screens;
}

}  // namespace rowlark::calc
