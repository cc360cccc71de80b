// The local development server: HTTPS on this machine alone, with a certificate authority of its
// own, so that an app can be tried without a network. See FolderServer.h for what it answers.

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include <CLI/CLI.hpp>
#include <httplib.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <pthread.h>
#include <sys/socket.h>

#include "AuthorityFolder.h"
#include "FolderServer.h"

namespace {

struct Options {
  std::string root;
  std::string collected;
  std::string authorityFolder = DevServer::DefaultAuthorityFolder();
  int port = 0;
  bool isTls13Only = false;
};

bool UseIdentity(SSL_CTX& context, const DevServer::Identity& identity) {
  BIO* certificate = ::BIO_new_mem_buf(identity.certificate.data(), -1);
  BIO* key = ::BIO_new_mem_buf(identity.key.data(), -1);
  X509* x509 = ::PEM_read_bio_X509(certificate, nullptr, nullptr, nullptr);
  EVP_PKEY* privateKey = ::PEM_read_bio_PrivateKey(key, nullptr, nullptr, nullptr);
  const bool isUsable = ::SSL_CTX_use_certificate(&context, x509) == 1 &&
                        ::SSL_CTX_use_PrivateKey(&context, privateKey) == 1;
  ::X509_free(x509);
  ::EVP_PKEY_free(privateKey);
  ::BIO_free(certificate);
  ::BIO_free(key);
  return isUsable;
}

int Listen(httplib::Server& server, int port) {
  const std::string host = "127.0.0.1";
  int socket = -1;
  server.set_socket_options([&socket](int made) {
    const int yes = 1;
    ::setsockopt(made, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    socket = made;
  });
  server.set_tcp_nodelay(true);
  if (port == 0)
    port = server.bind_to_any_port(host);
  else if (!server.bind_to_port(host, port))
    port = -1;
  if (port <= 0) throw std::runtime_error("the port cannot be had");
  // The library lets no more than five clients wait, and each further one for a second.
  ::listen(socket, SOMAXCONN);
  return port;
}

// Until somebody asks the process to end.
void WaitForSignal(const sigset_t& signals) {
  int signal = 0;
  ::sigwait(&signals, &signal);
}

int Run(const Options& options, const sigset_t& signals) {
  const DevServer::AuthorityFolder folder(options.authorityFolder);
  const DevServer::Identity identity = DevServer::MakeServerIdentity(folder.authority);
  httplib::SSLServer server([&](SSL_CTX& context) {
    if (options.isTls13Only) SSL_CTX_set_min_proto_version(&context, TLS1_3_VERSION);
    return UseIdentity(context, identity);
  });
  if (!server.is_valid()) throw std::runtime_error("the certificate cannot be used");
  constexpr std::size_t kClientsAtOnce = 128;
  server.new_task_queue = [] { return new httplib::ThreadPool(kClientsAtOnce); };
  DevServer::FolderServer files(options.root, options.collected);
  files.AttachTo(server);
  const int port = Listen(server, options.port);
  std::atomic<bool> hasFailed{false};
  std::thread thread([&] { hasFailed = !server.listen_after_bind(); });
  // A server that does not listen yet cannot be stopped.
  while (!server.is_running() && !hasFailed) std::this_thread::yield();
  std::cout << "url=https://localhost:" << port << "\nauthority=" << folder.certificateFile.string()
            << std::endl;
  WaitForSignal(signals);
  files.End();
  server.stop();
  thread.join();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  sigset_t signals;
  ::sigemptyset(&signals);
  ::sigaddset(&signals, SIGINT);
  ::sigaddset(&signals, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  Options options;
  CLI::App app("The local development server of QEXCore", "devserver");
  app.add_option("root", options.root, "folder to serve")
      ->required()
      ->check(CLI::ExistingDirectory);
  app.add_option("--port", options.port, "port on 127.0.0.1; any free one unless given");
  app.add_option("--collect", options.collected, "file for what POST brings, as JSON lines");
  app.add_option("--authority", options.authorityFolder, "folder of the certificate authority");
  app.add_flag("--tls13", options.isTls13Only, "speak no older TLS");
  try {
    app.parse(argc, argv);
    return Run(options, signals);
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (const std::exception& error) {
    std::cerr << "devserver: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
