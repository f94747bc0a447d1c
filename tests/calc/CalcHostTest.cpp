// Calc behind the spreadsheet seam.
#include <gtest/gtest.h>

#include "Document.h"
#include "Session.h"
#include "host/calc/Application.h"

namespace rowlark::testing {
namespace {

TEST(CalcHost, KnowsDocumentsAndSheets) {
  const auto application = MakeRef<calc::Application>(TheContext());
  CalcDocument document;
  ASSERT_TRUE(application->ActiveWorkbook());
  EXPECT_EQ(application->ActiveWorkbook(), application->ActiveWorkbook());
  const auto sheet = application->ActiveSheet();
  ASSERT_TRUE(sheet);
  EXPECT_EQ(application->ActiveSheet(), sheet);
  document.Fill("a,b|c");
  EXPECT_EQ(ToUtf8(sheet->UsedRange()->Address()), "$A$1:$B$2");
  document.Select("B7");
  EXPECT_EQ(SampleHost::Plain(*application->ActiveCell()), "B7");
  document.Close();
  EXPECT_THROW(sheet->Cells(1, 1), host::Error);
}

}  // namespace
}  // namespace rowlark::testing
