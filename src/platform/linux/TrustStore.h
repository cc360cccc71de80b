#pragma once

#include <memory>
#include <string>

struct x509_store_st;

namespace Platform {

// The certificate authorities that servers' certificates are checked against: the system's, as
// OpenSSL finds them ("SSL_CERT_FILE" and "SSL_CERT_DIR" included), and those of one file more.
//
// Made once and then shared by every connection. Belongs to one thread.
class TrustStore {
 public:
  // `extraFile` holds certificates in PEM; empty for none.
  explicit TrustStore(const std::string& extraFile);

  // Owned by the store; null when there was no memory for it.
  x509_store_st* Get() const { return store_.get(); }

  // What went wrong with the extra file, for people; empty when nothing did.
  const std::string& Fault() const { return fault_; }

 private:
  struct Release {
    void operator()(x509_store_st* store) const;
  };

  std::unique_ptr<x509_store_st, Release> store_;
  std::string fault_;
};

}  // namespace Platform
