#pragma once

#include <cstdint>

#include "VelmoraCore/Object.h"
#include "VelmoraCore/StreamDecoderInterface.h"

namespace Velmora {

// Hands bytes on as they are.
class StoredStreamDecoderImpl : public Object, public virtual StreamDecoderInterface {
 public:
  bool Initialize() override;
  bool Process(const std::uint8_t* input, std::int32_t length, bool last,
               const Sink& sink) override;
  bool Finalize() override;
};

}  // namespace Velmora
