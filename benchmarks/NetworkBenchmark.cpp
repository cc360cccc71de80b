// HTTPS through our services beside raw libcurl easy handles, one for each request, each with the
// one authority that it needs: against a server of its own process, on fresh connections, TLS 1.3.

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <fcntl.h>
#include <malloc.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "QEXCore_iOS/Platform/Host.h"
#include "services/filesystem/NativeFileSystemService.h"
#include "services/network/NativeNetworkService.h"
#include "services/network/NativeRemoteFileManagerService.h"
#include "services/system/NativeSystemInfoService.h"

namespace {

namespace fs = std::filesystem;

using namespace std::chrono_literals;
using ConnectionPtr = std::shared_ptr<Velmora::HttpConnectionInterface>;

constexpr int kSmallBody = 1'000;
constexpr int kLargeBody = 50'000'000;
constexpr int kInFlight = 64;

void Check(bool succeeded, const char* what) {
  if (!succeeded) throw std::runtime_error(what);
}

// The development server, with a folder of two files, until the process ends.
class Server {
 public:
  static const Server& Instance() {
    static const Server server;
    return server;
  }

  Server() {
    std::string pattern = (fs::temp_directory_path() / "qexcore-bench-XXXXXX").string();
    Check(::mkdtemp(pattern.data()) != nullptr, "no folder");
    folder_ = pattern;
    fs::create_directory(folder_ / "www");
    std::ofstream(folder_ / "www/small") << std::string(kSmallBody, 's');
    std::ofstream(folder_ / "www/large") << std::string(kLargeBody, 'l');
    Start();
    while (url_.empty()) {
      std::ifstream output(folder_ / "output");
      std::string first;
      std::string second;
      if (std::getline(output, first) && std::getline(output, second)) url_ = first.substr(4);
    }
  }
  ~Server() {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  std::string Url(const std::string& path) const { return url_ + path; }
  std::string AuthorityFile() const { return folder_ / "ca/authority.pem"; }
  std::string CacheHome() const { return folder_ / "cache"; }

 private:
  void Start() {
    std::vector<std::string> arguments = {DEVSERVER_PROGRAM, folder_ / "www", "--tls13",
                                          "--authority", folder_ / "ca"};
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (folder_ / "output").c_str(),
                                       O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int error =
        ::posix_spawn(&process_, DEVSERVER_PROGRAM, &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    Check(error == 0, "no server");
  }

  fs::path folder_;
  std::string url_;
  pid_t process_ = -1;
};

class Ours {
 public:
  Ours() {
    ::setenv("XDG_CACHE_HOME", Server::Instance().CacheHome().c_str(), 1);
    Platform::HostOptions options;
    options.extraTrustFile = Server::Instance().AuthorityFile();
    Platform::Host::Install(Platform::Host::CreateDefault(options));
    const auto systemInfo = Velmora::CreateNativeSystemInfoService();
    network_ = Velmora::CreateNativeNetworkService(systemInfo);
    files_ = Velmora::CreateNativeRemoteFileManagerService(
        network_, Velmora::CreateNativeFileSystemService(), systemInfo);
  }
  ~Ours() { Platform::Host::Install(*former_); }
  Ours(const Ours&) = delete;
  Ours& operator=(const Ours&) = delete;

  void Get(const std::string& url, std::size_t expected, int atOnce) {
    std::mutex mutex;
    std::condition_variable changed;
    int left = atOnce;
    for (int i = 0; i < atOnce; ++i) {
      Start(url, [&, expected](const ConnectionPtr& connection) {
        Check(connection->GetResponseRawData()->GetSize() == expected, "a wrong body");
        const std::lock_guard lock(mutex);
        --left;
        changed.notify_one();
      });
    }
    std::unique_lock lock(mutex);
    Check(changed.wait_for(lock, 60s, [&] { return left == 0; }), "no answer");
  }

  void Start(const std::string& url, Velmora::NetworkServiceInterface::ConnectionCallback done) {
    network_->ConnectUrlAsync(url, Velmora::HttpCommandType::Get, "", {}, 60s, 60s,
                              std::move(done));
  }

  void Revalidate() {
    const auto result = files_->GetFileSync(Server::Instance().Url("/small"), "");
    Check(result.HasValue(), "no file");
  }

 private:
  const std::shared_ptr<const Platform::Host> former_ = Platform::Host::Current();
  std::shared_ptr<Velmora::NetworkServiceInterface> network_;
  std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> files_;
};

struct Answer {
  std::map<std::string, std::string> headers;
  std::string body;
};

std::size_t KeepBody(const char* bytes, std::size_t one, std::size_t count, Answer* answer) {
  answer->body.append(bytes, one * count);
  return one * count;
}

std::size_t KeepHeader(const char* bytes, std::size_t one, std::size_t count, Answer* answer) {
  const std::string line(bytes, one * count);
  const std::size_t colon = line.find(": ");
  if (colon != std::string::npos) {
    answer->headers[line.substr(0, colon)] = line.substr(colon + 2, line.size() - colon - 4);
  }
  return one * count;
}

// One request by hand, as long as it takes.
class RawRequest {
 public:
  RawRequest(const std::string& url, const std::vector<std::string>& headers)
      : handle_(::curl_easy_init()) {
    for (const std::string& header : headers) {
      headers_ = ::curl_slist_append(headers_, header.c_str());
    }
    ::curl_easy_setopt(handle_, CURLOPT_URL, url.c_str());
    ::curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers_);
    ::curl_easy_setopt(handle_, CURLOPT_CAINFO, Server::Instance().AuthorityFile().c_str());
    ::curl_easy_setopt(handle_, CURLOPT_CAPATH, nullptr);
    ::curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
    ::curl_easy_setopt(handle_, CURLOPT_ACCEPT_ENCODING, "gzip, deflate, br");
    ::curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &KeepBody);
    ::curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &answer_);
    ::curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, &KeepHeader);
    ::curl_easy_setopt(handle_, CURLOPT_HEADERDATA, &answer_);
  }
  ~RawRequest() {
    ::curl_slist_free_all(headers_);
    ::curl_easy_cleanup(handle_);
  }
  RawRequest(const RawRequest&) = delete;
  RawRequest& operator=(const RawRequest&) = delete;

  const Answer& Perform(long status) {
    Check(::curl_easy_perform(handle_) == CURLE_OK, "no answer");
    long received = 0;
    ::curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &received);
    Check(received == status, "a wrong status");
    return answer_;
  }

 private:
  CURL* handle_;
  curl_slist* headers_ = nullptr;
  Answer answer_;
};

