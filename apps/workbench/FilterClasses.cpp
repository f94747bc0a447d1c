#include "Classes.h"
#include "Values.h"

namespace rowlark::workbench {
namespace {

host::AutoFilter& Filters(const Object& object) { return object.Core<host::AutoFilter>(); }
host::Filter& Filter(const Call& call) { return call.Core<host::Filter>(); }

constexpr Member kAutoFilterMembers[] = {
    Get(u"Application", ReturnApplication),
    Get(u"Range", [](Call& call) { call.Return(kRange, Filters(call.Self()).Range()); }),
    Get(u"Filters", [](Call& call) { call.Return(kFilters, &Filters(call.Self())); }),
    Method(
        u"ApplyFilter", [](Call& call) { Filters(call.Self()).ApplyFilter(); }, 12),
};

constexpr Member kFiltersMembers[] = {
    Get(u"Item(Index)", ItemOfCollection),
    Get(u"Count", CountOfCollection),
    Get(u"Application", ReturnApplication),
};

constexpr Member kFilterMembers[] = {
    Get(u"Application", ReturnApplication),
    Get(u"On", [](Call& call) { call.Return(Filter(call).On()); }),
    Get(u"Operator", [](Call& call) { call.Return(Filter(call).Operator()); }),
    Get(u"Criteria1", [](Call& call) { call.Return(FromCriterion(Filter(call).Criteria1())); }),
    Get(u"Criteria2", [](Call& call) { call.Return(FromCriterion(Filter(call).Criteria2())); }),
};

}  // namespace

const Class kAutoFilter{.name = u"AutoFilter", .members = kAutoFilterMembers};
const Class kFilters{.name = u"Filters",
                     .members = kFiltersMembers,
                     .count = [](Object& filters) { return int64_t{Filters(filters).FiltersCount()}; },
                     .item =
                         [](Call& call, int64_t index) {
                           call.Return(kFilter, Filters(call.Self()).Filters(static_cast<int32_t>(index)));
                         }};
const Class kFilter{.name = u"Filter", .members = kFilterMembers};

}  // namespace rowlark::workbench
