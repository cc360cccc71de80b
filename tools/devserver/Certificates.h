#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace DevServer {

// A private key and its certificate, both in PEM. The certificate may be followed by others that
// lead to its authority.
struct Identity {
  std::string key;
  std::string certificate;
};

struct CertificateWish {
  std::string name = "localhost";  // the subject's common name
  std::vector<std::string> hosts = {"DNS:localhost", "IP:127.0.0.1"};
  // Both count from now; the certificate holds between them.
  std::chrono::seconds notBefore = -std::chrono::hours(1);
  std::chrono::seconds notAfter = std::chrono::hours(24 * 7);
};

// A new certificate authority that holds for ten years. Throws std::runtime_error when OpenSSL
// fails, as the others here do.
Identity MakeAuthority(const std::string& name);

// A server's certificate, signed by the authority.
Identity MakeServerIdentity(const Identity& authority, const CertificateWish& wish = {});

// A server's certificate that vouches for itself.
Identity MakeSelfSignedIdentity(const CertificateWish& wish = {});

}  // namespace DevServer
