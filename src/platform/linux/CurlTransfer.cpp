#include "platform/linux/CurlTransfer.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include <openssl/ssl.h>

#include "platform/linux/UrlErrors.h"
#include "platform/linux/UrlRequestRules.h"

namespace Platform {
namespace {

using std::chrono::seconds;

constexpr seconds kDefaultIdleTimeout{60};
constexpr seconds kDefaultWholeTimeout{std::chrono::hours(24 * 7)};
constexpr seconds kLongestTimeout{std::chrono::hours(24 * 365)};
constexpr long kNoConnectTimeout = 2'000'000'000;  // milliseconds; the deadline is kept here
constexpr long kMostRedirects = 20;

seconds Effective(seconds asked, seconds byDefault) {
  return asked.count() <= 0 ? byDefault : std::min(asked, kLongestTimeout);
}

// What the platform asks for, as far as libcurl can undo it.
const char* AcceptedEncodings() {
  const auto features = static_cast<unsigned>(::curl_version_info(CURLVERSION_NOW)->features);
  return (features & CURL_VERSION_BROTLI) != 0 ? "gzip, deflate, br" : "gzip, deflate";
}

bool HasHeader(const UrlRequest& request, std::string_view name) {
  return std::any_of(request.headers.begin(), request.headers.end(),
                     [name](const UrlHeader& header) { return IsSameHeader(header.name, name); });
}

}  // namespace

CurlTransfer::CurlTransfer(UrlRequest request, UrlSession::Completion completion,
                           Clock::time_point started)
    : request_(std::move(request)),
      completion_(std::move(completion)),
      started_(started),
      lastActivity_(started) {
  request_.idleTimeout = Effective(request_.idleTimeout, kDefaultIdleTimeout);
  request_.wholeTimeout = Effective(request_.wholeTimeout, kDefaultWholeTimeout);
}

CurlTransfer::~CurlTransfer() = default;

bool CurlTransfer::IsCleartext() const { return IsCleartextUrl(request_.url); }

std::optional<Error> CurlTransfer::Prepare(const Settings& settings) {
  if (auto refusal = RefusalOf(request_, settings.allowsCleartext)) return refusal;
  trust_ = settings.trust;
  largestBody_ = settings.largestBody;
  handle_.reset(::curl_easy_init());
  if (!handle_ || trust_ == nullptr) return UrlErrorOfCurl(CURLE_OUT_OF_MEMORY, {});
  SetConnectionOptions();
  SetRequestOptions(settings.allowsCleartext);
  SetCallbacks();
  SetHeaders();
  if (setUpResult_ != CURLE_OK) return UrlErrorOfCurl(setUpResult_, {});
  return std::nullopt;
}

template <class Value>
void CurlTransfer::Set(CURLoption option, Value value) {
  if (setUpResult_ != CURLE_OK) return;
  setUpResult_ = ::curl_easy_setopt(handle_.get(), option, value);
}

void CurlTransfer::SetConnectionOptions() {
  Set(CURLOPT_NOSIGNAL, 1L);
  Set(CURLOPT_FRESH_CONNECT, 1L);
  Set(CURLOPT_FORBID_REUSE, 1L);
  Set(CURLOPT_SSL_SESSIONID_CACHE, 0L);
  Set(CURLOPT_DNS_CACHE_TIMEOUT, 0L);
  // A name server that does not answer must not hold up the other requests when one is given up.
  Set(CURLOPT_QUICK_EXIT, 1L);
  Set(CURLOPT_CONNECTTIMEOUT_MS, kNoConnectTimeout);
  Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  // The authorities come with the shared store, by way of OnTlsContext.
  Set(CURLOPT_CAINFO, static_cast<char*>(nullptr));
  Set(CURLOPT_CAPATH, static_cast<char*>(nullptr));
  Set(CURLOPT_ERRORBUFFER, errorText_);
}

void CurlTransfer::SetRequestOptions(bool allowsCleartext) {
  const bool isCleartext = allowsCleartext && IsCleartext();
  const char* protocols = isCleartext ? "http,https" : "https";
  Set(CURLOPT_PROTOCOLS_STR, protocols);
  Set(CURLOPT_REDIR_PROTOCOLS_STR, protocols);
  Set(CURLOPT_URL, request_.url.c_str());
  Set(CURLOPT_FOLLOWLOCATION, 1L);
  Set(CURLOPT_MAXREDIRS, kMostRedirects);
  Set(CURLOPT_ACCEPT_ENCODING, AcceptedEncodings());
  Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  if (request_.method == "POST") {
    Set(CURLOPT_POST, 1L);
    Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()));
    Set(CURLOPT_POSTFIELDS, request_.body.data());
  }
}

void CurlTransfer::SetCallbacks() {
  Set(CURLOPT_HEADERFUNCTION, &CurlTransfer::OnHeader);
  Set(CURLOPT_HEADERDATA, this);
  Set(CURLOPT_WRITEFUNCTION, &CurlTransfer::OnBody);
  Set(CURLOPT_WRITEDATA, this);
  Set(CURLOPT_XFERINFOFUNCTION, &CurlTransfer::OnProgress);
  Set(CURLOPT_XFERINFODATA, this);
  Set(CURLOPT_NOPROGRESS, 0L);
  Set(CURLOPT_SSL_CTX_FUNCTION, &CurlTransfer::OnTlsContext);
  Set(CURLOPT_SSL_CTX_DATA, this);
}

