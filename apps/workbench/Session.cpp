#include "Session.h"

#include "Object.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::workbench {

automation::ComPtr<Object> Session::Expose(const Class& type, Ref<RefCounted> core) {
  if (!core) return nullptr;
  if (!type.identity) return new Object(*this, type, std::move(core));
  auto& known = objects_[core.get()];
  if (known == nullptr) known = new Object(*this, type, std::move(core));
  return known;
}

void Session::SetCounting(bool on) {
  counting_ = on;
  if (!on) return;
  tallies_.clear();
  names_ = 0;
}

void Session::Count(const Class& type, const Member& member, bool put) {
  auto& tally = tallies_[{&member, put}];
  tally.type = type.name;
  ++tally.calls;
}

HRESULT Session::Refuse() {
  if (admitted_ > 0) {
    --admitted_;
    return S_OK;
  }
  if (refusals_ > 0) --refusals_;
  return refusal_;
}

std::map<std::u16string, int64_t> Session::NamedCounts() const {
  std::map<std::u16string, int64_t> counts;
  for (const auto& [key, tally] : tallies_) {
    std::u16string name(tally.type);
    name += u'.';
    const auto& [member, put] = key;
    name += member->signature.Name();
    if (put) name += u'=';
    counts[name] += tally.calls;
  }
  if (names_ > 0) counts[u"IDispatch.GetIDsOfNames"] = names_;
  return counts;
}

int64_t Session::CallCount(std::u16string_view name) const {
  int64_t sum = 0;
  if (name.empty()) {
    for (const auto& [key, tally] : tallies_) sum += tally.calls;
    return sum;
  }
  for (const auto& [counted, calls] : NamedCounts()) {
    if (Compare(counted, name, CompareMode::Text) == 0) sum += calls;
  }
  return sum;
}

std::u16string Session::CallCounts() const {
  std::u16string text;
  for (const auto& [name, calls] : NamedCounts())
    text += name + u' ' + ToUtf16(std::to_string(calls)) + u'\n';
  return text;
}

}  // namespace rowlark::workbench
