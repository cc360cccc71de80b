#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <curl/curl.h>

#include "QEXCore_iOS/Platform/UrlSession.h"
#include "platform/linux/ResponseHeaders.h"

struct x509_store_st;

namespace Platform {

// One request on its way: libcurl's handle, made for it alone, and what has come of the response.
// Belongs to the session's thread.
class CurlTransfer {
 public:
  using Clock = std::chrono::steady_clock;

  struct Settings {
    x509_store_st* trust = nullptr;  // outlives the transfer
    std::uint64_t largestBody = 0;   // bytes, decoded
    bool allowsCleartext = false;
  };

  // `started` is when the whole timeout began.
  CurlTransfer(UrlRequest request, UrlSession::Completion completion, Clock::time_point started);
  ~CurlTransfer();
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  // Makes the handle ready to be run. An error when the request cannot be sent.
  std::optional<Error> Prepare(const Settings& settings);

  // Whether it asks for leave to go without encryption.
  bool IsCleartext() const;

  // Null before Prepare.
  CURL* Handle() const { return handle_.get(); }

  // When the transfer is out of time, unless another byte comes before.
  Clock::time_point Deadline() const;

  // Ends the transfer, with what libcurl says of it, or with an error, and calls the completion.
  void Finish(CURLcode result, const std::string& trustFault) noexcept;
  void Fail(const Error& error) noexcept;

 private:
  struct CleanUpHandle {
    void operator()(CURL* handle) const { ::curl_easy_cleanup(handle); }
  };
  struct FreeList {
    void operator()(curl_slist* list) const { ::curl_slist_free_all(list); }
  };

  template <class Value>
  void Set(CURLoption option, Value value);
  void SetConnectionOptions();
  void SetRequestOptions(bool allowsCleartext);
  void SetCallbacks();
  void SetHeaders();
  void AddHeaderLine(const std::string& line);
  Error ErrorOf(CURLcode result, const std::string& trustFault) const;
  void Complete(std::shared_ptr<const UrlResponse> response, const Error& error) noexcept;
  void BeginResponse();
  void NoteActivity() { lastActivity_ = Clock::now(); }

  static std::size_t OnHeader(const char* bytes, std::size_t one, std::size_t count,
                              CurlTransfer* transfer) noexcept;
  static std::size_t OnBody(const char* bytes, std::size_t one, std::size_t count,
                            CurlTransfer* transfer) noexcept;
  static int OnProgress(CurlTransfer* transfer, curl_off_t toDownload, curl_off_t downloaded,
                        curl_off_t toUpload, curl_off_t uploaded) noexcept;
  static CURLcode OnTlsContext(CURL* handle, void* context, CurlTransfer* transfer) noexcept;

  UrlRequest request_;
  UrlSession::Completion completion_;
  const Clock::time_point started_;
  Clock::time_point lastActivity_;
  x509_store_st* trust_ = nullptr;
  std::uint64_t largestBody_ = 0;
  CURLcode setUpResult_ = CURLE_OK;
  std::optional<Error> refusal_;  // why a callback ended the transfer
  ResponseHeaders headers_;
  std::string body_;
  curl_off_t progress_ = 0;
  std::unique_ptr<curl_slist, FreeList> headerList_;
  char errorText_[CURL_ERROR_SIZE] = "";
  std::unique_ptr<CURL, CleanUpHandle> handle_;  // last: it points to what stands above
};

}  // namespace Platform
