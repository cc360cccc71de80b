#include <memory>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelmoraCore/Object.h"

namespace Velmora {
namespace {

class GreeterInterface : public virtual ObjectInterface {
 public:
  virtual std::string Greet() const = 0;
};

class Greeter : public Object, public virtual GreeterInterface {
 public:
  Greeter() = default;
  explicit Greeter(std::string logTag) : Object(std::move(logTag)) {}

  std::string Greet() const override { return "hello"; }
};

TEST(Object, GivesASharedPointerToItselfAsTheTypeItWasPassedBy) {
  const std::shared_ptr<GreeterInterface> greeter = std::make_shared<Greeter>();
  GreeterInterface& reference = *greeter;

  const std::shared_ptr<GreeterInterface> self = ObjectToSharedPtr(reference);

  EXPECT_EQ(self, greeter);
  EXPECT_EQ(greeter.use_count(), 2);
  EXPECT_EQ(self->Greet(), "hello");
}

TEST(Object, ThatNoSharedPointerOwnsCannotBeShared) {
  Greeter greeter;
  EXPECT_THROW(greeter.SharedPtrToThisObjectInterface(), std::bad_weak_ptr);
}

TEST(Object, EqualsItselfOnly) {
  const auto first = std::make_shared<Greeter>("Same");
  const auto second = std::make_shared<Greeter>("Same");

  EXPECT_TRUE(first->Equals(*first));
  EXPECT_TRUE(first->Equals(*first->SharedPtrToThisObjectInterface()));
  EXPECT_FALSE(first->Equals(*second));
}

TEST(Object, ShowsItsLogTagAsText) {
  EXPECT_THAT(Greeter("DataStore").ToStringImpl(), testing::StartsWith("DataStore@"));
  EXPECT_THAT(Greeter().ToStringImpl(), testing::StartsWith("Object@"));
}

}  // namespace
}  // namespace Velmora
