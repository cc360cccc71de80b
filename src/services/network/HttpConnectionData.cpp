#include "services/network/HttpConnectionData.h"

#include <algorithm>
#include <utility>

namespace Velmora {

HttpConnectionData::HttpConnectionData(std::shared_ptr<const Platform::UrlResponse> response)
    : response_(std::move(response)) {}

std::uint64_t HttpConnectionData::GetData(std::uint64_t maximum, std::uint8_t* buffer) {
  const std::uint64_t count = std::min(GetSize(), maximum);
  if (count == 0 || buffer == nullptr) return 0;
  std::copy_n(response_->body.begin(), count, buffer);
  return count;
}

std::uint64_t HttpConnectionData::GetSize() { return response_ ? response_->body.size() : 0; }

}  // namespace Velmora
