#include "FolderServer.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <ctime>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>
#include <sys/stat.h>

namespace DevServer {
namespace {

namespace fs = std::filesystem;

using std::chrono::milliseconds;

constexpr milliseconds kLongestDelay{600'000};
constexpr milliseconds kDripPause{100};
constexpr const char* kDateFormat = "%a, %d %b %Y %H:%M:%S GMT";

int NumberIn(const std::string& text) {
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// The regular file of that path in the folder; nothing for one that lies elsewhere, by dots or by
// links.
std::optional<fs::path> FileOf(const fs::path& root, const std::string& requestPath) {
  std::error_code error;
  const fs::path folder = fs::canonical(root, error);
  const fs::path file = fs::canonical(folder / fs::path(requestPath).relative_path(), error);
  if (error || !fs::is_regular_file(file, error)) return std::nullopt;
  const auto end = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
  if (end.first != folder.end()) return std::nullopt;
  return file;
}

std::string DateText(std::time_t time) {
  std::tm parts{};
  ::gmtime_r(&time, &parts);
  char text[64];
  return {text, std::strftime(text, sizeof text, kDateFormat, &parts)};
}

std::string EntityTag(const struct stat& status) {
  return "\"" + std::to_string(status.st_mtim.tv_sec) + "." +
         std::to_string(status.st_mtim.tv_nsec) + "-" + std::to_string(status.st_size) + "\"";
}

// Whether what the client has is still what the file holds.
bool IsFresh(const httplib::Request& request, const std::string& entityTag, std::time_t modified) {
  if (request.has_header("If-None-Match")) {
    const std::string tags = request.get_header_value("If-None-Match");
    return tags == "*" || tags.find(entityTag) != std::string::npos;
  }
  std::tm parts{};
  const std::string since = request.get_header_value("If-Modified-Since");
  const char* end = ::strptime(since.c_str(), kDateFormat, &parts);
  return !since.empty() && end != nullptr && modified <= ::timegm(&parts);
}

std::string TypeOf(const fs::path& path) {
  const std::string extension = path.extension();
  if (extension == ".json") return "application/json";
  if (extension == ".html") return "text/html";
  if (extension == ".txt") return "text/plain";
  return "application/octet-stream";
}

}  // namespace

FolderServer::FolderServer(fs::path root, const fs::path& collected) : root_(std::move(root)) {
  if (!collected.empty()) collected_.open(collected, std::ios::app);
}

void FolderServer::AttachTo(httplib::Server& server) {
  constexpr std::size_t kLargestPost = std::size_t{64} << 20;
  server.set_payload_max_length(kLargestPost);
  server.Get(".*", [this](const auto& request, auto& response) { Get(request, response); });
  server.Post(".*", [this](const auto& request, auto& response) { Post(request, response); });
}

void FolderServer::Get(const httplib::Request& request, httplib::Response& response) {
  if (MakeTrouble(request, response)) return;
  if (const auto path = FileOf(root_, request.path)) {
    SendFile(request, response, *path);
  } else {
    response.status = 404;
    response.set_content("There is no such file.\n", "text/plain");
  }
}

void FolderServer::SendFile(const httplib::Request& request, httplib::Response& response,
                            const fs::path& path) {
  struct stat status {};
  ::stat(path.c_str(), &status);
  const std::string entityTag = EntityTag(status);
  response.set_header("ETag", entityTag);
  response.set_header("Last-Modified", DateText(status.st_mtim.tv_sec));
  if (IsFresh(request, entityTag, status.st_mtim.tv_sec)) {
    response.status = 304;
    return;
  }
  std::ifstream file(path, std::ios::binary);
  std::string body{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const std::string fault = request.get_param_value("fault");
  if (fault.empty()) {
    response.set_content(std::move(body), TypeOf(path));
  } else {
    SendFaultily(fault, std::move(body), TypeOf(path), response);
  }
}

void FolderServer::SendFaultily(const std::string& fault, std::string body, const std::string& type,
                                httplib::Response& response) {
  const bool isDrip = fault == "drip";
  const auto bytes = std::make_shared<const std::string>(std::move(body));
  response.set_content_provider(
      bytes->size(), type,
      [this, bytes, isDrip](std::size_t offset, std::size_t, httplib::DataSink& sink) {
        if (isDrip) return sink.write(bytes->data() + offset, 1) && pauses_.Wait(kDripPause);
        const std::size_t half = bytes->size() / 2;
        if (offset < half) sink.write(bytes->data() + offset, half - offset);
        return offset < half;
      });
}

// True when there is nothing more to be answered.
bool FolderServer::MakeTrouble(const httplib::Request& request, httplib::Response& response) {
  const milliseconds delay{NumberIn(request.get_param_value("delay"))};
  if (delay.count() > 0) pauses_.Wait(std::min(delay, kLongestDelay));
  if (request.get_param_value("fault") == "hang") pauses_.Wait(kLongestDelay);
  const int status = NumberIn(request.get_param_value("status"));
  if (status < 200 || status > 599) return false;
  response.status = status;
  response.set_content("Status " + std::to_string(status) + ", as asked for.\n", "text/plain");
  return true;
}

void FolderServer::Post(const httplib::Request& request, httplib::Response& response) {
  nlohmann::json line = {{"path", request.path}, {"body", request.body}};
  for (const auto& [name, value] : request.params) line["query"][name] = value;
  for (const auto& [name, value] : request.headers) line["headers"][name] = value;
  {
    const std::lock_guard lock(mutex_);
    collected_ << line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << std::endl;
  }
  if (MakeTrouble(request, response)) return;
  response.status = 200;
}

}  // namespace DevServer
