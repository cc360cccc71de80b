#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bridge/ServiceFactories.h"

namespace TestSupport {

// Factories of all thirteen services, which note what happens to the services. The services
// themselves are empty pointers that own something, enough to tell them apart and to see them go;
// the remote file manager alone can be called.
class TrackedServices {
 public:
  Velmora::ServiceFactories Factories();

  // The factory of that name throws a std::runtime_error from now on; none does for an empty name.
  void FailAt(const std::string& name) { failing_ = name; }

  // What happened, in order: "make network(systemInfo)", "release network". Others may add.
  std::vector<std::string>& Events() { return events_; }
  std::vector<std::string> TakeEvents();

  // The names of the factories in the order in which a registry calls them.
  static const std::vector<std::string>& Names();

 private:
  template <class Service>
  std::shared_ptr<Service> Make(const std::string& name,
                                const std::vector<std::weak_ptr<const void>>& dependencies = {});
  std::shared_ptr<Velmora::RemoteFileManagerServiceInterface> MakeRemoteFileManager(
      const std::vector<std::weak_ptr<const void>>& dependencies);
  void Note(const std::string& name, const std::vector<std::weak_ptr<const void>>& dependencies);
  std::string NameOf(const std::weak_ptr<const void>& service) const;

  std::string failing_;
  std::vector<std::string> events_;
  std::map<std::string, std::weak_ptr<const void>> made_;
};

}  // namespace TestSupport
