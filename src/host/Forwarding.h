// A host that forwards every operation to another one. Whoever wants to watch, fail or change operations
// derives from Forwarding and overrides what it cares for; the objects that operations return are wrapped as
// well.
#pragma once

#include <cstddef>
#include <limits>

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

  // Whether ranges find rows in bulk when the host's do; a host that does not gets Find and FindNext.
  virtual bool FindsRows() const { return true; }
  // How many runs of rows are hidden in one go at most, at least 1.
  virtual std::size_t RunsAtOnce() const { return std::numeric_limits<std::size_t>::max(); }

  // The wrapper of an object of the host; nothing stays nothing.
  virtual Ref<Application> Wrap(const Ref<Application>& inner);
  virtual Ref<Workbook> Wrap(const Ref<Workbook>& inner);
  virtual Ref<Worksheet> Wrap(const Ref<Worksheet>& inner);
  virtual Ref<Range> Wrap(const Ref<Range>& inner);
  virtual Ref<RowSearch> Wrap(const Ref<RowSearch>& inner);
  virtual Ref<AutoFilter> Wrap(const Ref<AutoFilter>& inner);
  virtual Ref<Filter> Wrap(const Ref<Filter>& inner);
  virtual Ref<CommandBar> Wrap(const Ref<CommandBar>& inner);
  virtual Ref<CommandBarControl> Wrap(const Ref<CommandBarControl>& inner);
};

}  // namespace rowlark::host
