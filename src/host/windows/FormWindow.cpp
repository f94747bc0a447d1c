#include "host/windows/FormWindow.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "util/windows/WideText.h"

namespace rowlark::windows {

using controls::Property;

namespace {

constexpr wchar_t kClassName[] = L"RowlarkForm";

}  // namespace

FormDesk::FormDesk(std::function<void()> idle, rowlark::Trace* trace)
    : Trace(trace),
      Controls(Resources.Module()),
      LargeIcon(Resources.LoadPicture(u"rowlark", ::GetSystemMetrics(SM_CXICON))),
      SmallIcon(Resources.LoadPicture(u"rowlark", ::GetSystemMetrics(SM_CXSMICON))),
      idle_(std::move(idle)) {
  const ActivationContext::Scope scope(Controls);
  const INITCOMMONCONTROLSEX classes{sizeof classes,
                                     ICC_STANDARD_CLASSES | ICC_WIN95_CLASSES | ICC_LINK_CLASS};
  ::InitCommonControlsEx(&classes);
  WNDCLASSEXW form{};
  form.cbSize = sizeof form;
  form.lpfnWndProc = FormWindow::Procedure;
  form.cbWndExtra = DLGWINDOWEXTRA;
  form.hInstance = Resources.Module();
  form.hIcon = LargeIcon.get();
  form.hIconSm = SmallIcon.get();
  form.hCursor = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));  // IDC_ARROW
  form.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<intptr_t>(COLOR_3DFACE + 1));
  form.lpszClassName = kClassName;
  ::RegisterClassExW(&form);
}

FormDesk::~FormDesk() { ::UnregisterClassW(kClassName, Resources.Module()); }

std::shared_ptr<KeyHook> FormDesk::Keys() {
  auto keys = keys_.lock();
  if (!keys) {
    keys_ = keys = std::make_shared<KeyHook>(KeyHook::Procedure<FormWindow::TakeKey>);
    if (!*keys) TraceNumber(Trace, static_cast<int32_t>(::GetLastError()));
  }
  return keys;
}

FormWindow::FormWindow(controls::Form& form, std::shared_ptr<FormDesk> desk)
    : desk_(std::move(desk)), form_(&form), site_(desk_->Resources, desk_->Dpi) {}

void FormWindow::Open(controls::Form& form, std::shared_ptr<FormDesk> desk) {
  const auto window = Ref<FormWindow>(new FormWindow(form, std::move(desk)));
  const Dpi::Scope dpi(window->desk_->Dpi);
  const ActivationContext::Scope controls(window->desk_->Controls);
  try {
    window->Create();
    window->MakeControls();
  } catch (...) {
    window->Abandon();
    throw;
  }
  form.Attach(*window);
}

void FormWindow::Create() {
  ::CreateWindowExW(kFormExtendedStyle, kClassName, ToWide(form_->Caption()).c_str(), Style(), 0, 0, 0, 0,
                    nullptr, nullptr, desk_->Resources.Module(), this);
  if (site_.window == nullptr) {
    throw std::system_error(static_cast<int>(::GetLastError()), std::system_category());
  }
  keys_ = desk_->Keys();
  desk_->Windows.push_back(this);
  tool_tips_.Create(site_.window, desk_->Resources.Module());
  site_.dpi = desk_->Dpi.Of(site_.window);
  site_.scale = std::make_unique<DialogScale>(desk_->Dpi.MessageFont(site_.dpi));
}

// In the tab order, which also puts a label before what it names.
void FormWindow::MakeControls() {
  const NativeControl* before = nullptr;
  LONG_PTR id = 100;
  for (controls::Control* control : form_->InTabOrder()) {
    auto native = MakeNativeControl(*control, site_);
    if (!native) continue;
    const NativeControl& made = *site_.controls.emplace_back(std::move(native));
    const bool follows_option = before != nullptr && before->IsOption();
    const bool goes_on = follows_option && made.IsOption() && before->Model().Container == control->Container;
    if ((made.IsOption() || follows_option) && !goes_on) {
      ::SetWindowLongPtrW(made.Window(), GWL_STYLE, ::GetWindowLongPtrW(made.Window(), GWL_STYLE) | WS_GROUP);
    }
    before = &made;
    const int command = made.DialogCommand();
    ::SetWindowLongPtrW(made.Window(), GWLP_ID, command != 0 ? command : ++id);
    if (command == IDOK) ::SendMessageW(site_.window, DM_SETDEFID, IDOK, 0);
  }
  for (const auto& control : site_.controls) {
    control->Rescale();
    for (const auto property : {Property::Caption, Property::List, Property::Value, Property::Enabled,
                                Property::Visible, Property::Text}) {
      control->Update(property);
    }
    if (!control->Model().ToolTip().empty()) Changed(control->Model(), Property::ToolTip);
  }
}

