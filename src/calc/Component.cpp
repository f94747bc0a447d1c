// What the office makes of the library: the add-in, one for all documents, and a handler of its commands for
// each window.
#include <dlfcn.h>

#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/frame/FeatureStateEvent.hpp>
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <com/sun/star/frame/XTerminateListener.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <com/sun/star/lang/XServiceInfo.hpp>
#include <com/sun/star/task/XJob.hpp>
#include <com/sun/star/task/XJobExecutor.hpp>
#include <cppuhelper/implbase3.hxx>
#include <cppuhelper/implbase5.hxx>
#include <cppuhelper/supportsservice.hxx>
#include <cppuhelper/weak.hxx>
#include <rtl/ref.hxx>

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <iterator>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "calc/AddIn.h"
#include "host/calc/Strings.h"
#include "host/calc/forms/Captions.h"
#include "util/FileSystemPlatform.h"

namespace rowlark::calc {
namespace {

using css::uno::Reference;

constexpr char kAddIn[] = "org.rowlark.AddIn";
constexpr char kProtocolHandler[] = "org.rowlark.ProtocolHandler";

// The folder of the library, which is that of the extension.
std::u16string Folder() {
  Dl_info info{};
  ::dladdr(reinterpret_cast<const void*>(&Folder), &info);
  return platform::ToText(std::filesystem::path(info.dli_fname).parent_path());
}

css::uno::Sequence<rtl::OUString> Service(const char* name) {
  css::uno::Sequence<rtl::OUString> names(1);
  names.getArray()[0] = rtl::OUString::createFromAscii(name);
  return names;
}

// Lives as long as the office. Its job begins the add-in when the first spreadsheet opens. Everything is done
// on the main thread; what may come from others is posted there.
class AddInService final
    : public cppu::WeakImplHelper5<css::task::XJob, css::task::XJobExecutor, css::frame::XTerminateListener,
                                   css::lang::XComponent, css::lang::XServiceInfo> {
 public:
  explicit AddInService(const Desk::Context& office) : office_(office) {}
  // What is left of the add-in when the office goes stays: nothing that it stands on is sure to be there.
  ~AddInService() override { static_cast<void>(add_in_.release()); }

  void Listen(const Reference<css::frame::XStatusListener>& listener, const css::util::URL& url) noexcept {
    Attempt(nullptr, [&] {
      {
        const std::lock_guard lock(mutex_);
        listeners_.push_back({listener, url});
      }
      Later([self = rtl::Reference<AddInService>(this), listener, url] { self->Tell(listener, url); });
    });
  }
  void Ignore(const Reference<css::frame::XStatusListener>& listener, const css::util::URL& url) noexcept {
    Forget([&](const Listener& one) { return one.listener == listener && one.url.Complete == url.Complete; });
  }

  void Run(Macro macro) noexcept {
    Attempt(nullptr, [&] {
      Later([self = rtl::Reference<AddInService>(this), macro] {
        if (self->add_in_)
          self->add_in_->Post([self, macro] {
            if (self->add_in_) self->add_in_->Run(macro);
          });
      });
    });
  }

  css::uno::Any SAL_CALL execute(const css::uno::Sequence<css::beans::NamedValue>&) override {
    Attempt(nullptr, [this] { Later([] {}); });
    return {};
  }
  // What the office does for a URL such as "service:org.rowlark.AddIn?VantrelRLK_ShowSearch".
  void SAL_CALL trigger(const rtl::OUString& macro) override {
    if (const auto known = MacroOf(ViewOf(macro))) Run(*known);
  }

 private:
  struct Listener {
    Reference<css::frame::XStatusListener> listener;
    css::util::URL url;
  };

  // A listener that goes with that may call back, so nothing is locked then.
  template <class Condition>
  void Forget(Condition condition) noexcept {
    Attempt(nullptr, [&] {
      std::vector<Listener> gone;
      const std::lock_guard lock(mutex_);
      const auto last = std::stable_partition(listeners_.begin(), listeners_.end(), std::not_fn(condition));
      gone.assign(std::move_iterator(last), std::move_iterator(listeners_.end()));
      listeners_.erase(last, listeners_.end());
    });
  }

  // On the main thread, with the add-in. Throws what the office throws.
  void Later(std::function<void()> work) {
    PostToMainThread(office_, [self = rtl::Reference<AddInService>(this), work = std::move(work)] {
      self->Begin();
      work();
    });
  }

  void Begin() {
    if (add_in_ || ended_) return;
    if (thread_ == std::thread::id()) css::frame::Desktop::create(office_)->addTerminateListener(this);
    thread_ = std::this_thread::get_id();
    add_in_ = std::make_unique<AddIn>(
        office_, Folder(), [this] { EndIfStopped(); }, [this] { TellAll(); });
    TellAll();
  }

  void TellAll() {
    std::vector<Listener> listeners;
    {
      const std::lock_guard lock(mutex_);
      listeners = listeners_;
    }
    for (const auto& [listener, url] : listeners) Tell(listener, url);
  }

  // The command can be used, and is called so in the user's language.
  void Tell(const Reference<css::frame::XStatusListener>& listener, const css::util::URL& url) {
    const auto macro = MacroOf(ViewOf(url.Path));
    if (!add_in_ || !macro) return;
    css::frame::FeatureStateEvent event;
    event.Source = static_cast<css::task::XJob*>(this);
    event.FeatureURL = url;
    event.IsEnabled = true;
    event.State <<= ToCaption(add_in_->CaptionOf(*macro));
    Attempt(nullptr, [&] { listener->statusChanged(event); });
  }

  void EndIfStopped() noexcept {
    if (!ended_ || !add_in_ || add_in_->Busy()) return;
    Attempt(nullptr, [&] { std::exchange(add_in_, nullptr).reset(); });
  }

  // A veto is not ours to give; what waits ends before the office does.
  void SAL_CALL queryTermination(const css::lang::EventObject&) override {}
  void SAL_CALL notifyTermination(const css::lang::EventObject&) override {
    if (std::this_thread::get_id() == thread_) return End();
    // A program outside has the office end.
    const auto ended = std::make_shared<std::promise<void>>();
    Attempt(nullptr, [&] {
      PostToMainThread(office_, [self = rtl::Reference<AddInService>(this), ended] {
        self->End();
        ended->set_value();
      });
      ended->get_future().wait_for(std::chrono::seconds(10));
    });
  }
  void End() noexcept {
    if (std::exchange(ended_, true) || !add_in_) return;
    {
      const auto working = add_in_->Working();
      add_in_->Stop();
    }
    EndIfStopped();
  }
  void SAL_CALL disposing(const css::lang::EventObject& event) override {
    Forget([&](const Listener& one) { return one.listener == event.Source; });
  }

  void SAL_CALL dispose() override {}
  void SAL_CALL addEventListener(const Reference<css::lang::XEventListener>&) override {}
  void SAL_CALL removeEventListener(const Reference<css::lang::XEventListener>&) override {}

  rtl::OUString SAL_CALL getImplementationName() override { return rtl::OUString::createFromAscii(kAddIn); }
  sal_Bool SAL_CALL supportsService(const rtl::OUString& name) override {
    return cppu::supportsService(this, name);
  }
  css::uno::Sequence<rtl::OUString> SAL_CALL getSupportedServiceNames() override { return Service(kAddIn); }

  const Reference<css::uno::XComponentContext> office_;
  std::mutex mutex_;  // of the listeners
  std::vector<Listener> listeners_;
  std::unique_ptr<AddIn> add_in_;
  std::thread::id thread_;  // the main one
  bool ended_ = false;
};

// Of a window: its menu items and keys are commands of our protocol.
class ProtocolHandler final : public cppu::WeakImplHelper3<css::frame::XDispatchProvider,
                                                           css::frame::XDispatch, css::lang::XServiceInfo> {
 public:
  explicit ProtocolHandler(const Reference<css::uno::XComponentContext>& office)
      : service_(office->getServiceManager()->createInstanceWithContext(
            rtl::OUString::createFromAscii(kAddIn), office)),
        add_in_(dynamic_cast<AddInService*>(service_.get())) {}

 private:
  Reference<css::frame::XDispatch> SAL_CALL queryDispatch(const css::util::URL& url, const rtl::OUString&,
                                                          sal_Int32) override {
    const bool ours = add_in_ != nullptr && ViewOf(url.Protocol) == kProtocol && MacroOf(ViewOf(url.Path));
    return ours ? this : nullptr;
  }
  css::uno::Sequence<Reference<css::frame::XDispatch>> SAL_CALL
  queryDispatches(const css::uno::Sequence<css::frame::DispatchDescriptor>& requests) override {
    css::uno::Sequence<Reference<css::frame::XDispatch>> found(requests.getLength());
    for (sal_Int32 i = 0; i < requests.getLength(); ++i) {
      const auto& request = requests[i];
      found.getArray()[i] = queryDispatch(request.FeatureURL, request.FrameName, request.SearchFlags);
    }
    return found;
  }

  void SAL_CALL dispatch(const css::util::URL& url,
                         const css::uno::Sequence<css::beans::PropertyValue>&) override {
    if (const auto macro = MacroOf(ViewOf(url.Path))) add_in_->Run(*macro);
  }
  void SAL_CALL addStatusListener(const Reference<css::frame::XStatusListener>& listener,
                                  const css::util::URL& url) override {
    add_in_->Listen(listener, url);
  }
  void SAL_CALL removeStatusListener(const Reference<css::frame::XStatusListener>& listener,
                                     const css::util::URL& url) override {
    add_in_->Ignore(listener, url);
  }

  rtl::OUString SAL_CALL getImplementationName() override {
    return rtl::OUString::createFromAscii(kProtocolHandler);
  }
  sal_Bool SAL_CALL supportsService(const rtl::OUString& name) override {
    return cppu::supportsService(this, name);
  }
  css::uno::Sequence<rtl::OUString> SAL_CALL getSupportedServiceNames() override {
    return Service("com.sun.star.frame.ProtocolHandler");
  }

  const Reference<css::uno::XInterface> service_;
  AddInService* const add_in_;  // held by `service_`
};

}  // namespace
}  // namespace rowlark::calc

using namespace rowlark::calc;  // NOLINT(google-build-using-namespace): what follows is C

extern "C" SAL_DLLPUBLIC_EXPORT css::uno::XInterface* rowlark_add_in(
    css::uno::XComponentContext* office, const css::uno::Sequence<css::uno::Any>&) {
  return cppu::acquire(static_cast<cppu::OWeakObject*>(new AddInService(office)));
}

extern "C" SAL_DLLPUBLIC_EXPORT css::uno::XInterface* rowlark_protocol_handler(
    css::uno::XComponentContext* office, const css::uno::Sequence<css::uno::Any>&) {
  return cppu::acquire(static_cast<cppu::OWeakObject*>(new ProtocolHandler(office)));
}
