#include "forms/BaseForm.h"

#include <algorithm>
#include <limits>

#include "runtime/Failure.h"
#include "runtime/modMain.h"
#include "settings/Product.h"
#include "util/Text.h"

namespace rowlark {
namespace {

// The whole number that a text begins with, blanks before it allowed; 0 when it begins with none.
int32_t LeadingNumber(std::u16string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(u' '), text.size()));
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  int64_t number = 0;
  for (const char16_t digit : text) {
    if (digit < u'0' || digit > u'9') break;
    number = std::min<int64_t>(number * 10 + (digit - u'0'), std::numeric_limits<int32_t>::max());
  }
  return static_cast<int32_t>(negative ? -number : number);
}

// What of a form's title must show for it to be seen and moved, in twips.
constexpr int32_t kTitle = 300;

// How far the interval [begin, begin + length) is from showing enough of itself in [low, low + extent); 0
// when it does.
int64_t Distance(int64_t begin, int64_t length, int64_t low, int64_t extent) {
  return std::max({int64_t{0}, low + kTitle - (begin + length), begin + kTitle - (low + extent)});
}

// The start nearest to `begin` for which the interval lies within; its start shows when it is too long.
int32_t Within(int32_t begin, int32_t length, int32_t low, int32_t extent) {
  return std::max(low, std::min(begin, low + extent - length));
}

}  // namespace

BaseForm::BaseForm(SharedState& shared, std::u16string_view name, HelpTopic topic)
    : Form(name, shared.Platform.Trace), shared_(shared) {
  HelpContextID = static_cast<int32_t>(topic);
}

void BaseForm::Form_Help() {
  Attempt([this] { ShowHelp(shared_, static_cast<HelpTopic>(HelpContextID)); });
}

bool BaseForm::Open() {
  if (!shared_.Platform.Windows.Realise(*this)) return false;
  evtLang_ = shared_.Language->NewLangLoaded().Connect(
      Handler([this](const std::u16string&) { evtLang_NewLangLoaded(); }));
  Arrange();
  Load();
  return Loaded();
}

// What unloads the form may be another object, and this one may go in the middle of that.
void BaseForm::SetObjectRLKRuntime(clsVTRLKRuntime& runtime) {
  runtime_ = &runtime;
  runtime_gone_ = runtime.GoneEvent().Connect([this] { runtime_ = nullptr; });
}

void BaseForm::Form_Unload() {
  evtLang_.Release();
  runtime_gone_.Release();
  runtime_ = nullptr;
}

std::u16string BaseForm::Padded(std::u16string_view caption) {
  std::u16string padded(1, u' ');
  padded += caption;
  padded += u' ';
  return padded;
}

Ref<host::Application> BaseForm::Host() const { return Require(shared_.ExcelApp); }

void BaseForm::ListenToSelection(Connection& connection, std::function<void()> action) noexcept {
  Attempt([&] {
    auto heard = Require(Host()->ActiveWorkbook())
                     ->OnSheetSelectionChange(
                         Handler([action = std::move(action)](host::Worksheet&, host::Range&) { action(); }));
    if (Loaded()) connection = std::move(heard);
  });
}

void BaseForm::Float() noexcept {
  Attempt([this] { SetOwner(HostMainWindow(shared_)); });
}

bool BaseForm::RestorePosition(std::u16string_view value_name) {
  const auto stored = shared_.Registry.GetString(host::Hive::CurrentUser, kProductKey, value_name, u"");
  if (stored.empty()) return false;
  const std::u16string_view position = stored;
  const auto separator = std::min(position.find(u';'), position.size());
  MoveOntoScreen({LeadingNumber(position.substr(0, separator)),
                  LeadingNumber(position.substr(std::min(separator + 1, position.size())))});
  return true;
}

void BaseForm::StorePosition(std::u16string_view value_name) const {
  shared_.Registry.SetString(host::Hive::CurrentUser, kProductKey, value_name,
                             ToText(Position().x) + u";" + ToText(Position().y));
}

void BaseForm::CentreOverHost() noexcept {
  Attempt([this] {
    const auto host = Host();
    const auto size = WindowSize();
    const auto centre = [](double begin, double length, int32_t own) {
      return static_cast<int32_t>((begin + length / 2) * controls::kTwipsPerPoint) - own / 2;
    };
    MoveOntoScreen(
        {centre(host->Left(), host->Width(), size.width), centre(host->Top(), host->Height(), size.height)});
  });
}

void BaseForm::MoveOntoScreen(controls::TwipPoint position) {
  const auto size = WindowSize();
  const auto screens = shared_.Platform.Windows.Screens();
  const auto distance = [&](const controls::TwipRect& screen) {
    return Distance(position.x, size.width, screen.left, screen.width) +
           Distance(position.y, kTitle, screen.top, screen.height);
  };
  const auto nearest = std::ranges::min_element(screens, {}, distance);
  if (nearest != screens.end() && distance(*nearest) > 0) {
    position.x = Within(position.x, size.width, nearest->left, nearest->width);
    position.y = Within(position.y, size.height, nearest->top, nearest->height);
  }
  Move(position);
}

}  // namespace rowlark
