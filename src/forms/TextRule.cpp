#include "forms/TextRule.h"

#include "util/Text.h"
#include "util/mclsVTString.h"

namespace rowlark {
namespace {

std::u16string Separate(const TextRule& rule, std::u16string_view text) {
  if (rule.separators.empty()) return std::u16string(text);
  std::u16string separated(text);
  for (const char16_t& separator : rule.separators) {
    separated = mclsVTString::Replace(separated, std::u16string_view(&separator, 1), rule.separator);
  }
  return mclsVTString::Replace(separated, u"::", u":");
}

}  // namespace

std::u16string Apply(const TextRule& rule, std::u16string_view text, int32_t& caret) {
  int32_t follower =
      static_cast<int32_t>(Separate(rule, text.substr(0, static_cast<std::size_t>(caret))).size());
  auto result = mclsVTString::Filter(Separate(rule, text), rule.kept, true, CompareMode::Binary, follower);
  if (rule.caret_follows) caret = follower;
  return rule.upper_case ? ToUpper(result) : result;
}

bool ApplyRule(controls::TextInput& field, const TextRule& rule) {
  int32_t caret = field.Caret();
  const auto text = Apply(rule, field.Text(), caret);
  if (text == field.Text()) return true;
  field.SetText(text);
  field.SetCaret(caret);
  return false;
}

}  // namespace rowlark
