#include "VelmoraCore/StreamDecoderInterface.h"
#include "services/filesystem/DeflateStreamDecoderImpl.h"
#include "services/filesystem/StoredStreamDecoderImpl.h"

namespace Velmora {

std::shared_ptr<StreamDecoderInterface> StreamDecoderInterface::CreateDecompressor(
    CompressionMethod method) {
  if (method == CompressionMethod::Deflate) return std::make_shared<DeflateStreamDecoderImpl>();
  return std::make_shared<StoredStreamDecoderImpl>();
}

}  // namespace Velmora
