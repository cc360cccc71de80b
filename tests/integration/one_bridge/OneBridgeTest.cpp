#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

using SeenCore = const void* (*)();

// Local scope, so that neither object can see the other's symbols. Never closed: the core's threads
// run on in the library until the process ends.
SeenCore Load(const char* path) {
  void* object = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (object == nullptr) {
    ADD_FAILURE() << dlerror();
    return nullptr;
  }
  return reinterpret_cast<SeenCore>(dlsym(object, "CoreSeenFromThisSide"));
}

TEST(OneBridge, TwoSharedObjectsReachTheSameCore) {
  const SeenCore first = Load(FIRST_SIDE);
  const SeenCore second = Load(SECOND_SIDE);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  ASSERT_NE(first, second) << "one object was loaded twice";

  const void* core = first();

  EXPECT_NE(core, nullptr);
  EXPECT_EQ(second(), core);
}

}  // namespace
