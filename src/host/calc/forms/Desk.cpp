#include "host/calc/forms/Desk.h"

#include <com/sun/star/awt/AsyncCallback.hpp>
#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XControl.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/XFrames.hpp>
#include <cppuhelper/implbase1.hxx>
#include <osl/file.hxx>

#include <algorithm>

#include "host/calc/Strings.h"
#include "util/FileSystemPlatform.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::calc {
namespace {

using css::uno::Reference;

class Callback final : public cppu::WeakImplHelper1<css::awt::XCallback> {
 public:
  explicit Callback(std::function<void()> work) : work_(std::move(work)) {}

  // What the work throws is its own affair: an exception of ours would end the office.
  void SAL_CALL notify(const css::uno::Any&) override {
    const auto work = std::exchange(work_, nullptr);
    Attempt(nullptr, [&] { work(); });
  }

 private:
  std::function<void()> work_;
};

}  // namespace

void PostToMainThread(const Desk::Context& office, std::function<void()> work) {
  const Reference<css::awt::XCallback> callback(new Callback(std::move(work)));
  css::awt::AsyncCallback::create(office)->addCallback(callback, {});
}

Reference<css::awt::XWindowPeer> PeerOf(const Desk::Window& window) {
  const Reference<css::awt::XControl> control(window, css::uno::UNO_QUERY);
  if (control.is()) return control->getPeer();
  return Reference<css::awt::XWindowPeer>(window, css::uno::UNO_QUERY);
}

Desk::Desk(const Context& context, std::u16string pictures, std::function<void()> idle,
           std::shared_ptr<rowlark::Trace> trace)
    : trace_(std::move(trace)),
      Office(context),
      Toolkit(css::awt::Toolkit::create(Office)),
      pictures_(std::move(pictures)),
      idle_(std::move(idle)) {}

void Desk::Post(std::function<void()> work) noexcept {
  Attempt(Trace, [&] {
    PostToMainThread(Office, [self = shared_from_this(), work = std::move(work)] {
      const Visit under_way(self);
      Attempt(self->Trace, work);
    });
  });
}

rtl::OUString Desk::Picture(std::u16string_view name, bool small) const {
  if (name.empty()) return {};
  const auto path =
      platform::ToPath(pictures_) / (small ? "small" : "") / platform::ToPath(ToLower(name) + u".svg");
  std::error_code failed;
  rtl::OUString url;
  if (std::filesystem::exists(path, failed)) {
    osl::FileBase::getFileURLFromSystemPath(ToOffice(ToUtf16(path.string())), url);
  }
  return url;
}

std::vector<Desk::Window> Desk::DocumentWindows() const {
  const auto desktop = css::frame::Desktop::create(Office);
  std::vector<Window> windows;
  const auto add = [&windows](const Reference<css::frame::XFrame>& frame) {
    if (!frame.is()) return;
    const auto window = frame->getContainerWindow();
    if (window.is() && std::ranges::find(windows, window) == windows.end()) windows.push_back(window);
  };
  add(desktop->getCurrentFrame());
  const auto frames = desktop->getFrames();
  for (sal_Int32 i = 0; i < frames->getCount(); ++i) {
    add(Reference<css::frame::XFrame>(frames->getByIndex(i), css::uno::UNO_QUERY));
  }
  return windows;
}

Desk::Window Desk::Owner(intptr_t address) const {
  const auto windows = DocumentWindows();
  for (const auto& window : windows) {
    if (reinterpret_cast<intptr_t>(window.get()) == address) return window;
  }
  return windows.empty() ? Window() : windows.front();
}

}  // namespace rowlark::calc
