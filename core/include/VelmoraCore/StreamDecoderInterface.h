#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "VelmoraCore/CompressionMethod.h"
#include "VelmoraCore/Export.h"
#include "VelmoraCore/Object.h"

namespace Velmora {

// Decodes one stream of bytes, piece by piece: Initialize once, Process for every piece, Finalize
// once. Belongs to one caller at a time. Failures are false results; what the sink throws passes
// through.
class VELMORA_CORE_API StreamDecoderInterface : public virtual ObjectInterface {
 public:
  // Takes decoded bytes, which stay valid for the call only.
  using Sink = std::function<void(const std::uint8_t* bytes, std::uint32_t count)>;

  ~StreamDecoderInterface() override;

  // A new decoder: raw deflate, or one that hands bytes on unchanged for every other method.
  // Defined by the platform layer.
  static std::shared_ptr<StreamDecoderInterface> CreateDecompressor(CompressionMethod method);

  virtual bool Initialize() = 0;

  // Decodes `length` bytes, `last` telling that none follow. False when they are damaged, or when
  // the stream does not end with the last piece.
  virtual bool Process(const std::uint8_t* input, std::int32_t length, bool last,
                       const Sink& sink) = 0;

  virtual bool Finalize() = 0;
};

}  // namespace Velmora