void FormWindow::Abandon() noexcept {
  form_ = nullptr;
  if (site_.window != nullptr) ::DestroyWindow(site_.window);
}

void FormWindow::Released(controls::Form&) noexcept {
  const Ref<FormWindow> keep(this);
  form_ = nullptr;
  if (!destroying_) ::DestroyWindow(site_.window);
}

FormWindow* FormWindow::Of(HWND window) {
  const auto procedure = reinterpret_cast<WNDPROC>(::GetClassLongPtrW(window, GCLP_WNDPROC));
  if (procedure != Procedure) return nullptr;
  return reinterpret_cast<FormWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
}

LRESULT CALLBACK FormWindow::Procedure(HWND window, UINT message, WPARAM first, LPARAM second) noexcept {
  if (message == WM_NCCREATE) {
    auto* made = static_cast<FormWindow*>(reinterpret_cast<const CREATESTRUCTW*>(second)->lpCreateParams);
    made->site_.window = window;
    made->self_ = made;
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(made));
  }
  const Ref<FormWindow> self(reinterpret_cast<FormWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA)));
  if (!self) return ::DefDlgProcW(window, message, first, second);
  const FormDesk::Visit under_way(self->desk_);
  return AttemptOr(self->desk_->Trace, LRESULT{0}, [&] { return self->Handle({message, first, second}); });
}

LRESULT FormWindow::Handle(const Message& message) {
  const Ref<controls::Form> form = form_;
  if (message.id == WM_NCDESTROY) return Destroyed(message);
  if (form) {
    for (const auto handle :
         {&FormWindow::HandleFrame, &FormWindow::HandleControls, &FormWindow::HandleLooks}) {
      if (const auto result = (this->*handle)(*form, message)) return *result;
    }
  }
  return Default(message);
}

LRESULT FormWindow::Default(const Message& message) const {
  return ::DefDlgProcW(site_.window, message.id, message.first, message.second);
}

// The last message of the window.
LRESULT FormWindow::Destroyed(const Message& message) {
  const HWND window = site_.window;
  std::erase(desk_->Windows, this);
  keys_.reset();
  site_.window = nullptr;
  ::SetWindowLongPtrW(window, GWLP_USERDATA, 0);
  const LRESULT result = ::DefDlgProcW(window, message.id, message.first, message.second);
  self_ = nullptr;
  return result;
}

// What happens to the window as a whole.
std::optional<LRESULT> FormWindow::HandleFrame(controls::Form& form, const Message& message) {
  switch (message.id) {
    case WM_DESTROY:
      destroying_ = true;
      form.Unload();
      return 0;
    case WM_CLOSE:
      form.UserClosed();
      return 0;
    case WM_ACTIVATE: {
      const LRESULT result = Default(message);
      if (LOWORD(message.first) != WA_INACTIVE) form.UserActivated();
      return result;
    }
    case WM_LBUTTONUP:
      form.UserClicked();
      return 0;
    case WM_MOVE:
      Moved();
      return std::nullopt;
    case WM_SIZE:
      if (message.first == SIZE_RESTORED) Resized({LOWORD(message.second), HIWORD(message.second)});
      return std::nullopt;
    case WM_GETMINMAXINFO: {
      if (!form.Resizable || !site_.scale) return std::nullopt;
      const SIZE least = OuterSize(form.LeastClientSize());
      reinterpret_cast<MINMAXINFO*>(message.second)->ptMinTrackSize = {least.cx, least.cy};
      return 0;
    }
    default:
      return std::nullopt;
  }
}

// What controls report, and what is posted or timed for them.
std::optional<LRESULT> FormWindow::HandleControls(controls::Form& form, const Message& message) {
  switch (message.id) {
    case WM_COMMAND:
      if (NativeControl* control = ControlOf(message.Sender())) {
        control->Command(HIWORD(message.first), LOWORD(message.first));
      }
      return 0;
    case WM_NOTIFY: {
      const auto& header = *reinterpret_cast<const NMHDR*>(message.second);
      NativeControl* control = ControlOf(header.hwndFrom);
      return control != nullptr ? control->Notify(header) : 0;
    }
    case WM_PARENTNOTIFY:
      if (LOWORD(message.first) == WM_LBUTTONDOWN) {
        POINT point{};
        ::GetCursorPos(&point);
        const NativeControl* control = ControlOf(::WindowFromPoint(point));
        if (control != nullptr) control->Model().UserPressedMouse();
      }
      return std::nullopt;
    case WM_TIMER:
      if (controls::Control* timer = Find(form, message.first))
        static_cast<controls::Timer*>(timer)->Expired();
      return 0;
    case NativeControl::kClicked:
      if (controls::Control* control = Find(form, message.first)) control->UserClicked();
      return 0;
    case kFillLists:
      list_update_is_posted_ = false;
      for (const auto& control : site_.controls) control->UpdateList();
      return 0;
    default:
      return std::nullopt;
  }
}