void CurlTransfer::SetHeaders() {
  for (const UrlHeader& header : request_.headers) {
    if (IsConnectionHeader(header.name)) continue;
    AddHeaderLine(header.name + (header.value.empty() ? ";" : ": " + header.value));
  }
  // libcurl would wait for the server's permission before a large body.
  AddHeaderLine("Expect:");
  if (request_.body.empty() && !HasHeader(request_, "Content-Type")) AddHeaderLine("Content-Type:");
  Set(CURLOPT_HTTPHEADER, headerList_.get());
}

void CurlTransfer::AddHeaderLine(const std::string& line) {
  curl_slist* longer = ::curl_slist_append(headerList_.get(), line.c_str());
  if (longer == nullptr) {
    setUpResult_ = CURLE_OUT_OF_MEMORY;
    return;
  }
  static_cast<void>(headerList_.release());
  headerList_.reset(longer);
}

CurlTransfer::Clock::time_point CurlTransfer::Deadline() const {
  return std::min(lastActivity_ + request_.idleTimeout, started_ + request_.wholeTimeout);
}

void CurlTransfer::Finish(CURLcode result, const std::string& trustFault) noexcept {
  try {
    if (result != CURLE_OK || refusal_) {
      Fail(ErrorOf(result, trustFault));
      return;
    }
    long status = 0;
    ::curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
    handle_.reset();
    auto response = std::make_shared<UrlResponse>();
    response->statusCode = static_cast<std::int32_t>(status);
    response->headers = headers_.All();
    response->body = std::move(body_);
    Complete(std::move(response), Error());
  } catch (const std::exception& failure) {
    Fail(MakeUrlError(UrlFailure::ConnectionLost, failure.what()));
  }
}

void CurlTransfer::Fail(const Error& error) noexcept {
  handle_.reset();
  Complete(nullptr, error);
}

Error CurlTransfer::ErrorOf(CURLcode result, const std::string& trustFault) const {
  if (refusal_) return *refusal_;
  Error error = UrlErrorOfCurl(result, errorText_);
  const bool isTrust = error.Code() == static_cast<std::int64_t>(UrlFailure::NotTrusted);
  if (!isTrust || trustFault.empty()) return error;
  return {error.Domain(), error.Code(), error.LocalizedDescription() + " " + trustFault};
}

void CurlTransfer::Complete(std::shared_ptr<const UrlResponse> response,
                            const Error& error) noexcept {
  const UrlSession::Completion completion = std::exchange(completion_, nullptr);
  if (!completion) return;
  try {
    completion(std::move(response), error);
  } catch (...) {  // NOLINT(bugprone-empty-catch): the contract drops it
  }
}

void CurlTransfer::BeginResponse() {
  body_.clear();
  if (!IsCleartext()) return;
  // Where the request went out in the clear, redirects may take it to https, but never back.
  const char* url = nullptr;
  ::curl_easy_getinfo(handle_.get(), CURLINFO_EFFECTIVE_URL, &url);
  if (url != nullptr && IsCleartextUrl(url)) return;
  if (::curl_easy_setopt(handle_.get(), CURLOPT_REDIR_PROTOCOLS_STR, "https") != CURLE_OK) {
    throw std::bad_alloc();
  }
}

std::size_t CurlTransfer::OnHeader(const char* bytes, std::size_t one, std::size_t count,
                                   CurlTransfer* transfer) noexcept {
  const std::size_t size = one * count;
  try {
    transfer->NoteActivity();
    const std::string_view line(bytes, size);
    if (line.starts_with("HTTP/")) transfer->BeginResponse();
    if (transfer->headers_.Add(line)) return size;
    transfer->refusal_ = MakeUrlError(UrlFailure::BadResponse, "The headers are too large.");
  } catch (const std::exception&) {  // no memory: libcurl ends the transfer
  }
  return static_cast<std::size_t>(CURL_WRITEFUNC_ERROR);
}

std::size_t CurlTransfer::OnBody(const char* bytes, std::size_t one, std::size_t count,
                                 CurlTransfer* transfer) noexcept {
  const std::size_t size = one * count;
  try {
    if (size <= transfer->largestBody_ - transfer->body_.size()) {
      transfer->body_.append(bytes, size);
      return size;
    }
    transfer->refusal_ = MakeUrlError(UrlFailure::TooLarge, "The body is larger than allowed.");
  } catch (const std::exception&) {  // no memory: libcurl ends the transfer
  }
  return static_cast<std::size_t>(CURL_WRITEFUNC_ERROR);
}

int CurlTransfer::OnProgress(CurlTransfer* transfer, curl_off_t /*toDownload*/,
                             curl_off_t downloaded, curl_off_t /*toUpload*/,
                             curl_off_t uploaded) noexcept {
  const curl_off_t progress = downloaded + uploaded;
  if (progress != std::exchange(transfer->progress_, progress)) transfer->NoteActivity();
  return 0;
}

CURLcode CurlTransfer::OnTlsContext(CURL* /*handle*/, void* context,
                                    CurlTransfer* transfer) noexcept {
  auto* tls = static_cast<SSL_CTX*>(context);
  ::SSL_CTX_set1_cert_store(tls, transfer->trust_);
  // Each record that comes or goes, the handshake's too, is a sign of life.
  ::SSL_CTX_set_msg_callback(
      tls, [](int /*isWrite*/, int /*version*/, int contentType, const void* /*bytes*/,
              std::size_t /*count*/, SSL* /*connection*/, void* owner) noexcept {
        if (contentType == SSL3_RT_HEADER) static_cast<CurlTransfer*>(owner)->NoteActivity();
      });
  ::SSL_CTX_set_msg_callback_arg(tls, transfer);
  return CURLE_OK;
}

}  // namespace Platform
