#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "VelmoraCore/MobilePrivacyStatus.h"
#include "hub/HubModule.h"
#include "modules/StateReader.h"

namespace Velmora {

// Knows the identifiers: the visitor's, which is made once and kept, those that an earlier
// generation stored, and the push and the advertising identifier, which the app gives and which are
// kept too. All of them are the shared state, and the answer to a query: a JSON object of texts.
//
// A visitor who opts out has no identifiers: what is stored is erased, and what the app gives stays
// in memory, untold, in case of another change of mind. Then a new visitor id is made.
class IdentityModule final : public HubModule {
 public:
  IdentityModule();

  std::string GetName() const override;
  void Attach(HubContext& hub) override;
  void BeforeFirstEvent(const std::shared_ptr<Event>& event) override;

 private:
  using EventPointer = std::shared_ptr<Event>;

  void OnRequest(const EventPointer& event);
  void OnQuery(const EventPointer& event);

  void Load();
  void Take(const char* name, const std::string& text, const EventPointer& event);
  void FollowStatus(const EventPointer& event);
  void Erase();
  void MakeVisitorId();
  void Store(const std::string& name) const;
  void Publish(const EventPointer& event);

  bool IsOptedOut() const { return status_ == MobilePrivacyStatus::OptedOut; }
  VariantMap Told() const;
  std::shared_ptr<DataStoreInterface> OpenStore() const;

  HubContext* hub_ = nullptr;
  StateReader configuration_;
  std::optional<MobilePrivacyStatus> status_;
  std::map<std::string, std::string> identifiers_;  // by the names that are told; none is empty
};

}  // namespace Velmora