const std::string kUserAgent = "User-Agent: Mozilla/5.0 (raw)";

void GetRaw(const std::string& url, std::size_t expected) {
  RawRequest request(url, {kUserAgent});
  Check(request.Perform(200).body.size() == expected, "a wrong body");
}

// As many requests as arguments say, all at once; the time is that of all of them.
void MeasureOurs(benchmark::State& state, const char* path, std::size_t expected) {
  Ours ours;
  const std::string url = Server::Instance().Url(path);
  const int atOnce = static_cast<int>(state.range(0));
  ours.Get(url, expected, atOnce);
  for (auto _ : state) ours.Get(url, expected, atOnce);
}

void MeasureRaw(benchmark::State& state, const char* path, std::size_t expected) {
  const std::string url = Server::Instance().Url(path);
  const auto atOnce = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    std::vector<std::thread> threads;
    for (std::size_t i = 1; i < atOnce; ++i) {
      threads.emplace_back([&] { GetRaw(url, expected); });
    }
    GetRaw(url, expected);
    for (std::thread& thread : threads) thread.join();
  }
}

void NetworkGet(benchmark::State& state) { MeasureOurs(state, "/small", kSmallBody); }
void NetworkGetRaw(benchmark::State& state) { MeasureRaw(state, "/small", kSmallBody); }
void NetworkDownload(benchmark::State& state) { MeasureOurs(state, "/large", kLargeBody); }
void NetworkDownloadRaw(benchmark::State& state) { MeasureRaw(state, "/large", kLargeBody); }

