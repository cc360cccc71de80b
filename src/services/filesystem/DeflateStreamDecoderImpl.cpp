#include "services/filesystem/DeflateStreamDecoderImpl.h"

namespace Velmora {
namespace {

constexpr int kRawDeflateWindowBits = -15;
constexpr const char* kZlibVersion = "1.2.11";

}  // namespace

DeflateStreamDecoderImpl::~DeflateStreamDecoderImpl() { ::inflateEnd(&stream_); }

bool DeflateStreamDecoderImpl::Initialize() {
  ::inflateEnd(&stream_);
  stream_ = {};
  return ::inflateInit2_(&stream_, kRawDeflateWindowBits, kZlibVersion,
                         static_cast<int>(sizeof(stream_))) == Z_OK;
}

bool DeflateStreamDecoderImpl::Process(const std::uint8_t* input, std::int32_t length, bool last,
                                       const Sink& sink) {
  if (length < 0 || (input == nullptr && length > 0)) return false;
  stream_.next_in = const_cast<std::uint8_t*>(input);  // zlib only reads there
  stream_.avail_in = static_cast<uInt>(length);
  int result = InflateOnce(sink);
  while (result == Z_OK && stream_.avail_out == 0) {
    result = InflateOnce(sink);
    // The buffer was full just when the input was used up: that is no error, but the end of the
    // piece.
    const bool nothingWasLeft = stream_.avail_out == kOutputSize && stream_.avail_in == 0;
    if (result == Z_BUF_ERROR && nothingWasLeft) return true;
  }
  return result == Z_OK || (result == Z_STREAM_END && last);
}

bool DeflateStreamDecoderImpl::Finalize() { return ::inflateEnd(&stream_) == Z_OK; }

int DeflateStreamDecoderImpl::InflateOnce(const Sink& sink) {
  stream_.next_out = output_.data();
  stream_.avail_out = kOutputSize;
  const int result = ::inflate(&stream_, Z_SYNC_FLUSH);
  const std::uint32_t produced = kOutputSize - stream_.avail_out;
  if (produced > 0) sink(output_.data(), produced);
  return result;
}

}  // namespace Velmora
