// What all objects of an exposed application share.
#pragma once

#include <charconv>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <oaidl.h>

#include "Members.h"
#include "automation/ComPtr.h"
#include "host/standalone/Application.h"
#include "util/Ref.h"
#include "util/Utf.h"

namespace rowlark::workbench {

class Session final : public RefCounted {
 public:
  // `lifetime` goes with the last object; `changed` may be empty.
  Session(Ref<standalone::Application> application, std::shared_ptr<void> lifetime,
          std::function<void()> changed)
      : lifetime_(std::move(lifetime)), changed_(std::move(changed)), application_(std::move(application)) {
    const auto version = ToUtf8(application_->Version());
    std::from_chars(version.data(), version.data() + version.size(), version_);
  }

  standalone::Application& Application() const { return *application_; }
  int32_t Version() const { return version_; }

  // The automation object of that class for a core object; null for none.
  automation::ComPtr<Object> Expose(const Class& type, Ref<RefCounted> core);
  void Forget(const RefCounted* core) { objects_.erase(core); }

  // Whether a call goes through, and what it is refused with otherwise.
  HRESULT Admit(const Class& type, const Member& member, bool put) {
    if (counting_) Count(type, member, put);
    if (refusals_ == 0) return S_OK;
    return Refuse();
  }
  void CountNames() {
    if (counting_) ++names_;
  }

  // A client has set a property or called a method.
  void Changed() const {
    if (changed_) changed_();
  }

  bool Counting() const { return counting_; }
  void SetCounting(bool on);
  // Without a name: calls of all members.
  int64_t CallCount(std::u16string_view name) const;
  std::u16string CallCounts() const;
  void RefuseCalls(int32_t count, HRESULT result, int32_t after) {
    refusals_ = count;
    refusal_ = result;
    admitted_ = after;
  }

 private:
  using Key = std::pair<const Member*, bool>;  // true: it is written
  struct Tally {
    std::u16string_view type;
    int64_t calls = 0;
  };

  void Count(const Class& type, const Member& member, bool put);
  HRESULT Refuse();
  std::map<std::u16string, int64_t> NamedCounts() const;

  std::shared_ptr<void> lifetime_;
  std::function<void()> changed_;
  Ref<standalone::Application> application_;
  int32_t version_ = 0;                                     // of what is no number
  std::unordered_map<const RefCounted*, Object*> objects_;  // those with identity; not counted
  bool counting_ = false;
  std::map<Key, Tally> tallies_;
  int64_t names_ = 0;
  int32_t refusals_ = 0;  // below 0: all
  int32_t admitted_ = 0;  // calls before the first refusal
  HRESULT refusal_ = S_OK;
};

}  // namespace rowlark::workbench
