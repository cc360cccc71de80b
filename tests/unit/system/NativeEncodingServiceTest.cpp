#include <string>

#include <gtest/gtest.h>

#include "services/system/NativeEncodingService.h"
#include "support/FailingPorts.h"
#include "support/FakeHost.h"

namespace {

using TestSupport::FakeHost;

std::string Decode(const std::string& encoded) {
  return Velmora::CreateNativeEncodingService()->Base64Decode(encoded);
}

TEST(NativeEncodingService, DecodesNothingToNothing) {
  const FakeHost host;
  EXPECT_EQ(Decode(""), "");
}

TEST(NativeEncodingService, DecodesText) {
  const FakeHost host;
  EXPECT_EQ(Decode("aGVsbG8="), "hello");
  EXPECT_EQ(Decode("aGVsbG8h"), "hello!");
  EXPECT_EQ(Decode("w6TDtsO8w58="), "\u00e4\u00f6\u00fc\u00df");
}

TEST(NativeEncodingService, RefusesBlanksAndLineEnds) {
  const FakeHost host;
  EXPECT_EQ(Decode("aGVs bG8="), "");
  EXPECT_EQ(Decode("aGVs\nbG8="), "");
  EXPECT_EQ(Decode("aGVsbG8=\n"), "");
  EXPECT_EQ(Decode(" aGVsbG8="), "");
}

TEST(NativeEncodingService, RefusesCharactersOutsideTheAlphabet) {
  const FakeHost host;
  EXPECT_EQ(Decode("aGV-bG8="), "");
  EXPECT_EQ(Decode("aGV_bG8="), "");
  EXPECT_EQ(Decode("\u00e4GVsbG8="), "");
}

TEST(NativeEncodingService, RefusesMissingOrMisplacedPadding) {
  const FakeHost host;
  EXPECT_EQ(Decode("aGVsbG8"), "");
  EXPECT_EQ(Decode("=aGVsbG8"), "");
  EXPECT_EQ(Decode("aGVs=G8="), "");
  EXPECT_EQ(Decode("===="), "");
}

TEST(NativeEncodingService, GivesNothingForBytesThatAreNoUtf8) {
  const FakeHost host;
  EXPECT_EQ(Decode("/w=="), "");
  EXPECT_EQ(Decode("aGVsbG/t"), "");
}

TEST(NativeEncodingService, EndsTheDecodedTextAtItsFirstZeroByte) {
  const FakeHost host;
  EXPECT_EQ(Decode("YQBi"), "a");
}

TEST(NativeEncodingService, EndsTheInputAtItsFirstZeroByte) {
  const FakeHost host;
  EXPECT_EQ(Decode(std::string("aGVsbG8=\0!!", 11)), "hello");
  EXPECT_EQ(Decode(std::string("\0aGVsbG8=", 9)), "");
}

TEST(NativeEncodingService, RefusesAnInputThatIsNoUtf8) {
  const FakeHost host;
  EXPECT_EQ(Decode("\xFF\xFE\xFD\xFC"), "");
}

TEST(NativeEncodingService, DecodesTenMegabytes) {
  const FakeHost host;
  std::string encoded;
  for (int i = 0; i < 2'500'000; ++i) encoded += "YWJj";
  const std::string decoded = Decode(encoded);
  EXPECT_EQ(decoded.size(), 7'500'000U);
  EXPECT_TRUE(decoded.ends_with("abcabc"));
}

TEST(NativeEncodingService, GivesNothingWhenTheDeviceFails) {
  const FakeHost host;
  Platform::Host::Install(TestSupport::WithFailingPorts(host.Copy()));
  EXPECT_EQ(Decode("aGVsbG8="), "");
}

}  // namespace
