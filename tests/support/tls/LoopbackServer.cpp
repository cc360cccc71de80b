#include "support/tls/LoopbackServer.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstddef>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

namespace TestSupport {
namespace {

constexpr std::size_t kLargestHead = std::size_t{1} << 20;

void Require(bool succeeded, const char* what) {
  if (!succeeded) throw std::system_error(errno, std::generic_category(), what);
}

int ChooseHttp2(SSL* /*tls*/, const unsigned char** chosen, unsigned char* length,
                const unsigned char* offered, unsigned int count, void* /*unused*/) {
  static constexpr unsigned char kHttp2[] = {2, 'h', '2'};
  unsigned char* found = nullptr;
  if (::SSL_select_next_proto(&found, length, kHttp2, sizeof kHttp2, offered, count) !=
      OPENSSL_NPN_NEGOTIATED) {
    return SSL_TLSEXT_ERR_ALERT_FATAL;
  }
  *chosen = found;
  return SSL_TLSEXT_ERR_OK;
}

SSL_CTX* MakeTlsContext(const DevServer::Identity& identity) {
  SSL_CTX* context = ::SSL_CTX_new(::TLS_server_method());
  BIO* certificate = ::BIO_new_mem_buf(identity.certificate.data(), -1);
  BIO* key = ::BIO_new_mem_buf(identity.key.data(), -1);
  X509* x509 = ::PEM_read_bio_X509(certificate, nullptr, nullptr, nullptr);
  EVP_PKEY* privateKey = ::PEM_read_bio_PrivateKey(key, nullptr, nullptr, nullptr);
  const bool isUsable = ::SSL_CTX_use_certificate(context, x509) == 1 &&
                        ::SSL_CTX_use_PrivateKey(context, privateKey) == 1;
  ::X509_free(x509);
  ::EVP_PKEY_free(privateKey);
  ::BIO_free(certificate);
  ::BIO_free(key);
  Require(isUsable, "use a certificate");
  return context;
}

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
  });
  return text;
}

WireRequest Parse(const std::string& head) {
  WireRequest request;
  const std::size_t methodEnd = head.find(' ');
  const std::size_t targetEnd = head.find(' ', methodEnd + 1);
  request.method = head.substr(0, methodEnd);
  request.target = head.substr(methodEnd + 1, targetEnd - methodEnd - 1);
  std::size_t start = head.find("\r\n") + 2;
  while (start < head.size()) {
    const std::size_t end = std::min(head.find("\r\n", start), head.size());
    const std::string line = head.substr(start, end - start);
    const std::size_t colon = line.find(':');
    if (colon != std::string::npos) {
      const std::size_t value = std::min(line.find_first_not_of(' ', colon + 1), line.size());
      request.headers[Lower(line.substr(0, colon))] = line.substr(value);
    }
    start = end + 2;
  }
  return request;
}

}  // namespace

bool WireConnection::Respond(int status, std::string_view body,
                             const std::map<std::string, std::string>& headers) {
  std::string text = "HTTP/1.1 " + std::to_string(status) + " Whatever\r\n";
  for (const auto& [name, value] : headers) text += name + ": " + value + "\r\n";
  text += "Content-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n";
  return Send(text) && Send(body);
}

