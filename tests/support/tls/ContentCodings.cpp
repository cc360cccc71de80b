#include "support/tls/ContentCodings.h"

#include <cstdint>
#include <stdexcept>

#include <brotli/encode.h>
#include <zlib.h>

namespace TestSupport {
namespace {

constexpr int kZlibWindow = 15;
constexpr int kGzipWindow = kZlibWindow + 16;

std::string Deflated(const std::string& text, int window) {
  z_stream stream{};
  constexpr int kMemoryLevel = 8;
  if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, window, kMemoryLevel,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::runtime_error("zlib cannot begin");
  }
  std::string packed(deflateBound(&stream, text.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  const bool isDone = deflate(&stream, Z_FINISH) == Z_STREAM_END;
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  if (!isDone) throw std::runtime_error("zlib cannot end");
  return packed;
}

}  // namespace

std::string Gzip(const std::string& text) { return Deflated(text, kGzipWindow); }

std::string Deflate(const std::string& text) { return Deflated(text, kZlibWindow); }

std::string BareDeflate(const std::string& text) { return Deflated(text, -kZlibWindow); }

std::string Brotli(const std::string& text) {
  std::string packed(BrotliEncoderMaxCompressedSize(text.size()), '\0');
  std::size_t size = packed.size();
  if (BrotliEncoderCompress(BROTLI_DEFAULT_QUALITY, BROTLI_DEFAULT_WINDOW, BROTLI_MODE_TEXT,
                            text.size(), reinterpret_cast<const std::uint8_t*>(text.data()), &size,
                            reinterpret_cast<std::uint8_t*>(packed.data())) == BROTLI_FALSE) {
    throw std::runtime_error("brotli cannot pack");
  }
  packed.resize(size);
  return packed;
}

}  // namespace TestSupport
