#include "services/filesystem/StoredStreamDecoderImpl.h"

namespace Velmora {

bool StoredStreamDecoderImpl::Initialize() { return true; }

bool StoredStreamDecoderImpl::Process(const std::uint8_t* input, std::int32_t length, bool,
                                      const Sink& sink) {
  if (length > 0 && input != nullptr) sink(input, static_cast<std::uint32_t>(length));
  return true;
}

bool StoredStreamDecoderImpl::Finalize() { return true; }

}  // namespace Velmora
