#include "Certificates.h"

#include <memory>
#include <stdexcept>

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

namespace DevServer {
namespace {

struct Release {
  void operator()(EVP_PKEY* key) const { ::EVP_PKEY_free(key); }
  void operator()(X509* certificate) const { ::X509_free(certificate); }
  void operator()(X509_EXTENSION* extension) const { ::X509_EXTENSION_free(extension); }
  void operator()(BIO* bio) const { ::BIO_free(bio); }
};
template <class T>
using Owned = std::unique_ptr<T, Release>;

template <class T>
T* Check(T* result, const char* what) {
  if (result == nullptr) throw std::runtime_error(std::string("OpenSSL cannot ") + what);
  return result;
}

void Check(bool succeeded, const char* what) {
  if (!succeeded) throw std::runtime_error(std::string("OpenSSL cannot ") + what);
}

std::string TextOf(const Owned<BIO>& bio) {
  char* bytes = nullptr;
  const long count = BIO_get_mem_data(bio.get(), &bytes);
  return {bytes, static_cast<std::size_t>(count)};
}

Owned<BIO> Memory() { return Owned<BIO>(Check(::BIO_new(::BIO_s_mem()), "find memory")); }

Owned<BIO> MemoryOf(const std::string& text) {
  return Owned<BIO>(
      Check(::BIO_new_mem_buf(text.data(), static_cast<int>(text.size())), "find memory"));
}

void AddExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  ::X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  const Owned<X509_EXTENSION> extension(
      Check(::X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()), "make an extension"));
  Check(::X509_add_ext(certificate, extension.get(), -1) == 1, "add an extension");
}

void SetRandomSerial(X509* certificate) {
  unsigned char bytes[8] = {};
  Check(::RAND_bytes(bytes, sizeof bytes) == 1, "draw random bytes");
  std::uint64_t number = 0;
  for (const unsigned char byte : bytes) number = (number << 8U) | byte;
  Check(::ASN1_INTEGER_set_uint64(::X509_get_serialNumber(certificate), number >> 1U) == 1,
        "number a certificate");
}

// All but the extensions, the issuer and the signature.
Owned<X509> Begin(const CertificateWish& wish, EVP_PKEY* key) {
  Owned<X509> certificate(Check(::X509_new(), "make a certificate"));
  constexpr long kVersion3 = 2;
  Check(::X509_set_version(certificate.get(), kVersion3) == 1, "set the version");
  SetRandomSerial(certificate.get());
  Check(::X509_gmtime_adj(X509_getm_notBefore(certificate.get()), wish.notBefore.count()) &&
            ::X509_gmtime_adj(X509_getm_notAfter(certificate.get()), wish.notAfter.count()),
        "set the dates");
  Check(::X509_NAME_add_entry_by_txt(
            ::X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
            reinterpret_cast<const unsigned char*>(wish.name.c_str()), -1, -1, 0) == 1,
        "set the name");
  Check(::X509_set_pubkey(certificate.get(), key) == 1, "set the key");
  return certificate;
}

Identity Finish(const Owned<X509>& certificate, EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey) {
  Check(::X509_set_issuer_name(certificate.get(), ::X509_get_subject_name(issuer)) == 1,
        "set the issuer");
  Check(::X509_sign(certificate.get(), issuerKey, ::EVP_sha256()) > 0, "sign a certificate");
  const Owned<BIO> keyText = Memory();
  Check(::PEM_write_bio_PrivateKey(keyText.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1,
        "write a key");
  const Owned<BIO> certificateText = Memory();
  Check(::PEM_write_bio_X509(certificateText.get(), certificate.get()) == 1, "write a certificate");
  return {TextOf(keyText), TextOf(certificateText)};
}

Owned<EVP_PKEY> NewKey() { return Owned<EVP_PKEY>(Check(EVP_EC_gen("P-256"), "make a key")); }

void AddServerExtensions(X509* certificate, X509* issuer, const CertificateWish& wish) {
  AddExtension(certificate, issuer, NID_basic_constraints, "critical,CA:FALSE");
  AddExtension(certificate, issuer, NID_ext_key_usage, "serverAuth");
  std::string hosts;
  for (const std::string& host : wish.hosts) hosts += (hosts.empty() ? "" : ",") + host;
  AddExtension(certificate, issuer, NID_subject_alt_name, hosts);
}

}  // namespace

Identity MakeAuthority(const std::string& name) {
  const Owned<EVP_PKEY> key = NewKey();
  CertificateWish wish;
  wish.name = name;
  wish.notAfter = std::chrono::hours(24 * 365 * 10);
  const Owned<X509> certificate = Begin(wish, key.get());
  AddExtension(certificate.get(), certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
  AddExtension(certificate.get(), certificate.get(), NID_key_usage, "critical,keyCertSign,cRLSign");
  return Finish(certificate, key.get(), certificate.get(), key.get());
}

Identity MakeServerIdentity(const Identity& authority, const CertificateWish& wish) {
  const Owned<BIO> issuerText = MemoryOf(authority.certificate);
  const Owned<X509> issuer(Check(::PEM_read_bio_X509(issuerText.get(), nullptr, nullptr, nullptr),
                                 "read the authority"));
  const Owned<BIO> keyText = MemoryOf(authority.key);
  const Owned<EVP_PKEY> issuerKey(Check(
      ::PEM_read_bio_PrivateKey(keyText.get(), nullptr, nullptr, nullptr), "read the authority"));
  const Owned<EVP_PKEY> key = NewKey();
  const Owned<X509> certificate = Begin(wish, key.get());
  AddServerExtensions(certificate.get(), issuer.get(), wish);
  return Finish(certificate, key.get(), issuer.get(), issuerKey.get());
}

Identity MakeSelfSignedIdentity(const CertificateWish& wish) {
  const Owned<EVP_PKEY> key = NewKey();
  const Owned<X509> certificate = Begin(wish, key.get());
  AddServerExtensions(certificate.get(), certificate.get(), wish);
  return Finish(certificate, key.get(), certificate.get(), key.get());
}

}  // namespace DevServer
