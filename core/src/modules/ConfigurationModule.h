#pragma once

#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/MobilePrivacyStatus.h"
#include "hub/HubModule.h"

namespace Velmora {

// Keeps the configuration and the privacy status, and publishes both as its shared state: a JSON
// object of the configuration's members and "privacyStatus", a number.
//
// A status that was set is remembered across starts and stands over the one in the configuration;
// without either it is unknown. The configuration itself comes anew with every start: from a file
// or from updates. None can be fetched for an app id yet; the id is kept as the member "appId".
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
  void Merge(const VariantMap& members, const EventPointer& event);
  void SetStatus(MobilePrivacyStatus status, const EventPointer& event);

  // False when the configuration would hold what cannot be written; it then stays as it was.
  bool Publish(const VariantMap& configuration, const EventPointer& event);

  MobilePrivacyStatus Status(const VariantMap& configuration) const;
  std::shared_ptr<DataStoreInterface> Store() const;

  HubContext* hub_ = nullptr;
  VariantMap configuration_;
  std::optional<MobilePrivacyStatus> chosenStatus_;
};

}  // namespace Velmora
