#include <filesystem>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/linux/SqliteUserDefaultsError.h"
#include "platform/linux/SqliteUserDefaultsGeneration.h"
#include "support/TemporaryDirectory.h"

namespace {

using namespace std::chrono_literals;
using Generation = Platform::SqliteUserDefaultsGeneration;
using Failure = Platform::SqliteUserDefaultsError;
using TestSupport::TemporaryDirectory;

constexpr std::chrono::milliseconds kShort = 20ms;

TEST(SqliteUserDefaultsGeneration, IsOddDuringAWriteAndEvenBehindIt) {
  const TemporaryDirectory directory;
  Generation generation(directory.PathOf("g"), kShort);
  EXPECT_EQ(generation.Load(), 0U);
  const Generation::Write write = generation.BeginWrite();
  EXPECT_EQ(write.before, 0U);
  EXPECT_EQ(generation.Load(), write.odd);
  EXPECT_FALSE(Generation::IsEven(write.odd));
  EXPECT_TRUE(generation.EndWrite(write.odd));
  EXPECT_EQ(generation.Load(), 2U);
}

TEST(SqliteUserDefaultsGeneration, IsSharedByAllThatOpenTheFile) {
  const TemporaryDirectory directory;
  Generation one(directory.PathOf("g"), kShort);
  one.EndWrite(one.BeginWrite().odd);
  Generation other(directory.PathOf("g"), kShort);
  EXPECT_EQ(other.Load(), 2U);
  const Generation::Write write = other.BeginWrite();
  EXPECT_EQ(one.Load(), write.odd);
}

TEST(SqliteUserDefaultsGeneration, BelongsToTheLastWriteThatBegan) {
  const TemporaryDirectory directory;
  Generation generation(directory.PathOf("g"), kShort);
  const Generation::Write first = generation.BeginWrite();
  const Generation::Write second = generation.BeginWrite();
  EXPECT_GT(second.odd, first.odd);
  EXPECT_EQ(second.before, first.odd);
  EXPECT_FALSE(Generation::IsEven(second.odd));
  EXPECT_FALSE(generation.EndWrite(first.odd));
  EXPECT_EQ(generation.Load(), second.odd);
  EXPECT_TRUE(generation.EndWrite(second.odd));
}

TEST(SqliteUserDefaultsGeneration, MovesOnWithANewIncarnation) {
  const TemporaryDirectory directory;
  Generation generation(directory.PathOf("g"), kShort);
  generation.BeginIncarnation();
  EXPECT_EQ(generation.Incarnation(), 1U);
  EXPECT_EQ(generation.Load(), 2U);
}

TEST(SqliteUserDefaultsGeneration, WaitsForItsLockOnlySoLong) {
  const TemporaryDirectory directory;
  const Generation one(directory.PathOf("g"), kShort);
  const Generation other(directory.PathOf("g"), kShort);
  {
    const Generation::Lock lock(one, kShort);
    try {
      const Generation::Lock second(other, kShort);
      ADD_FAILURE() << "the lock was given twice";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.GetKind(), Failure::Kind::Locked);
    }
  }
  const Generation::Lock lock(other, kShort);
}

TEST(SqliteUserDefaultsGeneration, FailsWhereThereCanBeNoSuchFile) {
  const TemporaryDirectory directory;
  EXPECT_THROW(Generation(directory.PathOf("missing/g"), kShort), Failure);
  EXPECT_THROW(Generation(directory.Path().string(), kShort), Failure);
  ASSERT_EQ(::mkfifo(directory.PathOf("pipe").c_str(), 0600), 0);
  EXPECT_THROW(Generation(directory.PathOf("pipe"), kShort), Failure);
}

TEST(SqliteUserDefaultsGeneration, TakesAFileOfAnyContent) {
  const TemporaryDirectory directory;
  Generation generation(directory.WriteFile("g", std::string(100, '\x7F')), kShort);
  const Generation::Write write = generation.BeginWrite();
  EXPECT_FALSE(Generation::IsEven(write.odd));
  EXPECT_TRUE(generation.EndWrite(write.odd));
  EXPECT_EQ(std::filesystem::file_size(directory.PathOf("g")), 4096U);
}

}  // namespace