void NetworkRevalidate(benchmark::State& state) {
  Ours ours;
  ours.Revalidate();
  for (auto _ : state) ours.Revalidate();
}

void NetworkRevalidateRaw(benchmark::State& state) {
  const std::string url = Server::Instance().Url("/small");
  RawRequest first(url, {kUserAgent});
  const Answer& answer = first.Perform(200);
  const std::vector<std::string> headers = {
      kUserAgent, "If-Modified-Since: " + answer.headers.at("Last-Modified"),
      "If-None-Match: " + answer.headers.at("ETag")};
  for (auto _ : state) {
    RawRequest request(url, headers);
    request.Perform(304);
  }
}

std::size_t BytesInUse() {
  const struct mallinfo2 info = ::mallinfo2();
  return info.uordblks + info.hblkhd;
}

// Until the requests that were started have said what they have to say: the server keeps silent for
// two seconds.
void LetThemSettle() {
  std::promise<void> never;
  never.get_future().wait_for(1200ms);
}

// The "time" of these two is the memory of one request in flight: a nanosecond is a byte.
void ReportBytes(benchmark::State& state, std::size_t bytes) {
  state.SetIterationTime(static_cast<double>(bytes) / kInFlight * 1e-9);
}

void NetworkMemory(benchmark::State& state) {
  const std::string url = Server::Instance().Url("/small?delay=2000");
  for (auto _ : state) {
    Ours ours;
    ours.Get(Server::Instance().Url("/small"), kSmallBody, 1);
    const std::size_t before = BytesInUse();
    auto done = std::async(std::launch::async, [&] { ours.Get(url, kSmallBody, kInFlight); });
    LetThemSettle();
    ReportBytes(state, BytesInUse() - before);
    done.get();
  }
}

void NetworkMemoryRaw(benchmark::State& state) {
  const std::string url = Server::Instance().Url("/small?delay=2000");
  for (auto _ : state) {
    GetRaw(Server::Instance().Url("/small"), kSmallBody);
    const std::size_t before = BytesInUse();
    std::vector<std::thread> threads;
    for (int i = 0; i < kInFlight; ++i) {
      threads.emplace_back([&url] {
        RawRequest request(url, {kUserAgent});
        request.Perform(200);
      });
    }
    LetThemSettle();
    ReportBytes(state, BytesInUse() - before);
    for (std::thread& thread : threads) thread.join();
  }
}

BENCHMARK(NetworkGet)->Arg(1)->Arg(8)->UseRealTime()->Iterations(100);
BENCHMARK(NetworkGetRaw)->Arg(1)->Arg(8)->UseRealTime()->Iterations(100);
BENCHMARK(NetworkGet)->Arg(64)->UseRealTime()->Iterations(10);
BENCHMARK(NetworkGetRaw)->Arg(64)->UseRealTime()->Iterations(10);
BENCHMARK(NetworkDownload)->Arg(1)->UseRealTime()->Iterations(3);
BENCHMARK(NetworkDownloadRaw)->Arg(1)->UseRealTime()->Iterations(3);
BENCHMARK(NetworkRevalidate)->UseRealTime()->Iterations(100);
BENCHMARK(NetworkRevalidateRaw)->UseRealTime()->Iterations(100);
BENCHMARK(NetworkMemory)->UseManualTime()->Iterations(1)->Repetitions(3);
BENCHMARK(NetworkMemoryRaw)->UseManualTime()->Iterations(1)->Repetitions(3);

}  // namespace
