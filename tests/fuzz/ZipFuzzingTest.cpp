// The fuzzer's check over the archives that it starts from, and over what a few simple changes make
// of them.

#include <gmock/gmock.h>

#include "fuzz/ZipFuzzing.h"

namespace {

TEST(ZipFuzzing, HoldsForTheSeeds) {
  const auto seeds = ZipFuzzing::Seeds();
  ASSERT_THAT(seeds, testing::SizeIs(testing::Ge(15U)));
  for (const auto& [name, bytes] : seeds) EXPECT_EQ(ZipFuzzing::CheckArchive(bytes), "") << name;
}

TEST(ZipFuzzing, HoldsForEveryBeginningOfASeed) {
  for (const auto& [name, bytes] : ZipFuzzing::Seeds()) {
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      EXPECT_EQ(ZipFuzzing::CheckArchive(bytes.substr(0, length)), "") << name << ", " << length;
    }
  }
}

TEST(ZipFuzzing, HoldsWhenAnyOneByteIsAnother) {
  for (const auto& [name, bytes] : ZipFuzzing::Seeds()) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
      std::string changed = bytes;
      changed[at] = at % 2 == 0 ? '/' : '\xff';
      EXPECT_EQ(ZipFuzzing::CheckArchive(changed), "") << name << ", " << at;
    }
  }
}

TEST(ZipFuzzing, HoldsForArchivesBehindOneAnother) {
  const auto seeds = ZipFuzzing::Seeds();
  for (const auto& [name, bytes] : seeds) {
    for (const auto& [otherName, otherBytes] : seeds) {
      EXPECT_EQ(ZipFuzzing::CheckArchive(bytes + otherBytes), "") << name << " " << otherName;
    }
  }
}

}  // namespace
