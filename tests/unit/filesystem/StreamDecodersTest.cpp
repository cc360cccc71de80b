#include <limits>
#include <stdexcept>

#include "VelmoraCore/StreamDecoderInterface.h"
#include "services/filesystem/DeflateStreamDecoderImpl.h"
#include "services/filesystem/StoredStreamDecoderImpl.h"
#include "unit/filesystem/ZipFixture.h"

namespace {

using TestSupport::Deflate;
using Velmora::CompressionMethod;
using Velmora::DeflateStreamDecoderImpl;
using Velmora::StoredStreamDecoderImpl;
using Velmora::StreamDecoderInterface;

class StreamDecodersTest : public ZipFixture {
 protected:
  static std::shared_ptr<StreamDecoderInterface> Decoder(CompressionMethod method) {
    return StreamDecoderInterface::CreateDecompressor(method);
  }

  bool Process(StreamDecoderInterface& decoder, std::string_view bytes, bool last) {
    return decoder.Process(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                           static_cast<std::int32_t>(bytes.size()), last,
                           [this](const std::uint8_t* output, std::uint32_t count) {
                             largestPiece_ = std::max(largestPiece_, count);
                             decoded_.append(reinterpret_cast<const char*>(output), count);
                           });
  }

  // All of it in steps of this size; false when any step fails.
  bool ProcessAll(StreamDecoderInterface& decoder, std::string_view bytes, std::size_t step) {
    for (; bytes.size() > step; bytes.remove_prefix(step)) {
      if (!Process(decoder, bytes.substr(0, step), false)) return false;
    }
    return Process(decoder, bytes, true);
  }

  std::string decoded_;
  std::uint32_t largestPiece_ = 0;
};

TEST_F(StreamDecodersTest, AreMadeByMethod) {
  EXPECT_NE(dynamic_cast<DeflateStreamDecoderImpl*>(Decoder(CompressionMethod::Deflate).get()),
            nullptr);
  for (const int method : {-1, 0, 2, 8, std::numeric_limits<int>::max()}) {
    const auto decoder = Decoder(static_cast<CompressionMethod>(method));
    EXPECT_NE(dynamic_cast<StoredStreamDecoderImpl*>(decoder.get()), nullptr) << method;
  }
}

TEST_F(StreamDecodersTest, StoredHandsBytesOnAsTheyAre) {
  const auto decoder = Decoder(CompressionMethod::Stored);
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_TRUE(Process(*decoder, std::string_view("a\0b", 3), false));
  EXPECT_TRUE(Process(*decoder, "", true));
  EXPECT_EQ(decoded_, std::string("a\0b", 3));
  EXPECT_TRUE(decoder->Finalize());
}

TEST_F(StreamDecodersTest, DeflateInflatesInStepsOfAnySize) {
  const std::string text = Varied(5'000) + std::string(200'000, 'x');
  const std::string deflated = Deflate(text);
  for (const std::size_t step : {1U, 2U, 127U, 128U, 129U, 1'000'000U}) {
    const auto decoder = Decoder(CompressionMethod::Deflate);
    decoded_.clear();
    EXPECT_TRUE(decoder->Initialize());
    EXPECT_TRUE(ProcessAll(*decoder, deflated, step)) << step;
    EXPECT_TRUE(decoder->Finalize());
    EXPECT_TRUE(decoded_ == text) << step;
  }
  EXPECT_LE(largestPiece_, 1'024U);
}

TEST_F(StreamDecodersTest, DeflateRefusesAnEndBeforeTheLastPiece) {
  const auto decoder = Decoder(CompressionMethod::Deflate);
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_FALSE(Process(*decoder, Deflate("text"), false));
  EXPECT_EQ(decoded_, "text");
}

TEST_F(StreamDecodersTest, DeflateAcceptsALastPieceThatEndsTooSoon) {
  // The caller knows how much is missing.
  const std::string deflated = Deflate(Varied(500));
  const auto decoder = Decoder(CompressionMethod::Deflate);
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_TRUE(Process(*decoder, deflated.substr(0, 300), true));
  EXPECT_LT(decoded_.size(), 500U);
}

TEST_F(StreamDecodersTest, DeflateAcceptsAPieceThatFillsWholeBuffers) {
  const auto decoder = Decoder(CompressionMethod::Deflate);
  EXPECT_TRUE(decoder->Initialize());
  // At level 0, five bytes and the contents.
  const std::string deflated = Deflate(Varied(2'048), 0);
  EXPECT_TRUE(Process(*decoder, deflated.substr(0, 5 + 1'024), false));
  EXPECT_TRUE(Process(*decoder, deflated.substr(5 + 1'024), true));
  EXPECT_TRUE(decoded_ == Varied(2'048));
}

TEST_F(StreamDecodersTest, DeflateRefusesDamagedData) {
  const auto decoder = Decoder(CompressionMethod::Deflate);
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_FALSE(Process(*decoder, std::string(128, '\xff'), false));
  EXPECT_FALSE(Process(*decoder, Deflate("text"), true));
}

TEST_F(StreamDecodersTest, DeflateRefusesPiecesOfNoLength) {
  const auto decoder = Decoder(CompressionMethod::Deflate);
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_FALSE(Process(*decoder, "", true));
  EXPECT_FALSE(decoder->Process(nullptr, 10, true, nullptr));
  const std::uint8_t byte = 0;
  EXPECT_FALSE(decoder->Process(&byte, -1, true, nullptr));
}

TEST_F(StreamDecodersTest, DeflateDoesNothingOutsideItsLife) {
  const auto decoder = Decoder(CompressionMethod::Deflate);
  EXPECT_FALSE(Process(*decoder, Deflate("text"), true));
  EXPECT_FALSE(decoder->Finalize());
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_TRUE(decoder->Finalize());
  EXPECT_FALSE(decoder->Finalize());
  EXPECT_FALSE(Process(*decoder, Deflate("text"), true));
  EXPECT_EQ(decoded_, "");
}

TEST_F(StreamDecodersTest, DeflateBeginsAnewWithEachInitialize) {
  const auto decoder = Decoder(CompressionMethod::Deflate);
  const std::string deflated = Deflate("text");
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_TRUE(Process(*decoder, deflated.substr(0, 2), false));
  decoded_.clear();
  EXPECT_TRUE(decoder->Initialize());
  EXPECT_TRUE(Process(*decoder, deflated, true));
  EXPECT_EQ(decoded_, "text");
}

TEST_F(StreamDecodersTest, LetTheSinksErrorThrough) {
  const std::string deflated = Deflate("text");
  for (const auto method : {CompressionMethod::Stored, CompressionMethod::Deflate}) {
    const auto decoder = Decoder(method);
    EXPECT_TRUE(decoder->Initialize());
    EXPECT_THROW(decoder->Process(reinterpret_cast<const std::uint8_t*>(deflated.data()),
                                  static_cast<std::int32_t>(deflated.size()), true,
                                  [](const std::uint8_t*, std::uint32_t) {
                                    throw std::runtime_error("the sink is full");
                                  }),
                 std::runtime_error);
  }
}

}  // namespace
