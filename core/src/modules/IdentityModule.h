#pragma once

#include <memory>
#include <string>

#include "hub/HubModule.h"

namespace Velmora {

// Knows the identifiers: the visitor's, as they stand in the data store, and the push and the
// advertising identifier, which the app gives anew with every start. The latter two are the shared
// state. Makes no identifiers and sends none.
class IdentityModule final : public HubModule {
 public:
  std::string GetName() const override;
  void Attach(HubContext& hub) override;

 private:
  using EventPointer = std::shared_ptr<Event>;

  void OnRequest(const EventPointer& event);
  void OnQuery(const EventPointer& event);

  // Adds what is not empty.
  void AddGiven(VariantMap& identities) const;
  void AddStored(VariantMap& identities) const;

  HubContext* hub_ = nullptr;
  std::string pushIdentifier_;
  std::string advertisingIdentifier_;
};

}  // namespace Velmora
