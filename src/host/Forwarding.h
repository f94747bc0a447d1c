// A host that forwards every operation to another one. Whoever wants to watch, fail or change operations
// derives from Forwarding and overrides what it cares for; the objects that operations return are wrapped as
// well.
#pragma once

#include "host/spreadsheet.h"

namespace rowlark::host {

// Makes the wrappers and hears of every operation. It outlives them.
class Forwarding {
 public:
  Forwarding() = default;
  Forwarding(const Forwarding&) = delete;
  Forwarding& operator=(const Forwarding&) = delete;
  virtual ~Forwarding() = default;

  // Before an operation is forwarded; `operation` as in "Range.FindNext". What it throws is what the host
  // throws.
  virtual void OnCall(std::string_view operation) = 0;

  // The wrapper of an object of the host; nothing stays nothing.
  virtual Ref<Application> Wrap(const Ref<Application>& inner);
  virtual Ref<Workbook> Wrap(const Ref<Workbook>& inner);
  virtual Ref<Worksheet> Wrap(const Ref<Worksheet>& inner);
  virtual Ref<Range> Wrap(const Ref<Range>& inner);
  virtual Ref<AutoFilter> Wrap(const Ref<AutoFilter>& inner);
  virtual Ref<Filter> Wrap(const Ref<Filter>& inner);
  virtual Ref<CommandBar> Wrap(const Ref<CommandBar>& inner);
  virtual Ref<CommandBarControl> Wrap(const Ref<CommandBarControl>& inner);
};

// Fails one call, or every call from that one on, as a host does that is busy or has been closed.
class FaultyHost final : public Forwarding {
 public:
  // The call to fail counts from 1; 0 fails none.
  explicit FaultyHost(int64_t call, bool persistent = false) : call_(call), persistent_(persistent) {}

  void OnCall(std::string_view operation) override {
    ++calls_;
    if (call_ > 0 && (persistent_ ? calls_ >= call_ : calls_ == call_)) {
      failed_ = operation;
      throw Error(1004, u"The host is busy");
    }
  }
  // Counts the calls anew.
  void Rearm(int64_t call) {
    call_ = call;
    calls_ = 0;
    failed_.clear();
  }
  int64_t Calls() const { return calls_; }
  const std::string& Failed() const {
    return failed_;
  }  // the last operation that failed; empty when none did

 private:
  int64_t call_;
  bool persistent_;
  int64_t calls_ = 0;
  std::string failed_;
};

}  // namespace rowlark::host
