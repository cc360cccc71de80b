#include "modules/ConfigurationLayers.h"

#include <optional>
#include <utility>
#include <vector>

#include "VelmoraCore/Log.h"
#include "modules/JsonText.h"

namespace Velmora {
namespace {

constexpr const char* kLogTag = "Configuration";

// In the order of the layers.
constexpr std::array<const char*, 3> kKeys = {"FileConfiguration", "RemoteConfiguration",
                                              "UpdatedConfiguration"};

// The members that updates hide: JSON texts are written without their nulls and empty texts.
constexpr const char* kHiddenKey = "HiddenConfiguration";

bool IsLeftOutOfTexts(const std::shared_ptr<Variant>& value) {
  return IsNothing(value) ||
         (value->GetKind() == VariantKind::String && value->GetString().empty());
}

std::size_t IndexOf(ConfigurationLayer layer) { return static_cast<std::size_t>(layer); }

}  // namespace

bool IsNothing(const std::shared_ptr<Variant>& value) {
  return value == nullptr || value->GetKind() == VariantKind::Null;
}

const VariantMap& ConfigurationLayers::Get(ConfigurationLayer layer) const {
  return layers_.at(IndexOf(layer));
}

void ConfigurationLayers::Set(ConfigurationLayer layer, VariantMap members) {
  layers_.at(IndexOf(layer)) = std::move(members);
}

VariantMap ConfigurationLayers::Merged() const {
  VariantMap merged;
  for (const VariantMap& layer : layers_) {
    for (const auto& [key, value] : layer) merged.insert_or_assign(key, value);
  }
  std::erase_if(merged, [](const auto& member) { return IsNothing(member.second); });
  return merged;
}

ConfigurationLayers ConfigurationLayers::Load(const PlatformServicesInterface& services,
                                              const DataStoreInterface& store) {
  ConfigurationLayers loaded;
  for (std::size_t index = 0; index < kKeys.size(); ++index) {
    const std::string key = kKeys.at(index);
    if (!store.Contains(key)) continue;
    if (std::optional<VariantMap> members = JsonText::Read(services, store.GetString(key, ""))) {
      loaded.layers_.at(index) = *std::move(members);
    } else {
      Log::Warning(kLogTag, "the stored \"%s\" cannot be read and is ignored", key.c_str());
    }
  }
  VariantMap& updates = loaded.layers_.at(IndexOf(ConfigurationLayer::Updates));
  for (const std::string& key : store.GetVector(kHiddenKey)) {
    updates.insert_or_assign(key, Variant::FromNull());
  }
  return loaded;
}

void ConfigurationLayers::Save(ConfigurationLayer layer, const PlatformServicesInterface& services,
                               DataStoreInterface& store) const {
  const std::string key = kKeys.at(IndexOf(layer));
  VariantMap members = Get(layer);
  std::vector<std::string> hidden;
  for (const auto& [name, value] : members) {
    if (IsLeftOutOfTexts(value)) hidden.push_back(name);
  }
  for (const std::string& name : hidden) members.erase(name);
  const std::optional<std::string> text =
      JsonText::Write(services, members, kLogTag, "the configuration cannot be stored");
  if (!text.has_value()) return;
  store.SetString(key, *text);
  if (layer == ConfigurationLayer::Updates) store.SetVector(kHiddenKey, hidden);
}

}  // namespace Velmora
