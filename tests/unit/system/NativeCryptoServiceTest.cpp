#include <array>
#include <cstdio>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "services/system/NativeCryptoService.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"

namespace {

using TestSupport::FakeHost;
using Velmora::CreateNativeCryptoService;

constexpr const char* kVersion4 =
    "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";

std::string SpelledBytes(const Velmora::UuidInterface& uuid) {
  std::array<unsigned char, 16> bytes{};
  uuid.GetBytes(bytes.data());
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(bytes[i]));
    text += digits;
  }
  return text;
}

TEST(NativeCryptoService, HashesTheEmptyInput) {
  const FakeHost host;
  EXPECT_EQ(CreateNativeCryptoService()->GetSha256Hash(""),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST(NativeCryptoService, HashesABriefInput) {
  const FakeHost host;
  EXPECT_EQ(CreateNativeCryptoService()->GetSha256Hash("abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(NativeCryptoService, HashesZeroBytesLikeOthers) {
  const FakeHost host;
  const auto service = CreateNativeCryptoService();
  EXPECT_EQ(service->GetSha256Hash(std::string(1, '\0')),
            "6e340b9cffb37a989ca544e6bb780a2c78901d3fb33738768511a30617afa01d");
  EXPECT_NE(service->GetSha256Hash(std::string("a\0b", 3)), service->GetSha256Hash("a"));
}

TEST(NativeCryptoService, HashesTenMegabytes) {
  const FakeHost host;
  EXPECT_EQ(CreateNativeCryptoService()->GetSha256Hash(std::string(10'000'000, 'a')),
            "01f4a87c04b40af59aadc0e812293509709c9a8763a60b7f9e19303322f8b03c");
}

TEST(NativeCryptoService, GivesAnEmptyHashWhenTheDeviceCannotHash) {
  const FakeHost host;
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  EXPECT_EQ(CreateNativeCryptoService()->GetSha256Hash("abc"), "");
}

TEST(NativeCryptoService, MakesRandomIdentifiersOfVersion4) {
  const FakeHost host;
  const auto service = CreateNativeCryptoService();
  const std::string text = service->GetRandomUuid()->GetString();
  EXPECT_THAT(text, testing::ContainsRegex(kVersion4));
  ASSERT_EQ(text.size(), 36U);
  for (const std::size_t position : {8U, 13U, 18U, 23U}) EXPECT_EQ(text[position], '-');
}

TEST(NativeCryptoService, MakesAnotherIdentifierEachTime) {
  const FakeHost host;
  const auto service = CreateNativeCryptoService();
  EXPECT_NE(service->GetRandomUuid()->GetString(), service->GetRandomUuid()->GetString());
}

TEST(NativeCryptoService, MakesDifferentIdentifiersOnManyThreads) {
  const FakeHost host;
  const auto service = CreateNativeCryptoService();
  constexpr std::size_t kEach = 250;
  std::mutex mutex;
  std::set<std::string> texts;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (std::size_t j = 0; j < kEach; ++j) {
        std::string text = service->GetRandomUuid()->GetString();
        const std::lock_guard lock(mutex);
        texts.insert(std::move(text));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(texts.size(), 4 * kEach);
}

TEST(NativeUuid, KeepsItsIdentifier) {
  const FakeHost host;
  const auto uuid = CreateNativeCryptoService()->GetRandomUuid();
  EXPECT_EQ(uuid->GetString(), uuid->GetString());
}

TEST(NativeUuid, WritesTheBytesThatItsTextSpells) {
  const FakeHost host;
  const auto uuid = CreateNativeCryptoService()->GetRandomUuid();
  EXPECT_EQ(SpelledBytes(*uuid), uuid->GetString());
}

TEST(NativeUuid, WritesSixteenBytesAndNoMore) {
  const FakeHost host;
  std::array<unsigned char, 18> bytes{};
  bytes.front() = bytes.back() = 0xEE;
  CreateNativeCryptoService()->GetRandomUuid()->GetBytes(bytes.data() + 1);
  EXPECT_EQ(bytes.front(), 0xEE);
  EXPECT_EQ(bytes.back(), 0xEE);
  EXPECT_EQ(bytes[7] >> 4, 4);
}

TEST(NativeUuid, IsMadeUpWhenTheDeviceGivesNoRandomBytes) {
  const FakeHost host;
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  const auto service = CreateNativeCryptoService();
  std::set<std::string> texts;
  for (int i = 0; i < 1000; ++i) {
    const std::string text = service->GetRandomUuid()->GetString();
    EXPECT_THAT(text, testing::ContainsRegex(kVersion4));
    texts.insert(text);
  }
  EXPECT_EQ(texts.size(), 1000U);
}

}  // namespace
