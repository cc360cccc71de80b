#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/OpenSslDigest.h"

namespace {

template <class Implementation>
class DigestContractTest : public testing::Test {
 protected:
  std::string Sha256(std::string_view bytes) const {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : digest_.Sha256(bytes)) {
      text += kDigits[byte >> 4U];
      text += kDigits[byte & 0xfU];
    }
    return text;
  }

  Implementation digest_;
};

using Implementations = testing::Types<Platform::OpenSslDigest>;
TYPED_TEST_SUITE(DigestContractTest, Implementations);

TYPED_TEST(DigestContractTest, GivesThePublishedValues) {
  EXPECT_EQ(this->Sha256({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(this->Sha256("abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(this->Sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(this->Sha256(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TYPED_TEST(DigestContractTest, CountsZeroBytes) {
  EXPECT_EQ(this->Sha256(std::string_view("\0", 1)),
            "6e340b9cffb37a989ca544e6bb780a2c78901d3fb33738768511a30617afa01d");
  EXPECT_NE(this->Sha256(std::string_view("abc\0", 4)), this->Sha256("abc"));
}

TYPED_TEST(DigestContractTest, HashesTenMegabytes) {
  const std::string large(10'000'000, 'x');
  EXPECT_NE(this->Sha256(large), this->Sha256(large.substr(1)));
  EXPECT_EQ(this->Sha256(large), this->Sha256(large));
}

TYPED_TEST(DigestContractTest, ServesManyThreadsAtOnce) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([this] {
      for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(this->Sha256("abc"),
                  "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