class LoopbackServer::Connection final : public WireConnection {
 public:
  Connection(int socket, const LoopbackServer& server) : socket_(socket), server_(server) {}
  ~Connection() override {
    ::SSL_free(tls_);
    if (socket_ >= 0) ::close(socket_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Serve() {
    if (server_.options_.hangsAfterAccept) {
      WaitForClient();
    } else if (ShakeHands()) {
      const std::optional<WireRequest> request =
          server_.options_.isHttp2 ? WireRequest() : ReadRequest();
      if (request) server_.handler_(*request, *this);
      if (tls_ != nullptr && !isReset_) ::SSL_shutdown(tls_);
    }
    Stop();
  }

  // Wakes whatever the connection's thread waits for. Safe from any thread.
  void Stop() {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
    stopped_.notify_all();
    ::shutdown(socket_, SHUT_RDWR);
  }

  bool IsDone() const { return isDone_; }
  void SetDone() { isDone_ = true; }

  bool Send(std::string_view bytes) override {
    while (!bytes.empty()) {
      std::size_t count = 0;
      if (tls_ != nullptr) {
        if (::SSL_write_ex(tls_, bytes.data(), bytes.size(), &count) != 1) return false;
      } else {
        const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) return false;
        count = static_cast<std::size_t>(sent);
      }
      bytes.remove_prefix(count);
    }
    return true;
  }

  std::string Receive() override {
    std::string bytes;
    ReceiveMore(bytes);
    return bytes;
  }

  bool Pause(std::chrono::milliseconds time) override {
    std::unique_lock lock(mutex_);
    return !stopped_.wait_for(lock, time, [this] { return isStopped_; });
  }

  void WaitForClient() override {
    char ignored[256];
    while (::recv(socket_, ignored, sizeof ignored, 0) > 0) {
    }
  }

  void Reset() override {
    isReset_ = true;
    const linger atOnce{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    const std::lock_guard lock(mutex_);
    ::close(std::exchange(socket_, -1));
  }

 private:
  bool ShakeHands() {
    if (!server_.tls_) return true;
    tls_ = ::SSL_new(static_cast<SSL_CTX*>(server_.tls_.get()));
    ::SSL_set_fd(tls_, socket_);
    return ::SSL_accept(tls_) == 1;
  }

  std::size_t ReceiveInto(char* buffer, std::size_t size) {
    if (tls_ != nullptr) {
      std::size_t count = 0;
      return ::SSL_read_ex(tls_, buffer, size, &count) == 1 ? count : 0;
    }
    const ssize_t count = ::recv(socket_, buffer, size, 0);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
  }

  std::optional<WireRequest> ReadRequest() {
    std::string bytes;
    std::size_t headEnd = std::string::npos;
    while ((headEnd = bytes.find("\r\n\r\n")) == std::string::npos) {
      if (bytes.size() > kLargestHead || !ReceiveMore(bytes)) return std::nullopt;
      const bool isText = bytes.front() >= 'A' && bytes.front() <= 'Z';
      if (!isText) return std::nullopt;
    }
    WireRequest request = Parse(bytes.substr(0, headEnd + 2));
    request.body = bytes.substr(headEnd + 4);
    const auto length = request.headers.find("content-length");
    if (length == request.headers.end()) return request;
    const std::size_t expected = std::stoul(length->second);
    while (request.body.size() < expected) {
      if (!ReceiveMore(request.body)) return std::nullopt;
    }
    return request;
  }

  bool ReceiveMore(std::string& bytes) {
    char buffer[16384];
    const std::size_t count = ReceiveInto(buffer, sizeof buffer);
    bytes.append(buffer, count);
    return count > 0;
  }

  int socket_;
  const LoopbackServer& server_;
  SSL* tls_ = nullptr;
  bool isReset_ = false;
  std::atomic<bool> isDone_{false};
  std::mutex mutex_;
  std::condition_variable stopped_;
  bool isStopped_ = false;  // guarded by mutex_
};

void LoopbackServer::TlsRelease::operator()(void* context) const {
  ::SSL_CTX_free(static_cast<SSL_CTX*>(context));
}

LoopbackServer::LoopbackServer(Options options, Handler handler)
    : options_(std::move(options)), handler_(std::move(handler)) {
  if (options_.identity) tls_.reset(MakeTlsContext(*options_.identity));
  if (tls_ && options_.isHttp2) {
    ::SSL_CTX_set_alpn_select_cb(static_cast<SSL_CTX*>(tls_.get()), &ChooseHttp2, nullptr);
  }
  socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  Require(socket_ >= 0, "make a socket");
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  Require(::bind(socket_, plain, length) == 0, "bind");
  Require(::listen(socket_, SOMAXCONN) == 0, "listen");
  Require(::getsockname(socket_, plain, &length) == 0, "ask for the port");
  port_ = ::ntohs(address.sin_port);
  acceptor_ = std::thread([this] { Accept(); });
}

LoopbackServer::~LoopbackServer() {
  isEnding_ = true;
  ::shutdown(socket_, SHUT_RDWR);
  acceptor_.join();
  ::close(socket_);
  for (Served& each : served_) each.connection->Stop();
  for (Served& each : served_) each.thread.join();
}

std::string LoopbackServer::Url(const std::string& path) const {
  return (options_.identity ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port_) +
         path;
}

void LoopbackServer::Accept() {
  // OpenSSL writes without MSG_NOSIGNAL; the threads of the connections inherit this.
  sigset_t brokenPipe;
  ::sigemptyset(&brokenPipe);
  ::sigaddset(&brokenPipe, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &brokenPipe, nullptr);
  while (!isEnding_) {
    const int socket = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket < 0) continue;
    ++accepted_;
    ++open_;
    JoinThoseDone();
    const std::lock_guard lock(mutex_);
    Served& served = served_.emplace_back();
    served.connection = std::make_unique<Connection>(socket, *this);
    served.thread = std::thread([this, connection = served.connection.get()] {
      connection->Serve();
      --open_;
      connection->SetDone();
    });
  }
}

void LoopbackServer::JoinThoseDone() {
  const std::lock_guard lock(mutex_);
  for (auto each = served_.begin(); each != served_.end();) {
    if (!each->connection->IsDone()) {
      ++each;
      continue;
    }
    each->thread.join();
    each = served_.erase(each);
  }
}

}  // namespace TestSupport
