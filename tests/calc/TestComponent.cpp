// Runs the tests where the office starts it, and ends the office.
#include <gtest/gtest.h>

#include <com/sun/star/awt/AsyncCallback.hpp>
#include <com/sun/star/frame/Desktop.hpp>
#include <com/sun/star/task/XJobExecutor.hpp>
#include <cppuhelper/implbase2.hxx>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "Document.h"
#include "util/Text.h"

namespace rowlark::testing {
namespace {

class TestJob final
    : public cppu::WeakImplHelper2<com::sun::star::task::XJobExecutor, com::sun::star::awt::XCallback> {
 public:
  explicit TestJob(const Context& context) : context_(context) {}

  void SAL_CALL trigger(const rtl::OUString&) override {
    TheContext() = context_;
    const std::string arguments = std::getenv("ROWLARK_TEST_ARGUMENTS");
    std::vector<std::string> words{"tests_calc"};
    for (const auto word : Pieces(arguments, "\n")) words.emplace_back(word);
    std::vector<char*> pointers;
    for (auto& word : words) pointers.push_back(word.data());
    int count = static_cast<int>(pointers.size());
    pointers.push_back(nullptr);
    ::testing::InitGoogleTest(&count, pointers.data());
    const int failed = RUN_ALL_TESTS();
    std::ofstream(std::getenv("ROWLARK_TEST_RESULT")) << failed;
    TheContext().clear();
    com::sun::star::awt::AsyncCallback::create(context_)->addCallback(this, {});
  }

  // Ends the office, which does not end while it is still being started.
  void SAL_CALL notify(const com::sun::star::uno::Any&) override {
    com::sun::star::frame::Desktop::create(context_)->terminate();
  }

 private:
  const Context context_;
};

}  // namespace
}  // namespace rowlark::testing

extern "C" SAL_DLLPUBLIC_EXPORT com::sun::star::uno::XInterface* rowlark_calc_tests(
    com::sun::star::uno::XComponentContext* context,
    com::sun::star::uno::Sequence<com::sun::star::uno::Any> const&) {
  return cppu::acquire(new rowlark::testing::TestJob(context));
}
