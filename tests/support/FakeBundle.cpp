#include "support/FakeBundle.h"

namespace TestSupport {

void FakeBundle::SetInfo(const std::string& key, const Platform::Value& value) {
  info_.With([&](auto& info) {
    info.erase(key);
    if (!value.IsAbsent()) info.emplace(key, value);
  });
}

std::string FakeBundle::AddResource(const std::string& name, const std::string& contents) {
  const std::string path = resourceFolder_.WriteFile(name, contents);
  SetResourcePath(name, path);
  return path;
}

void FakeBundle::SetResourcePath(const std::string& name, const std::string& path) {
  resources_.With([&](auto& resources) { resources[name] = path; });
}

Platform::Value FakeBundle::ObjectForInfoDictionaryKey(const std::string& key) const {
  return info_.With([&](const auto& info) {
    const auto found = info.find(key);
    return found == info.end() ? Platform::Value() : found->second;
  });
}

std::string FakeBundle::PathForResource(const std::string& name) const {
  return resources_.With([&](const auto& resources) {
    const auto found = resources.find(name);
    return found == resources.end() ? std::string() : found->second;
  });
}

}  // namespace TestSupport