// Colours, fonts and resolutions.
std::optional<LRESULT> FormWindow::HandleLooks(controls::Form&, const Message& message) {
  switch (message.id) {
    case WM_CTLCOLORSTATIC: {
      const NativeControl* control = ControlOf(message.Sender());
      const HBRUSH brush =
          control != nullptr ? control->Colour(reinterpret_cast<HDC>(message.first)) : nullptr;
      if (brush == nullptr) return std::nullopt;
      return reinterpret_cast<LRESULT>(brush);
    }
    case WM_DPICHANGED: {
      const auto& suggested = *reinterpret_cast<const RECT*>(message.second);
      ::SetWindowPos(site_.window, nullptr, suggested.left, suggested.top, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
      Rescale(HIWORD(message.first));
      return 0;
    }
    case WM_SETTINGCHANGE:
      if (message.first == SPI_SETNONCLIENTMETRICS) Rescale(site_.dpi);
      return std::nullopt;
    case WM_SYSCOLORCHANGE:
      for (const auto& control : site_.controls) {
        ::SendMessageW(control->Window(), message.id, message.first, message.second);
      }
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

// The control that a timer or a posted click names; null when it is none of the form's.
controls::Control* FormWindow::Find(const controls::Form& form, WPARAM name) {
  const auto& controls = form.Controls();
  const auto found = std::ranges::find_if(
      controls, [name](const controls::Control* one) { return reinterpret_cast<WPARAM>(one) == name; });
  return found == controls.end() ? nullptr : *found;
}

// That one or the one around it.
NativeControl* FormWindow::ControlOf(HWND window) const {
  while (window != nullptr && ::GetParent(window) != site_.window) window = ::GetParent(window);
  if (window == nullptr) return nullptr;
  const auto found = std::ranges::find(site_.controls, window, &NativeControl::Window);
  return found == site_.controls.end() ? nullptr : found->get();
}

void FormWindow::TakeKey(MSG& message) noexcept {
  const HWND root = ::GetAncestor(message.hwnd, GA_ROOT);
  const Ref<FormWindow> self(root != nullptr ? Of(root) : nullptr);
  if (!self || !self->form_) return;
  const FormDesk::Visit under_way(self->desk_);
  bool used = true;  // an error is no reason to let the host take it for its own
  Attempt(self->desk_->Trace, [&] { used = self->UsesKey(message); });
  if (used) message.message = WM_NULL;
}

// The form sees a key first; what it leaves is for the dialog, or for the control with the focus.
bool FormWindow::UsesKey(MSG& message) {
  const Ref<controls::Form> form = form_;
  const auto held = [](int key, int32_t bit) { return ::GetKeyState(key) < 0 ? bit : 0; };
  const int32_t shift =
      held(VK_SHIFT, controls::kShift) | held(VK_CONTROL, controls::kCtrl) | held(VK_MENU, controls::kAlt);
  WPARAM& key = message.wParam;
  NativeControl* focused = ControlOf(message.hwnd);
  switch (message.message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
      if (key == VK_PROCESSKEY || (focused != nullptr && focused->TakesKey(key))) break;
      if (focused != nullptr) focused->Report();
      key = static_cast<WPARAM>(form->UserKeyDown(static_cast<int32_t>(key), shift));
      break;
    case WM_CHAR:
      key = form->UserKeyPress(static_cast<char16_t>(key));
      break;
    case WM_KEYUP:
    case WM_SYSKEYUP:
      key = static_cast<WPARAM>(form->UserKeyUp(static_cast<int32_t>(key), shift));
      break;
    default:
      break;
  }
  const bool is_down = message.message == WM_KEYDOWN;
  if (key != 0 && form->Loaded() && is_down && focused != nullptr && focused->UseKey(key)) return true;
  return key == 0 || !form->Loaded() || ::IsDialogMessageW(site_.window, &message) != 0;
}

}  // namespace rowlark::windows
