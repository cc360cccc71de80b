#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "hub/HubModule.h"
#include "modules/RulePresenter.h"
#include "modules/RulesFolder.h"
#include "modules/RulesStore.h"

namespace Velmora {

// Fetches rules, keeps them on the device, asks them about every event, and does what they say.
// docs/rules.md tells the author of rules what to expect.
//
// A request has the archive downloaded that the configuration names. Nothing of it is unpacked
// unless its SHA-256 is the one that the configuration names too. Whatever is wrong with it gives
// one error line, and the rules before it go on serving; so they do after a restart, from the first
// event on. The archive is handled on the thread that brings it. The shared state tells how many
// rules serve, and the SHA-256 of their archive.
//
// Rules hear no events of their own making, and one that has fired rests for a second, so that no
// chain of reactions to it goes on by itself.
class RulesModule final : public HubModule {
 public:
  std::string GetName() const override;
  void Attach(HubContext& hub) override;
  void BeforeFirstEvent(const std::shared_ptr<Event>& event) override;

 private:
  using EventPointer = std::shared_ptr<Event>;
  struct Source;

  void OnRequest(const EventPointer& event);
  std::optional<Source> ConfiguredAt(const EventPointer& event) const;
  void Fetch(const Source& source);
  void Adopt(const InstalledRules& installed, const std::string& url);
  void Serve(InstalledRules installed, const EventPointer& event);

  void OnEvent(const EventPointer& event);
  bool MayFire(const Rule& rule) const;
  void Fire(const Rule& rule);

  HubContext* hub_ = nullptr;
  std::optional<RulesStore> store_;
  std::optional<RulePresenter> presenter_;
  std::optional<InstalledRules> installed_;
  bool isTidied_ = false;                              // what earlier starts have left over
  std::map<std::string, Clock::TimePoint> lastFired_;  // by rule
};

}  // namespace Velmora
