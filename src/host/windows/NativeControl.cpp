#include "host/windows/NativeControl.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "controls/Image.h"
#include "controls/Label.h"
#include "host/windows/NativeButtons.h"
#include "host/windows/NativeLists.h"
#include "host/windows/NativeStatics.h"
#include "host/windows/NativeTexts.h"
#include "util/Scope.h"
#include "util/windows/WideText.h"

namespace rowlark::windows {

using controls::Property;

void NativeControl::Create(const wchar_t* type, DWORD style, DWORD extended_style) {
  window_ = ::CreateWindowExW(extended_style, type, L"", style | WS_CHILD, 0, 0, 0, 0, site_.window, nullptr,
                              site_.resources.Module(), nullptr);
  if (window_ == nullptr) {
    throw std::system_error(static_cast<int>(::GetLastError()), std::system_category());
  }
}

NativeControl* FormSite::Find(const controls::Control& control) const {
  const auto found =
      std::ranges::find(controls, &control, [](const auto& native) { return &native->Model(); });
  return found == controls.end() ? nullptr : found->get();
}

bool NativeControl::HasFocus() const {
  const HWND focus = ::GetFocus();
  return window_ != nullptr && focus != nullptr && (focus == window_ || ::IsChild(window_, focus) != 0);
}

void NativeControl::Update(Property property) {
  if (property == Property::List) {
    list_is_due_ = true;
    return;
  }
  const bool enables = property == Property::Enabled || property == Property::Visible;
  const bool is_usable = model_.Enabled() && model_.Shown();
  if (enables && !is_usable && HasFocus()) {
    // A window that can not be used keeps the focus, and the keyboard with it.
    ::SendMessageW(site_.window, WM_NEXTDLGCTL, 0, FALSE);
  }
  UpdateList();
  const ScopedCount updating(site_.updating);
  Apply(property);
}

void NativeControl::UpdateList() {
  if (!list_is_due_) return;
  list_is_due_ = false;
  const ScopedCount updating(site_.updating);
  FillList();
}

void NativeControl::Apply(Property property) {
  switch (property) {
    case Property::Caption:
      ::SetWindowTextW(window_, ToWide(model_.Caption()).c_str());
      break;
    case Property::Enabled:
      ::EnableWindow(window_, model_.Enabled());
      break;
    case Property::Visible:
      ::ShowWindow(window_, model_.Shown() ? SW_SHOWNA : SW_HIDE);
      break;
    case Property::Focus:
      if (::IsWindowVisible(window_) != 0 && !HasFocus()) ::SetFocus(window_);
      break;
    default:
      break;
  }
}

void NativeControl::Rescale() {
  if (window_ == nullptr) return;
  const ScopedCount updating(site_.updating);
  area_ = {};
  Send(WM_SETFONT, reinterpret_cast<WPARAM>(site_.scale->Font()), FALSE);
  ApplyPictures();
}

// Nothing is drawn here, and no pixels are taken along: they may be those of something that lay above.
bool NativeControl::Place(const RECT& area) {
  if (window_ == nullptr || ::EqualRect(&area, &area_) != 0) return false;
  const ScopedCount updating(site_.updating);
  area_ = area;
  ::SetWindowPos(window_, nullptr, area.left, area.top, area.right - area.left, area.bottom - area.top,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOREDRAW);
  Placed({area.right - area.left, area.bottom - area.top});
  return true;
}

void NativeControl::Shift(int down) {
  const ScopedCount updating(site_.updating);
  ::SetWindowPos(window_, nullptr, area_.left, area_.top + down, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOREDRAW);
}

std::optional<int> NativeControl::TopOfText() const {
  const auto offset = window_ != nullptr ? TextOffset() : std::nullopt;
  return offset ? std::optional(static_cast<int>(area_.top) + *offset) : std::nullopt;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(window)), L'\0');
  const int length = ::GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
  text.resize(static_cast<std::size_t>(length));
  return text;
}

namespace {

class NativeFactory final : public controls::Visitor {
 public:
  explicit NativeFactory(FormSite& site) : site_(site) {}

  std::unique_ptr<NativeControl> Made;

  void Visit(controls::Button& button) override { Make<NativePushButton>(button); }
  void Visit(controls::CheckBox& box) override { Make<NativeCheckBox>(box); }
  void Visit(controls::ComboBox& box) override { Make<NativeComboBox>(box); }
  void Visit(controls::Frame& frame) override { Make<NativeFrame>(frame); }
  void Visit(controls::Image& image) override { Make<NativeImage>(image); }
  void Visit(controls::Label& label) override { Make<NativeLabel>(label); }
  void Visit(controls::ListView& list) override { Make<NativeListView>(list); }
  void Visit(controls::OptionButton& button) override { Make<NativeOptionButton>(button); }
  void Visit(controls::TextBox& box) override {
    if (box.CueFor != nullptr) return Make<NativeCue>(box);
    Make<NativeTextBox>(box);
  }
  void Visit(controls::ToolBar& bar) override { Make<NativeToolBar>(bar); }
  void Visit(controls::TreeView& tree) override { Make<NativeTreeView>(tree); }

 private:
  template <class Native, class Model>
  void Make(Model& control) {
    Made = std::make_unique<Native>(control, site_);
  }

  FormSite& site_;
};

}  // namespace

std::unique_ptr<NativeControl> MakeNativeControl(controls::Control& control, FormSite& site) {
  NativeFactory factory(site);
  control.Accept(factory);
  return std::move(factory.Made);
}

}  // namespace rowlark::windows
