#include "ApplicationContract.h"
#include "platform/linux/GioApplication.h"
#include "support/FakeApplication.h"

namespace {

template <class Implementation>
class Subject {
 public:
  Platform::Application& Get() { return application_; }

 private:
  Implementation application_;
};

using Subjects =
    testing::Types<Subject<Platform::GioApplication>, Subject<TestSupport::FakeApplication>>;
INSTANTIATE_TYPED_TEST_SUITE_P(WithoutADisplay, ApplicationContractTest, Subjects);

}  // namespace
