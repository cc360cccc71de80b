#pragma once

#include <array>
#include <cstdint>

#include <zlib.h>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/StreamDecoderInterface.h"

namespace Velmora {

// Inflates raw deflate data, that is, without a zlib header. What it holds goes with Finalize, or
// with the object.
class DeflateStreamDecoderImpl : public Object, public virtual StreamDecoderInterface {
 public:
  DeflateStreamDecoderImpl() = default;
  ~DeflateStreamDecoderImpl() override;
  // zlib's state points at its stream.
  DeflateStreamDecoderImpl(const DeflateStreamDecoderImpl&) = delete;
  DeflateStreamDecoderImpl& operator=(const DeflateStreamDecoderImpl&) = delete;

  bool Initialize() override;
  bool Process(const std::uint8_t* input, std::int32_t length, bool last,
               const Sink& sink) override;
  bool Finalize() override;

 private:
  static constexpr std::size_t kOutputSize = 1024;

  // One step of zlib into an empty output buffer: its result, with the output handed to the sink.
  int InflateOnce(const Sink& sink);

  z_stream stream_{};  // its state is null while there is nothing to end
  std::array<std::uint8_t, kOutputSize> output_;
};

}  // namespace Velmora
