#include "calc/ShortCuts.h"

#include <com/sun/star/awt/Key.hpp>
#include <com/sun/star/awt/KeyModifier.hpp>
#include <com/sun/star/container/NoSuchElementException.hpp>
#include <com/sun/star/ui/XAcceleratorConfiguration.hpp>
#include <com/sun/star/ui/XUIConfigurationManager.hpp>
#include <com/sun/star/ui/theModuleUIConfigurationManagerSupplier.hpp>

#include <algorithm>

#include "forms/HotKey.h"
#include "host/calc/Strings.h"
#include "host/calc/forms/Keys.h"

namespace rowlark::calc {
namespace {

using css::uno::Reference;

// Those of spreadsheets.
Reference<css::ui::XAcceleratorConfiguration> Configuration(const Desk::Context& office) {
  const auto managers = css::ui::theModuleUIConfigurationManagerSupplier::get(office);
  const Reference<css::ui::XUIConfigurationManager> manager(
      managers->getUIConfigurationManager(
          rtl::OUString::createFromAscii("com.sun.star.sheet.SpreadsheetDocument")),
      css::uno::UNO_QUERY_THROW);
  return {manager->getShortCutManager(), css::uno::UNO_QUERY_THROW};
}

bool IsSame(const css::awt::KeyEvent& a, const css::awt::KeyEvent& b) {
  return a.KeyCode == b.KeyCode && a.Modifiers == b.Modifiers;
}

}  // namespace

std::optional<css::awt::KeyEvent> KeyOf(std::u16string_view code) {
  constexpr std::pair<char16_t, sal_Int16> kModifiers[] = {{u'^', css::awt::KeyModifier::MOD1},
                                                           {u'+', css::awt::KeyModifier::SHIFT},
                                                           {u'%', css::awt::KeyModifier::MOD2}};
  constexpr int32_t kLastKey = 145;
  css::awt::KeyEvent event;
  for (;;) {
    const auto* const modifier = std::ranges::find(kModifiers, code.empty() ? u'\0' : code.front(),
                                                   [](const auto& pair) { return pair.first; });
    if (modifier == std::end(kModifiers)) break;
    event.Modifiers = static_cast<sal_Int16>(event.Modifiers | modifier->second);
    code.remove_prefix(1);
  }
  for (int32_t key = 8; !code.empty() && key <= kLastKey; ++key) {
    if (KeyName(key) != code) continue;
    event.KeyCode = OfficeKey(key);
    if (event.KeyCode != 0) return event;
  }
  return std::nullopt;
}

void ShortCuts::OnKey(std::u16string_view code, std::optional<std::u16string_view> macro) {
  const auto key = KeyOf(code);
  if (!key) return;
  const auto keys = Configuration(office_);
  const auto known =
      std::ranges::find_if(replaced_, [&](const Replaced& one) { return IsSame(one.key, *key); });
  if (macro) {
    if (known == replaced_.end()) {
      Replaced before{*key, {}};
      try {
        before.command = keys->getCommandByKeyEvent(*key);
      } catch (const css::container::NoSuchElementException&) {
        // It has none there.
      }
      replaced_.push_back(before);
    }
    std::u16string url(kProtocol);
    url += *macro;
    keys->setKeyEvent(*key, ToOffice(url));
  } else if (known != replaced_.end()) {
    const Replaced before = *known;
    replaced_.erase(known);
    if (before.command.isEmpty()) {
      keys->removeKeyEvent(before.key);
    } else {
      keys->setKeyEvent(before.key, before.command);
    }
  }
}

}  // namespace rowlark::calc
