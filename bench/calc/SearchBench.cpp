// Measures, inside the office, what a key typed into the search form costs (show all rows, find, hide) beside
// the office's own standard filter for the same text in all columns. Run as a test that is switched off.
//   ROWLARK_BENCH_TABLE: the table, made by make_table
#include <gtest/gtest.h>

#include <com/sun/star/awt/Toolkit.hpp>
#include <com/sun/star/awt/XReschedule.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/sheet/FilterFieldType.hpp>
#include <com/sun/star/sheet/FilterOperator2.hpp>
#include <com/sun/star/sheet/XCellRangeAddressable.hpp>
#include <com/sun/star/sheet/XSheetFilterDescriptor3.hpp>
#include <com/sun/star/sheet/XSheetFilterable.hpp>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "calc/Document.h"
#include "forms/FormSet.h"
#include "host/calc/Application.h"
#include "host/calc/Query.h"
#include "host/calc/Strings.h"
#include "host/standalone/Headless.h"
#include "runtime/clsVTRLKRuntime.h"
#include "util/Utf.h"

namespace rowlark::bench {
namespace {

using calc::As;
using com::sun::star::beans::XPropertySet;
using com::sun::star::sheet::XSheetFilterable;
using testing::CalcDocument;
using testing::TheContext;
namespace uno = com::sun::star::uno;

using Clock = std::chrono::steady_clock;

// The processor time of this thread: other programs of the machine do not count.
Clock::time_point Now() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return Clock::time_point(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

double Milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

template <class Action>
double Took(Action action) {
  const auto begin = Now();
  action();
  return Milliseconds(Now() - begin);
}

double Median(std::vector<double> times) {
  std::ranges::sort(times);
  return times[times.size() / 2];
}

// Messages of the office, looked at once a millisecond as the forms do, and how long they had to wait.
class OfficeMessages final : public host::MessagePump {
 public:
  OfficeMessages() : toolkit_(com::sun::star::awt::Toolkit::create(TheContext()), uno::UNO_QUERY_THROW) {}

  double Longest = 0;  // milliseconds
  void Start() { looked_ = Now(), Longest = 0; }
  void Stop() { Note(); }

  void ProcessMessages() noexcept override {
    if (Now() - looked_ < std::chrono::milliseconds(1)) return;
    Note();
    toolkit_->reschedule();
    looked_ = Now();
  }
  void WaitForInput(uint32_t) noexcept override {}
  uint32_t TickCount() const noexcept override { return 0; }

 private:
  void Note() { Longest = std::max(Longest, Milliseconds(Now() - looked_)); }

  const uno::Reference<com::sun::star::awt::XReschedule> toolkit_;
  Clock::time_point looked_;
};

struct Query {
  const char* name;
  std::u16string_view before;  // searched for just before, unmeasured; empty: nothing
  std::u16string_view text;
};

constexpr Query kQueries[] = {
    {"no hit", u"", u"Quetzal"},
    {"ten hits", u"", u"zephyrine"},
    {"1 % of the rows", u"", u"REMINDER"},
    {"half of the rows", u"", u"Invoice"},
    {"1 %, another letter, same rows", u"reminde", u"reminder"},
    {"ten hits, another letter, same rows", u"zephyrin", u"zephyrine"},
    {"1 %, after half of the rows", u"Invoice", u"reminder"},
};

// The rows whose cells contain the text, in any column.
void FilterBy(const uno::Reference<XSheetFilterable>& range, int32_t columns, std::u16string_view text) {
  const auto made = range->createFilterDescriptor(true);
  const auto descriptor = As<com::sun::star::sheet::XSheetFilterDescriptor3>(made);
  As<XPropertySet>(descriptor)->setPropertyValue("ContainsHeader", uno::Any(true));
  uno::Sequence<com::sun::star::sheet::TableFilterField3> fields(text.empty() ? 0 : columns);
  for (int32_t i = 0; i < fields.getLength(); ++i) {
    auto& field = fields.getArray()[i];
    field.Connection = com::sun::star::sheet::FilterConnection_OR;
    field.Field = i;
    field.Operator = com::sun::star::sheet::FilterOperator2::CONTAINS;
    field.Values.realloc(1);
    auto& value = field.Values.getArray()[0];
    value.FilterType = com::sun::star::sheet::FilterFieldType::STRING;
    value.StringValue = calc::ToOffice(text);
  }
  descriptor->setFilterFields3(fields);
  range->filter(made);
}

TEST(CalcSpeed, DISABLED_BesideTheStandardFilter) {
  const char* rounds_asked = std::getenv("ROWLARK_BENCH_ROUNDS");
  const int kRounds = rounds_asked != nullptr ? std::atoi(rounds_asked) : 3;
  const char* table = std::getenv("ROWLARK_BENCH_TABLE");
  ASSERT_NE(table, nullptr);
  CalcDocument document(std::string("file://") + table);
  const auto application = MakeRef<calc::Application>(TheContext());
  standalone::Headless none;
  const mclsVTFileSystem files;
  OfficeMessages messages;
  SharedState shared(Platform{messages, none.registry, none.help, none.windows, files, u"", u""});
  FormSet forms(shared);
  clsVTRLKRuntime runtime(shared, forms);
  runtime.SetExcelApp(application);
  runtime.SearchOptions->CompareMethod = CompareMode::Text;
  runtime.SearchOptions->UseFilter = true;
  std::u16string error;
  const auto used = application->ActiveSheet()->UsedRange();
  const int32_t rows = used->RowsCount();
  const int32_t columns = used->ColumnsCount();
  double longest = 0;
  const auto search = [&](std::u16string_view text) {
    messages.Start();
    const auto took = Took([&] { runtime.Search(text, error); });
    messages.Stop();
    longest = std::max(longest, messages.Longest);
    return took;
  };
  const double first = search(u"Quetzal");
  std::printf(
      "%d rows x %d columns; the first search, which reads the text: %.0f ms, messages waited %.0f ms\n\n",
      rows, columns, first, longest);
  std::printf("%-38s %8s %9s %9s %7s %9s\n", "query", "rows", "ours/ms", "filter/ms", "ratio", "wait/ms");
  const auto cells =
      As<XSheetFilterable>(document.Sheet()->getCellRangeByPosition(0, 0, columns - 1, rows - 1));
  for (const auto& query : kQueries) {
    std::vector<double> ours;
    std::vector<double> theirs;
    longest = 0;
    int32_t found = 0;
    for (int round = 0; round < kRounds; ++round) {
      runtime.Unhide(false, error);
      if (!query.before.empty()) search(query.before);
      longest = 0;
      ours.push_back(search(query.text));
      const auto visible = application->ActiveSheet()->Range(u"1:" + ToUtf16(std::to_string(rows)));
      found = 0;
      const auto areas = visible->SpecialCells(host::xlCellTypeVisible);
      for (int32_t i = 1; i <= areas->AreasCount(); ++i) found += areas->Areas(i)->RowsCount();
      runtime.Unhide(false, error);
      theirs.push_back(Took([&] { FilterBy(cells, columns, query.text); }));
      FilterBy(cells, columns, {});
    }
    std::printf("%-38s %8d %9.0f %9.0f %7.2f %9.0f\n", query.name, found == rows ? 0 : found, Median(ours),
                Median(theirs), Median(ours) / Median(theirs), longest);
    std::fflush(stdout);
  }
  runtime.Unhide(false, error);
  std::printf("\nShow All after half of the rows: ");
  search(u"Invoice");
  std::printf("%.0f ms\n", Took([&] { runtime.Unhide(false, error); }));

  document.Filter("A1:K" + std::to_string(rows), 10, u"paid");
  std::printf("Under an AutoFilter that lets paid ones through:");
  for (const auto* text : {u"reminde", u"reminder", u"Invoic", u"invoice", u"contact"}) {
    longest = 0;
    const auto took = search(text);
    std::printf(" \"%s\" %.0f ms, waited %.0f;", ToUtf8(text).c_str(), took, longest);
  }
  std::printf(" Show All %.0f ms\n", Took([&] { runtime.Unhide(false, error); }));
  runtime.SetExcelApp(nullptr);
}

}  // namespace
}  // namespace rowlark::bench
