#include "host/calc/forms/Keys.h"

#include <com/sun/star/awt/Key.hpp>
#include <com/sun/star/awt/KeyModifier.hpp>

#include <algorithm>
#include <iterator>

#include "controls/Keys.h"

namespace rowlark::calc {
namespace {

namespace key = css::awt::Key;
namespace modifier = css::awt::KeyModifier;

static_assert(modifier::SHIFT == controls::kShift && modifier::MOD1 == controls::kCtrl &&
              modifier::MOD2 == controls::kAlt);

// Keys that follow one another in both.
struct Run {
  int16_t first;
  int16_t last;
  int32_t virtual_first;
};

// Of several of the office's that are one of ours the first is the one that stands for it.
constexpr Run kRuns[] = {
    {key::NUM0, key::NUM9, '0'},
    {key::A, key::Z, 'A'},
    {key::F1, key::F16, 112},
    {key::DOWN, key::DOWN, controls::kKeyDown},
    {key::UP, key::UP, controls::kKeyUp},
    {key::LEFT, key::LEFT, controls::kKeyLeft},
    {key::RIGHT, key::RIGHT, controls::kKeyRight},
    {key::HOME, key::HOME, controls::kKeyHome},
    {key::END, key::END, controls::kKeyEnd},
    {key::PAGEUP, key::PAGEDOWN, 33},
    {key::RETURN, key::RETURN, controls::kKeyReturn},
    {key::ESCAPE, key::ESCAPE, controls::kKeyEscape},
    {key::TAB, key::TAB, controls::kKeyTab},
    {key::BACKSPACE, key::BACKSPACE, controls::kKeyBack},
    {key::SPACE, key::SPACE, controls::kKeySpace},
    {key::INSERT, key::INSERT, 45},
    {key::DELETE, key::DELETE, controls::kKeyDelete},
    {key::MULTIPLY, key::MULTIPLY, 106},
    {key::ADD, key::ADD, 107},
    {key::SUBTRACT, key::SUBTRACT, 109},
    {key::POINT, key::POINT, 110},
    {key::DECIMAL, key::DECIMAL, 110},
    {key::DIVIDE, key::DIVIDE, 111},
    {key::NUMLOCK, key::NUMLOCK, 144},
    {key::SCROLLLOCK, key::SCROLLLOCK, 145},
};

}  // namespace

int32_t VirtualKey(int16_t key) {
  const auto* const run =
      std::ranges::find_if(kRuns, [key](const Run& r) { return r.first <= key && key <= r.last; });
  return run != std::end(kRuns) ? run->virtual_first + (key - run->first) : 0;
}

int16_t OfficeKey(int32_t virtual_key) {
  constexpr int32_t kPad0 = 96;  // digits of the number pad have codes of their own in ours only
  if (virtual_key >= kPad0 && virtual_key < kPad0 + 10) virtual_key += '0' - kPad0;
  const auto* const run = std::ranges::find_if(kRuns, [virtual_key](const Run& r) {
    return r.virtual_first <= virtual_key && virtual_key <= r.virtual_first + (r.last - r.first);
  });
  if (run == std::end(kRuns)) return 0;
  return static_cast<int16_t>(run->first + (virtual_key - run->virtual_first));
}

}  // namespace rowlark::calc
