#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/MobilePrivacyStatus.h"
#include "hub/HubModule.h"
#include "modules/ConfigurationDownload.h"
#include "modules/ConfigurationLayers.h"

namespace Velmora {

// Keeps the configuration and the privacy status, and publishes both as its shared state: a JSON
// object of the configuration's members and "privacyStatus", a number.
//
// Members come from a file, over which stand those that were downloaded for the app id, over which
// stand updates. Each file takes the place of the one before, each download too, and another app id
// makes the download of the one before void; updates add up, a null hiding a member. All are
// remembered across starts, so that the next one begins with them.
//
// A status that was set is remembered too and stands over the one in the configuration; without
// either it is unknown. The app id is the member "appId".
class ConfigurationModule final : public HubModule {
 public:
  std::string GetName() const override;
  void Attach(HubContext& hub) override;
  void BeforeFirstEvent(const std::shared_ptr<Event>& event) override;

 private:
  using EventPointer = std::shared_ptr<Event>;

  void OnRequest(const EventPointer& event);
  void OnQuery(const EventPointer& event);
  void UseAppId(const std::string& appId, const EventPointer& event);
  void Update(const VariantMap& members, const EventPointer& event);
  void OnDownload(const std::string& appId, VariantMap members);
  void Change(ConfigurationLayer layer, VariantMap members, const EventPointer& event);
  void SetStatus(MobilePrivacyStatus status, const EventPointer& event);

  // False when the configuration would hold what cannot be written; it then stays as it was.
  bool Publish(const ConfigurationLayers& layers, const EventPointer& event);

  MobilePrivacyStatus Status(const VariantMap& configuration) const;
  std::shared_ptr<DataStoreInterface> Store() const;

  HubContext* hub_ = nullptr;
  ConfigurationLayers layers_;
  std::optional<ConfigurationDownload> download_;
  std::optional<MobilePrivacyStatus> chosenStatus_;
};

}  // namespace Velmora
