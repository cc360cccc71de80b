#include "TrackedServices.h"

#include <chrono>
#include <stdexcept>
#include <utility>

#include "VelmoraCore/Object.h"

namespace TestSupport {

namespace {

using Dependencies = std::vector<std::weak_ptr<const void>>;

// Notes its own end.
class Tracker {
 public:
  Tracker(std::vector<std::string>& events, std::string name)
      : events_(events), name_(std::move(name)) {}
  ~Tracker() { events_.push_back("release " + name_); }
  Tracker(const Tracker&) = delete;
  Tracker& operator=(const Tracker&) = delete;

 private:
  std::vector<std::string>& events_;
  const std::string name_;
};

// Is disposed in time when it has at least a tenth of a second.
class RemoteFileManager final : public Velmora::Object,
                                public virtual Velmora::RemoteFileManagerServiceInterface {
 public:
  explicit RemoteFileManager(std::vector<std::string>& events)
      : events_(events), tracker_(events, "remoteFileManager") {}

  bool Dispose(std::chrono::milliseconds timeout) override {
    events_.push_back("dispose " + std::to_string(timeout.count()));
    return timeout >= std::chrono::milliseconds(100);
  }
  void GetFileAsync(const std::string&, const std::string&, FileCallback) override {}
  FileResult GetFileSync(const std::string&, const std::string&) override { return Nothing(); }
  FileResult GetFileFromCache(const std::string&, const std::string&) override { return Nothing(); }
  void DeleteCachedDataNotInList(const std::string&, const std::deque<std::string>&) override {}

 private:
  static FileResult Nothing() { return FileResult(nullptr); }

  std::vector<std::string>& events_;
  const Tracker tracker_;
};

bool SameOwner(const std::weak_ptr<const void>& left, const std::weak_ptr<const void>& right) {
  return !left.owner_before(right) && !right.owner_before(left);
}

}  // namespace

const std::vector<std::string>& TrackedServices::Names() {
  static const std::vector<std::string> names = {
      "crypto",      "systemInfo",   "database",      "encoding", "fileSystem",
      "jsonUtility", "localStorage", "logging",       "network",  "remoteFileManager",
      "ui",          "url",          "compressedFile"};
  return names;
}

std::vector<std::string> TrackedServices::TakeEvents() { return std::exchange(events_, {}); }

void TrackedServices::Note(const std::string& name, const Dependencies& dependencies) {
  std::string event = "make " + name;
  const char* separator = "(";
  for (const auto& dependency : dependencies) {
    event += separator + NameOf(dependency);
    separator = ", ";
  }
  if (!dependencies.empty()) event += ")";
  events_.push_back(std::move(event));
  if (name == failing_) throw std::runtime_error("no " + name);
}

std::string TrackedServices::NameOf(const std::weak_ptr<const void>& service) const {
  for (const auto& [name, made] : made_) {
    if (SameOwner(service, made)) return name;
  }
  return "?";
}

template <class Service>
std::shared_ptr<Service> TrackedServices::Make(const std::string& name,
                                               const Dependencies& dependencies) {
  Note(name, dependencies);
  const auto tracker = std::make_shared<Tracker>(events_, name);
  std::shared_ptr<Service> service(tracker, static_cast<Service*>(nullptr));
  made_[name] = tracker;
  return service;
}

std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> TrackedServices::MakeRemoteFileManager(
    const Dependencies& dependencies) {
  Note("remoteFileManager", dependencies);
  auto service = std::make_shared<RemoteFileManager>(events_);
  made_["remoteFileManager"] = service;
  return service;
}

Velmora::ServiceFactories TrackedServices::Factories() {
  using namespace Velmora;
  using SystemInfo = ServiceFactories::SystemInfo;
  using FileSystem = ServiceFactories::FileSystem;
  using Network = ServiceFactories::Network;
  ServiceFactories factories;
  factories.crypto = [this] { return Make<CryptoServiceInterface>("crypto"); };
  factories.systemInfo = [this] { return Make<SystemInfoServiceInterface>("systemInfo"); };
  factories.database = [this](const SystemInfo& info) {
    return Make<DatabaseServiceInterface>("database", {info});
  };
  factories.encoding = [this] { return Make<EncodingServiceInterface>("encoding"); };
  factories.fileSystem = [this] { return Make<FileSystemServiceInterface>("fileSystem"); };
  factories.jsonUtility = [this] { return Make<JsonUtilityServiceInterface>("jsonUtility"); };
  factories.localStorage = [this] { return Make<LocalStorageServiceInterface>("localStorage"); };
  factories.logging = [this] { return Make<LoggingServiceInterface>("logging"); };
  factories.network = [this](const SystemInfo& info) {
    return Make<NetworkServiceInterface>("network", {info});
  };
  factories.remoteFileManager = [this](const Network& network, const FileSystem& files,
                                       const SystemInfo& info) {
    return MakeRemoteFileManager({network, files, info});
  };
  factories.ui = [this] { return Make<UIServiceInterface>("ui"); };
  factories.url = [this] { return Make<URLServiceInterface>("url"); };
  factories.compressedFile = [this] {
    return Make<CompressedFileServiceInterface>("compressedFile");
  };
  return factories;
}

}  // namespace TestSupport
