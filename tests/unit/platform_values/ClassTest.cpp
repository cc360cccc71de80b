#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "QEXCore_iOS/Platform/Class.h"

namespace {

using Platform::Class;
using Platform::ClassOf;

struct Base {
  Base() = default;
  Base(const Base&) = delete;
  Base& operator=(const Base&) = delete;
  virtual ~Base() = default;
  virtual std::string Who() const { return "base"; }
};
struct Child : Base {
  std::string Who() const override { return "child"; }
};
struct Grandchild : Child {
  std::string Who() const override { return "grandchild"; }
};
struct Other {
  int number = 5;
};
// The base lies behind something else, so that the pointer to it differs.
struct Second : Other, Base {
  std::string Who() const override { return "second " + std::to_string(number); }
};
struct Virtual : virtual Base {};
class Private : Base {};
struct Twice : Child, Second {};
struct Abstract : Base {
  virtual void Missing() = 0;
};
struct NeedsArguments : Base {
  explicit NeedsArguments(int /*argument*/) {}
};
struct Throwing : Base {
  Throwing() { throw std::runtime_error("no instance today"); }
};
struct Counted : Base {
  static inline int made = 0;
  Counted() { ++made; }
};
struct Sharing : Base, std::enable_shared_from_this<Sharing> {};

TEST(ClassTest, AClassIsASubclassOfItselfAndOfItsPublicBases) {
  EXPECT_TRUE(ClassOf<Base>().isSubclassOf(ClassOf<Base>()));
  EXPECT_TRUE(ClassOf<Child>().isSubclassOf(ClassOf<Base>()));
  EXPECT_TRUE(ClassOf<Grandchild>().isSubclassOf(ClassOf<Base>()));
  EXPECT_TRUE(ClassOf<Grandchild>().isSubclassOf(ClassOf<Child>()));
  EXPECT_TRUE(ClassOf<Second>().isSubclassOf(ClassOf<Base>()));
  EXPECT_TRUE(ClassOf<Virtual>().isSubclassOf(ClassOf<Base>()));
  EXPECT_TRUE(ClassOf<Abstract>().isSubclassOf(ClassOf<Base>()));
}

TEST(ClassTest, NoOtherClassIsASubclass) {
  EXPECT_FALSE(ClassOf<Base>().isSubclassOf(ClassOf<Child>()));
  EXPECT_FALSE(ClassOf<Other>().isSubclassOf(ClassOf<Base>()));
  EXPECT_FALSE(ClassOf<std::string>().isSubclassOf(ClassOf<Base>()));
  EXPECT_FALSE(ClassOf<Private>().isSubclassOf(ClassOf<Base>()));
  EXPECT_FALSE(ClassOf<Twice>().isSubclassOf(ClassOf<Base>())) << "which of the two is meant?";
}

TEST(ClassTest, AskingForKinMakesNoInstance) {
  EXPECT_TRUE(ClassOf<Counted>().isSubclassOf(ClassOf<Base>()));
  EXPECT_TRUE(ClassOf<Throwing>().isSubclassOf(ClassOf<Base>()));
  EXPECT_EQ(Counted::made, 0);
}

TEST(ClassTest, AllocGivesAnInstanceSeenAsTheBase) {
  EXPECT_EQ(ClassOf<Base>().alloc<Base>()->Who(), "base");
  EXPECT_EQ(ClassOf<Grandchild>().alloc<Base>()->Who(), "grandchild");
  EXPECT_EQ(ClassOf<Grandchild>().alloc<Child>()->Who(), "grandchild");
  EXPECT_EQ(ClassOf<Second>().alloc<Base>()->Who(), "second 5");
  EXPECT_EQ(ClassOf<Virtual>().alloc<Base>()->Who(), "base");
  EXPECT_NE(ClassOf<Child>().alloc<Base>(), ClassOf<Child>().alloc<Base>());
}

TEST(ClassTest, AllocGivesNothingWhereNoInstanceCanBeHad) {
  EXPECT_EQ(ClassOf<Other>().alloc<Base>(), nullptr);
  EXPECT_EQ(ClassOf<Base>().alloc<Child>(), nullptr);
  EXPECT_EQ(ClassOf<Abstract>().alloc<Base>(), nullptr);
  EXPECT_EQ(ClassOf<NeedsArguments>().alloc<Base>(), nullptr);
}

TEST(ClassTest, WhatTheConstructorThrowsPassesThrough) {
  EXPECT_THROW(ClassOf<Throwing>().alloc<Base>(), std::runtime_error);
}

TEST(ClassTest, InstancesKnowTheirOwners) {
  const std::shared_ptr<Sharing> instance = ClassOf<Sharing>().alloc<Sharing>();
  EXPECT_EQ(instance->shared_from_this(), instance);
  const std::weak_ptr<Base> watch = ClassOf<Sharing>().alloc<Base>();
  EXPECT_TRUE(watch.expired());
}

TEST(ClassTest, NoClassIsNothing) {
  EXPECT_EQ(Class().name(), "");
  EXPECT_FALSE(Class().isSubclassOf(Class()));
  EXPECT_FALSE(Class().isSubclassOf(ClassOf<Base>()));
  EXPECT_FALSE(ClassOf<Base>().isSubclassOf(Class()));
  EXPECT_EQ(Class().alloc<Base>(), nullptr);
}

TEST(ClassTest, ClassesAreEqualWhenTheyAreTheSame) {
  EXPECT_EQ(ClassOf<Base>(), ClassOf<Base>());
  EXPECT_NE(ClassOf<Base>(), ClassOf<Child>());
  EXPECT_NE(ClassOf<Base>(), Class());
  EXPECT_EQ(Class(), Class());
}

TEST(ClassTest, TellsItsNameForPeople) {
  EXPECT_EQ(ClassOf<std::shared_ptr<int>>().name(), "std::shared_ptr<int>");
  EXPECT_NE(ClassOf<Child>().name().find("Child"), std::string::npos);
}

}  // namespace
