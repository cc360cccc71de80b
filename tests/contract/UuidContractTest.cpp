#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/OpenSslUuidGenerator.h"

namespace {

template <class Implementation>
class UuidContractTest : public testing::Test {
 protected:
  Implementation generator_;
};

using Implementations = testing::Types<Platform::OpenSslUuidGenerator>;
TYPED_TEST_SUITE(UuidContractTest, Implementations);

TYPED_TEST(UuidContractTest, MakesRandomIdentifiersOfVersion4) {
  for (int round = 0; round < 100; ++round) {
    const Platform::UuidBytes bytes = this->generator_.Random();
    EXPECT_EQ(bytes[6] & 0xf0U, 0x40U);
    EXPECT_EQ(bytes[8] & 0xc0U, 0x80U);
  }
}

TYPED_TEST(UuidContractTest, VariesEveryBitButThoseOfTheVersion) {
  Platform::UuidBytes seenSet{};
  Platform::UuidBytes seenClear{};
  for (int round = 0; round < 200; ++round) {
    const Platform::UuidBytes bytes = this->generator_.Random();
    for (std::size_t index = 0; index < bytes.size(); ++index) {
      seenSet[index] = static_cast<std::uint8_t>(seenSet[index] | bytes[index]);
      seenClear[index] = static_cast<std::uint8_t>(seenClear[index] | ~bytes[index]);
    }
  }
  for (std::size_t index = 0; index < seenSet.size(); ++index) {
    const unsigned fixed = index == 6 ? 0xf0U : index == 8 ? 0xc0U : 0U;
    EXPECT_EQ((seenSet[index] & seenClear[index]) | fixed, 0xffU) << index;
  }
}

TYPED_TEST(UuidContractTest, NeverRepeatsItself) {
  std::mutex mutex;
  std::set<Platform::UuidBytes> seen;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 2; ++thread) {
    threads.emplace_back([&] {
      for (int round = 0; round < 1000; ++round) {
        const auto bytes = this->generator_.Random();
        const std::lock_guard lock(mutex);
        seen.insert(bytes);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(seen.size(), 2000U);
}

}  // namespace
