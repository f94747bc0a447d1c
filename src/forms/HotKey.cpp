#include "forms/HotKey.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "controls/Keys.h"
#include "settings/Macros.h"
#include "util/Text.h"

namespace rowlark {
namespace {

constexpr std::u16string_view kPlus = u" + ";

struct Modifier {
  int32_t bit;
  char16_t code;
  std::u16string_view name;
};

constexpr Modifier kModifiers[] = {
    {controls::kCtrl, u'^', u"Ctrl"}, {controls::kShift, u'+', u"Shift"}, {controls::kAlt, u'%', u"Alt"}};

void AppendPart(std::u16string& text, std::u16string_view part) {
  text += kPlus;
  text += part;
}

// Where one key is refused, the other one must not suffer. False when it is.
bool OnKey(host::Application& application, std::u16string_view key, std::optional<std::u16string_view> macro,
           Trace* trace) {
  return key.empty() || Attempt(trace, [&] { application.OnKey(key, macro); });
}

struct NamedKey {
  int32_t key;
  std::u16string_view name;
};
// 106 to 111 are those of the numeric pad, 106 and 108 its multiply and separator keys.
constexpr NamedKey kNamedKeys[] = {
    {8, u"{BACKSPACE}"}, {13, u"~"},
    {27, u"{ESCAPE}"},   {32, u" "},
    {33, u"{PGUP}"},     {34, u"{PGDN}"},
    {35, u"{END}"},      {36, u"{HOME}"},
    {37, u"{LEFT}"},     {38, u"{UP}"},
    {39, u"{RIGHT}"},    {40, u"{DOWN}"},
    {45, u"{INSERT}"},   {46, u"{DEL}"},
    {106, u"\\"},        {107, u"{+}"},
    {108, u"\\"},        {109, u"-"},
    {110, u"."},         {111, u"/"},
    {144, u"{NUMLOCK}"}, {145, u"{SCROLLLOCK}"},
};

}  // namespace

std::u16string KeyName(int32_t key) {
  constexpr int32_t kPad0 = 96;
  if ((key >= u'0' && key <= u'9') || (key >= kPad0 && key <= kPad0 + 9)) return ToText(key % 48);
  if (key >= u'A' && key <= u'Z') return std::u16string(1, static_cast<char16_t>(key + (u'a' - u'A')));
  if (key >= controls::kKeyF1 && key <= controls::kKeyF1 + 15) {
    return u"{F" + ToText(key - controls::kKeyF1 + 1) + u"}";
  }
  const auto* named = std::ranges::find(kNamedKeys, key, &NamedKey::key);
  return named != std::end(kNamedKeys) ? std::u16string(named->name) : std::u16string();
}

std::u16string HotKeyName(std::u16string_view code) {
  std::u16string name(code);
  std::erase_if(name, [](char16_t c) { return c == u'^' || c == u'+' || c == u'%'; });
  return name;
}

std::u16string HotKeyText(std::u16string_view code) {
  if (code.empty()) return {};
  std::u16string text;
  for (const auto& modifier : kModifiers) {
    if (code.find(modifier.code) != code.npos) AppendPart(text, modifier.name);
  }
  AppendPart(text, HotKeyName(code));
  return text.substr(kPlus.size());
}

HotKey CaptureHotKey(int32_t key, int32_t shift) {
  HotKey captured;
  for (const auto& modifier : kModifiers) {
    if ((shift & modifier.bit) == 0) continue;
    captured.code += modifier.code;
    AppendPart(captured.text, modifier.name);
  }
  const auto name = KeyName(key);
  captured.code += name;
  AppendPart(captured.text, name);
  captured.text.erase(0, kPlus.size());
  return captured;
}

std::u16string AssignHotKeys(host::Application& application, const HotKeys& keys, Trace* trace) {
  std::u16string refused;
  for (const auto& [key, macro] :
       {std::pair(&keys.search, Macro::ShowSearch), std::pair(&keys.show_all, Macro::Unhide)}) {
    if (OnKey(application, *key, NameOf(macro), trace)) continue;
    refused += (refused.empty() ? u"" : u", ") + HotKeyText(*key);
  }
  return refused;
}

void ReleaseHotKeys(host::Application& application, const HotKeys& keys, Trace* trace) {
  OnKey(application, keys.search, std::nullopt, trace);
  OnKey(application, keys.show_all, std::nullopt, trace);
}

}  // namespace rowlark
