#include "platform/linux/TrustStore.h"

#include <cstdlib>

#include <openssl/err.h>
#include <openssl/x509.h>
#include <openssl/x509_vfy.h>

namespace Platform {

void TrustStore::Release::operator()(x509_store_st* store) const { ::X509_STORE_free(store); }

TrustStore::TrustStore(const std::string& extraFile) : store_(::X509_STORE_new()) {
  if (!store_) return;
  // The system's authorities lie in a folder in which OpenSSL looks up the one that it needs, once.
  if (::X509_STORE_set_default_paths(store_.get()) != 1) {
    fault_ = "The system's certificate authorities cannot be read.";
  }
  // "SSL_CERT_FILE" takes the place of the system's file; here it adds to it.
  if (::secure_getenv(::X509_get_default_cert_file_env()) != nullptr) {
    ::X509_STORE_load_file(store_.get(), ::X509_get_default_cert_file());
  }
  if (!extraFile.empty() && ::X509_STORE_load_file(store_.get(), extraFile.c_str()) != 1) {
    fault_ = "The certificate authorities in \"" + extraFile + "\" cannot be read.";
  }
  ::ERR_clear_error();
}

}  // namespace Platform
