#include "services/network/HttpConnection.h"

#include <utility>

#include "QEXCore_iOS/Platform/Utf8.h"
#include "services/network/HttpConnectionData.h"
#include "services/network/HttpReasonPhrase.h"

namespace Velmora {

HttpConnection::HttpConnection(std::shared_ptr<const Platform::UrlResponse> response)
    : response_(std::move(response)) {}

std::string HttpConnection::GetResponse() {
  if (!response_ || !Platform::IsValidUtf8(response_->body)) return {};
  return response_->body;
}

std::shared_ptr<HttpConnectionDataInterface> HttpConnection::GetResponseRawData() {
  return std::make_shared<HttpConnectionData>(response_);
}

std::int32_t HttpConnection::GetResponseCode() { return response_ ? response_->statusCode : 0; }

std::string HttpConnection::GetResponseMessage() {
  HttpConnectionInterface& connection = *this;
  return HttpReasonPhrase(connection.GetResponseCode());
}

std::string HttpConnection::GetResponsePropertyValue(const std::string& name) {
  if (!response_) return {};
  const auto header = response_->headers.find(name);
  return header == response_->headers.end() ? std::string() : header->second;
}

void HttpConnection::Close() {}

}  // namespace Velmora
